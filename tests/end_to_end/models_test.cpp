#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "end_to_end/program.h"
#include "text/strings.h"

namespace brindlet {
namespace models_tests {

using Words = std::vector<std::string>;

// What the list says of a model; null where it has none of that name.
nlohmann::ordered_json listed(const Program& program, std::string_view name) {
    const auto list = program.run({"models", "list", "--json"}).json();
    for (const auto& model : list["models"])
        if (model["name"] == name) return model;
    return nullptr;
}

TEST(ModelsCommand, AddsChoosesAndRemovesOnesOwn) {
    const Program program;
    EXPECT_EQ(program.run({"models", "list", "--json"}).json()["selected"], "gpt-4.1-mini");
    const Words add{"models", "add", "--name", " [llama] ", "--url", "http://localhost:11434/", "--key", "--slow"};
    EXPECT_EQ(program.run(add, "\n").exitCode, 2);  // there is no key
    EXPECT_EQ(program.run(add, " sk-own\n").out, "[llama]\n");
    EXPECT_EQ(program.run(add, "sk-own").exitCode, 1);  // there already

    const auto list = program.run({"models", "list", "--json"}).json();
    const auto& first = list["models"][0];
    EXPECT_EQ(list["models"].size(), 18u);
    EXPECT_EQ(first["name"], "[llama]");
    EXPECT_EQ(first["friendlyName"], "[llama]");
    EXPECT_EQ(first["provider"], "Custom");
    EXPECT_EQ(first["modelType"], "custom");
    EXPECT_TRUE(first["enabled"] == true && first["usable"] == true);
    const std::string id = first["id"];
    const auto file = nlohmann::json::parse(program.home.read("data/Custom Models/" + id + ".json"));
    EXPECT_EQ(file["fastMode"], false);
    EXPECT_TRUE(
        contains(program.home.read("data/secrets.json"), "\"Brindlet custom model API Key " + id + "\": \"sk-own\""));

    EXPECT_EQ(program.run({"models", "select", id}).exitCode, 0);
    EXPECT_EQ(program.run({"settings", "get", "selectedModelName"}).out, "[llama]\n");
    EXPECT_EQ(program.run({"models", "disable", "[llama]"}).exitCode, 0);
    EXPECT_EQ(listed(program, "[llama]")["enabled"], false);
    EXPECT_EQ(program.runAtTerminal({"models", "remove", "[llama]"}, "keeps it", "n").exitCode, 130);
    EXPECT_EQ(program.run({"models", "remove", "[llama]"}).exitCode, 0);
    EXPECT_EQ(program.run({"models", "list", "--json"}).json()["selected"], "gpt-4.1-mini");
}

TEST(ModelsCommand, TurnsBuiltInOnesOnAndOff) {
    const Program program;
    EXPECT_EQ(program.run({"models", "enable", "gpt-5"}).out, "gpt-5.4 is offered in the menu\n");
    EXPECT_EQ(program.run({"models", "disable", "gpt-4.1-mini"}).exitCode, 0);
    EXPECT_EQ(listed(program, "gpt-5.4")["enabled"], true);
    EXPECT_EQ(listed(program, "gpt-4.1-mini")["enabled"], false);
    EXPECT_EQ(program.run({"models", "select", "gpt-4o"}).exitCode, 0);
    const auto list = program.run({"models", "list", "--json"}).json();
    EXPECT_EQ(list["selected"], "gpt-4.1");
    EXPECT_EQ(list["summarization"], "gpt-4.1-nano");
}

TEST(ModelsCommand, RefusesWhatCantBe) {
    struct Case {
        Words words;
        int exitCode;
        std::string_view says;
    };
    const Case cases[] = {
        {{"select", "gpt-9"}, 1, "there is no model 'gpt-9'"},
        {{"select", ""}, 1, "there is no model ''"},
        {{"enable", "gpt-9"}, 1, "there is no model"},
        {{"remove", "gpt-9"}, 1, "there is no model"},
        {{"remove", "gpt-4.1"}, 1, "comes with the program"},
        {{"select"}, 2, "NAME is missing"},
        {{"add", "--url", "http://localhost"}, 2, "--name is missing"},
        {{"add", "--name", " ", "--url", "http://localhost"}, 2, "name is empty"},
        {{"add", "--name", "m", "--url", " \n"}, 2, "URL is empty"},
        {{"add", "--name", "m", "--url", "http://a b/"}, 2, "URL 'http://a b' is not valid"},
        {{"add", "--name", "m", "--url", "localhost:11434"}, 2, "is not valid"},
        {{"add", "--name", "m", "--url", "ftp://localhost"}, 2, "is not valid"},
        {{"add", "--name", "m", "--url", "http://example.com/v1"}, 2, "not encrypted"},
        {{"add", "--name", "m", "--url", "HTTP://8.8.8.8:80"}, 2, "not encrypted"},
        {{"add", "--name", "m", "--url", "http://[2606:4700::1111]"}, 2, "not encrypted"},
        {{"add", "--name", "m1", "--url", "https://example.com/v1"}, 0, ""},
        {{"add", "--name", "m2", "--url", "http://192.168.1.20:8080"}, 0, ""},
        {{"add", "--name", "m3", "--url", "http://workstation:8080"}, 0, ""},
        {{"add", "--name", "m4", "--url", "http://[::1]:8080/chat/completions"}, 0, ""},
    };
    const Program program;
    for (Case each : cases) {
        each.words.insert(each.words.begin(), "models");
        SCOPED_TRACE(each.words.back());
        const Outcome outcome = program.run(each.words);
        EXPECT_EQ(outcome.exitCode, each.exitCode);
        EXPECT_TRUE(contains(outcome.err, each.says)) << outcome.err;
    }
    EXPECT_EQ(program.run({"models", "list", "--json"}).json()["models"].size(), 21u);
}

TEST(KeysCommand, StoresAndRemoves) {
    Program program;
    EXPECT_EQ(program.run({"keys", "set", "openai"}, " sk-1\r\n").exitCode, 0);
    EXPECT_EQ(program.run({"keys", "set", "Inception"}, "sk-2").exitCode, 0);
    program.environment["GEMINI_API_KEY"] = "sk-3";
    EXPECT_EQ(listed(program, "gpt-4.1")["usable"], true);
    EXPECT_EQ(listed(program, "gemini-2.5-pro")["usable"], true);
    EXPECT_EQ(listed(program, "mercury-2")["usable"], false);  // no request goes out with that key
    EXPECT_EQ(listed(program, "codestral-latest")["usable"], false);

    const std::string place = program.home.path("data/secrets.json").text();
    EXPECT_EQ(program.run({"keys", "list"}).out, "OpenAI     stored in " + place +
                                                     "\n"
                                                     "Anthropic  none\n"
                                                     "Google     from the variable GEMINI_API_KEY\n"
                                                     "Mistral    none\n"
                                                     "Inception  stored in " +
                                                     place + ", kept, but no request is sent with it\n");
    const auto first = program.run({"keys", "list", "--json"}).json()["keys"][0];
    EXPECT_EQ(first.dump(), R"({"provider":"OpenAI","origin":"stored","place":")" + place +
                                R"(","variable":"OPENAI_API_KEY","used":true})");
    EXPECT_EQ(program.run({"keys", "set", "OpenAI"}, " \n").out, "The key for OpenAI is removed\n");
    EXPECT_EQ(program.run({"keys", "remove", "INCEPTION"}).exitCode, 0);
    EXPECT_FALSE(contains(program.home.read("data/secrets.json"), "sk-"));
}

