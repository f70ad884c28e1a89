// One contract, three forms: most tests here run with the system's file manager, with the one in
// memory, and with a failing one that never fails.

#include <framework_utility/platform/foundation/files/file_error.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/foundation/values/data.h>
#include <framework_utility/platform/foundation/values/value.h>
#include <tests/support/files.h>
#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <functional>
#include <initializer_list>
#include <limits>
#include <memory>
#include <utility>

namespace FrameworkUtility {
namespace {

using namespace std::string_literals;
using testing::bytesOf;
using ::testing::IsEmpty;
using ::testing::Optional;
using ::testing::UnorderedElementsAre;

enum class Form { real, memory, failing };

class FileManagerTest : public ::testing::TestWithParam<Form> {
 protected:
  FileManagerTest() {
    if (GetParam() == Form::memory) {
      own_ = makeInMemoryFileManager();
      root = "/a/folder";
      own_->createDirectoryAtPath(root, IntermediateDirectories::create, nullptr);
    } else {
      root = folder_.path();
    }
    if (GetParam() == Form::failing) {
      own_ = makeFailingFileManager(FileManager::defaultManager(),
                                    [](auto, auto) { return std::nullopt; });
    }
  }

  std::string at(std::string_view name) const { return root + "/" + std::string(name); }
  bool write(std::string_view name, std::string_view text, Error* error = nullptr) {
    return files().writeAtomically(bytesOf(text), at(name), error);
  }
  bool makeFolder(std::string_view name) {
    return files().createDirectoryAtPath(at(name), IntermediateDirectories::create, nullptr);
  }
  std::optional<std::string> contents(std::string_view name) {
    return testing::contentsOf(files(), at(name));
  }
  FileManager& files() { return own_ ? *own_ : FileManager::defaultManager(); }

  std::string root;

