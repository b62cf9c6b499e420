// What Unicode says of a character beyond being a letter or a space, and its canonical form: two spellings of one
// character (é as one code point or as e and an accent) have the same canonical form.
//
//     composed("e\u0301") == "\u00e9"
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace brindlet {

// The text in Normalization Form C. Bytes that are no UTF-8 stay as they are.
std::string composed(std::string_view text);

// The property Alphabetic: letters, letter numbers, vowel signs.
bool isAlphabetic(char32_t scalar);
// Any Numeric_Type: digits of all scripts, fractions, ideographs that are numbers.
bool isNumber(char32_t scalar);
// Whether its general category is among those of the mask (U_GC_L_MASK and so on).
bool hasGeneralCategory(char32_t scalar, std::uint32_t mask);
// The general categories P*.
bool isPunctuation(char32_t scalar);
// The general categories Cc and Cf.
bool isControl(char32_t scalar);
bool isFormat(char32_t scalar);
// The property Hex_Digit: 0 to 9, A to F and a to f, also in their fullwidth forms.
bool isHexadecimalDigit(char32_t scalar);

// `character` is one extended grapheme cluster. It is lower case if it is one code point with that property, or else
// if the mapping to upper case changes it and the one to lower case does not; upper case the other way round.
bool isLowercaseCharacter(std::string_view character);
bool isUppercaseCharacter(std::string_view character);

}  // namespace brindlet
