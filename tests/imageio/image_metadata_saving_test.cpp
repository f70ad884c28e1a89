// Metadata read from files and bytes, and added to them.

#include <framework_utility/imageio/image_metadata.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/imageio/image_destination.h>
#include <framework_utility/platform/imageio/metadata/property_keys.h>
#include <tests/imageio/pictures.h>
#include <tests/support/is_error.h>
#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace FrameworkUtility {
namespace {

using testing::encoded;
using testing::IsError;
using testing::redAndBlue;

std::span<const std::byte> bytes(std::string_view text) { return std::as_bytes(std::span(text)); }

TEST(KvImageMetadataReadingTest, EveryFailureHasItsError) {
  const testing::TemporaryFolder folder;
  const Data jpeg = encoded(redAndBlue(16, 16), "public.jpeg");
  const auto readUrl = [](const std::optional<URL>& url) {
    Error error;
    EXPECT_FALSE(KvImageMetadata::withUrl(url, &error));
    return error;
  };
  const auto readData = [](const std::optional<Data>& data) {
    Error error;
    EXPECT_FALSE(KvImageMetadata::withData(data, std::nullopt, &error));
    return error;
  };
  const auto notComplete = [](std::string status) {
    return IsError(
        "NSTervixKvImageMetadataErrorDomain", 4,
        "KvImageMetadata: init imageSource: image source status " + status + " is not complete.");
  };
  EXPECT_THAT(readUrl(std::nullopt), IsError(KvImageMetadataError::urlIsNil));
  EXPECT_THAT(readUrl(URL::fileURLWithPath(folder.path("missing.jpg"))),
              IsError(KvImageMetadataError::fileDoesNotExist));
  EXPECT_THAT(readUrl(URL::fileURLWithPath(folder.path())),
              IsError(KvImageMetadataError::noImageSource));
  EXPECT_THAT(readData(std::nullopt), IsError(KvImageMetadataError::dataIsNil));
  EXPECT_THAT(readData(Data()), notComplete("statusUnknownType"));
  EXPECT_THAT(readData(Data(bytes("no picture at all"))), notComplete("statusUnknownType"));
  const Data cut(std::span(jpeg.data(), 30));
  EXPECT_TRUE(readData(cut).is(KvImageMetadataError::sourceNotComplete));
  EXPECT_EQ(readData(cut).underlyingError()->localizedDescription(), "The file is cut off.");
  Error error;
  EXPECT_FALSE(KvImageMetadata::withImageSource(std::nullopt, &error));
  EXPECT_THAT(error, IsError(KvImageMetadataError::noImageSource));
}

TEST(KvImageMetadataReadingTest, AFileIsAskedForBeforeItIsOpened) {
  const testing::TemporaryFolder folder;
  testing::writeFile(folder.path("a.jpg"), encoded(redAndBlue(16, 16), "public.jpeg"));
  for (const auto& [failing, code] :
       {std::pair{"attributesOfItemAtPath", KvImageMetadataError::fileDoesNotExist},
        {"openFileAtPath", KvImageMetadataError::noImageSource}}) {
    const auto manager = makeFailingFileManager(
        FileManager::defaultManager(),
        [failing = failing](std::string_view operation, std::string_view) {
          return operation == failing ? std::optional(Error("NSCocoaErrorDomain", 257))
                                      : std::nullopt;
        });
    const ScopedFileManager scope(*manager);
    Error error;
    EXPECT_FALSE(KvImageMetadata::withUrl(URL::fileURLWithPath(folder.path("a.jpg")), &error));
    EXPECT_THAT(error, IsError(code));
    EXPECT_EQ(error.underlyingError(), Error("NSCocoaErrorDomain", 257));
  }
}

TEST(KvImageMetadataReadingTest, SuccessLeavesTheErrorAlone) {
  Error error("before", 1);
  const auto metadata =
      KvImageMetadata::withData(encoded(redAndBlue(20, 10), "public.png"), UTTypePNG, &error);
  ASSERT_TRUE(metadata);
  EXPECT_EQ(error, Error("before", 1));
  EXPECT_EQ(metadata->size(), (Size{20, 10}));
  EXPECT_FALSE(metadata->hasDepthOrDisparityInformation());
}

TEST(KvImageMetadataReadingTest, TheBytesDecideTheType) {
  const auto metadata =
      KvImageMetadata::withData(encoded(redAndBlue(20, 10), "public.jpeg"), UTTypePNG);
  ASSERT_TRUE(metadata);
  EXPECT_EQ(metadata->width(), Number(20));
}

TEST(KvImageMetadataAddImageTest, WithoutEntriesNoImageIsAdded) {
  const auto destination = CGImageDestination::createInMemory("public.jpeg", 1);
  KvImageMetadata metadata;
  metadata.addImage(redAndBlue(8, 8), destination.get());
  EXPECT_FALSE(destination->finalize());
  EXPECT_EQ(metadata.properties(), Dictionary());
}

TEST(KvImageMetadataAddImageTest, TheQualityStaysInTheMetadata) {
  const auto destination = CGImageDestination::createInMemory("public.jpeg", 1);
  KvImageMetadata metadata;
  metadata.setProperties(std::nullopt);
  metadata.addImage(redAndBlue(8, 8), destination.get(), 0.5);
  EXPECT_TRUE(destination->finalize());
  EXPECT_EQ(metadata.properties(), (Dictionary{{kCGImageDestinationLossyCompressionQuality, 0.5}}));
}

TEST(KvImageMetadataAddImageTest, WithoutImageOrDestinationNothingHappens) {
  const auto destination = CGImageDestination::createInMemory("public.jpeg", 1);
  KvImageMetadata metadata;
  metadata.addImage(std::nullopt, destination.get(), 0.5);
  metadata.addImage(redAndBlue(8, 8), nullptr, 0.5);
  EXPECT_EQ(metadata.properties(), Dictionary());
}

TEST(KvImageMetadataAddImageTest, EditsReadBackFromTheFile) {
  KvImageMetadata metadata;
  metadata.setOrientation(6);
  metadata.setSoftware("Pelvar 7.1");
  metadata.setUserComment("Grüße");
  metadata.setDateOriginal(std::chrono::sys_days(std::chrono::year(2024) / 5 / 17));
  metadata.setLocation(CLLocation{.latitude = -33.86, .longitude = 151.21, .altitude = -12.5});
  for (const UTType& type : {UTTypeJPEG, UTTypePNG}) {
    SCOPED_TRACE(type.identifier());
    const auto destination = CGImageDestination::createInMemory(type.identifier(), 1);
    ASSERT_TRUE(destination);
    metadata.addImage(redAndBlue(20, 10), destination.get());
    ASSERT_TRUE(destination->finalize());
    const auto read = KvImageMetadata::withData(destination->data());
    ASSERT_TRUE(read);
    EXPECT_EQ(read->sizeOriented(), (Size{10, 20}));
    EXPECT_EQ(read->software(), "Pelvar 7.1");
    EXPECT_EQ(read->userComment(), "Grüße");
    EXPECT_EQ(read->date(), metadata.date());
    ASSERT_TRUE(read->location());
    EXPECT_NEAR(read->location()->latitude, -33.86, 1e-7);
    EXPECT_NEAR(read->location()->longitude, 151.21, 1e-7);
    // In a file the altitude is positive and the reference says that it is below the sea.
    const Dictionary& gps = *read->properties()->get<Dictionary>("{GPS}");
    EXPECT_EQ(*gps.get<Number>("Altitude"), Number(12.5));
    EXPECT_EQ(*gps.get<Number>("AltitudeRef"), Number(1));
  }
}

TEST(KvImageMetadataAddImageTest, WhatNobodyChangedStaysAndNewPropertiesDropIt) {
  const auto read =
      KvImageMetadata::withData(testing::jpegWithPrivateTag("Camera 1.0", "a private note"));
  ASSERT_TRUE(read);
  ASSERT_EQ(read->software(), "Camera 1.0");
  const auto saved = [](KvImageMetadata metadata) {
    const auto destination = CGImageDestination::createInMemory("public.jpeg", 1);
    metadata.addImage(redAndBlue(16, 16), destination.get());
    EXPECT_TRUE(destination->finalize());
    return destination->data().value();
  };
  KvImageMetadata edited = *read;  // a copy keeps what the file held
  edited.setSoftware("Pelvar");
  EXPECT_TRUE(testing::contains(saved(edited), "a private note"));
  EXPECT_FALSE(testing::contains(saved(edited), "Camera 1.0"));

  edited.setProperties(edited.properties());
  EXPECT_FALSE(testing::contains(saved(edited), "a private note"));
  EXPECT_TRUE(testing::contains(saved(edited), "Pelvar"));
}

}  // namespace
}  // namespace FrameworkUtility
