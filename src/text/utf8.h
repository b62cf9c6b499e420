// UTF-8, read without trust: what comes from the disk or from a tool may be any bytes.
//
//     for (std::size_t at = 0; at < name.size();) {
//         const Scalar scalar = decodeScalar(name, at);
//         at += scalar.length;
//     }
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace brindlet {

// One Unicode scalar value as it stands in a text. A byte that begins no valid sequence is a scalar of its own:
// `value` U+FFFD, `length` 1, `isValid` false.
struct Scalar {
    char32_t value = 0;
    std::size_t length = 0;  // in bytes, never 0
    bool isValid = true;
};

// The scalar that begins at byte `at`, which must lie inside `text`.
Scalar decodeScalar(std::string_view text, std::size_t at);

// The scalar that ends just before byte `end`, which must be at least 1.
Scalar decodeScalarBefore(std::string_view text, std::size_t end);

// Appends a scalar value; anything that is none (a surrogate, a number past U+10FFFF) is appended as U+FFFD.
void appendScalar(std::string& text, char32_t value);

// How many bytes from byte `at` on are ASCII before the first that isn't, or the end; `at` may be the end.
std::size_t asciiRunLength(std::string_view text, std::size_t at);

bool isValidUtf8(std::string_view text);

// The same text with every byte that is no UTF-8 replaced by U+FFFD: for what is shown or sent.
std::string toValidUtf8(std::string_view text);

}  // namespace brindlet
