#include <framework_utility/files/file_utility.h>

#include <framework_utility/errors/error_factory.h>
#include <framework_utility/platform/foundation/files/file_error.h>
#include <tests/support/files.h>
#include <tests/support/is_error.h>
#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <set>
#include <sstream>
#include <utility>

namespace FrameworkUtility {
namespace {

using testing::bytesOf;
using testing::contentsOf;
using testing::IsError;
using ::testing::Optional;
using ::testing::UnorderedElementsAre;

const URL noPath = *URL::withString("mailto:somebody");

class FileUtilityTest : public ::testing::Test {
 protected:
  // Files in folders that are made as well; a name that ends in a slash is a folder.
  void make(std::initializer_list<std::string_view> names) {
    for (const std::string_view name : names) {
      const bool isFolder = name.ends_with('/');
      const std::string path = folder.path(name);
      std::filesystem::create_directories(isFolder ? path : path.substr(0, path.rfind('/')));
      EXPECT_TRUE(isFolder || files.writeAtomically(bytesOf(name), path, nullptr));
    }
  }
  // All that there is, as relative paths.
  std::set<std::string> tree() {
    std::set<std::string> all;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.path())) {
      all.insert(std::filesystem::relative(entry.path(), folder.path()).string());
    }
    return all;
  }
  std::string at(std::string_view name) const { return folder.path(name); }
  URL url(std::string_view name) const { return URL::fileURLWithPath(at(name)); }
  URL folderUrl() const { return URL::fileURLWithPath(folder.path()); }

  testing::TemporaryFolder folder;
  FileManager& files = FileManager::defaultManager();
};

TEST_F(FileUtilityTest, ExistenceAndCountsByPathAndByURL) {
  make({"a/1", "a/.2", "a/b/3", "empty/", "a#b?%20.jpg"});
  EXPECT_TRUE(fileExistsAtUrl(files, url("a#b?%20.jpg")));
  EXPECT_TRUE(fileExistsAtUrl(files, url("a")));
  EXPECT_FALSE(fileExistsAtUrl(files, url("none")));
  EXPECT_FALSE(fileExistsAtUrl(files, noPath));
  // What cannot be listed counts as empty.
  for (const auto& [name, count] : {std::pair{"a", 3U}, {"empty", 0U}, {"none", 0U}, {"a/1", 0U}}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(numberOfItemsInFolderAtPath(files, at(name)), count);
    EXPECT_EQ(numberOfItemsInFolderAtURL(files, url(name)), count);
    EXPECT_EQ(isFolderEmptyAtPath(files, at(name)), count == 0);
    EXPECT_EQ(isFolderEmptyAtURL(files, url(name)), count == 0);
  }
  EXPECT_TRUE(isFolderEmptyAtURL(files, noPath));
}

TEST_F(FileUtilityTest, RemovesAFolderOnlyWhenItIsEmpty) {
  for (const auto& [removed, left] :
       {std::pair{"empty", ""},
        {"empty/gone.jpg", ""},    // the path of a vanished file
        {"empty/gone", "empty"},   // not one
        {"empty/.gone", "empty"},  // nor one: a hidden name has no extension
        {"none/gone.jpg", "empty"},
        {"", "empty"}}) {
    SCOPED_TRACE(removed);
    make({"full/f.jpg", "empty/"});
    std::set<std::string> expected{"full", "full/f.jpg"};
    if (*left) expected.insert(left);

    removeFolderIfEmptyAtPath(files, *removed ? at(removed) : "");
    EXPECT_EQ(tree(), expected);
    make({"empty/"});
    removeFolderIfEmptyAtURL(files, *removed ? url(removed) : noPath);
    EXPECT_EQ(tree(), expected);
    for (const char* name : {"full", "full/f.jpg", "full/gone.jpg"}) {
      removeFolderIfEmptyAtPath(files, at(name));
    }
    EXPECT_EQ(tree(), expected);
  }
}

TEST_F(FileUtilityTest, RemovesTheParentFolderWhenItIsEmpty) {
  make({"full/f.jpg", "one/", "two/"});
  removeParentFolderIfEmptyAtPath(files, at("one/anything"));
  removeParentFolderIfEmptyAtURL(files, url("two/x.jpg"));
  removeParentFolderIfEmptyAtPath(files, at("full/f.jpg"));
  removeParentFolderIfEmptyAtPath(files, "");
  removeParentFolderIfEmptyAtURL(files, noPath);
  EXPECT_EQ(tree(), (std::set<std::string>{"full", "full/f.jpg"}));
}

