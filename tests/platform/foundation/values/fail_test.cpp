#include <framework_utility/platform/foundation/values/fail.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace FrameworkUtility {
namespace {

constexpr ErrorCode unreadable{"Domain", 7, "It cannot be read."};

template <class Result>
Result failing(Error* error) {
  return detail::fail(error, unreadable, "", {{"Path", "/a"}});
}

TEST(FailTest, IsTheEmptyResultOfWhateverFailed) {
  Error error;
  EXPECT_FALSE(failing<bool>(&error));
  EXPECT_EQ(error, Error("Domain", 7,
                         {{NSLocalizedDescriptionKey, "It cannot be read."}, {"Path", "/a"}}));
  // None of what can be made of a flag, a number or null.
  EXPECT_FALSE(failing<std::optional<int>>(nullptr));
  EXPECT_FALSE(failing<std::optional<std::string>>(nullptr));
  EXPECT_FALSE(failing<std::optional<std::vector<std::byte>>>(nullptr));
  EXPECT_FALSE(failing<std::optional<Value>>(nullptr));
  EXPECT_FALSE(failing<std::unique_ptr<Value>>(nullptr));
  EXPECT_FALSE(failing<const Value*>(nullptr));
  EXPECT_TRUE(detail::platformError({"Domain", 7, ""}).userInfo().empty());
}

}  // namespace
}  // namespace FrameworkUtility
