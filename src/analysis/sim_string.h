// A text that may not be predictable: standard input and output in a simulation.
//
//     SimString both = SimString::known("a\n") + wcOutput;  // unknown if either is
#pragma once

#include <optional>
#include <string>
#include <utility>

namespace brindlet {

class SimString {
  public:
    static SimString known(std::string text) { return SimString(std::move(text)); }
    static SimString unknown() { return SimString(std::nullopt); }

    bool isKnown() const { return text_.has_value(); }
    // Only for a known text.
    const std::string& text() const { return *text_; }

    SimString& operator+=(const SimString& other);
    friend SimString operator+(SimString left, const SimString& right) { return left += right; }
    bool operator==(const SimString&) const = default;

  private:
    explicit SimString(std::optional<std::string> text) : text_(std::move(text)) {}
    std::optional<std::string> text_;
};

}  // namespace brindlet
