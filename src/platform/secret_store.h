// Small secrets by name, such as the keys to a service.
//
//     const auto secrets = openSecretStore(dataFolder(), environment);
//     if (auto key = secrets->read("Brindlet OpenAI API Key")) use(*key);
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/environment.h"
#include "platform/file_path.h"
#include "platform/result.h"

namespace brindlet {

struct SecretStore {
    virtual ~SecretStore() = default;
    // None where there is no such item, it can't be read, or it isn't UTF-8.
    virtual std::optional<std::string> read(std::string_view account) = 0;
    // Replaces what is there.
    virtual std::optional<Failure> write(std::string_view account, std::string_view secret) = 0;
    // No failure where there is nothing to remove.
    virtual std::optional<Failure> remove(std::string_view account) = 0;
    // Where the secrets lie, for people: "the desktop's keyring" or the file's path.
    virtual std::string place() const = 0;
    // Where this one lies, which is there.
    virtual std::string placeOf(std::string_view) const { return place(); }
};

// The desktop's Secret Service (org.freedesktop.secrets) where the session of `environment` has a bus and the service
// answers; else the file "secrets.json" of mode 0600 in `dataFolder`. BRINDLET_SECRETS=file in `environment` always
// takes the file. Nothing is asked of the service before the first use, reading never makes it show a window, and
// nothing waits longer than some seconds, but for a password that a write or removal makes it ask for.
//
// A secret may have come into the file while the service didn't answer. What is written to the service leaves the file,
// so what the file holds is the newer: it is what a read gives. Removing removes both.
std::unique_ptr<SecretStore> openSecretStore(const FilePath& dataFolder, const Environment& environment);

// Overwrites the text before it is emptied, so that the memory doesn't keep it. Copies made earlier are not found.
void wipe(std::string& secret);

}  // namespace brindlet
