#include <framework_utility/imageio/image_writer.h>

#include <framework_utility/imageio/image_metadata.h>
#include <framework_utility/platform/foundation/app/application.h>
#include <framework_utility/platform/foundation/app/temporary_directory.h>
#include <framework_utility/platform/foundation/app/user_defaults.h>
#include <framework_utility/platform/foundation/files/file_error.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>
#include <tests/imageio/pictures.h>
#include <tests/support/is_error.h>
#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>

#include <cmath>
#include <filesystem>

namespace FrameworkUtility {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::MatchesRegex;

class ImageWriterTest : public ::testing::Test {
 protected:
  std::string path(std::string_view name) const { return folder_.path(name); }
  URL url(std::string_view name) const { return URL::fileURLWithPath(path(name)); }
  URL file(std::string_view name, const Data& data) const {
    writeFile(path(name), data);
    return url(name);
  }

  const TemporaryFolder folder_;
  const CGImage image_ = redAndBlue(16, 8);
};

TEST_F(ImageWriterTest, TheTypesExtensionReplacesTheNames) {
  const auto expectWritten = [&](std::string_view name, const std::optional<UTType>& type,
                                 std::string_view written) {
    SCOPED_TRACE(name);
    EXPECT_EQ(writeCGImageToURL(image_, url(name), {.uti = type}), url(written));
    const auto source = CGImageSource::createWithURL(url(written));
    ASSERT_TRUE(source);
    EXPECT_EQ(source->type(), type.value_or(UTTypeJPEG).identifier());
    EXPECT_EQ(source->imageAtIndex(0)->width(), 16u);
  };
  expectWritten("photo.png", UTTypeJPEG, "photo.jpeg");
  expectWritten("photo.jpg", std::nullopt, "photo.jpeg");
  expectWritten("my.photo", UTTypePNG, "my.png");
  expectWritten("v1.2 final", UTTypePNG, "v1.2 final.png");
  expectWritten(".hidden", UTTypePNG, ".hidden.png");
  expectWritten("new/folder/100% #1?.jpg", UTTypeJPEG, "new/folder/100% #1?.jpeg");
}

TEST_F(ImageWriterTest, WhatIsInTheWayIsRemovedAFolderToo) {
  std::filesystem::create_directories(path("a.jpeg/with/content"));
  std::filesystem::create_symlink(path("kept"), path("b.jpeg"));
  writeFile(path("kept"), Data());
  for (const char* name : {"a.jpeg", "b.jpeg"}) {
    EXPECT_TRUE(writeCGImageToURL(image_, url(name), {.uti = UTTypeJPEG}));
    EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(path(name))));
  }
  EXPECT_TRUE(readFile(path("kept")).empty());
}

