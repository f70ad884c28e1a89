#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace FrameworkUtility::detail {

/// UTF-8 as UTF-16; absent when `text` is not UTF-8 (overlong forms and surrogates are not).
std::optional<std::u16string> utf16FromUtf8(std::string_view text);

/// Appends one UTF-16 text as UTF-8; an unpaired surrogate becomes U+FFFD.
void appendUtf8(std::string& out, std::u16string_view text);

}  // namespace FrameworkUtility::detail
