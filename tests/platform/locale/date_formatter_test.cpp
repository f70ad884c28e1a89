#include <framework_utility/platform/locale/date_formatter.h>
#include <tests/support/words.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace FrameworkUtility {
namespace {

using namespace std::chrono;
using namespace std::chrono_literals;

const std::string photoPattern = "yyyy:MM:dd HH:mm:ss";
/// The same text, but written and read by the locale data.
const std::string quotedPattern = "yyyy:MM:dd' 'HH:mm:ss";

const Date may17 = sys_days{2024y / 5 / 17} + 8h + 30min + 9s;

DateFormatter photoFormatter(const char* locale, const char* zone = "UTC") {
  return DateFormatter(photoPattern, Locale(locale), *TimeZone::withName(zone));
}

TEST(DateFormatterTest, WritesClockTimeOfItsZoneAndLocale) {
  struct Case {
    const char *locale, *zone;
    Date date;
    const char* text;
  };
  for (const Case& c :
       {Case{"en_US", "UTC", may17, "2024:05:17 08:30:09"},
        Case{"C", "UTC", may17 + 999'999us, "2024:05:17 08:30:09"},
        Case{"C", "UTC", Date{-1us}, "1969:12:31 23:59:59"},
        Case{"de_DE", "Asia/Kathmandu", may17, "2024:05:17 14:15:09"},
        Case{"en_US", "America/New_York", sys_days{2024y / 1 / 1}, "2023:12:31 19:00:00"},
        Case{"th_TH", "UTC", may17, "2567:05:17 08:30:09"},
        Case{"ar_EG", "UTC", may17, "٢٠٢٤:٠٥:١٧ ٠٨:٣٠:٠٩"},
        Case{"en_US", "UTC", sys_days{1500y / 1 / 10}, "1500:01:01 00:00:00"}}) {  // Julian
    EXPECT_EQ(photoFormatter(c.locale, c.zone).stringFromDate(c.date), c.text)
        << c.locale << ' ' << c.zone;
  }
}

TEST(DateFormatterTest, ReadsStrictly) {
  for (const char* zone : {"UTC", "GMT"}) {  // the own reader, and the locale data
    const DateFormatter formatter = photoFormatter("en_US", zone);
    EXPECT_EQ(formatter.dateFromString("2024:05:17 08:30:09"), may17);
    EXPECT_EQ(formatter.dateFromString("٢٠٢٤:٠٥:١٧ ٠٨:٣٠:٠٩"), may17);
    EXPECT_EQ(formatter.dateFromString("2024:02:29 23:59:59"),
              sys_days{2024y / 2 / 29} + 23h + 59min + 59s);
    for (std::string text : testing::words(R"(
             _ 2024 2024:02:30_00:00:00 2023:02:29_00:00:00 2024:00:10_00:00:00 2024:13:10_00:00:00
             2024:05:00_00:00:00 2024:05:32_00:00:00 2024:05:17_24:00:00 2024:05:17_00:60:00
             2024:05:17_23:59:60 0000:00:00_00:00:00 0000:01:01_00:00:00 ____:__:__ __:__:__
             2024-05-17_08:30:09 2024:05:17T08:30:09 2024:5:7_8:3:9 24:05:17_08:30:09
             _2024:05:17_08:30:09 2024:05:17_08:30:09_ 2024:05:17__08:30:09 2024:05:17_08:30:09.5
             2024:05:17_08:30 2e3:05:17_08:30:09 +2024:05:17_08:30:09 -2024:05:17_08:30:09
             2024:05:17_-8:30:09 2024:05:17_08:30:0x 2024:05:17_08:30:0/)")) {
      std::replace(text.begin(), text.end(), '_', ' ');
      EXPECT_FALSE(formatter.dateFromString(text)) << zone << " '" << text << '\'';
    }
    EXPECT_FALSE(formatter.dateFromString(""));
    EXPECT_FALSE(formatter.dateFromString("2024:05:17 08:30:0\xff"));
    using namespace std::string_view_literals;
    EXPECT_FALSE(formatter.dateFromString("2024:05:17 08:30:09\0"sv));
    EXPECT_FALSE(formatter.dateFromString(std::string(10'000'000, '1')));
    EXPECT_FALSE(formatter.dateFromString(std::string(900, '9') + ":05:17 08:30:09"));
  }
}

TEST(DateFormatterTest, ReadsInTheCalendarOfTheLocale) {
  EXPECT_EQ(photoFormatter("th_TH").dateFromString("2567:05:17 08:30:09"), may17);
  EXPECT_EQ(photoFormatter("ar_EG").dateFromString("2024:05:17 08:30:09"), may17);
  // A camera's Gregorian text is another day of the user's calendar.
  EXPECT_NE(photoFormatter("ar_SA").dateFromString("2024:05:17 08:30:09"), may17);
}

TEST(DateFormatterTest, ClockTimesThatAZoneLeapsOverAreNone) {
  const DateFormatter paris = photoFormatter("en_US", "Europe/Paris");
  EXPECT_EQ(paris.dateFromString("2024:03:31 01:59:59"),
            Date{sys_days{2024y / 3 / 31} + 59min + 59s});
  EXPECT_FALSE(paris.dateFromString("2024:03:31 02:30:00"));
  EXPECT_EQ(paris.dateFromString("2024:10:27 02:30:00"), Date{sys_days{2024y / 10 / 27} + 90min});
}

TEST(DateFormatterTest, TheOwnPathAgreesWithTheLocaleData) {
  std::mt19937_64 bits(17);
  std::uniform_int_distribution<std::int64_t> years1500To10100(-14'831'769'600, 256'560'000'000);
  const auto languages = testing::words(
      "bg ca cs da de el en es et eu fi fr ga gl he hr hu id is it ja ko lt lv ms nb nl nn no pl "
      "pt ro ru sk sl sv tr uk vi zh");
  const auto regions = testing::words(
      "_US _AE _AF _EG _IN _IR _SA _TH _TW @calendar=buddhist _TH@calendar=gregorian "
      "_US@numbers=deva");
  const char* zones[] = {"UTC", "Europe/Paris", "America/St_Johns", "Pacific/Apia"};
  int turn = 0;
  for (const std::string& language : languages) {
    for (const std::string& region : regions) {
      const Locale locale(language + region);
      const TimeZone zone = *TimeZone::withName(zones[turn++ % 4]);
      const DateFormatter own(photoPattern, locale, zone), data(quotedPattern, locale, zone);
      const Date date{seconds(years1500To10100(bits))};
      const std::string text = data.stringFromDate(date);
      EXPECT_EQ(own.stringFromDate(date), text) << locale << ' ' << zone;
      EXPECT_EQ(own.dateFromString(text), data.dateFromString(text)) << locale << ' ' << text;
    }
  }
}

TEST(DateFormatterTest, ThreadsMayShareOne) {
  const DateFormatter thai = photoFormatter("th_TH", "Europe/Paris");
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&, i] {
      const Date date = may17 + days(i);
      for (int turn = 0; turn < 50; ++turn) {
        EXPECT_EQ(thai.dateFromString(thai.stringFromDate(date)), date);
        EXPECT_FALSE(DateFormatter(photoPattern).stringFromDate(date).empty());
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST(DateFormatterTest, OtherPatterns) {
  const DateFormatter words("d MMMM y", Locale("fr_FR"), TimeZone::utc());
  EXPECT_EQ(words.stringFromDate(may17), "17 mai 2024");
  EXPECT_EQ(words.dateFromString("17 MAI 2024"), Date{sys_days{2024y / 5 / 17}});
  EXPECT_FALSE(words.dateFromString("17 may 2024"));
  for (const std::string& pattern : {std::string("'"), std::string("jjj"), std::string("\xff"),
                                     std::string(100'000, 'y'), std::string(500, 'y')}) {
    const DateFormatter formatter(pattern, Locale("en_US"), TimeZone::utc());
    formatter.stringFromDate(may17);  // whatever it is, it ends
    EXPECT_FALSE(formatter.dateFromString("2024:05:17 08:30:09")) << pattern.substr(0, 9);
  }
}

TEST(DateFormatterTest, DatesAtTheEndsOfTime) {
  for (const Date date : {Date::min(), Date::max(), Date{sys_days{30'000y / 1 / 1}}}) {
    for (const char* zone : {"UTC", "Europe/Paris"}) {
      EXPECT_FALSE(photoFormatter("en_US", zone).stringFromDate(date).empty());
    }
  }
  EXPECT_FALSE(photoFormatter("en_US").dateFromString("5838270:05:17 08:30:09"));
  EXPECT_EQ(photoFormatter("en_US").dateFromString("12024:05:17 08:30:09"),
            Date{sys_days{12024y / 5 / 17} + 8h + 30min + 9s});
}

}  // namespace
}  // namespace FrameworkUtility
