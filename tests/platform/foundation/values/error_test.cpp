#include <framework_utility/platform/foundation/values/error.h>
#include <framework_utility/platform/foundation/values/stop.h>
#include <framework_utility/platform/foundation/values/value.h>
#include <tests/support/is_error.h>

#include <gtest/gtest.h>

#include <sstream>
#include <type_traits>
#include <utility>

namespace FrameworkUtility {
namespace {

// Of a temporary, nothing refers to it.
static_assert(!std::is_reference_v<decltype(std::declval<Error>().domain())>);
static_assert(!std::is_reference_v<decltype(std::declval<Error>().userInfo())>);

constexpr ErrorCode noFile{"DiskDomain", 5, "No file."};

TEST(ErrorTest, DomainAndCodeDecideWhatItIs) {
  const Error error("DiskDomain", 5, {{NSLocalizedDescriptionKey, "No file."}});
  EXPECT_THAT(error, testing::IsError(noFile));
  EXPECT_TRUE(error.is(noFile));
  EXPECT_FALSE(Error("DiskDomain", 6).is(noFile));
  EXPECT_FALSE(Error("diskDomain", 5).is(noFile));
  std::ostringstream out;
  out << error << Error("D", -7).localizedDescription();
  EXPECT_EQ(out.str(),
            "Error Domain=DiskDomain Code=5 \"No file.\""
            "The operation couldn’t be completed. (D error -7.)");
}

TEST(ErrorTest, EqualityLooksAtAllUserInformation) {
  const Error cause("E", 1);
  const Error error("D", 1, {{"Path", "/a"}, {NSUnderlyingErrorKey, cause}});
  EXPECT_EQ(error, Error("D", 1, {{NSUnderlyingErrorKey, cause}, {"Path", "/a"}}));
  for (const Error& other :
       {Error("D", 1, {{NSUnderlyingErrorKey, Error("E", 2)}, {"Path", "/a"}}),
        Error("D", 1, {{NSUnderlyingErrorKey, cause}, {"Path", "/b"}}),
        Error("D", 1, {{NSUnderlyingErrorKey, "text"}, {"Path", "/a"}}),
        Error("D", 2, {{NSUnderlyingErrorKey, cause}, {"Path", "/a"}}),
        Error("E", 1, {{NSUnderlyingErrorKey, cause}, {"Path", "/a"}}), Error("D", 1)}) {
    EXPECT_FALSE(error == other) << other;
  }
  EXPECT_EQ(Error(), Error("", 0));
}

TEST(ErrorTest, AMillionCausesAreComparedAndFreedWithoutRecursion) {
  constexpr int length = 1'000'000;
  const auto chainOfCauses = [](std::int64_t lastCode) {
    Error error("Last", lastCode);
    for (int i = 0; i < length; ++i) error = Error("Chain", i, {{NSUnderlyingErrorKey, error}});
    return error;
  };
  Error error = chainOfCauses(1);
  EXPECT_EQ(error, chainOfCauses(1));
  EXPECT_FALSE(error == chainOfCauses(2));
  Error cause = *error.underlyingError();
  error = Error();
  EXPECT_EQ(cause.code(), length - 2);  // what others hold lives on
  int depth = 0;
  for (std::optional<Error> next = cause; next; next = next->underlyingError()) ++depth;
  EXPECT_EQ(depth, length);
}

TEST(StopTest, PrintsOneLineAndAborts) {
  EXPECT_EXIT(stop("Nothing can be\nmeant by this."), ::testing::KilledBySignal(SIGABRT),
              "^Nothing can be\nmeant by this.\n$");
}

}  // namespace
}  // namespace FrameworkUtility
