#include <framework_utility/platform/foundation/app/uniform_type.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <concepts>
#include <string>
#include <utility>

namespace FrameworkUtility {
namespace {

std::string typeFor(std::string_view extension, const UTType& supertype = UTTypeData) {
  const auto type = UTType::typeWithFilenameExtension(extension, supertype);
  return type ? type->description() : "none";
}

TEST(UTTypeTest, EveryDeclaredTypeIsFoundByItsNameAndItsExtensionsLeadBackToOneThatHasThem) {
  for (const detail::DeclaredType& row : detail::declaredTypes) {
    SCOPED_TRACE(row.identifier);
    const auto type = UTType::typeWithIdentifier(row.identifier);
    ASSERT_TRUE(type && type->isDeclared() && type->conformsToType(*type));
    detail::anyWord(row.extensions, [&](std::string_view extension) {
      EXPECT_EQ(typeFor(extension, *type), row.identifier);
      return false;
    });
  }
}

TEST(UTTypeTest, AnExtensionInAnyCaseGivesTheFirstDeclaredTypeUnderTheSupertype) {
  const UTType audio("public.audio");
  for (const auto& [extension, supertype, expected] : {std::tuple{"jpg", UTTypeData, "public.jpeg"},
                                                       {"JPeG", UTTypeImage, "public.jpeg"},
                                                       {"HEIC", UTTypeData, "public.heic"},
                                                       {"mp4", UTTypeData, "public.mpeg-4"},
                                                       {"mp4", audio, "public.mpeg-4-audio"},
                                                       {"rtfd", UTTypePackage, "com.apple.rtfd"},
                                                       {"txt", UTTypeData, "public.plain-text"}}) {
    EXPECT_EQ(typeFor(extension, supertype), expected) << extension;
  }
}

TEST(UTTypeTest, UndeclaredExtensionsGiveDynamicTypesThatGoToTheirNameAndBack) {
  for (const auto& [extension, identifier] : {std::pair{"srt", "dyn.ah62d4rv4ge81g6xy"},
                                              {"gpx", "dyn.ah62d4rv4ge80s6d2"},
                                              {"GPX", "dyn.ah62d4rv4ge80s6d2"}}) {
    SCOPED_TRACE(extension);
    const auto type = UTType::typeWithFilenameExtension(extension, UTTypeData);
    ASSERT_TRUE(type);
    EXPECT_EQ(type->identifier(), identifier);
    EXPECT_TRUE(type->isDynamic() && !type->isDeclared());
    EXPECT_TRUE(type->conformsToType(UTTypeData));
    EXPECT_FALSE(type->conformsToType(UTTypePackage));
    const auto again = UTType::typeWithIdentifier(identifier);
    EXPECT_EQ(again, type);
    EXPECT_TRUE(again->conformsToType(UTType("public.item")));
    EXPECT_EQ(UTType::typeWithFilenameExtension(extension, *type), type);
    EXPECT_FALSE(UTType::typeWithFilenameExtension("jpg", *type));
  }
  const auto picture = UTType::typeWithFilenameExtension("txt", UTTypeImage);
  ASSERT_TRUE(picture && picture->isDynamic() && picture->conformsToType(UTTypeImage));
  EXPECT_EQ(UTType::typeWithIdentifier(picture->identifier()), picture);
  const auto orphan = UTType::typeWithIdentifier("dyn.age80q55t");
  ASSERT_TRUE(orphan);
  EXPECT_EQ(orphan->preferredFilenameExtension(), "foo");
  EXPECT_FALSE(orphan->conformsToType(UTTypeData));
}

TEST(UTTypeTest, RefusesWhatIsNoExtensionAndNoIdentifier) {
  for (const char* extension : {"", "a b", "a/b", "jpg ", "\u202Egpj"}) {
    EXPECT_EQ(typeFor(extension), "none") << extension;
  }
  for (const char* identifier : {"", "public.hic", "PUBLIC.JPEG", "dyn.a", "dyn.ah62d4rv4ge81g6x",
                                 "dyn.ah62d4rv4ge81g6xya", "dyn.ALOUD", "dyn.age80q55t "}) {
    EXPECT_FALSE(UTType::typeWithIdentifier(identifier)) << identifier;
  }
}

TEST(UTTypeTest, ConformanceReachesUpThroughEveryParent) {
  for (const auto& [type, other, conforms] :
       {std::tuple{UTTypeHEIC, UTTypeImage, true},
        {UTTypeHEIC, UTType("public.item"), true},
        {UTTypeHEIC, UTType("public.content"), true},
        {UTTypeHEIC, UTType("public.heif"), false},
        {UTTypeImage, UTTypeJPEG, false},
        {UTType("com.apple.m4a-audio"), UTType("public.movie"), true},
        {UTType("com.apple.application-bundle"), UTType("public.executable"), true},
        {UTType("com.apple.framework"), UTTypePackage, false}}) {
    EXPECT_EQ(type.conformsToType(other), conforms) << type << ' ' << other;
  }
}

TEST(UTTypeTest, AppendsThePreferredExtensionUnlessTheNameHasOneOfTheType) {
  const UTType text("public.plain-text");
  const UTType dynamic = *UTType::typeWithFilenameExtension("gpx", UTTypeData);
  for (const auto& [name, type, expected] : {std::tuple{"photo", UTTypeJPEG, "photo.jpeg"},
                                             {"photo.JPG", UTTypeJPEG, "photo.JPG"},
                                             {"puppy.jpg", text, "puppy.jpg.txt"},
                                             {"puppy", UTTypeImage, "puppy"},
                                             {"v1.2 final", UTTypePNG, "v1.2 final.png"},
                                             {"track.GPX", dynamic, "track.GPX"},
                                             {"track.srt", dynamic, "track.srt.gpx"}}) {
    EXPECT_EQ(appendingPathExtensionForType(name, type), expected) << name;
  }
}

}  // namespace
}  // namespace FrameworkUtility
