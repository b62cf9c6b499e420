// What a call gives that can fail: a value, or one sentence that can be shown as it stands.
//
//     auto text = files.readFile(path, maxBytes);
//     if (!text) return text.failure();
//     use(*text);
#pragma once

#include <string>
#include <utility>
#include <variant>

namespace brindlet {

struct Failure {
    std::string description;  // one sentence for the user
    int code = -1;            // the HTTP status or the tool's exit status where there is one

    bool operator==(const Failure&) const = default;
};

template <class Value>
class [[nodiscard]] Result {
  public:
    Result(Value value) : state_(std::move(value)) {}
    Result(Failure failure) : state_(std::move(failure)) {}

    explicit operator bool() const { return std::holds_alternative<Value>(state_); }
    Value& operator*() { return std::get<Value>(state_); }
    const Value& operator*() const { return std::get<Value>(state_); }
    Value* operator->() { return &std::get<Value>(state_); }
    const Value* operator->() const { return &std::get<Value>(state_); }
    const Failure& failure() const { return std::get<Failure>(state_); }

  private:
    std::variant<Value, Failure> state_;
};

}  // namespace brindlet