TEST_F(FileUtilityTest, AnUnlistableFolderIsNotTakenForAnEmptyOne) {
  const auto memory = makeInMemoryFileManager();
  memory->createDirectoryAtPath("/full", IntermediateDirectories::create, nullptr);
  memory->writeAtomically(bytesOf("x"), "/full/f", nullptr);
  const auto unlistable =
      makeFailingFileManager(*memory, [](std::string_view operation, auto) -> std::optional<Error> {
        if (operation != "contentsOfDirectoryAtPath") return std::nullopt;
        return Error(NSCocoaErrorDomain, NSFileReadNoPermissionError);
      });
  EXPECT_TRUE(isFolderEmptyAtPath(*unlistable, "/full"));
  removeFolderIfEmptyAtPath(*unlistable, "/full");
  EXPECT_TRUE(memory->fileExistsAtPath("/full/f"));
}

TEST_F(FileUtilityTest, EmptiesAFolderAndFollowsNoLink) {
  make({"kept/f", "full/a/b/c", "full/.hidden", "full/d"});
  std::filesystem::create_symlink(at("kept"), at("full/link"));
  deleteContentOfFolderAtPath(files, at("full"));
  EXPECT_EQ(tree(), (std::set<std::string>{"kept", "kept/f", "full"}));
  make({"full/e/f"});
  deleteContentOfFolderAtURL(files, url("full"));
  deleteContentOfFolderAtPath(files, at("kept/f"));
  deleteContentOfFolderAtPath(files, "");
  deleteContentOfFolderAtURL(files, noPath);
  EXPECT_EQ(tree(), (std::set<std::string>{"kept", "kept/f", "full"}));
}

TEST_F(FileUtilityTest, OneRefusalDoesNotEndTheWalk) {
  make({"full/a", "full/b", "full/c", "to/"});
  const auto refusing = makeFailingFileManager(
      files, [](std::string_view operation, std::string_view path) -> std::optional<Error> {
        const bool changes = operation == "removeItemAtPath" || operation == "moveItemAtPath";
        if (!changes || !path.ends_with("/b")) return std::nullopt;
        return Error(NSCocoaErrorDomain, NSFileWriteNoPermissionError);
      });
  moveContentOfFolderPath(*refusing, at("full"), at("to"));
  EXPECT_EQ(tree(), (std::set<std::string>{"full", "full/b", "to", "to/a", "to/c"}));
  make({"to/b"});
  deleteContentOfFolderAtPath(*refusing, at("to"));
  EXPECT_EQ(tree(), (std::set<std::string>{"full", "full/b", "to", "to/b"}));
}

TEST_F(FileUtilityTest, DeletesTheFolderOfAFileAndNothingForABareName) {
  make({"one/f", "one/g/h", "two/f", "kept/f"});
  deleteFolderThatContainsFileAtPath(files, at("one/f"));
  deleteFolderThatContainsFileAtUrl(files, url("two/gone"));
  EXPECT_EQ(tree(), (std::set<std::string>{"kept", "kept/f"}));

  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(at("kept"));
  for (const char* path : {"f", "./f", "../f", ""}) deleteFolderThatContainsFileAtPath(files, path);
  std::filesystem::current_path(before);
  deleteFolderThatContainsFileAtUrl(files, noPath);
  EXPECT_EQ(tree(), (std::set<std::string>{"kept", "kept/f"}));

  // Not with the real root.
  const auto memory = makeInMemoryFileManager();
  ASSERT_TRUE(memory->writeAtomically(bytesOf("x"), "/f", nullptr));
  deleteFolderThatContainsFileAtPath(*memory, "/f");
  EXPECT_TRUE(memory->fileExistsAtPath("/f"));
}

TEST_F(FileUtilityTest, MovesWhatIsInAFolderAndLeavesWhatIsTakenOnBothSides) {
  make({"from/a", "from/b/c", "from/taken", "to/taken", "to/d"});
  moveContentOfFolderPath(files, at("from"), at("to"));
  EXPECT_EQ(tree(), (std::set<std::string>{"from", "from/taken", "to", "to/a", "to/b", "to/b/c",
                                           "to/d", "to/taken"}));
  EXPECT_EQ(contentsOf(files, at("from/taken")), "from/taken");
  EXPECT_EQ(contentsOf(files, at("to/taken")), "to/taken");
  const std::size_t all = tree().size();
  moveContentOfFolderPath(files, at("to"), at("to/b"));  // "b" cannot go into itself
  EXPECT_TRUE(files.fileExistsAtPath(at("to/b/d")));
  moveContentOfFolderPath(files, at("to/b"), "");
  moveContentOfFolderPath(files, "", at("to"));
  EXPECT_EQ(tree().size(), all);
}

