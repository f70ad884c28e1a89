#include <framework_utility/imageio/image_metadata.h>
#include <framework_utility/platform/foundation/archives/keyed_archiver.h>
#include <framework_utility/platform/foundation/archives/keyed_unarchiver.h>
#include <framework_utility/platform/foundation/archives/uuid.h>
#include <framework_utility/platform/foundation/property_lists/property_list.h>
#include <tests/imageio/pictures.h>
#include <tests/support/archives.h>
#include <tests/support/is_error.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace FrameworkUtility {
namespace {

using namespace testing;

std::optional<Data> archived(const KvImageMetadata& metadata, Error* error = nullptr) {
  return NSKeyedArchiver::archivedDataWithRootObject(boxed(metadata), SecureCoding::required,
                                                     error);
}

std::optional<KvImageMetadata> unarchived(const Data& data, Error* error = nullptr) {
  const auto root = NSKeyedUnarchiver::unarchivedObjectOfClasses(
      KvImageMetadata::unarchivedObjectOfClasses(), data, error);
  const auto* metadata = root ? unboxed<KvImageMetadata>(*root) : nullptr;
  return metadata ? std::optional(*metadata) : std::nullopt;
}

/// The keys of the archive's first object.
std::vector<std::string> keysIn(const Data& archive) {
  const Value list = *propertyListWithData(archive);
  std::vector<std::string> keys;
  for (const auto& entry : *(*list.as<Dictionary>()->get<Array>("$objects"))[1].as<Dictionary>()) {
    keys.emplace_back(*entry.key.text());
  }
  return keys;
}

TEST(KvImageMetadataCodingTest, APhotosMetadataComesBackWithItsKinds) {
  auto metadata = KvImageMetadata::withData(encoded(
      redAndBlue(40, 30), "public.jpeg",
      Dictionary{
          {"Orientation", 6},
          {"{Exif}", Dictionary{{"FNumber", 1.8}, {"ISOSpeedRatings", Value(Array{100})}}}}));
  ASSERT_TRUE(metadata);
  Dictionary properties = *metadata->properties();
  properties.set("own", Value(Array{Value(), Date(), URL::fileURLWithPath("/a"), 0.1F, true,
                                    Dictionary{{17, "text"}}}));
  metadata->setProperties(properties);
  metadata->setAuxiliaryDataInfoDepth(
      Dictionary{{"data", encoded(redAndBlue(1, 1), "public.png")}});
  metadata->setAuxiliaryDataInfoDisparity(Dictionary{{"kind", "disparity"}});
  metadata->setAuxiliaryDataInfoMatte(Dictionary());
  metadata->setVideoCodecName("hvc1");

  const auto data = archived(*metadata);
  ASSERT_TRUE(data);
  EXPECT_EQ(keysIn(*data), (std::vector<std::string>{
                               "properties", "auxiliaryDataInfoDepth", "auxiliaryDataInfoMatte",
                               "auxiliaryDataInfoDisparity", "videoCodecName", "$class"}));
  const auto again = unarchived(*data);
  ASSERT_TRUE(again);
  EXPECT_EQ(again->properties(), metadata->properties());
  EXPECT_EQ(again->auxiliaryDataInfoDepth(), metadata->auxiliaryDataInfoDepth());
  EXPECT_EQ(again->auxiliaryDataInfoDisparity(), metadata->auxiliaryDataInfoDisparity());
  EXPECT_EQ(again->auxiliaryDataInfoMatte(), Dictionary());
  EXPECT_EQ(again->videoCodecName(), "hvc1");
  const Array& own = *again->properties()->get<Array>("own");
  EXPECT_TRUE(own[3].as<Number>()->isSinglePrecision());
  EXPECT_EQ(own[4].as<Number>()->kind(), Number::Kind::boolean);
}

TEST(KvImageMetadataCodingTest, AbsentFieldsAreNotWrittenAndStayAbsent) {
  KvImageMetadata metadata;
  EXPECT_EQ(keysIn(*archived(metadata)), (std::vector<std::string>{"properties", "$class"}));
  EXPECT_EQ(unarchived(*archived(metadata))->properties(), Dictionary());
  metadata.setProperties(std::nullopt);
  EXPECT_EQ(keysIn(*archived(metadata)), std::vector<std::string>{"$class"});
  const auto again = unarchived(*archived(metadata));
  ASSERT_TRUE(again);
  EXPECT_EQ(again->properties(), std::nullopt);
  EXPECT_EQ(again->auxiliaryDataInfoDepth(), std::nullopt);
  EXPECT_EQ(again->auxiliaryDataInfoDisparity(), std::nullopt);
  EXPECT_EQ(again->auxiliaryDataInfoMatte(), std::nullopt);
  EXPECT_EQ(again->videoCodecName(), std::nullopt);
}

TEST(KvImageMetadataCodingTest, WhatIsOfAnotherKindIsAbsent) {
  const auto with = [](const Value& properties, const Value& codec) {
    return unarchived(archiveOf({Dictionary{{"properties", properties},
                                            {"auxiliaryDataInfoMatte", reference(3)},
                                            {"videoCodecName", codec},
                                            {"$class", reference(2)}},
                                 classRecord("KvImageMetadata"), "text", 5, Data(),
                                 Dictionary{{"NS.keys", references({3})},
                                            {"NS.objects", references({4})},
                                            {"$class", reference(7)}},
                                 classRecord("NSDictionary")}));
  };
  for (const unsigned other : {0U, 3U, 4U, 5U}) {
    const auto metadata = with(reference(other), reference(3));
    ASSERT_TRUE(metadata) << other;
    EXPECT_EQ(metadata->properties(), std::nullopt);
    EXPECT_EQ(metadata->auxiliaryDataInfoMatte(), std::nullopt);
    EXPECT_EQ(metadata->videoCodecName(), "text");
  }
  for (const unsigned other : {0U, 4U, 5U, 6U}) {
    const auto metadata = with(reference(6), reference(other));
    ASSERT_TRUE(metadata) << other;
    EXPECT_EQ(metadata->properties(), (Dictionary{{"text", 5}}));
    EXPECT_EQ(metadata->videoCodecName(), std::nullopt);
  }
}

TEST(KvImageMetadataCodingTest, OtherClassesAreRefused) {
  const KvImageMetadata metadata = KvImageMetadata::withProperties(
      Dictionary{{"other", Value(std::make_shared<NSUUID>(NSUUID::Bytes{}))}});
  Error error;
  EXPECT_FALSE(unarchived(*archived(metadata), &error));
  EXPECT_THAT(error, IsError(CoderError::readCorrupt));

  KvImageMetadata::setSupportsSecureCoding(false);
  EXPECT_FALSE(archived(KvImageMetadata(), &error));
  EXPECT_THAT(error, IsError(CoderError::invalidValue));
  KvImageMetadata::setSupportsSecureCoding(true);
  EXPECT_TRUE(archived(KvImageMetadata()));
}

}  // namespace
}  // namespace FrameworkUtility
