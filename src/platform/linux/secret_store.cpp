#include "platform/secret_store.h"

#include <cstring>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

#include "platform/atomic_file.h"
#include "platform/file_lock.h"
#include "platform/file_system.h"
#include "platform/linux/secret_service.h"

namespace brindlet {

namespace {

using SecretsJson = nlohmann::json;

// A few keys; what is far larger was not written by this program.
constexpr std::size_t largestSecretsFile = 1024 * 1024;
constexpr int deepestSecretsNesting = 100;

// One JSON object with the secrets by their accounts.
class SecretFile final : public SecretStore {
  public:
    explicit SecretFile(FilePath file) : file_(std::move(file)) {}

    std::optional<std::string> read(std::string_view account) override {
        const auto secrets = readAll();
        if (!secrets) return std::nullopt;
        const auto found = secrets->find(account);
        if (found == secrets->end() || !found->is_string()) return std::nullopt;
        return found->get<std::string>();
    }

    std::optional<Failure> write(std::string_view account, std::string_view secret) override {
        if (auto failure = makeFolders(file_.parent())) return failure;
        return change([&](SecretsJson& secrets) { secrets[std::string(account)] = std::string(secret); });
    }

    std::optional<Failure> remove(std::string_view account) override {
        if (!read(account)) return std::nullopt;
        return change([&](SecretsJson& secrets) { secrets.erase(std::string(account)); });
    }

    std::string place() const override { return file_.text(); }

  private:
    // None where something stands there that holds no secrets; a file that is missing or empty holds none yet.
    std::optional<SecretsJson> readAll() const {
        const std::unique_ptr<FileSystem> files = openFileSystem();
        if (files->look(file_) == ItemKind::missing) return SecretsJson::object();
        Result<std::string> text = files->readFile(file_, largestSecretsFile);
        if (!text) return std::nullopt;
        if (text->empty()) return SecretsJson::object();
        bool isTooDeep = false;  // it couldn't be written back: that recurses
        const auto watchDepth = [&](int depth, SecretsJson::parse_event_t, SecretsJson&) {
            isTooDeep = isTooDeep || depth > deepestSecretsNesting;
            return !isTooDeep;
        };
        SecretsJson secrets = SecretsJson::parse(*text, watchDepth, /*allow_exceptions=*/false);
        wipe(*text);
        if (isTooDeep || !secrets.is_object()) return std::nullopt;
        return secrets;
    }

    // Under a lock and from what the file holds then, so that two programs at once lose nothing of each other's.
    template <class Change>
    std::optional<Failure> change(Change change) const {
        const Result<FileLock> lock = FileLock::take(FilePath(file_.text() + ".lock"));
        if (!lock) return lock.failure();
        auto secrets = readAll();
        if (!secrets) return Failure{"'" + file_.text() + "' can't be read as a list of secrets: move it away first"};
        change(*secrets);
        std::string text = secrets->dump(4, ' ', false, SecretsJson::error_handler_t::replace) + "\n";
        auto failure = writeFileAtomically(file_, text, 0600);
        wipe(text);
        return failure;
    }

    FilePath file_;
};

class DesktopSecrets final : public SecretStore {
  public:
    DesktopSecrets(FilePath file, bool hasDisplay)
        : file_(std::move(file)), service_(hasDisplay), hasDisplay_(hasDisplay) {}

    std::optional<std::string> read(std::string_view account) override {
        if (auto secret = file_.read(account)) return secret;
        return service_.read(account);
    }

    std::optional<Failure> write(std::string_view account, std::string_view secret) override {
        if (!service_.answers()) return file_.write(account, secret);
        auto failure = service_.write(account, secret);
        if (!failure) return file_.remove(account);
        // Where a window can be shown somebody said no, or nothing, to the keyring's question for its password. Where
        // none can be, as in a session from afar, nobody could say yes.
        if (!hasDisplay_) return file_.write(account, secret);
        failure->description += "; with BRINDLET_SECRETS=file secrets go to a file instead";
        return failure;
    }

    std::optional<Failure> remove(std::string_view account) override {
        auto failure = file_.remove(account);
        auto serviceFailure = service_.remove(account);
        return failure ? failure : serviceFailure;
    }

    std::string place() const override { return service_.answers() ? keyringName : file_.place(); }

    std::string placeOf(std::string_view account) const override {
        return file_.read(account) ? file_.place() : place();
    }

  private:
    static constexpr const char* keyringName = "the desktop's keyring";

    mutable SecretFile file_;
    mutable SecretService service_;
    bool hasDisplay_;
};

std::string variableIn(const Environment& environment, std::string_view name) {
    const auto found = environment.find(name);
    return found == environment.end() ? "" : found->second;
}

bool hasSessionBus(const Environment& environment) {
    if (!variableIn(environment, "DBUS_SESSION_BUS_ADDRESS").empty()) return true;
    const std::string folder = variableIn(environment, "XDG_RUNTIME_DIR");
    std::error_code error;
    return folder.starts_with('/') && std::filesystem::exists(folder + "/bus", error);
}

}  // namespace

std::unique_ptr<SecretStore> openSecretStore(const FilePath& dataFolder, const Environment& environment) {
    FilePath file = dataFolder.child("secrets.json");
    if (variableIn(environment, "BRINDLET_SECRETS") == "file" || !hasSessionBus(environment))
        return std::make_unique<SecretFile>(std::move(file));
    const bool hasDisplay =
        !variableIn(environment, "DISPLAY").empty() || !variableIn(environment, "WAYLAND_DISPLAY").empty();
    return std::make_unique<DesktopSecrets>(std::move(file), hasDisplay);
}

void wipe(std::string& secret) {
    ::explicit_bzero(secret.data(), secret.size());
    secret.clear();
}

}  // namespace brindlet
