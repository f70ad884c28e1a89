#pragma once

#include <optional>
#include <string>
#include <string_view>

// Text is UTF-8 throughout the library, but what comes from outside may be any bytes. Here alone is
// it told which of them are characters. Well-formed sequences are those of table 3-7 of the Unicode
// Standard: shortest forms, no surrogates, nothing past U+10FFFF.

namespace FrameworkUtility::utf8 {

/// Stands for what cannot be shown.
inline constexpr char32_t replacementCharacter = 0xFFFD;

/// Takes the character off the front of `text`. Absent, and `text` as it was, where a bad byte is
/// the first; whoever goes on drops that byte alone. Not for an empty text.
///
///     while (!text.empty()) {
///       if (const auto character = utf8::takeCharacter(text)) use(*character);
///       else text.remove_prefix(1);
///     }
std::optional<char32_t> takeCharacter(std::string_view& text);
void append(std::string& out, char32_t character);

bool isValid(std::string_view text);

/// Absent when `text` is not UTF-8.
std::optional<std::u16string> toUtf16(std::string_view text);
/// A surrogate without its other half becomes U+FFFD.
std::string fromUtf16(std::u16string_view text);

/// ISO 8859-1; absent for other characters and for what is not UTF-8.
std::optional<std::string> toLatin1(std::string_view text);
std::string fromLatin1(std::string_view text);

}  // namespace FrameworkUtility::utf8
