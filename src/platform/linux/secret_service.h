// The desktop's Secret Service (org.freedesktop.secrets), asked with patience that ends: the program that stands behind
// it may hang, or wait for a password that nobody types.
//
//     SecretService service(hasDisplay);
//     if (service.answers()) auto secret = service.read("Brindlet OpenAI API Key");
#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "platform/result.h"

namespace brindlet {

// For any thread; calls wait for each other. Asks the bus that this process's own environment names.
class SecretService {
  public:
    // `canShowWindows`: writing and removing may wait for a person to type a password.
    explicit SecretService(bool canShowWindows);
    ~SecretService();
    SecretService(const SecretService&) = delete;
    SecretService& operator=(const SecretService&) = delete;

    // Whether there is a service that answers; found out at first use. One that once let a call wait too long counts as
    // none from there on.
    bool answers();

    // None also where the item is locked: reading unlocks nothing.
    std::optional<std::string> read(std::string_view account);
    std::optional<Failure> write(std::string_view account, std::string_view secret);
    std::optional<Failure> remove(std::string_view account);

  private:
    struct Connection;
    // Connects where that hasn't been tried; none where nobody answers.
    Connection* connection();

    std::mutex guard_;
    std::chrono::milliseconds patienceForPeople_;
    bool isTried_ = false;
    std::unique_ptr<Connection> connection_;
};

}  // namespace brindlet
