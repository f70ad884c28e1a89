#include <framework_utility/foundation/date_utility.h>

#include <framework_utility/platform/locale/locale.h>
#include <framework_utility/platform/locale/time_zone.h>

#include <gtest/gtest.h>

#include <chrono>

namespace FrameworkUtility {
namespace {

using namespace std::chrono;
using namespace std::chrono_literals;

const Date july14 = sys_days{2023y / 7 / 14} + 22h + 5min + 9s + 900ms;

TEST(DateUtilityTest, UtcFormattedIsLocalTimeAndReadAsUTC) {
  const ScopedLocale english(Locale("en_US"));
  const ScopedTimeZone kathmandu(*TimeZone::withName("Asia/Kathmandu"));
  const std::string text = dates::utcFormatted(july14);
  EXPECT_EQ(text, "2023:07:15 03:50:09");
  EXPECT_EQ(dates::dateFromTextInUTC(text), floor<seconds>(july14) + 5h + 45min);
}

TEST(DateUtilityTest, CalendarIsTheUsers) {
  const ScopedLocale thai(Locale("th_TH"));
  const ScopedTimeZone utc(TimeZone::utc());
  EXPECT_EQ(dates::utcFormatted(july14), "2566:07:14 22:05:09");
  EXPECT_EQ(dates::dateFromTextInUTC("2566:07:14 22:05:09"), floor<seconds>(july14));
}

TEST(DateUtilityTest, WhatIsNoDateIsAbsent) {
  for (const char* text : {"", "2023:02:30 00:00:00", "0000:00:00 00:00:00", "2023:07:14",
                           "2023:07:14 22:05:09Z", "    :  :     :  :  "}) {
    EXPECT_FALSE(dates::dateFromTextInUTC(text)) << text;
  }
}

}  // namespace
}  // namespace FrameworkUtility