TEST_F(FileUtilityTest, AFreeNameCountsOnFromTheOneGiven) {
  make({"photo.jpg", "9 copy.jpg", "9 copy 10.jpg"});
  EXPECT_EQ(fileNameToCopyFileWithName(files, "free.jpg", folderUrl()), "free.jpg");
  // Names that are taken and what their copies are called, "_" for a space.
  std::istringstream cases(R"(
      photo.jpg               photo_copy.jpg            photo.jpg           photo_copy_2.jpg
      photo_copy.jpg          photo_copy_3.jpg          photo_copy_2.jpg    photo_copy_4.jpg
      9_copy_9.jpg            9_copy_11.jpg             a_copy_0.jpg        a_copy_2.jpg
      b_copy_007.jpg          b_copy_8.jpg              c_copy_5            c_copy_6
      d_copy_2_copy.jpg       d_copy_2_copy_2.jpg       e_copy_-3.jpg       e_copy_-3_copy.jpg
      f_copy__3.jpg           f_copy__3_copy.jpg        g_copy_3x.jpg       g_copy_3x_copy.jpg
      h_copy_1,234            h_copy_1,234_copy         i_copy_٣            i_copy_٣_copy
      photocopy_3.jpg         photocopy_3_copy.jpg      j_Copy.jpg          j_Copy_copy.jpg
      notes                   notes_copy                _copy               _copy_2
      .hidden                 .hidden_copy              archive.tar.gz      archive.tar_copy.gz
      v1.2_final              v1.2_final_copy           a#b?.jpg            a#b?_copy.jpg
      k_copy_18446744073709551615   k_copy_2
      l_copy_18446744073709551616   l_copy_18446744073709551616_copy)");
  for (std::string name, expected; cases >> name >> expected;) {
    for (std::string* text : {&name, &expected}) std::replace(text->begin(), text->end(), '_', ' ');
    make({name});
    EXPECT_EQ(fileNameToCopyFileWithName(files, name, folderUrl()), expected);
    make({expected});
  }
}

TEST_F(FileUtilityTest, DuplicatesBesideTheFileByPathAndByURL) {
  make({"photo.jpg", "100% #?.jpg"});
  for (const auto& [name, copy] :
       {std::pair{"photo.jpg", "photo copy.jpg"}, {"100% #?.jpg", "100% #? copy.jpg"}}) {
    EXPECT_EQ(duplicateFileAtPath(files, at(name)), at(copy));
    EXPECT_EQ(contentsOf(files, at(copy)), contentsOf(files, at(name)));
    ASSERT_TRUE(files.removeItemAtPath(at(copy), nullptr));
    EXPECT_EQ(duplicateFileAtUrl(files, url(name)), url(copy));
    EXPECT_EQ(contentsOf(files, at(copy)), contentsOf(files, at(name)));
  }
}

TEST_F(FileUtilityTest, DuplicationReportsWhatFailed) {
  Error error;
  EXPECT_FALSE(duplicateFileAtPath(files, "", &error));
  EXPECT_THAT(error, IsError(FileManagerDuplicateError::pathIsNil));
  error = {};
  EXPECT_FALSE(duplicateFileAtUrl(files, noPath, &error));
  EXPECT_THAT(error, IsError(FileManagerDuplicateError::pathIsNil));

  EXPECT_FALSE(duplicateFileAtPath(files, at("none.jpg"), &error));
  EXPECT_THAT(error, IsError(FileManagerDuplicateError::copyFailed));
  ASSERT_TRUE(error.underlyingError());
  EXPECT_EQ(error.underlyingError()->code(), NSFileReadNoSuchFileError);

  // A dangling link counts as free, but it is in the way.
  make({"photo.jpg"});
  std::filesystem::create_symlink("nowhere", at("photo copy.jpg"));
  EXPECT_FALSE(duplicateFileAtUrl(files, url("photo.jpg"), &error));
  EXPECT_THAT(error, IsError(FileManagerDuplicateError::copyFailed));
  EXPECT_EQ(error.underlyingError()->code(), NSFileWriteFileExistsError);
  EXPECT_THAT(files.contentsOfDirectoryAtPath(folder.path(), nullptr),
              Optional(UnorderedElementsAre("photo.jpg", "photo copy.jpg")));
}

}  // namespace
}  // namespace FrameworkUtility
