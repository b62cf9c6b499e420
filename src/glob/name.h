// A name as matching asks for it: its characters by number. Names of plain ASCII are asked byte by byte, all others are
// first cut into characters in canonical form; what comes out is the same.
//
//     const PlainName name(program, "a.txt");
//     name.isInSet(step, 0)
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "glob/program.h"

namespace brindlet::glob {

// A name of ASCII without carriage returns (which could be part of a character of two bytes).
class PlainName {
  public:
    // None if the name isn't such a one.
    static std::optional<PlainName> from(const Program& program, std::string_view name);

    static std::size_t length(const Step& fixed) { return fixed.kind == Step::Kind::constant ? fixed.text.size() : 1; }

    std::size_t size() const { return name_.size(); }
    bool hasSeparator() const { return hasSeparator_; }
    bool isPeriod(std::size_t at) const { return name_[at] == '.'; }
    bool isSeparator(std::size_t at) const { return name_[at] == separator_; }
    bool isInSet(const Step& oneOf, std::size_t at) const {
        return oneOf.asciiSet.contains(static_cast<unsigned char>(name_[at]));
    }
    // The constant must not be longer than what follows `at`.
    bool hasConstant(const Step& constant, std::size_t at) const {
        const std::string_view text = constant.text;
        return name_[at] == text.front() && name_.substr(at, text.size()) == text;
    }

    // The first place in [at, end) from which the constant fits in before the end; `end` if there is none.
    std::size_t find(const Step& constant, std::size_t at, std::size_t end) const {
        const std::string_view text = constant.text;
        for (; at < end && end - at >= text.size(); ++at)
            if (name_[at] == text.front() && name_.substr(at + 1, text.size() - 1) == text.substr(1)) return at;
        return end;
    }

  private:
    PlainName(std::string_view name, char separator) : name_(name), separator_(separator) {}

    std::string_view name_;
    char separator_;  // a carriage return if there is none
    bool hasSeparator_ = false;
};

class CharacterName {
  public:
    CharacterName(const Program& program, std::string_view name);
    CharacterName(const CharacterName&) = delete;
    CharacterName& operator=(const CharacterName&) = delete;

    static std::size_t length(const Step& fixed) { return fixed.characterCount; }

    std::size_t size() const { return characters_.size(); }
    bool hasSeparator() const;
    bool isPeriod(std::size_t at) const { return characters_[at] == "."; }
    bool isSeparator(std::size_t at) const { return characters_[at] == program_.separator; }
    bool isInSet(const Step& oneOf, std::size_t at) const;
    bool hasConstant(const Step& constant, std::size_t at) const;
    std::size_t find(const Step& constant, std::size_t at, std::size_t end) const;

  private:
    const Program& program_;
    std::string composed_;
    std::vector<std::string_view> characters_;  // pieces of the above
};

}  // namespace brindlet::glob
