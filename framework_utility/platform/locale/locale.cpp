#include <framework_utility/platform/locale/locale.h>

#include <unicode/uloc.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

namespace FrameworkUtility {
namespace {

constexpr std::string_view posixIdentifier = "en_US_POSIX";

std::string_view environment(const char* variable) {
  const char* value = std::getenv(variable);
  return value ? value : "";
}

bool isLower(char c) { return c >= 'a' && c <= 'z'; }
bool isUpper(char c) { return c >= 'A' && c <= 'Z'; }

/// Whether `identifier` is "ll" or "ll_RR", which is canonical as it stands. Most are, and need not
/// load the locale data.
bool isLanguageAndRegion(std::string_view identifier) {
  return (identifier.size() == 2 || (identifier.size() == 5 && identifier[2] == '_' &&
                                     isUpper(identifier[3]) && isUpper(identifier[4]))) &&
         isLower(identifier[0]) && isLower(identifier[1]);
}

/// "sr_RS.UTF-8@latin" as "sr_Latn_RS": the encoding is dropped, a script named by the modifier
/// goes behind the language, other modifiers are dropped. Keywords, "@key=value", stay.
std::string withoutSystemSpelling(std::string_view identifier) {
  std::string_view modifier;
  if (const auto at = identifier.find('@'); at != identifier.npos) {
    modifier = identifier.substr(at);
    identifier = identifier.substr(0, at);
  }
  std::string plain(identifier.substr(0, identifier.find('.')));
  if (modifier.find('=') != modifier.npos) return plain.append(modifier);

  constexpr std::pair<std::string_view, std::string_view> scripts[] = {
      {"@latin", "_Latn"}, {"@cyrillic", "_Cyrl"}, {"@devanagari", "_Deva"}};
  for (const auto& [name, script] : scripts) {
    if (modifier == name) plain.insert(std::min(plain.find('_'), plain.size()), script);
  }
  return plain;
}

std::string_view languageOf(std::string_view identifier) {
  return identifier.substr(0, identifier.find_first_of("_@"));
}

std::string canonical(std::string_view identifier) {
  std::string plain = withoutSystemSpelling(identifier);
  if (plain == "C" || plain == "POSIX") return std::string(posixIdentifier);
  if (isLanguageAndRegion(plain)) return plain;

  std::array<char, ULOC_FULLNAME_CAPACITY> buffer{};
  UErrorCode status = U_ZERO_ERROR;
  uloc_canonicalize(plain.c_str(), buffer.data(), buffer.size() - 1, &status);
  const std::string_view language = languageOf(buffer.data());
  if (U_FAILURE(status) || language.size() < 2 || language.size() > 3 ||
      !std::all_of(language.begin(), language.end(), isLower)) {
    return std::string(posixIdentifier);
  }
  return buffer.data();
}

}  // namespace

Locale::Locale(std::string_view identifier) : identifier_(canonical(identifier)) {}

Locale Locale::current(LocaleCategory category) {
  if (const Locale* locale = ScopedLocale::inPlace()) return *locale;
  const char* own = category == LocaleCategory::dates ? "LC_TIME" : "LC_NUMERIC";
  for (const char* variable : {"LC_ALL", own, "LANG"}) {
    if (const std::string_view value = environment(variable); !value.empty()) return Locale(value);
  }
  return Locale("C");
}

std::string_view Locale::languageCode() const& { return languageOf(identifier_); }

}  // namespace FrameworkUtility
