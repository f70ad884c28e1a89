#include <framework_utility/platform/locale/byte_count_formatter.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace FrameworkUtility {
namespace {

constexpr std::int64_t KB = 1024, MB = 1024 * KB, GB = 1024 * MB, TB = 1024 * GB, PB = 1024 * TB,
                       EB = 1024 * PB;

TEST(ByteCountFormatterTest, WritesInTheLanguageAndWithTheDigitsOfTheLocale) {
  constexpr auto least = std::numeric_limits<std::int64_t>::min();
  const struct {
    const char* locale;
    std::vector<std::pair<std::int64_t, const char*>> texts;
  } cases[] = {
      {"en_US", {{0, "0 bytes"}, {1, "1 byte"}, {-1, "-1 byte"}, {1023, "1,023 bytes"}}},
      {"en", {{-1023, "-1,023 bytes"}, {KB, "1 KB"}, {1536, "2 KB"}, {2560, "2 KB"}}},
      {"C", {{900'000, "879 KB"}, {MB - 1, "1,024 KB"}, {MB, "1 MB"}}},
      {"en_US", {{12'345'678, "11.8 MB"}, {10 * MB, "10 MB"}, {123'456'789, "117.7 MB"}}},
      {"en_US", {{GB + GB / 2, "1.5 GB"}, {1'234'567'898, "1.15 GB"}}},
      {"en_US", {{-5 * TB / 4, "-1.25 TB"}, {3 * PB, "3 PB"}, {EB, "1 EB"}}},
      {"C", {{-(least + 1), "8 EB"}, {least, "-8 EB"}, {1, "1 byte"}, {1023, "1,023 bytes"}}},
      {"fr_FR", {{1, "1\u00a0octet"}, {1536 * KB, "1,5\u202fMo"}, {2 * EB, "2\u202fEo"}}},
      {"de_DE", {{1'234'567'898, "1,15\u00a0GB"}}},
      {"ru_RU", {{2 * KB, "2 кБ"}}}};
  for (const auto& [locale, texts] : cases) {
    const ByteCountFormatter formatter{Locale(locale)};
    for (const auto& [count, text] : texts) {
      EXPECT_EQ(formatter.stringFromByteCount(count), text) << locale << ' ' << count;
    }
  }
  const std::string arabic = ByteCountFormatter(Locale("ar_EG")).stringFromByteCount(1023);
  EXPECT_NE(arabic.find("١٬٠٢٣"), std::string::npos);
}

}  // namespace
}  // namespace FrameworkUtility
