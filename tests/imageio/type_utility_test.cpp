#include <framework_utility/imageio/type_utility.h>

#include <gtest/gtest.h>

namespace FrameworkUtility {
namespace {

TEST(RobustTypeTest, PrefersDeclaredDataThenADeclaredPackageThenADynamicType) {
  for (const auto& [extension, identifier] : {std::pair{"JPG", "public.jpeg"},
                                              {"mp4", "public.mpeg-4"},
                                              {"rtfd", "com.apple.rtfd"},
                                              {"photoslibrary", "com.apple.photos.library"},
                                              {"gpx", "dyn.ah62d4rv4ge80s6d2"}}) {
    const auto type = robustType(extension);
    ASSERT_TRUE(type) << extension;
    EXPECT_EQ(type->identifier(), identifier);
  }
  EXPECT_TRUE(robustType("framework")->isDynamic());  // a bundle that is no package
  EXPECT_FALSE(robustType(""));
  EXPECT_FALSE(robustType("a b"));
}

}  // namespace
}  // namespace FrameworkUtility
