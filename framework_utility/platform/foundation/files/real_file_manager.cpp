#include <framework_utility/platform/foundation/files/real_file_manager.h>

#include <framework_utility/platform/foundation/files/copy_item.h>
#include <framework_utility/platform/foundation/files/descriptor.h>
#include <framework_utility/platform/foundation/files/directory_cursor.h>
#include <framework_utility/platform/foundation/files/new_item.h>
#include <framework_utility/platform/foundation/files/posix_error.h>
#include <framework_utility/platform/foundation/files/remove_item.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <limits>
#include <utility>

namespace FrameworkUtility::detail {

namespace {

constexpr PosixFailure readingFailed(int number) { return {number, FileAccess::reading}; }
constexpr PosixFailure writingFailed(int number) { return {number, FileAccess::writing}; }

Date dateOf(const timespec& time) {
  return Date(std::chrono::seconds(time.tv_sec) +
              std::chrono::duration_cast<std::chrono::microseconds>(
                  std::chrono::nanoseconds(time.tv_nsec)));
}

bool isDirectory(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// 0 or an error number, EEXIST for a folder too.
int createFolder(const std::string& path) { return mkdir(path.c_str(), 0777) == 0 ? 0 : errno; }

int createFolders(const std::string& path) {
  int number = createFolder(path);
  if (number == ENOENT) {
    std::size_t slash = 0;
    do {
      slash = path.find('/', slash + 1);
      const std::string folder = path.substr(0, slash);
      number = createFolder(folder);
      if (number != 0 && !isDirectory(folder)) return number;
    } while (slash != std::string::npos);
  }
  return number != 0 && isDirectory(path) ? 0 : number;
}

class RealFileReader final : public FileReader {
 public:
  RealFileReader(Descriptor file, std::int64_t size, std::string path)
      : file_(std::move(file)), size_(size), path_(std::move(path)) {}

  std::int64_t size() const override { return size_; }

  std::optional<std::size_t> readAt(std::int64_t offset, std::span<std::byte> bytes,
                                    Error* error) const override {
    if (offset < 0) return fail(error, readingFailed(EINVAL), path_);
    std::size_t done = 0;
    while (done < bytes.size()) {
      const std::int64_t position = offset + static_cast<std::int64_t>(done);
      // The system refuses to be asked for bytes beyond the largest offset.
      const auto room = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max() - position);
      const std::size_t wanted =
          static_cast<std::size_t>(std::min<std::uint64_t>(bytes.size() - done, room));
      const ssize_t count =
          uninterrupted([&] { return pread(file_.get(), bytes.data() + done, wanted, position); });
      if (count < 0) return fail(error, readingFailed(errno), path_);
      if (count == 0) break;
      done += static_cast<std::size_t>(count);
    }
    return done;
  }

 private:
  Descriptor file_;
  std::int64_t size_;
  std::string path_;
};

class RealFileManager final : public FileManager {
 public:
  std::optional<FileAttributes> attributesOfItemAtPath(std::string_view path,
                                                       Error* error) const override {
    const std::optional<std::string> item = systemPath(path, FileAccess::reading, error);
    if (!item) return std::nullopt;
    struct stat status {};
    if (stat(item->c_str(), &status) != 0) return fail(error, readingFailed(errno), path);
    const FileKind kind = S_ISREG(status.st_mode)   ? FileKind::file
                          : S_ISDIR(status.st_mode) ? FileKind::directory
                                                    : FileKind::other;
    return FileAttributes{kind, status.st_size, dateOf(status.st_mtim)};
  }

  std::optional<FileSystemAttributes> attributesOfFileSystemForPath(std::string_view path,
                                                                    Error* error) const override {
    const std::optional<std::string> item = systemPath(path, FileAccess::reading, error);
    if (!item) return std::nullopt;
    struct statvfs status {};
    if (uninterrupted([&] { return statvfs(item->c_str(), &status); }) != 0) {
      return fail(error, readingFailed(errno), path);
    }
    const auto bytes = [&](fsblkcnt_t blocks) {
      return static_cast<std::int64_t>(blocks * status.f_frsize);
    };
    return FileSystemAttributes{bytes(status.f_blocks), bytes(status.f_bavail)};
  }

