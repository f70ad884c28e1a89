#include <framework_utility/imageio/image_writer.h>

#include <framework_utility/imageio/image_metadata.h>
#include <framework_utility/platform/foundation/app/application.h>
#include <framework_utility/platform/foundation/app/user_defaults.h>
#include <framework_utility/platform/foundation/files/file_error.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/imageio/metadata/property_keys.h>
#include <tests/imageio/pictures.h>
#include <tests/support/is_error.h>
#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace FrameworkUtility {
namespace {

using testing::IsError;
using ::testing::MatchesRegex;
using testing::redAndBlue;

class ImageWriterTest : public ::testing::Test {
 protected:
  std::string path(std::string_view name) const { return folder_.path(name); }
  URL url(std::string_view name) const { return URL::fileURLWithPath(path(name)); }

  const testing::TemporaryFolder folder_;
  const CGImage image_ = redAndBlue(16, 8);
};

TEST_F(ImageWriterTest, TheTypesExtensionReplacesTheNames) {
  struct Case {
    std::string_view name;
    std::optional<UTType> type;
    std::string_view written, identifier;
  };
  for (const Case& c :
       {Case{"photo.png", UTTypeJPEG, "photo.jpeg", "public.jpeg"},
        Case{"photo.jpg", std::nullopt, "photo.jpeg", "public.jpeg"},
        Case{"my.photo", UTTypePNG, "my.png", "public.png"},
        Case{"v1.2 final", UTTypePNG, "v1.2 final.png", "public.png"},
        Case{".hidden", UTTypePNG, ".hidden.png", "public.png"},
        Case{"new/folder/100% #1?.jpg", UTTypeJPEG, "new/folder/100% #1?.jpeg", "public.jpeg"}}) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(writeCGImageToURL(image_, url(c.name), {.uti = c.type}), url(c.written));
    const auto source = CGImageSource::createWithURL(url(c.written));
    ASSERT_TRUE(source);
    EXPECT_EQ(source->type(), c.identifier);
    EXPECT_EQ(source->imageAtIndex(0)->width(), 16u);
  }
}

TEST_F(ImageWriterTest, WhatIsInTheWayIsRemovedAFolderToo) {
  std::filesystem::create_directories(path("a.jpeg/with/content"));
  std::filesystem::create_symlink(path("kept"), path("b.jpeg"));
  testing::writeFile(path("kept"), Data());
  for (const char* name : {"a.jpeg", "b.jpeg"}) {
    EXPECT_TRUE(writeCGImageToURL(image_, url(name), {.uti = UTTypeJPEG}));
    EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(path(name))));
  }
  EXPECT_TRUE(testing::readFile(path("kept")).empty());
}

TEST_F(ImageWriterTest, EveryFailureOfTheCoreHasItsError) {
  testing::writeFile(path("file"), Data());
  struct Case {
    std::optional<CGImage> image;
    URL url;
    UTType type;
    ErrorCode code;
    std::string more = "";
    std::string cause = Error().localizedDescription();
  };
  for (const Case& c :
       {Case{std::nullopt, url("a.jpeg"), UTTypeImage, CGImageWriteToDiskError::imageIsNil},
        Case{image_, url("a.jpeg"), UTTypeImage, CGImageWriteToDiskError::noExtension},
        Case{image_, URL::withString("https://example.org/a.jpeg").value(), UTTypeJPEG,
             CGImageWriteToDiskError::noExtension},
        Case{image_, url("a.jpeg"), UTTypeWebP, CGImageWriteToDiskError::noDestination,
             "org.webmproject.webp"},
        Case{image_, url("file/a.jpeg"), UTTypeJPEG, CGImageWriteToDiskError::finalizeFailed, "",
             Error("NSCocoaErrorDomain", NSFileWriteUnknownError).localizedDescription()},
        Case{redAndBlue(65'501, 1), url("a.jpeg"), UTTypeJPEG,
             CGImageWriteToDiskError::finalizeFailed, "",
             "Maximum supported image dimension is 65500 pixels"}}) {
    SCOPED_TRACE(c.code.message);
    Error error;
    EXPECT_FALSE(writeCGImageToURL(c.image, c.url, {.uti = c.type}, &error));
    EXPECT_THAT(error, IsError(std::string(c.code.domain), c.code.code,
                               std::string(c.code.message) + c.more));
    const Error cause = error.underlyingError().value_or(Error());
    EXPECT_EQ(cause.localizedDescription(), c.cause);
  }
  EXPECT_EQ(testing::namesIn(folder_.path()), std::vector<std::string>{"file"});
}

TEST_F(ImageWriterTest, AMissingImageLeavesTheOldFileAndAMissingEncoderDoesNot) {
  testing::writeFile(path("a.jpeg"), Data());
  testing::writeFile(path("a.webp"), Data());
  EXPECT_FALSE(writeCGImageToURL(std::nullopt, url("a.jpeg")));
  EXPECT_FALSE(writeCGImageToURL(image_, url("a.webp"), {.uti = UTTypeWebP}));
  EXPECT_EQ(testing::namesIn(folder_.path()), std::vector<std::string>{"a.jpeg"});
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
  EXPECT_FALSE(writeToPath(UIImage::withoutBitmap({5, 5}), path("f"), {}, &error));
  EXPECT_THAT(error, IsError(CGImageWriteToDiskError::imageIsNil));
}

TEST_F(ImageWriterTest, EverySessionFileHasAFolderOfItsOwn) {
  const std::string session = temporaryDirectory() + "Writer-1/";
  for (const auto& [name, expected] :
       {std::pair{std::optional<std::string_view>("photo.heic"), "photo.png"},
        {std::nullopt, "[0-9A-F-]{36}\\.png"}}) {
    const std::optional<URL> written =
        writeToDiskWithFileName(UIImage(image_), name, "Writer-1", {.uti = UTTypePNG});
    ASSERT_TRUE(written);
    const std::string written_path = written->path().value();
    ASSERT_TRUE(written_path.starts_with(session)) << written_path;
    EXPECT_THAT(written_path.substr(session.size()),
                MatchesRegex(std::string("[0-9A-F-]{36}/") + expected));
    EXPECT_TRUE(std::filesystem::exists(written_path));
  }
}

TEST_F(ImageWriterTest, EveryFailureOfTheSessionFormHasItsError) {
  Error error;
  // The type is asked for first, before the image and before any folder is made.
  EXPECT_FALSE(writeCGImageFileName(std::nullopt, "photo", "Writer-2", {}, &error));
  EXPECT_THAT(error, IsError(CGImageWriteToDiskError::noTypeForFileName));
  EXPECT_FALSE(std::filesystem::exists(temporaryDirectory() + "Writer-2"));

  for (const auto& [identifier, name] : {std::pair{"", "photo"},
                                         {"../Writer-2", "photo"},
                                         {"a/../../Writer-2", "photo"},
                                         {"Writer-2", "../../../photo"},
                                         {"Writer-2", ".."}}) {
    SCOPED_TRACE(std::string(identifier) + " " + name);
    EXPECT_FALSE(writeCGImageFileName(image_, name, identifier, {.uti = UTTypeJPEG}, &error));
    EXPECT_THAT(error, IsError(CGImageWriteToDiskError::noFolder));
  }
  EXPECT_FALSE(std::filesystem::exists(temporaryDirectory() + "Writer-2"));

  EXPECT_FALSE(
      writeCGImageFileName(std::nullopt, "photo", "Writer-2", {.uti = UTTypeJPEG}, &error));
  EXPECT_THAT(error, IsError(CGImageWriteToDiskError::imageIsNil));
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

}  // namespace
}  // namespace FrameworkUtility
