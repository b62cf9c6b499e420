// A cursor over the text of a command, and the classes of characters that the grammar knows. It skips nothing by
// itself. Classes go by Unicode scalars; plain ASCII is answered by a table.
//
//     Scanner scanner("mv a b");
//     scanner.scanPlainRun();   // "mv"
//     scanner.skipBlanks();
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace brindlet {

// Members of classes, as bits in a table with a row for each byte.
namespace byteClass {
constexpr std::uint16_t blank = 1;
constexpr std::uint16_t name = 2;  // letters, digits, "_"
constexpr std::uint16_t digit = 4;
constexpr std::uint16_t wordStop = 8;  // ends a run of plain word text
constexpr std::uint16_t wordEnd = 16;  // an operator that may stand directly behind a word
constexpr std::uint16_t doubleQuoteStop = 32;
constexpr std::uint16_t beyondAscii = 64;
constexpr std::uint16_t mayBeginBlank = 128;  // the first bytes of the space separators beyond ASCII
constexpr std::uint16_t redirectStart = 256;  // a redirect operator or the number before it

constexpr void mark(std::array<std::uint16_t, 256>& table, std::string_view members, std::uint16_t bits) {
    for (const char member : members) table[static_cast<unsigned char>(member)] |= bits;
}

constexpr std::array<std::uint16_t, 256> table = [] {
    std::array<std::uint16_t, 256> result{};
    mark(result, "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_", name);
    mark(result, "0123456789", name | digit | redirectStart);
    mark(result, "<>", redirectStart);
    mark(result, " \t", blank | wordStop);
    mark(result, "|&;()<>", wordStop | wordEnd);
    mark(result, "\"'$`\\{}", wordStop);
    mark(result, "\n\\\"$", doubleQuoteStop);
    for (std::size_t byte = 0x80; byte < result.size(); ++byte) result[byte] |= beyondAscii;
    mark(result, "\xC2\xE1\xE2\xE3", mayBeginBlank);
    return result;
}();

constexpr bool has(char byte, std::uint16_t bits) {
    return (table[static_cast<unsigned char>(byte)] & bits) != 0;
}
}  // namespace byteClass

class Scanner {
  public:
    explicit Scanner(std::string_view text) : text_(text), end_(text.size()) {}

    std::size_t position() const { return at_; }
    void setPosition(std::size_t position) { at_ = position; }
    bool atEnd() const { return at_ == end_; }

    // The text from the cursor on, also behind the end that is set at the moment.
    std::string_view rest() const { return text_.substr(at_); }
    std::string_view textFrom(std::size_t start) const { return text_.substr(start, at_ - start); }

    // Where the text ends for the time being: the closing backtick, while the text inside backticks is read.
    std::size_t end() const { return end_; }
    void setEnd(std::size_t end) { end_ = end; }

    // The byte at the cursor; NUL at the end, where atEnd() tells it from a NUL in the text.
    char peek() const { return atEnd() ? '\0' : text_[at_]; }
    bool standsAt(char byte) const { return !atEnd() && text_[at_] == byte; }
    bool standsAt(std::string_view wanted) const { return remaining().starts_with(wanted); }
    // The byte before the cursor, NUL at the start.
    char previous() const { return at_ == 0 ? '\0' : text_[at_ - 1]; }
    bool isBehindBlank() const;

    bool take(char byte) {
        if (!standsAt(byte)) return false;
        ++at_;
        return true;
    }
    bool take(std::string_view wanted) {
        if (!standsAt(wanted)) return false;
        at_ += wanted.size();
        return true;
    }

    // Moves past the longest run of blanks; true where there was one.
    bool skipBlanks() {
        const std::size_t start = at_;
        skipBytes(byteClass::blank);
        if (at_ < end_ && byteClass::has(text_[at_], byteClass::mayBeginBlank)) skipBlanksBeyondAscii();
        return at_ > start;
    }
    // The same for space and tab alone.
    bool skipSpacesAndTabs() {
        const std::size_t start = at_;
        skipBytes(byteClass::blank);
        return at_ > start;
    }

    // The longest run of the class, "" where it is empty.
    std::string_view scanName() {
        const std::size_t start = at_;
        skipBytes(byteClass::name);
        if (at_ < end_ && byteClass::has(text_[at_], byteClass::beyondAscii)) skipNameBeyondAscii();
        return textFrom(start);
    }
    std::string_view scanDecimalDigits();
    std::string_view scanPlainRun() {
        const std::size_t start = at_;
        while (at_ < end_ && !byteClass::has(text_[at_], byteClass::wordStop) && !standsAtBlankBeyondAscii()) ++at_;
        return textFrom(start);
    }
    std::string_view scanDoubleQuotedRun();
    // The text before the next occurrence of `wanted`, or all the rest. "" also where the cursor stands on it.
    std::string_view scanUpTo(std::string_view wanted);
    // One character; there must be one.
    std::string_view scanCharacter();

    // Whether `word` stands at the cursor as a whole run of plain text, with nothing escaped in it.
    bool standsAtPlainWord(std::string_view word) const;

  private:
    std::string_view remaining() const { return text_.substr(at_, end_ - at_); }
    std::size_t blankLength(std::size_t at) const;
    bool isWordStop(std::size_t at) const;
    void skipBytes(std::uint16_t bits) {
        while (at_ < end_ && byteClass::has(text_[at_], bits)) ++at_;
    }
    bool standsAtBlankBeyondAscii() const {
        return byteClass::has(text_[at_], byteClass::mayBeginBlank) && blankLength(at_) > 0;
    }
    // These go on with ASCII as well, from a character beyond it.
    void skipBlanksBeyondAscii();
    void skipNameBeyondAscii();

    std::string_view text_;
    std::size_t at_ = 0;
    std::size_t end_ = 0;
};

}  // namespace brindlet
