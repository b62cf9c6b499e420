// Secrets in memory.
//
//     FakeSecretStore secrets;
//     secrets.secrets["Brindlet OpenAI API Key"] = "sk-1";
#pragma once

#include <map>
#include <string>

#include "platform/secret_store.h"

namespace brindlet {

struct FakeSecretStore final : SecretStore {
    std::map<std::string, std::string, std::less<>> secrets;

    std::optional<std::string> read(std::string_view account) override {
        const auto found = secrets.find(account);
        return found == secrets.end() ? std::nullopt : std::optional(found->second);
    }
    std::optional<Failure> write(std::string_view account, std::string_view secret) override {
        secrets.insert_or_assign(std::string(account), secret);
        return std::nullopt;
    }
    std::optional<Failure> remove(std::string_view account) override {
        secrets.erase(std::string(account));
        return std::nullopt;
    }
    std::string place() const override { return "the test"; }
};

}  // namespace brindlet
