#include "glob/name.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "glob/character_class.h"
#include "text/character_properties.h"
#include "text/characters.h"

namespace brindlet::glob {

namespace {

constexpr std::uint64_t ones = 0x0101010101010101;
constexpr std::uint64_t highBits = 0x80 * ones;

// What a name must not hold to be plain and whether it holds separators: asked of every name, so eight bytes at a time.
class ByteScan {
  public:
    ByteScan(std::string_view name, char separator) : separators_(static_cast<unsigned char>(separator) * ones) {
        std::size_t at = 0;
        for (; name.size() - at >= sizeof(std::uint64_t); at += sizeof(std::uint64_t))
            look(name.data() + at, sizeof(std::uint64_t));
        if (at == name.size()) return;
        if (name.size() >= sizeof(std::uint64_t)) {
            look(name.data() + name.size() - sizeof(std::uint64_t), sizeof(std::uint64_t));
        } else {
            look(name.data(), name.size());
        }
    }

    bool isPlain() const { return (unusual_ & highBits) == 0; }
    bool hasSeparator() const { return (separated_ & highBits) != 0; }

  private:
    // Sets the high bit of some byte where a byte is 0. Right as long as no byte has its high bit set.
    static std::uint64_t zeroBytes(std::uint64_t word) { return (word - ones) & ~word; }

    void look(const char* bytes, std::size_t count) {
        std::uint64_t word = 'a' * ones;
        std::memcpy(&word, bytes, count);
        unusual_ |= word | zeroBytes(word ^ ('\r' * ones));
        separated_ |= zeroBytes(word ^ separators_);
    }

    std::uint64_t separators_;
    std::uint64_t unusual_ = 0, separated_ = 0;
};

}  // namespace

std::optional<PlainName> PlainName::from(const Program& program, std::string_view name) {
    const bool hasAsciiSeparator = program.separator.size() == 1;
    PlainName plain(name, hasAsciiSeparator ? program.separator.front() : '\r');
    const ByteScan scan(name, plain.separator_);
    if (!scan.isPlain()) return std::nullopt;
    plain.hasSeparator_ = scan.hasSeparator();
    return plain;
}

CharacterName::CharacterName(const Program& program, std::string_view name)
    : program_(program), composed_(composed(name)), characters_(characters(composed_)) {}

bool CharacterName::hasSeparator() const {
    return std::find(characters_.begin(), characters_.end(), program_.separator) != characters_.end();
}

bool CharacterName::isInSet(const Step& oneOf, std::size_t at) const {
    const std::string_view character = characters_[at];
    const auto first = static_cast<unsigned char>(character.front());
    if (character.size() == 1 && first < 0x80) return oneOf.asciiSet.contains(first);
    const auto holds = [&](const auto& each) { return isInClass(character, each); };
    return std::any_of(oneOf.classes.begin(), oneOf.classes.end(), holds) != oneOf.isNegated;
}

// Equal bytes from the begin of a character on are cut into the same characters, the last one apart, which may go on in
// the name.
bool CharacterName::hasConstant(const Step& constant, std::size_t at) const {
    const char* const begin = characters_[at].data();
    const std::string_view last = characters_[at + constant.characterCount - 1];
    return std::string_view(begin, static_cast<std::size_t>(last.data() + last.size() - begin)) == constant.text;
}

std::size_t CharacterName::find(const Step& constant, std::size_t at, std::size_t end) const {
    for (; at < end && end - at >= constant.characterCount; ++at)
        if (hasConstant(constant, at)) return at;
    return end;
}

}  // namespace brindlet::glob
