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

#include <algorithm>
#include <array>
#include <cerrno>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

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
  constexpr std::int64_t farthest = std::numeric_limits<std::int64_t>::max() - 1;
  for (const auto& [offset, count, expected] : {std::tuple{0L, 4, "0123"},
                                                {8, 2, "8923"},
                                                {10, 0, "8923"},
                                                {farthest, 0, "8923"},
                                                {6, 4, "6789"}}) {
    EXPECT_THAT(reader->readAt(offset, bytes, nullptr), Optional(count)) << offset;
    EXPECT_EQ(text, expected) << offset;
  }
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
  ASSERT_TRUE(makeFolder("empty") && makeFolder("full/a") && write("full/a/f", "1"));
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
  EXPECT_TRUE(files().directoryExistsAtPath("/"));
  EXPECT_TRUE(files().contentsOfDirectoryAtPath("//", nullptr));
}

/// What a file manager does to a path.
struct Operation {
  const char* name;
  std::function<bool(FileManager&, const std::string&, Error*)> run;
  std::int64_t missing, badName;  ///< The codes when there is no such path, and can be none.
};

/// All of them but reading from an open file; what needs a second path is given `other`.
std::vector<Operation> allOperations(const std::string& other) {
  using F = FileManager;
  const auto onPath = [](auto call, auto... more) {
    return
        [=](F& f, const std::string& path, Error* e) { return bool((f.*call)(path, more..., e)); };
  };
  const auto put = [](F& f, const std::string& path, Error* e) {
    return f.writeAtomically(bytesOf("x"), path, e);
  };
  const auto folders = IntermediateDirectories::mustExist;
  return {{"attributesOfItemAtPath", onPath(&F::attributesOfItemAtPath), 260, 258},
          {"attributesOfFileSystemForPath", onPath(&F::attributesOfFileSystemForPath), 260, 258},
          {"contentsOfDirectoryAtPath", onPath(&F::contentsOfDirectoryAtPath), 260, 258},
          {"openFileAtPath", onPath(&F::openFileAtPath), 260, 258},
          {"writeAtomically", put, 4, 514},
          {"createDirectoryAtPath", onPath(&F::createDirectoryAtPath, folders), 4, 514},
          {"flushDirectoryAtPath", onPath(&F::flushDirectoryAtPath), 4, 514},
          {"copyItemAtPath", onPath(&F::copyItemAtPath, other), 260, 258},
          {"moveItemAtPath", onPath(&F::moveItemAtPath, other), 4, 514},
          {"removeItemAtPath", onPath(&F::removeItemAtPath), 4, 514},
          {"removeEmptyDirectoryAtPath", onPath(&F::removeEmptyDirectoryAtPath), 4, 514}};
}

TEST_P(FileManagerTest, ReportsThePlatformsCodeThePathAndTheCause) {
  const auto expectRefused = [this](const Operation& operation, const std::string& name,
                                    std::int64_t code, std::int64_t posixCode) {
    SCOPED_TRACE(operation.name + (" of " + name.substr(0, 20)));
    Error error;
    EXPECT_FALSE(operation.run(files(), at(name), &error));
    EXPECT_EQ(error.domain(), NSCocoaErrorDomain);
    EXPECT_EQ(error.code(), code);
    const auto* path = error.userInfo().get<std::string>(NSFilePathErrorKey);
    EXPECT_EQ(path ? *path : "", at(name));
    const Error cause = error.underlyingError().value_or(Error());
    EXPECT_EQ(cause.domain(), NSPOSIXErrorDomain);
    EXPECT_EQ(cause.code(), posixCode);
    EXPECT_FALSE(operation.run(files(), at(name), nullptr));
  };
  ASSERT_TRUE(write("file", "") && makeFolder("folder"));
  auto operations = allOperations(at("new"));
  operations.push_back({"copyTo",
                        [this](FileManager& f, const std::string& path, Error* e) {
                          return f.copyItemAtPath(at("file"), path, e);
                        },
                        4, 514});
  for (const Operation& operation : operations) {
    expectRefused(operation, "none/f", operation.missing, ENOENT);
    expectRefused(operation, std::string(256, 'n'), operation.badName, ENAMETOOLONG);
    expectRefused(operation, "a\0b"s, operation.badName, EILSEQ);
  }
  struct Case {
    std::string_view operation, name;
    std::int64_t code, cause;
  };
  for (const Case& c : {Case{"attributesOfItemAtPath", "file/x", 256, ENOTDIR},
                        {"contentsOfDirectoryAtPath", "file", 256, ENOTDIR},
                        {"openFileAtPath", "folder", 256, EISDIR},
                        {"writeAtomically", "folder", 512, EISDIR},
                        {"writeAtomically", "file/f", 512, ENOTDIR},
                        {"flushDirectoryAtPath", "file", 512, ENOTDIR},
                        {"removeItemAtPath", "file/x", 512, ENOTDIR},
                        {"removeItemAtPath", "folder/.", 512, EINVAL},
                        {"removeItemAtPath", "folder/..", 512, EINVAL}}) {
    const auto found = std::find_if(operations.begin(), operations.end(),
                                    [&](const Operation& o) { return o.name == c.operation; });
    expectRefused(*found, std::string(c.name), c.code, c.cause);
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
  ASSERT_TRUE(inner->writeAtomically(bytesOf("text"), "/f", nullptr));
  std::string asked;
  bool fails = false;
  const auto files = makeFailingFileManager(
      *inner, [&](std::string_view operation, std::string_view path) -> std::optional<Error> {
        asked.append(operation).append(path);
        return fails ? std::optional(Error("Test", 7)) : std::nullopt;
      });
  const auto reader = files->openFileAtPath("/f", nullptr);
  ASSERT_TRUE(reader);
  auto operations = allOperations("/g");
  operations.push_back({"readAt",
                        [&](FileManager&, const std::string&, Error* e) {
                          std::array<std::byte, 4> bytes{};
                          return bool(reader->readAt(0, bytes, e));
                        },
                        0, 0});
  fails = true;
  for (const Operation& operation : operations) {
    SCOPED_TRACE(operation.name);
    Error error;
    asked.clear();
    EXPECT_FALSE(operation.run(*files, "/f", &error));
    EXPECT_EQ(error, Error("Test", 7));
    EXPECT_EQ(asked, operation.name + std::string("/f"));
    EXPECT_FALSE(operation.run(*files, "/f", nullptr));
  }
  EXPECT_THAT(inner->contentsOfDirectoryAtPath("/", nullptr), Optional(UnorderedElementsAre("f")));
}

TEST(ScopedFileManagerTest, PutsAManagerInTheDefaultOnesPlaceAndNests) {
  const auto outer = makeInMemoryFileManager(), inner = makeInMemoryFileManager();
  const ScopedFileManager first(*outer);
  {
    const ScopedFileManager second(*inner);
    EXPECT_EQ(&FileManager::defaultManager(), inner.get());
  }
  EXPECT_EQ(&FileManager::defaultManager(), outer.get());
}

}  // namespace
}  // namespace FrameworkUtility
