#include "shell/scanner.h"

#include <algorithm>

#include "text/characters.h"
#include "text/utf8.h"

namespace brindlet {

// The length of the blank that begins at `at`, 0 where there is none.
std::size_t Scanner::blankLength(std::size_t at) const {
    const char byte = text_[at];
    if (byteClass::has(byte, byteClass::blank)) return 1;
    if (!byteClass::has(byte, byteClass::mayBeginBlank)) return 0;
    const Scalar scalar = decodeScalar(text_, at);
    return scalar.isValid && isBlank(scalar.value) ? scalar.length : 0;
}

bool Scanner::isWordStop(std::size_t at) const {
    return byteClass::has(text_[at], byteClass::wordStop) || blankLength(at) > 0;
}

bool Scanner::isBehindBlank() const {
    if (at_ == 0) return false;
    const char byte = previous();
    if (!byteClass::has(byte, byteClass::beyondAscii)) return byteClass::has(byte, byteClass::blank);
    const Scalar scalar = decodeScalarBefore(text_, at_);
    return scalar.isValid && isBlank(scalar.value);
}

void Scanner::skipBlanksBeyondAscii() {
    while (at_ < end_) {
        const std::size_t length = blankLength(at_);
        if (length == 0) return;
        at_ += length;
    }
}

void Scanner::skipNameBeyondAscii() {
    while (at_ < end_) {
        if (byteClass::has(text_[at_], byteClass::name)) {
            ++at_;
            continue;
        }
        if (!byteClass::has(text_[at_], byteClass::beyondAscii)) return;
        const Scalar scalar = decodeScalar(text_, at_);
        if (!scalar.isValid || !(isLetter(scalar.value) || isDecimalDigit(scalar.value))) return;
        at_ += scalar.length;
    }
}

std::string_view Scanner::scanDecimalDigits() {
    const std::size_t start = at_;
    while (at_ < end_) {
        if (byteClass::has(text_[at_], byteClass::digit)) {
            ++at_;
            continue;
        }
        if (!byteClass::has(text_[at_], byteClass::beyondAscii)) break;
        const Scalar scalar = decodeScalar(text_, at_);
        if (!scalar.isValid || !isDecimalDigit(scalar.value)) break;
        at_ += scalar.length;
    }
    return textFrom(start);
}

std::string_view Scanner::scanDoubleQuotedRun() {
    const std::size_t start = at_;
    while (at_ < end_ && !byteClass::has(text_[at_], byteClass::doubleQuoteStop)) ++at_;
    return textFrom(start);
}

std::string_view Scanner::scanUpTo(std::string_view wanted) {
    const std::size_t start = at_;
    at_ += std::min(remaining().find(wanted), remaining().size());
    return textFrom(start);
}

std::string_view Scanner::scanCharacter() {
    const std::size_t start = at_;
    at_ += byteClass::has(text_[at_], byteClass::beyondAscii) ? decodeScalar(text_, at_).length : 1;
    return textFrom(start);
}

bool Scanner::standsAtPlainWord(std::string_view word) const {
    if (!standsAt(word)) return false;
    const std::size_t behind = at_ + word.size();
    return behind == end_ || (isWordStop(behind) && text_[behind] != '\\');
}

}  // namespace brindlet
