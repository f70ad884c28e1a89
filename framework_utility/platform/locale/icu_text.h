#pragma once

// Between the library's values and ICU's. The names of ICU carry its version, so no public header
// may show them.

#include <framework_utility/platform/locale/locale.h>

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace FrameworkUtility::detail {

inline icu::Locale icuLocale(const Locale& locale) {
  return icu::Locale(locale.identifier().c_str());
}

/// Bytes that do not decode become U+FFFD. Below 2 GB only.
inline icu::UnicodeString icuText(std::string_view text) {
  return icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
}

inline std::string utf8Text(const icu::UnicodeString& text) {
  std::string result;
  return text.toUTF8String(result);
}

}  // namespace FrameworkUtility::detail
