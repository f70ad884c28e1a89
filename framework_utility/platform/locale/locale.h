#pragma once

#include <framework_utility/platform/foundation/values/description.h>
#include <framework_utility/platform/foundation/values/scoped.h>

#include <string>
#include <string_view>

namespace FrameworkUtility {

/// What a locale is asked for: the system lets a user choose apart how numbers and how dates are
/// written.
enum class LocaleCategory { numbers, dates };

/// A language and its customs, by identifier: "en_US", "sr_Latn_RS", "th_TH@calendar=gregorian".
///
/// Thread: any.
class Locale {
 public:
  /// Takes the system's spellings too: "ar-SA", "de_DE.UTF-8", "sr_RS@latin". "C", "POSIX" and what
  /// is no identifier are "en_US_POSIX": English, and the same on every system.
  explicit Locale(std::string_view identifier);

  /// The user's: `LC_ALL`, else `LC_NUMERIC` or `LC_TIME`, else `LANG`, else "C"; an empty one of
  /// them counts as missing.
  /// Selector: currentLocale
  static Locale current(LocaleCategory category);

  /// Canonical: the parts joined by "_", keywords after "@".
  /// Selector: localeIdentifier
  const std::string& identifier() const& { return identifier_; }
  std::string identifier() const&& { return identifier_; }
  /// Selector: languageCode
  std::string_view languageCode() const&;
  std::string languageCode() const&& { return std::string(languageCode()); }

  std::string description() const { return identifier_; }
  friend bool operator==(const Locale&, const Locale&) = default;

 private:
  std::string identifier_;
};

/// In the place of the user's, in every category.
using ScopedLocale = Scoped<Locale>;

}  // namespace FrameworkUtility
