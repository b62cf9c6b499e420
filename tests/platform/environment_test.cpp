#include "platform/environment.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "platform/log.h"

namespace brindlet {
namespace environment_tests {

// Sets variables of this process, or takes them away, and puts all back as they were.
class Variables {
  public:
    explicit Variables(const std::vector<std::pair<const char*, const char*>>& values) {
        for (const auto& [name, value] : values) {
            const char* before = std::getenv(name);
            before_.emplace_back(name, before ? std::optional<std::string>(before) : std::nullopt);
            put(name, value);
        }
    }
    ~Variables() {
        for (const auto& [name, value] : before_) put(name, value ? value->c_str() : nullptr);
    }

  private:
    static void put(const char* name, const char* value) {
        if (value) {
            ::setenv(name, value, 1);
        } else {
            ::unsetenv(name);
        }
    }

    std::vector<std::pair<const char*, std::optional<std::string>>> before_;
};

TEST(Environment, FoldersOfTheUser) {
    struct Case {
        const char *home, *base, *own;
        std::string data, config;
    };
    const Case cases[] = {
        {"/h", nullptr, nullptr, "/h/.local/share/Brindlet", "/h/.config/Brindlet"},
        {"/h", "", "", "/h/.local/share/Brindlet", "/h/.config/Brindlet"},
        {"/h", "/x/", nullptr, "/x/Brindlet", "/x/Brindlet"},
        {"/h", "relative", nullptr, "/h/.local/share/Brindlet", "/h/.config/Brindlet"},  // invalid, so ignored
        {"/h", "/x", "/own/folder/", "/own/folder", "/own/folder"},
    };
    for (const auto& [home, base, own, data, config] : cases) {
        const Variables set({{"HOME", home},
                             {"XDG_DATA_HOME", base},
                             {"XDG_CONFIG_HOME", base},
                             {"BRINDLET_DATA_HOME", own},
                             {"BRINDLET_CONFIG_HOME", own}});
        EXPECT_EQ(homeFolder(), FilePath(home));
        EXPECT_EQ(dataFolder(), FilePath(data));
        EXPECT_EQ(configFolder(), FilePath(config));
    }
    for (const char* unusable : {static_cast<const char*>(nullptr), "", "relative"}) {
        const Variables set({std::pair{"HOME", unusable}});
        EXPECT_EQ(homeFolder().text().front(), '/');
        EXPECT_EQ(homeFolder().text().find("relative"), std::string::npos);
    }
}

TEST(Environment, IsACopy) {
    const Variables set({std::pair{"BRINDLET_TEST", "a=b\n"}});
    Environment copy = processEnvironment();
    EXPECT_EQ(copy["BRINDLET_TEST"], "a=b\n");
    copy["BRINDLET_TEST"] = "changed";
    EXPECT_STREQ(std::getenv("BRINDLET_TEST"), "a=b\n");
}

TEST(Log, NeverFailsIntoTheCaller) {
    std::string seen;
    logInfo("nobody listens yet");
    installLogSink([&](LogLevel level, std::string_view message) {
        seen += level == LogLevel::error ? "E " : "I ";
        seen += message;
        throw std::runtime_error("the disk is full");
    });
    logInfo("a");
    logError("b");
    installLogSink({});
    logInfo("c");
    EXPECT_EQ(seen, "I aE b");
}

}  // namespace environment_tests
}  // namespace brindlet
