// Metadata read from files and bytes, and added to them.

#include <framework_utility/imageio/image_metadata.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <framework_utility/platform/imageio/image_destination.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>
#include <tests/imageio/pictures.h>
#include <tests/platform/imageio/metadata/exif_block.h>
#include <tests/support/is_error.h>
#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>

namespace FrameworkUtility {
namespace {

using namespace testing;
using ::testing::HasSubstr;
using ::testing::Not;

TEST(KvImageMetadataReadingTest, EveryFailureHasItsError) {
  const TemporaryFolder folder;
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
  EXPECT_THAT(readUrl(std::nullopt), IsError(KvImageMetadataError::urlIsNil));
  EXPECT_THAT(readUrl(URL::fileURLWithPath(folder.path("missing.jpg"))),
              IsError(KvImageMetadataError::fileDoesNotExist));
  EXPECT_THAT(readUrl(URL::fileURLWithPath(folder.path())),
              IsError(KvImageMetadataError::noImageSource));
  EXPECT_THAT(readData(std::nullopt), IsError(KvImageMetadataError::dataIsNil));
  for (const char* text : {"", "no picture at all"}) {
    EXPECT_THAT(readData(Data(bytesOf(text))),
                IsError("NSTervixKvImageMetadataErrorDomain", 4,
                        "KvImageMetadata: init imageSource: image source status statusUnknownType "
                        "is not complete."));
  }
  const Data jpeg = encoded(redAndBlue(16, 16), "public.jpeg");
  const Error cut = readData(Data(std::span(jpeg).first(30)));
  EXPECT_TRUE(cut.is(KvImageMetadataError::sourceNotComplete));
  EXPECT_EQ(cut.underlyingError()->localizedDescription(), "The file is cut off.");
  Error error;
  EXPECT_FALSE(KvImageMetadata::withImageSource(std::nullopt, &error));
  EXPECT_THAT(error, IsError(KvImageMetadataError::noImageSource));

  // A file is asked for before it is opened.
  writeFile(folder.path("a.jpg"), jpeg);
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
    error = readUrl(URL::fileURLWithPath(folder.path("a.jpg")));
    EXPECT_THAT(error, IsError(code));
    EXPECT_EQ(error.underlyingError(), Error("NSCocoaErrorDomain", 257));
  }
}

TEST(KvImageMetadataAddImageTest, NeedsAnImageADestinationAndAnEntry) {
  auto destination = CGImageDestination::createInMemory("public.jpeg", 1);
  KvImageMetadata metadata;
  metadata.addImage(std::nullopt, destination.get(), 0.5);
  metadata.addImage(redAndBlue(8, 8), nullptr, 0.5);
  metadata.addImage(redAndBlue(8, 8), destination.get());
  EXPECT_EQ(metadata.properties(), Dictionary());
  EXPECT_FALSE(destination->finalize());

  destination = CGImageDestination::createInMemory("public.jpeg", 1);
  metadata.setProperties(std::nullopt);
  metadata.addImage(redAndBlue(8, 8), destination.get(), 0.5);
  EXPECT_TRUE(destination->finalize());
  EXPECT_EQ(metadata.properties(), (Dictionary{{kCGImageDestinationLossyCompressionQuality, 0.5}}));
}

/// The picture as a file with this metadata.
Data saved(KvImageMetadata metadata, const UTType& type = UTTypeJPEG) {
  const auto destination = CGImageDestination::createInMemory(type.identifier(), 1);
  metadata.addImage(redAndBlue(20, 10), destination.get());
  EXPECT_TRUE(destination->finalize());
  return destination->data().value();
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
    const auto read = KvImageMetadata::withData(saved(metadata, type), UTTypeWebP);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->sizeOriented(), (Size{10, 20}));
    EXPECT_EQ(read->software(), "Pelvar 7.1");
    EXPECT_EQ(read->userComment(), "Grüße");
    EXPECT_EQ(read->date(), metadata.date());
    // In a file the altitude is positive and the reference says that it is below the sea.
    EXPECT_EQ(read->location(), (CLLocation{.latitude = -33.86, .longitude = 151.21}));
    EXPECT_EQ(*read->properties()->get<Dictionary>("{GPS}")->get<Number>("AltitudeRef"), Number(1));
  }
}

TEST(KvImageMetadataAddImageTest, WhatNobodyChangedStaysAndNewPropertiesDropIt) {
  TestBlock block;
  block.image = {{0x131, "Camera 1.0"}, {0xC6FE, "a private note"}};
  const ByteVector exif = block.bytes();
  const Data plain = encoded(redAndBlue(16, 16), "public.jpeg");
  detail::ByteWriter file;
  file.put(std::span(plain).first(2)).putNumber(0xFFE1, 2).putNumber(2 + 6 + exif.size(), 2);
  file.put("Exif\0\0"sv).put(exif).put(std::span(plain).subspan(2));
  const auto read = KvImageMetadata::withData(Data(file.takeBytes()));
  ASSERT_TRUE(read);
  ASSERT_EQ(read->software(), "Camera 1.0");

  KvImageMetadata edited = *read;  // a copy keeps what the file held
  edited.setSoftware("Pelvar");
  const auto textOf = [](const Data& data) { return std::string(detail::asText(data)); };
  EXPECT_THAT(textOf(saved(edited)), HasSubstr("a private note"));
  EXPECT_THAT(textOf(saved(edited)), Not(HasSubstr("Camera 1.0")));
  edited.setProperties(edited.properties());
  EXPECT_THAT(textOf(saved(edited)), Not(HasSubstr("a private note")));
  EXPECT_THAT(textOf(saved(edited)), HasSubstr("Pelvar"));
}

}  // namespace
}  // namespace FrameworkUtility
