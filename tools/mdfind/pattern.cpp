#include "pattern.h"

#include <unicode/bytestream.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>

#include "text/characters.h"
#include "text/utf8.h"

namespace brindlet::tools {

namespace {

std::string withoutMarks(const std::string& text) {
    if (asciiRunLength(text, 0) == text.size() || !isValidUtf8(text)) return text;
    UErrorCode error = U_ZERO_ERROR;
    const icu::Normalizer2* const decomposition = icu::Normalizer2::getNFDInstance(error);
    std::string decomposed, bare;
    icu::StringByteSink<std::string> sink(&decomposed);
    if (U_SUCCESS(error)) decomposition->normalizeUTF8(0, text, sink, nullptr, error);
    if (U_FAILURE(error)) return text;
    for (std::size_t at = 0; at < decomposed.size();) {
        const Scalar scalar = decodeScalar(decomposed, at);
        if (u_charType(static_cast<UChar32>(scalar.value)) != U_NON_SPACING_MARK)
            bare.append(decomposed, at, scalar.length);
        at += scalar.length;
    }
    return bare;
}

bool isWordPart(char32_t scalar) {
    return isLetter(scalar) || isDecimalDigit(scalar);
}

bool isWordBorder(std::string_view text, std::size_t at) {
    if (at == 0 || at >= text.size()) return true;
    return !isWordPart(decodeScalarBefore(text, at).value) || !isWordPart(decodeScalar(text, at).value);
}

}  // namespace

Pattern::Pattern(std::string_view text, Folding folding) : folding_(folding), parts_(1) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\\' && at + 1 < text.size()) {
            parts_.back() += text[++at];
        } else if (text[at] == '*') {
            parts_.emplace_back();
        } else {
            parts_.back() += text[at];
        }
    }
    for (std::string& part : parts_) part = folded(part);
}

std::string Pattern::folded(std::string_view text) const {
    std::string result = folding_.ignoresCase ? lowercased(text) : std::string(text);
    return folding_.ignoresMarks ? withoutMarks(result) : result;
}

bool Pattern::isWhole(std::string_view text) const {
    const std::string subject = folded(text);
    if (parts_.size() == 1) return subject == parts_.front();
    if (!subject.starts_with(parts_.front())) return false;
    std::size_t at = parts_.front().size();
    for (std::size_t part = 1; part + 1 < parts_.size(); ++part) {
        at = subject.find(parts_[part], at);
        if (at == std::string::npos) return false;
        at += parts_[part].size();
    }
    return subject.size() >= at + parts_.back().size() && subject.ends_with(parts_.back());
}

bool Pattern::isIn(std::string_view text) const {
    const std::string subject = folded(text);
    std::size_t at = 0;
    for (std::size_t part = 0; part < parts_.size(); ++part) {
        const std::string& wanted = parts_[part];
        const bool begins = part == 0, ends = part + 1 == parts_.size();
        for (;; ++at) {
            at = subject.find(wanted, at);
            if (at == std::string::npos) return false;
            const bool isRight = (!begins || wanted.empty() || isWordBorder(subject, at)) &&
                                 (!ends || wanted.empty() || isWordBorder(subject, at + wanted.size()));
            if (isRight) break;
        }
        at += wanted.size();
    }
    return true;
}

}  // namespace brindlet::tools