TEST_F(ImageWriterTest, EveryFailureOfTheCoreHasItsError) {
  writeFile(path("file"), Data());
  writeFile(path("a.jpeg"), Data());
  writeFile(path("a.webp"), Data());
  const auto errorOf = [](const std::optional<CGImage>& image, const URL& url, const UTType& type) {
    Error error;
    EXPECT_FALSE(writeCGImageToURL(image, url, {.uti = type}, &error));
    return error;
  };
  EXPECT_THAT(errorOf(std::nullopt, url("a"), UTTypeJPEG),
              IsError(CGImageWriteToDiskError::imageIsNil));
  EXPECT_THAT(errorOf(image_, url("a"), UTTypeImage),
              IsError(CGImageWriteToDiskError::noExtension));
  EXPECT_THAT(errorOf(image_, URL::withString("https://example.org/a").value(), UTTypeJPEG),
              IsError(CGImageWriteToDiskError::noExtension));
  const Error unfinished = errorOf(image_, url("file/a"), UTTypeJPEG);
  EXPECT_THAT(unfinished, IsError(CGImageWriteToDiskError::finalizeFailed));
  EXPECT_EQ(unfinished.underlyingError()->code(), NSFileWriteUnknownError);
  // A missing image leaves the old file and a missing encoder does not.
  EXPECT_THAT(namesIn(folder_.path()), ElementsAre("a.jpeg", "a.webp", "file"));
  const ErrorCode& code = CGImageWriteToDiskError::noDestination;
  EXPECT_THAT(errorOf(image_, url("a"), UTTypeWebP),
              IsError(std::string(code.domain), code.code,
                      std::string(code.message) + "org.webmproject.webp"));
  EXPECT_THAT(namesIn(folder_.path()), ElementsAre("a.jpeg", "file"));
  const Error tooWide = errorOf(redAndBlue(65'501, 1), url("a"), UTTypeJPEG);
  EXPECT_THAT(tooWide, IsError(CGImageWriteToDiskError::finalizeFailed));
  EXPECT_EQ(tooWide.underlyingError()->localizedDescription(),
            "Maximum supported image dimension is 65500 pixels");
  EXPECT_THAT(namesIn(folder_.path()), ElementsAre("file"));
}

TEST_F(ImageWriterTest, TheQualityStaysInTheCallersMetadata) {
  KvImageMetadata metadata;
  const auto quality = [&] {
    return *metadata.properties()->get<Number>(kCGImageDestinationLossyCompressionQuality);
  };
  ASSERT_TRUE(
      writeCGImageToURL(image_, url("a"), {.metadata = &metadata, .compressionQuality = 0.25}));
  EXPECT_EQ(quality(), Number(0.25));
  ASSERT_TRUE(writeCGImageToURL(image_, url("a"), {.metadata = &metadata}));
  EXPECT_EQ(quality(), Number(0.85));  // replaces what an earlier save left
  ASSERT_FALSE(writeCGImageToURL(
      image_, url("a"), {.metadata = &metadata, .compressionQuality = 0.5, .uti = UTTypeWebP}));
  EXPECT_EQ(quality(), Number(0.85));
}

TEST_F(ImageWriterTest, ThePathFormsAnswerThePathWritten) {
  EXPECT_EQ(writeCGImageToPath(image_, path("a.png")), path("a.jpeg"));
  EXPECT_EQ(writeToPath(UIImage(image_), path("b"), {.uti = UTTypePNG}), path("b.png"));
  EXPECT_EQ(writeJpegToPath(UIImage(image_), path("c"), 0.5), path("c.jpeg"));
  EXPECT_EQ(writeJpegToUrl(UIImage(image_), url("d"), 0.5), url("d.jpeg"));
  EXPECT_EQ(writeToURL(UIImage(image_), url("e")), url("e.jpeg"));
  Error error;
  EXPECT_FALSE(writeCGImageToPath(std::nullopt, "", {}, &error));
  EXPECT_THAT(error, IsError(CGImageWriteToDiskError::imageIsNil));  // asked first
  EXPECT_FALSE(writeCGImageToPath(image_, "", {}, &error));
  EXPECT_THAT(error, IsError(CGImageWriteToDiskError::noPath));
}

TEST_F(ImageWriterTest, EverySessionFileHasAFolderOfItsOwn) {
  const std::string uuid = "[0-9A-F-]{36}", session = temporaryDirectory() + "Writer-1/" + uuid;
  const auto written = [&](std::optional<std::string_view> name) {
    return writeToDiskWithFileName(UIImage(image_), name, "Writer-1", {.uti = UTTypePNG}).value();
  };
  EXPECT_THAT(written("photo.heic").path().value(), MatchesRegex(session + "/photo\\.png"));
  EXPECT_THAT(written(std::nullopt).path().value(), MatchesRegex(session + "/" + uuid + "\\.png"));
  EXPECT_EQ(namesIn(temporaryDirectory() + "Writer-1").size(), 2u);
}

TEST_F(ImageWriterTest, EveryFailureOfTheSessionFormHasItsError) {
  const auto errorOf = [](const std::optional<CGImage>& image, std::string_view name,
                          std::string_view identifier, const std::optional<UTType>& type) {
    Error error;
    EXPECT_FALSE(writeCGImageFileName(image, name, identifier, {.uti = type}, &error));
    return error;
  };
  // The type is asked for first, before the image and before any folder is made.
  EXPECT_THAT(errorOf(std::nullopt, "photo", "Writer-2", std::nullopt),
              IsError(CGImageWriteToDiskError::noTypeForFileName));
  for (const auto& [identifier, name] : {std::pair{"", "photo"},
                                         {"../Writer-2", "photo"},
                                         {"a/../../Writer-2", "photo"},
                                         {"Writer-2", "../../../photo"},
                                         {"Writer-2", ".."}}) {
    EXPECT_THAT(errorOf(image_, name, identifier, UTTypeJPEG),
                IsError(CGImageWriteToDiskError::noFolder))
        << identifier << " " << name;
  }
  EXPECT_THAT(errorOf(std::nullopt, "photo", "Writer-2", UTTypeJPEG),
              IsError(CGImageWriteToDiskError::imageIsNil));
  EXPECT_FALSE(std::filesystem::exists(temporaryDirectory() + "Writer-2"));
}

TEST_F(ImageWriterTest, WithoutAnEncoderHeicBecomesJpeg) {
  if (canCreateHeic()) GTEST_SKIP() << "this machine has the codec module";
  EXPECT_EQ(writeCGImageToURL(image_, url("a.heic"), {.uti = UTTypeHEIC}), url("a.jpeg"));
  EXPECT_EQ(CGImageSource::createWithURL(url("a.jpeg"))->type(), UTTypeJPEG.identifier());
}

TEST_F(ImageWriterTest, AnAnswerAboutHeicFromAnotherTimeDoesNotCount) {
  const auto suite = UserDefaults::withSuiteName(application().groupSuiteName);
  ASSERT_TRUE(suite);
  const bool truth = canCreateHeic();
  EXPECT_EQ(suite->objectForKey("canCreateHeic"), Value(truth));

  // Remembered in the state that the module is in: asked no more.
  suite->setObject(!truth, "canCreateHeic");
  EXPECT_EQ(canCreateHeic(), !truth);
  // Remembered before the module came, went or changed: asked again.
  suite->setObject("another module", "canCreateHeicModule");
  EXPECT_EQ(canCreateHeic(), truth);
  EXPECT_EQ(suite->objectForKey("canCreateHeic"), Value(truth));
  // Not remembered by whom.
  suite->setObject(!truth, "canCreateHeic");
  suite->removeObjectForKey("canCreateHeicModule");
  EXPECT_EQ(canCreateHeic(), truth);
}

TEST_F(ImageWriterTest, AThumbnailIsUprightAndBoundedByTheLargerSide) {
  const Dictionary turned{{"Orientation", 6}};
  const URL turnedFile = file("a", encoded(redAndBlue(200, 100), "public.jpeg", turned));
  const auto sizeFor = [&](Size asked) {
    const std::optional<UIImage> thumbnail = thumbnailForImageAtURL(turnedFile, asked);
    return thumbnail ? thumbnail->size() : Size();
  };
  for (const Size asked : {Size{50, 50}, {1, 50}, {50, -1}}) {
    EXPECT_EQ(sizeFor(asked), (Size{25, 50}));
  }
  for (const Size asked : {Size{0, 0}, {-1, -50}, {NAN, 50}, {50, NAN}}) {
    EXPECT_EQ(sizeFor(asked), Size());
  }
  EXPECT_EQ(thumbnailForImageAtURL(turnedFile, {9, 9})->imageOrientation(), UIImageOrientation::up);
}

TEST_F(ImageWriterTest, AThumbnailNeedsAWholeImageFileWithinTheLimits) {
  const Data jpeg = encoded(redAndBlue(200, 100), "public.jpeg");
  const auto codeFor = [](const URL& image, std::uint64_t mostPixels = 20'000) {
    Error error;
    EXPECT_FALSE(thumbnailForImageAtURL(image, {50, 50}, {.mostPixels = mostPixels}, &error));
    return error.code();
  };
  EXPECT_EQ(codeFor(url("none")), 260);
  EXPECT_EQ(codeFor(file("cut", Data(std::span(jpeg).first(30)))), 259);
  EXPECT_EQ(codeFor(file("whole", jpeg), 19'999), 263);
}

TEST_F(ImageWriterTest, AThumbnailByWayOfTheDiskLeavesNoFile) {
  const UIImage turned(redAndBlue(200, 100), 2, UIImageOrientation::right);
  EXPECT_EQ(thumbnailWrittenOnDiskWithSize(turned, {50, 50}, "Thumbnail-1")->size(),
            (Size{25, 50}));
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(temporaryDirectory() + "Thumbnail-1")) {
    EXPECT_TRUE(entry.is_directory()) << entry.path();
  }
  const auto errorOf = [](const UIImage& image, Size size, std::string_view identifier) {
    Error error;
    EXPECT_FALSE(thumbnailWrittenOnDiskWithSize(image, size, identifier, &error));
    return error;
  };
  EXPECT_TRUE(errorOf(turned, {50, 50}, "").is(CGImageWriteToDiskError::noFolder));
  EXPECT_TRUE(errorOf(UIImage::withoutBitmap({5, 5}), {50, 50}, "T")
                  .is(CGImageWriteToDiskError::imageIsNil));
  EXPECT_EQ(errorOf(turned, {0, 0}, "T").localizedDescription(),
            "A thumbnail needs a side above 0.");
}

}  // namespace
}  // namespace FrameworkUtility