TEST(KeysCommand, NeverShowsAKey) {
    const Program program;
    struct Case {
        Words words;
        std::string_view standardInput;
    };
    const Case cases[] = {
        {{"OpenAI", "sk-secret"}, ""},       {{"OpenAI", "--key=sk-secret"}, ""}, {{"OpenAI", "--", "sk-secret"}, ""},
        {{"Nobody"}, "sk-secret"},           {{"Custom"}, "sk-secret"},           {{}, "sk-secret"},
        {{"OpenAI"}, "sk-secret\nsk-other"}, {{"OpenAI"}, "sk-secret\xff"},
    };
    for (Case each : cases) {
        each.words.insert(each.words.begin(), {"keys", "set"});
        const Outcome outcome = program.run(each.words, each.standardInput);
        EXPECT_EQ(outcome.exitCode, 2);
        EXPECT_FALSE(contains(outcome.out + outcome.err, "sk-secret")) << outcome.err;
    }
    EXPECT_FALSE(program.home.exists("data/secrets.json"));

    const Outcome typed = program.runAtTerminal({"keys", "set", "OpenAI"}, "removes it): ", "sk-secret\n");
    EXPECT_EQ(typed.exitCode, 0);
    EXPECT_FALSE(contains(typed.out, "sk-secret")) << typed.out;
    EXPECT_TRUE(contains(program.home.read("data/secrets.json"), "sk-secret"));
    for (const std::string_view keys : {"", "half\x03", "\x04"}) {
        EXPECT_EQ(program.runAtTerminal({"keys", "set", "OpenAI"}, "removes it): ", keys).exitCode, 130);
        EXPECT_TRUE(contains(program.home.read("data/secrets.json"), "sk-secret"));
    }
}

// In a session of its own with a real keyring: what is stored there leaves the file, and nothing goes there while it is
// locked.
TEST(KeysCommand, TheDesktopsKeyringKeepsKeys) {
    for (const char* tool : {"/usr/bin/dbus-run-session", "/usr/bin/gnome-keyring-daemon"})
        if (::access(tool, X_OK) != 0) GTEST_SKIP() << tool << " isn't installed";
    Program program;
    program.run({"keys", "set", "OpenAI"}, "sk-older");
    program.run({"keys", "set", "Mistral"}, "sk-of-file");
    const std::string script = "export XDG_RUNTIME_DIR=" + program.home.makeFolder("run").text() +
                               "\nexport XDG_DATA_HOME=" + program.home.makeFolder("share").text() + "\n" + R"(
printf PW | gnome-keyring-daemon --unlock --components=secrets >/dev/null || exit 77
printf sk-newer | "$0" keys set OpenAI || exit 1
"$0" keys list
exec "$0" keys remove Mistral
)";
    std::string line = "env -i";
    for (const auto& [name, value] : program.environment) line += " " + name + "='" + value + "'";
    line += " dbus-run-session -- sh -c '" + script + "' " BRINDLET_PROGRAM " >" + program.home.path("shown").text() +
            " 2>" + program.home.path("problems").text();
    std::filesystem::permissions(program.home.path("run").text(), std::filesystem::perms::owner_all);
    const int status = std::system(line.c_str());
    if (WEXITSTATUS(status) == 77) GTEST_SKIP() << "no keyring can be unlocked here";
    EXPECT_EQ(WEXITSTATUS(status), 0) << program.home.read("problems");
    const std::string shown = program.home.read("shown");
    EXPECT_TRUE(contains(shown, "The key for OpenAI: stored in the desktop's keyring\n")) << shown;
    EXPECT_TRUE(contains(shown, "Mistral    stored in " + program.home.path("data/secrets.json").text())) << shown;
    EXPECT_FALSE(contains(program.home.read("data/secrets.json"), "sk-"));
}

}  // namespace models_tests
}  // namespace brindlet
