#include <framework_utility/imageio/image_metadata.h>
#include <framework_utility/platform/foundation/archives/keyed_archiver.h>
#include <framework_utility/platform/foundation/archives/keyed_unarchiver.h>
#include <framework_utility/platform/foundation/archives/uuid.h>
#include <framework_utility/platform/foundation/property_lists/property_list.h>
#include <tests/support/archives.h>
#include <tests/support/is_error.h>

#include <gmock/gmock.h>

namespace FrameworkUtility {
namespace {

using namespace testing;
using ::testing::ElementsAre;

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

void expectSame(const KvImageMetadata& a, const KvImageMetadata& b) {
  EXPECT_EQ(a.properties(), b.properties());
  EXPECT_EQ(a.auxiliaryDataInfoDepth(), b.auxiliaryDataInfoDepth());
  EXPECT_EQ(a.auxiliaryDataInfoDisparity(), b.auxiliaryDataInfoDisparity());
  EXPECT_EQ(a.auxiliaryDataInfoMatte(), b.auxiliaryDataInfoMatte());
  EXPECT_EQ(a.videoCodecName(), b.videoCodecName());
}

TEST(KvImageMetadataCodingTest, WhatIsThereComesBackWithItsKinds) {
  const Dictionary exif{{"FNumber", 1.8}, {"ISOSpeedRatings", Value(Array{100})}};
  const Array own{Value(), Date(), URL::fileURLWithPath("/a"),
                  0.1F,    true,   Dictionary{{17, "text"}}};
  KvImageMetadata metadata =
      KvImageMetadata::withProperties(Dictionary{{"{Exif}", exif}, {"own", Value(own)}});
  metadata.setAuxiliaryDataInfoDepth(Dictionary{{"data", Data(std::vector<std::byte>(9))}});
  metadata.setAuxiliaryDataInfoDisparity(Dictionary{{"kind", "disparity"}});
  metadata.setAuxiliaryDataInfoMatte(Dictionary());
  metadata.setVideoCodecName("hvc1");
  const Data data = archived(metadata).value();
  EXPECT_THAT(keysIn(data),
              ElementsAre("properties", "auxiliaryDataInfoDepth", "auxiliaryDataInfoMatte",
                          "auxiliaryDataInfoDisparity", "videoCodecName", "$class"));
  const auto again = unarchived(data);
  ASSERT_TRUE(again);
  expectSame(*again, metadata);
  const Array& kinds = *again->properties()->get<Array>("own");
  EXPECT_TRUE(kinds[3].as<Number>()->isSinglePrecision());
  EXPECT_EQ(kinds[4].as<Number>()->kind(), Number::Kind::boolean);
}

TEST(KvImageMetadataCodingTest, AbsentFieldsAreNotWrittenAndStayAbsent) {
  KvImageMetadata metadata;
  EXPECT_THAT(keysIn(*archived(metadata)), ElementsAre("properties", "$class"));
  expectSame(unarchived(*archived(metadata)).value(), metadata);
  metadata.setProperties(std::nullopt);
  EXPECT_THAT(keysIn(*archived(metadata)), ElementsAre("$class"));
  expectSame(unarchived(*archived(metadata)).value(), metadata);
}

TEST(KvImageMetadataCodingTest, WhatIsOfAnotherKindIsAbsent) {
  // As objects: null, this, its class, a text, a number, bytes, a dictionary and its class.
  constexpr unsigned text = 3, dictionary = 6;
  for (unsigned other = 0; other <= dictionary; ++other) {
    if (other == 1 || other == 2) continue;
    const auto metadata =
        unarchived(archiveOf({Dictionary{{"properties", reference(other)},
                                         {"auxiliaryDataInfoMatte", reference(other)},
                                         {"videoCodecName", reference(other)},
                                         {"$class", reference(2)}},
                              classRecord("KvImageMetadata"), "text", 5, Data(),
                              Dictionary{{"NS.keys", references({3})},
                                         {"NS.objects", references({4})},
                                         {"$class", reference(7)}},
                              classRecord("NSDictionary")}));
    ASSERT_TRUE(metadata) << other;
    EXPECT_EQ(metadata->properties().has_value(), other == dictionary);
    EXPECT_EQ(metadata->auxiliaryDataInfoMatte().has_value(), other == dictionary);
    EXPECT_EQ(metadata->videoCodecName().has_value(), other == text);
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
