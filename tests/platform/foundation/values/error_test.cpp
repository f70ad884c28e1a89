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

Error chainOfCauses(int length, std::int64_t lastCode) {
  Error error("Last", lastCode);
  for (int i = 0; i < length; ++i) error = Error("Chain", i, {{NSUnderlyingErrorKey, error}});
  return error;
}

TEST(ErrorTest, DomainAndCodeDecideWhatItIs) {
  const Error error("DiskDomain", 5, {{NSLocalizedDescriptionKey, "No file."}});
  EXPECT_THAT(error, testing::IsError(noFile));
  EXPECT_TRUE(error.is(noFile));
  EXPECT_FALSE(Error("DiskDomain", 6).is(noFile));
  EXPECT_FALSE(Error("diskDomain", 5).is(noFile));
  std::ostringstream out;
  out << error;
  EXPECT_EQ(out.str(), "Error Domain=DiskDomain Code=5 \"No file.\"");
}

TEST(ErrorTest, WithoutADescriptionDomainAndCodeMakeOne) {
  EXPECT_EQ(Error("D", -7).localizedDescription(),
            "The operation couldn’t be completed. (D error -7.)");
  EXPECT_EQ(Error().domain(), "");
  EXPECT_EQ(Error().code(), 0);
  EXPECT_FALSE(Error().underlyingError());
  EXPECT_EQ(Error(), Error("", 0));
}

TEST(ErrorTest, EqualityLooksAtAllUserInformation) {
  const Dictionary info{{"Path", "/a"}, {NSUnderlyingErrorKey, Error("E", 1)}};
  const Error error("D", 1, info);
  EXPECT_EQ(error, Error("D", 1, {{NSUnderlyingErrorKey, Error("E", 1)}, {"Path", "/a"}}));
  EXPECT_FALSE(error == Error("D", 1, {{NSUnderlyingErrorKey, Error("E", 2)}, {"Path", "/a"}}));
  EXPECT_FALSE(error == Error("D", 1, {{NSUnderlyingErrorKey, Error("E", 1)}, {"Path", "/b"}}));
  EXPECT_FALSE(error == Error("D", 1, {{NSUnderlyingErrorKey, "text"}, {"Path", "/a"}}));
  EXPECT_FALSE(error == Error("D", 1));
}

TEST(ErrorTest, AMillionCausesAreComparedAndFreedWithoutRecursion) {
  constexpr int length = 1'000'000;
  Error error = chainOfCauses(length, 1);
  EXPECT_EQ(error, chainOfCauses(length, 1));
  EXPECT_FALSE(chainOfCauses(1000, 1) == chainOfCauses(1000, 2));
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