 private:
  testing::TemporaryFolder folder_;
  std::unique_ptr<FileManager> own_;
};

std::string nameOf(const ::testing::TestParamInfo<Form>& form) {
  return form.param == Form::real ? "Real" : form.param == Form::memory ? "Memory" : "Failing";
}

INSTANTIATE_TEST_SUITE_P(Forms, FileManagerTest,
                         ::testing::Values(Form::real, Form::memory, Form::failing), nameOf);

TEST_P(FileManagerTest, WritesReadsReplacesAndRemovesAFile) {
  const ScopedFileManager scope(files());
  EXPECT_FALSE(files().fileExistsAtPath(at("a#b?.jpg")));
  Error missing;
  EXPECT_FALSE(files().contentsAtPath(at("a#b?.jpg"), &missing));
  EXPECT_EQ(missing.code(), NSFileReadNoSuchFileError);
  for (const std::string& text : {"one"s, ""s, std::string(1 << 20, 'x') + '\0', "four"s}) {
    ASSERT_TRUE(write("a#b?.jpg", text));
    EXPECT_EQ(contents("a#b?.jpg"), text);
    EXPECT_EQ(files().contentsAtPath(at("a#b?.jpg")), Data(bytesOf(text)));
    const auto attributes = files().attributesOfItemAtPath(at("a#b?.jpg"), nullptr);
    ASSERT_TRUE(attributes);
    EXPECT_EQ(attributes->kind, FileKind::file);
    EXPECT_EQ(attributes->size, static_cast<std::int64_t>(text.size()));
    EXPECT_GT(attributes->modificationDate, Date());
  }
  EXPECT_THAT(files().contentsOfDirectoryAtPath(root, nullptr),
              Optional(UnorderedElementsAre("a#b?.jpg")));
  EXPECT_TRUE(files().removeItemAtPath(at("a#b?.jpg"), nullptr));
  EXPECT_THAT(files().contentsOfDirectoryAtPath(root, nullptr), Optional(IsEmpty()));
}

TEST_P(FileManagerTest, ReadsAnyPartOfAFileAsItWasWhenItWasOpened) {
  ASSERT_TRUE(write("f", "0123456789"));
  const auto reader = files().openFileAtPath(at("f"), nullptr);
  ASSERT_TRUE(reader);
  ASSERT_TRUE(write("f", "other"));
  EXPECT_EQ(reader->size(), 10);
  std::string text(4, '-');
  const auto bytes = std::as_writable_bytes(std::span(text));
  for (const auto& [offset, count, expected] : {std::tuple{0, 4, "0123"},
                                                {8, 2, "8923"},
                                                {10, 0, "8923"},
                                                {1'000'000, 0, "8923"},
                                                {6, 4, "6789"}}) {
    EXPECT_THAT(reader->readAt(offset, bytes, nullptr), Optional(count)) << offset;
    EXPECT_EQ(text, expected) << offset;
  }
  EXPECT_THAT(reader->readAt(std::numeric_limits<std::int64_t>::max() - 1, bytes, nullptr),
              Optional(0));
  Error error;
  EXPECT_FALSE(reader->readAt(-1, bytes, &error));
  EXPECT_EQ(error.code(), NSFileReadUnknownError);
}

TEST_P(FileManagerTest, ListsOneLevelWithHiddenEntriesAndNoTemporaryOnes) {
  ASSERT_TRUE(write("photo.jpg", "1") && write(".hidden", "2") && makeFolder("sub/inner"));
  ASSERT_TRUE(write("sub/deep.jpg", "3") && write("sub.txt", "4"));
  EXPECT_THAT(files().contentsOfDirectoryAtPath(root + "//", nullptr),
              Optional(UnorderedElementsAre("photo.jpg", ".hidden", "sub", "sub.txt")));
  EXPECT_THAT(files().contentsOfDirectoryAtPath(at("sub/../sub/./"), nullptr),
              Optional(UnorderedElementsAre("inner", "deep.jpg")));
}

TEST_P(FileManagerTest, CopiesAndMovesWholeFoldersAndNeverOntoAnything) {
  ASSERT_TRUE(makeFolder("from/inner/empty"));
  ASSERT_TRUE(write("from/inner/f", "text") && write("from.txt", "beside") && write("taken", "t"));
  const auto date = files().attributesOfItemAtPath(at("from/inner/f"), nullptr)->modificationDate;

  ASSERT_TRUE(files().copyItemAtPath(at("from"), at("copy/"), nullptr));
  EXPECT_EQ(contents("copy/inner/f"), "text");
  EXPECT_EQ(files().attributesOfItemAtPath(at("copy/inner/f"), nullptr)->modificationDate, date);
  EXPECT_TRUE(files().directoryExistsAtPath(at("copy/inner/empty")));
  EXPECT_EQ(contents("from/inner/f"), "text");

  ASSERT_TRUE(files().moveItemAtPath(at("copy"), at("moved"), nullptr));
  EXPECT_EQ(contents("moved/inner/f"), "text");
  EXPECT_FALSE(files().fileExistsAtPath(at("copy")));
  ASSERT_TRUE(files().copyItemAtPath(at("from/inner/f"), at("g"), nullptr));
  EXPECT_EQ(contents("g"), "text");

  for (const char* target : {"taken", "moved", "from"}) {
    for (const char* source : {"from", "g"}) {
      Error error;
      EXPECT_FALSE(files().copyItemAtPath(at(source), at(target), &error));
      EXPECT_EQ(error.code(), NSFileWriteFileExistsError) << source << ' ' << target;
      EXPECT_FALSE(files().moveItemAtPath(at(source), at(target), &error));
      EXPECT_EQ(error.code(), NSFileWriteFileExistsError) << source << ' ' << target;
    }
  }
  Error error;
  EXPECT_FALSE(files().copyItemAtPath(at("from"), at("from/inner/self"), &error));
  EXPECT_EQ(error.code(), NSFileWriteUnknownError);
  EXPECT_FALSE(files().moveItemAtPath(at("from"), at("from/inner/self"), &error));
  EXPECT_THAT(files().contentsOfDirectoryAtPath(at("from/inner"), nullptr),
              Optional(UnorderedElementsAre("f", "empty")));
  EXPECT_EQ(contents("taken"), "t");
  EXPECT_EQ(contents("from.txt"), "beside");
}

TEST_P(FileManagerTest, RemovesAFolderWithAllInItOrOnlyWhenItIsEmpty) {
  ASSERT_TRUE(makeFolder("full/a/b") && makeFolder("empty") && write("full/a/f", "1"));
  ASSERT_TRUE(write("full.txt", "2"));
  Error error;
  EXPECT_FALSE(files().removeEmptyDirectoryAtPath(at("full"), &error));
  EXPECT_EQ(error.code(), NSFileWriteUnknownError);
  EXPECT_EQ(contents("full/a/f"), "1");
  EXPECT_FALSE(files().removeEmptyDirectoryAtPath(at("full.txt"), nullptr));
  EXPECT_TRUE(files().removeEmptyDirectoryAtPath(at("empty"), nullptr));
  EXPECT_TRUE(files().removeItemAtPath(at("full/"), nullptr));
  EXPECT_THAT(files().contentsOfDirectoryAtPath(root, nullptr),
              Optional(UnorderedElementsAre("full.txt")));
}

TEST_P(FileManagerTest, MakesFoldersWithAndWithoutThoseAbove) {
  const auto make = [this](std::string_view name, IntermediateDirectories intermediates) {
    Error error;
    return files().createDirectoryAtPath(at(name), intermediates, &error) ? 0 : error.code();
  };
  ASSERT_TRUE(write("file", ""));
  EXPECT_EQ(make("a/b", IntermediateDirectories::mustExist), NSFileNoSuchFileError);
  EXPECT_EQ(make("a/b/c", IntermediateDirectories::create), 0);
  EXPECT_EQ(make("a/b", IntermediateDirectories::create), 0);
  EXPECT_EQ(make("a/b", IntermediateDirectories::mustExist), NSFileWriteFileExistsError);
  EXPECT_EQ(make("a/d", IntermediateDirectories::mustExist), 0);
  EXPECT_EQ(make("file", IntermediateDirectories::create), NSFileWriteFileExistsError);
  EXPECT_EQ(make("file/a/b", IntermediateDirectories::create), NSFileWriteUnknownError);
  EXPECT_TRUE(files().flushDirectoryAtPath(at("a/b"), nullptr));
  EXPECT_TRUE(files().directoryExistsAtPath(at("a/b/c")));
  EXPECT_FALSE(files().directoryExistsAtPath(at("file")));
}

TEST_P(FileManagerTest, ReportsThePlatformsCodeThePathAndTheCause) {
  using F = FileManager;
  using Operation = std::function<bool(F&, const std::string&, Error*)>;
  const auto onPath = [](auto call, auto... more) -> Operation {
    return
        [=](F& f, const std::string& path, Error* e) { return bool((f.*call)(path, more..., e)); };
  };
  const Operation attributes = onPath(&F::attributesOfItemAtPath);
  const Operation volume = onPath(&F::attributesOfFileSystemForPath);
  const Operation list = onPath(&F::contentsOfDirectoryAtPath);
  const Operation open = onPath(&F::openFileAtPath);
  const Operation makeFolders = onPath(&F::createDirectoryAtPath, IntermediateDirectories::create);
  const Operation flush = onPath(&F::flushDirectoryAtPath);
  const Operation copy = onPath(&F::copyItemAtPath, at("new"));
  const Operation move = onPath(&F::moveItemAtPath, at("new"));
  const Operation remove = onPath(&F::removeItemAtPath);
  const Operation removeEmpty = onPath(&F::removeEmptyDirectoryAtPath);
  const Operation put = [](F& f, const std::string& path, Error* e) {
    return f.writeAtomically(bytesOf("x"), path, e);
  };
  const Operation copyTo = [this](F& f, const std::string& path, Error* e) {
    return f.copyItemAtPath(at("file"), path, e);
  };
  ASSERT_TRUE(write("file", "") && makeFolder("folder"));
  const std::string longName(256, 'n'), withNul = "a\0b"s;
  struct Case {
    const char* operation;
    Operation run;
    std::string name;
    std::int64_t code, cause;
  };
  for (const Case& c : {Case{"attributes", attributes, "none", NSFileReadNoSuchFileError, ENOENT},
                        {"attributes", attributes, longName, 258, ENAMETOOLONG},
                        {"attributes", attributes, withNul, 258, EILSEQ},
                        {"attributes", attributes, "file/x", 256, ENOTDIR},
                        {"volume", volume, "none", 260, ENOENT},
                        {"volume", volume, withNul, 258, EILSEQ},
                        {"list", list, "none", 260, ENOENT},
                        {"list", list, "file", 256, ENOTDIR},
                        {"list", list, withNul, 258, EILSEQ},
                        {"open", open, "none", 260, ENOENT},
                        {"open", open, "folder", 256, EISDIR},
                        {"open", open, withNul, 258, EILSEQ},
                        {"put", put, "none/f", 4, ENOENT},
                        {"put", put, "folder", 512, EISDIR},
                        {"put", put, "file/f", 512, ENOTDIR},
                        {"put", put, longName, 514, ENAMETOOLONG},
                        {"put", put, withNul, 514, EILSEQ},
                        {"makeFolders", makeFolders, withNul, 514, EILSEQ},
                        {"makeFolders", makeFolders, longName + "/a", 514, ENAMETOOLONG},
                        {"flush", flush, "none", 4, ENOENT},
                        {"flush", flush, "file", 512, ENOTDIR},
                        {"flush", flush, withNul, 514, EILSEQ},
                        {"copy", copy, "none", 260, ENOENT},
                        {"copy", copy, withNul, 258, EILSEQ},
                        {"copyTo", copyTo, "none/f", 4, ENOENT},
                        {"copyTo", copyTo, longName, 514, ENAMETOOLONG},
                        {"copyTo", copyTo, withNul, 514, EILSEQ},
                        {"move", move, "none", 4, ENOENT},
                        {"move", move, withNul, 514, EILSEQ},
                        {"remove", remove, "none", 4, ENOENT},
                        {"remove", remove, "file/x", 512, ENOTDIR},
                        {"remove", remove, withNul, 514, EILSEQ},
                        {"remove", remove, "folder/.", 512, EINVAL},
                        {"remove", remove, "folder/..", 512, EINVAL},
                        {"removeEmpty", removeEmpty, "none", 4, ENOENT},
                        {"removeEmpty", removeEmpty, withNul, 514, EILSEQ}}) {
    SCOPED_TRACE(c.operation + (" of " + c.name.substr(0, 20)));
    Error error;
    EXPECT_FALSE(c.run(files(), at(c.name), &error));
    EXPECT_EQ(error.domain(), NSCocoaErrorDomain);
    EXPECT_EQ(error.code(), c.code);
    const auto* path = error.userInfo().get<std::string>(NSFilePathErrorKey);
    ASSERT_TRUE(path);
    EXPECT_EQ(*path, at(c.name));
    const auto cause = error.underlyingError();
    ASSERT_TRUE(cause);
    EXPECT_EQ(cause->domain(), NSPOSIXErrorDomain);
    EXPECT_EQ(cause->code(), c.cause);
    EXPECT_FALSE(c.run(files(), at(c.name), nullptr));
  }
  // A fault here must not cost the machine that runs this its files.
  EXPECT_FALSE(GetParam() == Form::memory && files().removeItemAtPath("/", nullptr));
  EXPECT_FALSE(files().removeItemAtPath("", nullptr));
  EXPECT_FALSE(files().writeAtomically(bytesOf("x"), "", nullptr));
  EXPECT_THAT(files().contentsOfDirectoryAtPath(root, nullptr),
              Optional(UnorderedElementsAre("file", "folder")));
}

TEST_P(FileManagerTest, KnowsHowMuchRoomThereIs) {
  const auto volume = files().attributesOfFileSystemForPath(root, nullptr);
  ASSERT_TRUE(volume);
  EXPECT_GT(volume->totalSize, 0);
  EXPECT_GE(volume->freeSize, 0);
  EXPECT_LE(volume->freeSize, volume->totalSize);
}

TEST(FailingFileManagerTest, EachCallCanFailAndTheInnerManagerNeverHearsOfIt) {
  const auto inner = makeInMemoryFileManager();
  const auto folders = IntermediateDirectories::create;
  ASSERT_TRUE(inner->writeAtomically(bytesOf("text"), "/f", nullptr));
  ASSERT_TRUE(inner->createDirectoryAtPath("/d", folders, nullptr));
  std::string asked;
  bool fails = false;
  const auto f = makeFailingFileManager(
      *inner, [&](std::string_view operation, std::string_view path) -> std::optional<Error> {
        asked.append(operation).append(path);
        return fails ? std::optional(Error("Test", 7)) : std::nullopt;
      });
  const auto reader = f->openFileAtPath("/f", nullptr);
  ASSERT_TRUE(reader);
  fails = true;
  std::array<std::byte, 4> bytes{};
  using Call = std::function<bool(Error*)>;
  for (const auto& [name, call] : std::initializer_list<std::pair<const char*, Call>>{
           {"createDirectoryAtPath/e",
            [&](Error* e) { return f->createDirectoryAtPath("/e", folders, e); }},
           {"writeAtomically/g", [&](Error* e) { return f->writeAtomically(bytes, "/g", e); }},
           {"attributesOfItemAtPath/f",
            [&](Error* e) { return bool(f->attributesOfItemAtPath("/f", e)); }},
           {"attributesOfFileSystemForPath/f",
            [&](Error* e) { return bool(f->attributesOfFileSystemForPath("/f", e)); }},
           {"contentsOfDirectoryAtPath/d",
            [&](Error* e) { return bool(f->contentsOfDirectoryAtPath("/d", e)); }},
           {"openFileAtPath/f", [&](Error* e) { return bool(f->openFileAtPath("/f", e)); }},
           {"readAt/f", [&](Error* e) { return bool(reader->readAt(0, bytes, e)); }},
           {"flushDirectoryAtPath/d", [&](Error* e) { return f->flushDirectoryAtPath("/d", e); }},
           {"copyItemAtPath/f", [&](Error* e) { return f->copyItemAtPath("/f", "/g", e); }},
           {"moveItemAtPath/f", [&](Error* e) { return f->moveItemAtPath("/f", "/g", e); }},
           {"removeItemAtPath/f", [&](Error* e) { return f->removeItemAtPath("/f", e); }},
           {"removeEmptyDirectoryAtPath/d",
            [&](Error* e) { return f->removeEmptyDirectoryAtPath("/d", e); }}}) {
    Error error;
    asked.clear();
    EXPECT_FALSE(call(&error)) << name;
    EXPECT_EQ(error, Error("Test", 7)) << name;
    EXPECT_EQ(asked, name);
    EXPECT_FALSE(call(nullptr)) << name;
  }
  EXPECT_THAT(inner->contentsOfDirectoryAtPath("/", nullptr),
              Optional(UnorderedElementsAre("f", "d")));
}

TEST(ScopedFileManagerTest, PutsAManagerInTheDefaultOnesPlaceAndNests) {
  FileManager& system = FileManager::defaultManager();
  const auto outer = makeInMemoryFileManager(), inner = makeInMemoryFileManager();
  {
    const ScopedFileManager first(*outer);
    {
      const ScopedFileManager second(*inner);
      EXPECT_EQ(&FileManager::defaultManager(), inner.get());
    }
    EXPECT_EQ(&FileManager::defaultManager(), outer.get());
  }
  EXPECT_EQ(&FileManager::defaultManager(), &system);
}

}  // namespace
}  // namespace FrameworkUtility