  std::optional<std::vector<std::string>> contentsOfDirectoryAtPath(std::string_view path,
                                                                    Error* error) const override {
    const std::optional<std::string> item = systemPath(path, FileAccess::reading, error);
    if (!item) return std::nullopt;
    Descriptor folder(
        uninterrupted([&] { return open(item->c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    std::vector<std::string> names;
    const int number = folder.isOpen() ? listFolder(std::move(folder), names) : errno;
    if (number != 0) return fail(error, readingFailed(number), path);
    return names;
  }

  std::unique_ptr<FileReader> openFileAtPath(std::string_view path, Error* error) const override {
    const std::optional<std::string> item = systemPath(path, FileAccess::reading, error);
    if (!item) return nullptr;
    // Without waiting for a pipe's other end or a device, and without becoming a terminal's owner.
    Descriptor file(uninterrupted(
        [&] { return open(item->c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC); }));
    struct stat status {};
    if (!file.isOpen() || fstat(file.get(), &status) != 0) {
      return fail(error, readingFailed(errno), path);
    }
    if (!S_ISREG(status.st_mode)) {
      return fail(error, readingFailed(S_ISDIR(status.st_mode) ? EISDIR : ESPIPE), path);
    }
    return std::make_unique<RealFileReader>(std::move(file), status.st_size, std::string(path));
  }

  bool writeAtomically(std::span<const std::byte> bytes, std::string_view path,
                       Error* error) override {
    const std::optional<std::string> item = systemPath(path, FileAccess::writing, error);
    return item && succeed(writeFileAtomically(bytes, *item), path, error);
  }

  bool createDirectoryAtPath(std::string_view path, IntermediateDirectories intermediates,
                             Error* error) override {
    const std::optional<std::string> item = systemPath(path, FileAccess::writing, error);
    if (!item) return false;
    const bool create = intermediates == IntermediateDirectories::create;
    return succeed(create ? createFolders(*item) : createFolder(*item), path, error);
  }

  bool flushDirectoryAtPath(std::string_view path, Error* error) override {
    const std::optional<std::string> item = systemPath(path, FileAccess::writing, error);
    return item && succeed(flushFolder(*item), path, error);
  }

  bool copyItemAtPath(std::string_view path, std::string_view toPath, Error* error) override {
    const std::optional<std::string> from = systemPath(path, FileAccess::reading, error);
    if (!from) return false;
    const std::optional<std::string> to = systemPath(toPath, FileAccess::writing, error);
    if (!to) return false;
    const std::optional<PosixFailure> failure = copyItem(*from, *to);
    if (!failure) return true;
    return fail(error, *failure, failure->access == FileAccess::reading ? path : toPath);
  }

  bool moveItemAtPath(std::string_view path, std::string_view toPath, Error* error) override {
    const std::optional<std::string> from = systemPath(path, FileAccess::writing, error);
    if (!from) return false;
    const std::optional<std::string> to = systemPath(toPath, FileAccess::writing, error);
    if (!to) return false;
    const int number = renameKeeping(AT_FDCWD, *from, AT_FDCWD, *to);
    if (number != EXDEV) return succeed(number, number == EEXIST ? toPath : path, error);
    return copyItemAtPath(path, toPath, error) && removeItemAtPath(path, error);
  }

  bool removeItemAtPath(std::string_view path, Error* error) override {
    const std::optional<std::string> item = systemPath(path, FileAccess::writing, error);
    if (!item) return false;
    return succeed(isRemovable(path) ? removeItem(AT_FDCWD, *item) : EINVAL, path, error);
  }

  bool removeEmptyDirectoryAtPath(std::string_view path, Error* error) override {
    const std::optional<std::string> item = systemPath(path, FileAccess::writing, error);
    return item && succeed(rmdir(item->c_str()) == 0 ? 0 : errno, path, error);
  }

 private:
  static bool succeed(int number, std::string_view path, Error* error) {
    return number == 0 || fail(error, writingFailed(number), path);
  }
};

}  // namespace

FileManager& realFileManager() {
  static FileManager& manager = *new RealFileManager;
  return manager;
}

}  // namespace FrameworkUtility::detail
