#include <framework_utility/platform/locale/time_zone.h>
#include <tests/support/scoped_environment.h>

#include <gtest/gtest.h>

#include <string>

namespace FrameworkUtility {
namespace {

using namespace std::chrono;
using namespace std::chrono_literals;
using testing::ScopedEnvironment;

const Date winter = sys_days{2024y / 1 / 15};
const Date summer = sys_days{2024y / 7 / 15};

TEST(TimeZoneTest, FollowsDaylightSavingAndHistory) {
  const auto paris = TimeZone::withName("Europe/Paris");
  ASSERT_TRUE(paris);
  EXPECT_EQ(paris->secondsFromGMTForDate(winter), 1h);
  EXPECT_EQ(paris->secondsFromGMTForDate(summer), 2h);
  // To the microsecond: the last Sunday of March, at one o'clock in Greenwich.
  const Date change = sys_days{2024y / 3 / 31} + 1h;
  EXPECT_EQ(paris->secondsFromGMTForDate(change), 2h);
  EXPECT_EQ(paris->secondsFromGMTForDate(change - 1us), 1h);
  EXPECT_EQ(TimeZone::withName("Asia/Kathmandu")->secondsFromGMTForDate(winter), 5h + 45min);
  EXPECT_EQ(TimeZone::withName("GMT+5:30")->secondsFromGMTForDate(winter), 5h + 30min);
  EXPECT_EQ(TimeZone::utc().secondsFromGMTForDate(summer), 0s);
}

TEST(TimeZoneTest, UnknownNamesHaveNone) {
  for (const std::string& name : {std::string(), std::string("Europe/Nowhere"), std::string("\xff"),
                                  std::string("../../etc/passwd"), std::string(1'000'000, 'x')}) {
    EXPECT_FALSE(TimeZone::withName(name)) << name.substr(0, 20);
  }
}

TEST(TimeZoneTest, TheUsersIsThatOfTheSetting) {
  struct Case {
    const char* setting;
    seconds inWinter, inSummer;
  };
  for (const Case& c :
       {Case{"Europe/Paris", 1h, 2h}, Case{":America/New_York", -5h, -4h},
        Case{"/usr/share/zoneinfo/Asia/Tokyo", 9h, 9h}, Case{"EST5EDT", -5h, -4h},
        // In this variable west is positive.
        Case{"JST-9", 9h, 9h}, Case{"GMT+5", -5h, -5h},
        Case{"<+0330>-3:30", 3h + 30min, 3h + 30min}, Case{"UTC0", 0s, 0s}, Case{"", 0s, 0s},
        Case{"Nowhere/City", 0s, 0s}, Case{"<", 0s, 0s}, Case{"ABC-", 0s, 0s},
        Case{"ABC-1:", 0s, 0s}, Case{"AB-1", 0s, 0s}, Case{"ABC-1x", 0s, 0s},
        Case{"ABC-123", 0s, 0s}, Case{"<+03-3", 0s, 0s}, Case{"ABC-1:2:3:4", 0s, 0s},
        Case{"ABC+1:30:15", -(1h + 30min + 15s), -(1h + 30min + 15s)}}) {
    const ScopedEnvironment setting("TZ", c.setting);
    EXPECT_EQ(TimeZone::current().secondsFromGMTForDate(winter), c.inWinter) << c.setting;
    EXPECT_EQ(TimeZone::current().secondsFromGMTForDate(summer), c.inSummer) << c.setting;
  }
  const ScopedEnvironment none("TZ", nullptr);
  EXPECT_FALSE(TimeZone::current().name().empty());
}

TEST(TimeZoneTest, CanBeReplaced) {
  const TimeZone before = TimeZone::current();
  {
    const ScopedTimeZone scoped(*TimeZone::withName("Asia/Tokyo"));
    EXPECT_EQ(TimeZone::current().name(), "Asia/Tokyo");
  }
  EXPECT_EQ(TimeZone::current(), before);
}

}  // namespace
}  // namespace FrameworkUtility
