// Characters as people see them (extended grapheme clusters, Unicode Annex 29) and the classes and cases of
// Unicode, by ICU. Texts of plain ASCII take a short way that asks ICU nothing.
//
//     characterCount("né") == 2, whichever way the é is spelt
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace brindlet {

// The length in bytes of the character that begins at byte `at`, which must lie inside `text`. CR LF is one character;
// a byte that is no UTF-8 is a character of its own.
std::size_t characterLength(std::string_view text, std::size_t at);

// The length in bytes of the character that ends just before byte `end`, which must be at least 1.
std::size_t characterLengthBefore(std::string_view text, std::size_t end);

std::size_t characterCount(std::string_view text);

// The characters in order, as pieces of `text`.
std::vector<std::string_view> characters(std::string_view text);

// The first `count` characters, or all of `text` if it has fewer.
std::string_view firstCharacters(std::string_view text, std::size_t count);

// Unicode letters (general categories L*), marks counted (M*) as in identifiers that use them.
bool isLetter(char32_t scalar);
// Unicode decimal digits (general category Nd).
bool isDecimalDigit(char32_t scalar);
// Space, tab and the other Unicode space separators (Zs). A newline is none.
bool isBlank(char32_t scalar);
// White space and line ends alike (the Unicode property White_Space).
bool isWhitespaceOrNewline(char32_t scalar);
// Newline characters: U+000A to U+000D, U+0085, U+2028, U+2029.
bool isNewline(char32_t scalar);

// All letters changed, by the full mappings of Unicode in no particular language.
std::string lowercased(std::string_view text);
std::string uppercased(std::string_view text);

}  // namespace brindlet
