#include <framework_utility/platform/locale/byte_count_formatter.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace FrameworkUtility {
namespace {

constexpr std::int64_t KB = 1024, MB = 1024 * KB, GB = 1024 * MB, TB = 1024 * GB, PB = 1024 * TB,
                       EB = 1024 * PB;

std::string text(const char* locale, std::int64_t count) {
  return ByteCountFormatter(Locale(locale)).stringFromByteCount(count);
}

TEST(ByteCountFormatterTest, WritesEnglish) {
  struct Case {
    std::int64_t count;
    const char* text;
  };
  for (const Case& c : {Case{0, "0 bytes"},
                        Case{1, "1 byte"},
                        Case{-1, "-1 byte"},
                        Case{1023, "1,023 bytes"},
                        Case{-1023, "-1,023 bytes"},
                        Case{KB, "1 KB"},
                        Case{1536, "2 KB"},
                        Case{2560, "2 KB"},
                        Case{900'000, "879 KB"},
                        Case{MB - 1, "1,024 KB"},
                        Case{MB, "1 MB"},
                        Case{12'345'678, "11.8 MB"},
                        Case{10 * MB, "10 MB"},
                        Case{123'456'789, "117.7 MB"},
                        Case{GB + GB / 2, "1.5 GB"},
                        Case{1'234'567'898, "1.15 GB"},
                        Case{-5 * TB / 4, "-1.25 TB"},
                        Case{3 * PB, "3 PB"},
                        Case{EB, "1 EB"},
                        Case{std::numeric_limits<std::int64_t>::max(), "8 EB"},
                        Case{std::numeric_limits<std::int64_t>::min(), "-8 EB"}}) {
    for (const char* locale : {"en_US", "en", "C"}) {
      EXPECT_EQ(text(locale, c.count), c.text) << locale << ' ' << c.count;
    }
  }
}

TEST(ByteCountFormatterTest, WritesTheWordsAndDigitsOfOtherLanguages) {
  struct Case {
    const char* locale;
    std::int64_t count;
    const char* text;
  };
  for (const Case& c : {Case{"fr_FR", 1, "1\u00a0octet"}, Case{"fr_FR", 1536 * KB, "1,5\u202fMo"},
                        Case{"de_DE", 1'234'567'898, "1,15\u00a0GB"}, Case{"ru_RU", 2 * KB, "2 кБ"},
                        Case{"fr_FR", 2 * EB, "2\u202fEo"}}) {
    EXPECT_EQ(text(c.locale, c.count), c.text) << c.locale << ' ' << c.count;
  }
  EXPECT_NE(text("ar_EG", 1023).find("١٬٠٢٣"), std::string::npos);
}

}  // namespace
}  // namespace FrameworkUtility
