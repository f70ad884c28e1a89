#pragma once

#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/foundation/values/error.h>
#include <framework_utility/platform/foundation/values/url.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace FrameworkUtility {

/// How duplicating a file fails. Code 2 is not used.
struct FileManagerDuplicateError {
  static constexpr std::string_view domain = "NSTervixFileManagerDuplicateErrorDomain";
  static constexpr ErrorCode pathIsNil{domain, 1,
                                       "FileManager+Duplicate: duplicateFile: path is nil."};
  static constexpr ErrorCode copyFailed{
      domain, 3, "FileManager+Duplicate: duplicateFile: failed  to copy item."};
};

// Operations on a file manager, usually `FileManager::defaultManager()`. Only duplication reports
// an error; everything else answers false, 0 or nothing. A URL without a path is a missing path,
// and an empty path stands for a missing one. Thread: any.

/// Whether anything is there, a folder too.
/// Selector: fileExistsAtUrl:
bool fileExistsAtUrl(const FileManager& files, const URL& url);

/// Hidden ones count, what is in folders inside does not; 0 for a folder that cannot be listed.
/// Selector: numberOfItemsInFolderAtPath:
std::size_t numberOfItemsInFolderAtPath(const FileManager& files, std::string_view path);
/// Selector: numberOfItemsInFolderAtURL:
std::size_t numberOfItemsInFolderAtURL(const FileManager& files, const URL& url);

/// True for a folder that cannot be listed or is not there.
/// Selector: isFolderEmptyAtPath:
bool isFolderEmptyAtPath(const FileManager& files, std::string_view path);
/// Selector: isFolderEmptyAtURL:
bool isFolderEmptyAtURL(const FileManager& files, const URL& url);

/// Removes the folder when it is empty. The path of a vanished file, one with an extension, stands
/// for its parent.
/// Selector: removeFolderIfEmptyAtPath:
void removeFolderIfEmptyAtPath(FileManager& files, std::string_view path);
/// Selector: removeFolderIfEmptyAtURL:
void removeFolderIfEmptyAtURL(FileManager& files, const URL& url);
/// The same with the folder that holds what is at `path`.
/// Selector: removeParentFolderIfEmptyAtPath:
void removeParentFolderIfEmptyAtPath(FileManager& files, std::string_view path);
/// Selector: removeParentFolderIfEmptyAtURL:
void removeParentFolderIfEmptyAtURL(FileManager& files, const URL& url);

/// Empties the folder and keeps it. Links are removed, not followed.
/// Selector: deleteContentOfFolderAtPath:
void deleteContentOfFolderAtPath(FileManager& files, std::string_view path);
/// Selector: deleteContentOfFolderAtURL:
void deleteContentOfFolderAtURL(FileManager& files, const URL& url);
/// Removes the file's parent folder with everything in it.
/// Selector: deleteFolderThatContainsFileAtPath:
void deleteFolderThatContainsFileAtPath(FileManager& files, std::string_view path);
/// Selector: deleteFolderThatContainsFileAtUrl:
void deleteFolderThatContainsFileAtUrl(FileManager& files, const URL& url);

/// Moves what the first folder holds into the second. What is in the way there stays, and so does
/// its namesake here.
/// Selector: moveContentOfFolderPath:toFolder:
void moveContentOfFolderPath(FileManager& files, std::string_view folder,
                             std::string_view toFolder);

/// `name` when the folder has no such entry, else "photo copy.jpg", "photo copy 2.jpg" and so on.
/// Selector: fileNameToCopyFileWithName:inFolder:
std::string fileNameToCopyFileWithName(const FileManager& files, std::string_view name,
                                       const URL& folder);

/// Copies the file beside itself under a free name and gives the new path.
/// `FileManagerDuplicateError`: `pathIsNil`, `copyFailed`.
/// Selector: duplicateFileAtPath:error:
[[nodiscard]] std::optional<std::string> duplicateFileAtPath(FileManager& files,
                                                             std::string_view path,
                                                             Error* error = nullptr);
/// Selector: duplicateFileAtUrl:error:
[[nodiscard]] std::optional<URL> duplicateFileAtUrl(FileManager& files, const URL& url,
                                                    Error* error = nullptr);

}  // namespace FrameworkUtility
