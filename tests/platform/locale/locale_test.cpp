#include <framework_utility/platform/locale/locale.h>

#include <framework_utility/platform/locale/character_set.h>
#include <tests/support/scoped_environment.h>

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>

namespace FrameworkUtility {
namespace {

// Of a temporary, nothing refers to it.
static_assert(!std::is_reference_v<decltype(std::declval<Locale>().identifier())>);
static_assert(!std::is_reference_v<decltype(std::declval<Locale>().description())>);

using testing::ScopedEnvironment;

TEST(LocaleTest, TakesTheSpellingsOfSystems) {
  struct Case {
    const char *spelling, *identifier, *language;
  };
  for (const Case& c :
       {Case{"de_DE", "de_DE", "de"}, Case{"de", "de", "de"}, Case{"ar-SA", "ar_SA", "ar"},
        Case{"de_DE.UTF-8", "de_DE", "de"}, Case{"de_DE@euro", "de_DE", "de"},
        Case{"en_us", "en_US", "en"}, Case{"sr_RS@latin", "sr_Latn_RS", "sr"},
        Case{"sr_RS.UTF-8@cyrillic", "sr_Cyrl_RS", "sr"}, Case{"uz@latin", "uz_Latn", "uz"},
        Case{"ckb_IQ", "ckb_IQ", "ckb"}, Case{"DE_at", "de_AT", "de"}, Case{"dE", "de", "de"},
        Case{"zA_zz", "za_ZZ", "za"}, Case{"az_AZ", "az_AZ", "az"},
        Case{"ks_IN@devanagari", "ks_Deva_IN", "ks"}, Case{"zh-Hant-TW", "zh_Hant_TW", "zh"},
        Case{"th_TH@calendar=gregorian", "th_TH@calendar=gregorian", "th"}}) {
    EXPECT_EQ(Locale(c.spelling).identifier(), c.identifier) << c.spelling;
    EXPECT_EQ(Locale(c.spelling).languageCode(), c.language) << c.spelling;
  }
}

TEST(LocaleTest, WhatIsNoIdentifierIsPlainEnglish) {
  for (const char* spelling : {"C", "POSIX", "C.UTF-8", "", "a", "123", "../../etc", "english",
                               "\xff\xfe", "@", ".", "@calendar=gregorian"}) {
    EXPECT_EQ(Locale(spelling).identifier(), "en_US_POSIX") << spelling;
  }
  EXPECT_EQ(Locale(std::string(100'000, 'x')), Locale("C"));
  EXPECT_EQ(Locale("en_" + std::string(200, 'X')), Locale("C"));
}

TEST(CharacterSetTest, BlanksAndEndsOfLinesAreTheToolkits) {
  std::u32string blanks, ends;
  for (char32_t c = 0; c < 0x110000; ++c) {
    if (isWhitespace(c)) blanks += c;
    if (isNewline(c)) ends += c;
  }
  EXPECT_EQ(blanks,
            U"\t \u00A0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008"
            U"\u2009\u200A\u200B\u202F\u205F\u3000");
  EXPECT_EQ(ends, U"\n\v\f\r\x85\u2028\u2029");
}

TEST(LocaleTest, TheUsersIsReadInTheOrderOfTheSystem) {
  const ScopedEnvironment all("LC_ALL", nullptr), time("LC_TIME", nullptr),
      numeric("LC_NUMERIC", nullptr), lang("LANG", nullptr);
  const auto current = [] {
    return Locale::current(LocaleCategory::dates).identifier() + ' ' +
           Locale::current(LocaleCategory::numbers).identifier();
  };
  EXPECT_EQ(current(), "en_US_POSIX en_US_POSIX");
  const ScopedEnvironment langSet("LANG", "fr_FR.UTF-8");
  EXPECT_EQ(current(), "fr_FR fr_FR");
  const ScopedEnvironment timeSet("LC_TIME", "de_DE.UTF-8");
  EXPECT_EQ(current(), "de_DE fr_FR");
  const ScopedEnvironment allEmpty("LC_ALL", "");
  EXPECT_EQ(current(), "de_DE fr_FR");
  const ScopedEnvironment allSet("LC_ALL", "C.UTF-8");
  EXPECT_EQ(current(), "en_US_POSIX en_US_POSIX");
  {
    const ScopedLocale scoped(Locale("th_TH"));
    EXPECT_EQ(current(), "th_TH th_TH");
  }
  EXPECT_EQ(current(), "en_US_POSIX en_US_POSIX");
}

}  // namespace
}  // namespace FrameworkUtility
