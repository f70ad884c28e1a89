#pragma once

#include <framework_utility/platform/locale/locale.h>

#include <cstdint>
#include <string>

namespace FrameworkUtility {

/// Amounts of memory for people: "0 bytes", "1 byte", "1,023 bytes", "1 KB", "1.5 MB", "1.15 GB".
/// Units are powers of 1024 up to EB; KB has no fraction, MB up to one digit, larger units up to
/// two, halves to even. The unit is chosen before rounding, so 1,048,575 is "1,024 KB". Zero is a
/// number, not a word.
///
/// Thread: any.
class ByteCountFormatter {
 public:
  explicit ByteCountFormatter(Locale locale = Locale::current(LocaleCategory::numbers));

  /// Empty when the system has no number formats.
  /// Selector: stringFromByteCount:
  std::string stringFromByteCount(std::int64_t count) const;

 private:
  Locale locale_;
};

}  // namespace FrameworkUtility
