#pragma once

#include <framework_utility/platform/foundation/values/data.h>
#include <framework_utility/platform/foundation/values/date.h>
#include <framework_utility/platform/foundation/values/error.h>
#include <framework_utility/platform/foundation/values/scoped.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace FrameworkUtility {

enum class FileKind { file, directory, other };
enum class IntermediateDirectories { mustExist, create };

struct FileAttributes {
  FileKind kind = FileKind::file;
  std::int64_t size = 0;  ///< In bytes.
  Date modificationDate = {};
};

/// In bytes; free is what an unprivileged user may fill.
struct FileSystemAttributes {
  std::int64_t totalSize = 0;
  std::int64_t freeSize = 0;
};

/// A file that is open for reading. A file that is replaced meanwhile goes on reading as it was.
///
/// Thread: any, at the same time too.
class FileReader {
 public:
  virtual ~FileReader() = default;
  virtual std::int64_t size() const = 0;  ///< In bytes, when it was opened.
  /// The number of bytes read from `offset` on: less than asked only at the end of the file, 0
  /// beyond it. Absent for a negative offset and when the disk fails, by file_error.h.
  virtual std::optional<std::size_t> readAt(std::int64_t offset, std::span<std::byte> bytes,
                                            Error* error) const = 0;
};

/// The file system. Paths are UTF-8; a relative one goes from the working directory; slashes at the
/// end count for nothing. Every fallible operation gives an empty result or false and fills
/// `error`, when it is not null, in "NSCocoaErrorDomain" with a code of file_error.h: one of the
/// reading ones from the operations that are const, and from a copy whose source is at fault; else
/// a writing one. Nothing waits for a pipe or a device.
///
/// An operation of the contract has no default argument: a default follows the static type and
/// would differ between the forms.
///
/// Thread: any, all forms.
class FileManager {
 public:
  virtual ~FileManager() = default;

  /// The manager in use: the system's, or the one that a test has put in its place.
  /// Selector: defaultManager
  static FileManager& defaultManager();

  /// What is at `path`, links followed: a dangling link gives nothing.
  /// Selector: attributesOfItemAtPath:error:
  virtual std::optional<FileAttributes> attributesOfItemAtPath(std::string_view path,
                                                               Error* error) const = 0;
  /// Of the file system that `path` lies on.
  /// Selector: attributesOfFileSystemForPath:error:
  virtual std::optional<FileSystemAttributes> attributesOfFileSystemForPath(std::string_view path,
                                                                            Error* error) const = 0;
  /// The names in a directory, hidden ones too, without "." and "..", in no order.
  /// Selector: contentsOfDirectoryAtPath:error:
  virtual std::optional<std::vector<std::string>> contentsOfDirectoryAtPath(std::string_view path,
                                                                            Error* error) const = 0;
  /// Null for what is no file: a folder, a pipe, a device (`NSFileReadUnknownError`).
  virtual std::unique_ptr<FileReader> openFileAtPath(std::string_view path, Error* error) const = 0;

  /// The whole new file, or what was there before, even if the process or the machine stops: it is
  /// written without a name, flushed, and gets its name at the end, which is flushed too. Only
  /// where that last flush fails after something was replaced is the new file there in spite of the
  /// failure. A file hands its permissions on to the one that replaces it; a link is replaced
  /// itself.
  ///
  /// A process that is killed leaves nothing else, but for the few microseconds in which something
  /// is replaced: then it can leave the whole file under a second, hidden name. On a file system
  /// that knows no files without names, such as FAT or NFS, that name is there all the while.
  /// Selector: writeToFile:options:error:
  virtual bool writeAtomically(std::span<const std::byte> bytes, std::string_view path,
                               Error* error) = 0;
  /// With `create` a folder that is there already is as good as a new one; else it is
  /// `NSFileWriteFileExistsError`. The disk may learn of it later.
  /// Selector: createDirectoryAtPath:withIntermediateDirectories:attributes:error:
  virtual bool createDirectoryAtPath(std::string_view path, IntermediateDirectories intermediates,
                                     Error* error) = 0;
  /// Waits until the names in a folder are on the disk: those of new folders, for what is written
  /// is flushed anyway. True too where the file system has no such operation.
  virtual bool flushDirectoryAtPath(std::string_view path, Error* error) = 0;
  /// Fails when something is at `toPath` (`NSFileWriteFileExistsError`), and for a folder into
  /// itself. A file, a link itself or a folder with all in it appears whole or not at all; a
  /// process that is killed over a folder leaves what it had copied under a hidden name.
  /// Selector: copyItemAtPath:toPath:error:
  virtual bool copyItemAtPath(std::string_view path, std::string_view toPath, Error* error) = 0;
  /// Fails when something is at `toPath`; copies and removes where a rename cannot reach.
  /// Selector: moveItemAtPath:toPath:error:
  virtual bool moveItemAtPath(std::string_view path, std::string_view toPath, Error* error) = 0;
  /// Removes a file, a link itself, or a folder with all in it; never follows a link. What
  /// cannot be removed stays, and the first refusal is reported. Refuses "/" and what ends
  /// in "." or "..".
  /// Selector: removeItemAtPath:error:
  virtual bool removeItemAtPath(std::string_view path, Error* error) = 0;
  /// Removes a folder only when it is empty.
  virtual bool removeEmptyDirectoryAtPath(std::string_view path, Error* error) = 0;

  /// Whether anything is there, links followed; false for an error too.
  /// Selector: fileExistsAtPath:
  bool fileExistsAtPath(std::string_view path) const;
  /// Selector: fileExistsAtPath:isDirectory:
  bool directoryExistsAtPath(std::string_view path) const;
  /// The whole file; also fails when memory is too short for it. Pipes and devices are no files.
  /// Selector: contentsAtPath:
  [[nodiscard]] std::optional<Data> contentsAtPath(std::string_view path,
                                                   Error* error = nullptr) const;
};

/// A file system that holds one empty folder, "/", and lives in memory. It has no links.
std::unique_ptr<FileManager> makeInMemoryFileManager();

/// `inner`, but asked first: `fail` gets the operation's name ("writeAtomically"; "readAt" of a
/// reader) and its first path, and the error that it gives becomes the operation's. `inner` must
/// outlive the result.
using FileFailure =
    std::function<std::optional<Error>(std::string_view operation, std::string_view path)>;
std::unique_ptr<FileManager> makeFailingFileManager(FileManager& inner, FileFailure fail);

/// In the default manager's place.
using ScopedFileManager = Scoped<std::reference_wrapper<FileManager>>;

}  // namespace FrameworkUtility
