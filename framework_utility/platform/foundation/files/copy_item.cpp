#include <framework_utility/platform/foundation/files/copy_item.h>

#include <framework_utility/platform/foundation/files/directory_cursor.h>
#include <framework_utility/platform/foundation/files/new_item.h>

#include <fcntl.h>
#include <linux/aio_abi.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <utility>
#include <vector>

namespace FrameworkUtility::detail {

namespace {

using Result = std::optional<PosixFailure>;

Result readingFailed(int number = errno) { return PosixFailure{number, FileAccess::reading}; }
Result writingFailed(int number = errno) { return PosixFailure{number, FileAccess::writing}; }

/// Files and folders that are whole and have yet to reach the disk. The kernel is asked for many at
/// once where it can be: a disk that flushes for each in turn takes its time for each.
class Flushes {
 public:
  Flushes() = default;
  Flushes(const Flushes&) = delete;
  Flushes& operator=(const Flushes&) = delete;
  ~Flushes() {
    if (queue_ != 0) syscall(SYS_io_destroy, queue_);
  }

  Result add(Descriptor item) {
    items_.push_back(std::move(item));
    return items_.size() < most ? std::nullopt : flushAll();
  }

  Result flushAll() {
    // A queue costs about as much as some flushes, so few items go without.
    if (queue_ == 0 && items_.size() == most && syscall(SYS_io_setup, most, &queue_) != 0) {
      queue_ = 0;
    }
    std::size_t asked = 0;
    if (queue_ != 0) {
      if (Result failure = flushTogether(asked)) return failure;
    }
    for (; asked < items_.size(); ++asked) {
      if (const int number = flush(items_[asked].get())) return writingFailed(number);
    }
    items_.clear();
    return std::nullopt;
  }

 private:
  /// Says how many of the first were asked for; all of them have been answered then.
  Result flushTogether(std::size_t& asked) {
    std::vector<iocb> requests(items_.size());
    std::vector<iocb*> pointers;
    for (std::size_t i = 0; i < items_.size(); ++i) {
      requests[i].aio_fildes = static_cast<unsigned>(items_[i].get());
      requests[i].aio_lio_opcode = IOCB_CMD_FSYNC;
      pointers.push_back(&requests[i]);
    }
    const long taken = syscall(SYS_io_submit, queue_, pointers.size(), pointers.data());
    asked = taken > 0 ? static_cast<std::size_t>(taken) : 0;
    Result failure;
    for (std::size_t i = 0; i < asked; ++i) {
      io_event answer{};
      const long got = uninterrupted(
          [&] { return syscall(SYS_io_getevents, queue_, 1L, 1L, &answer, nullptr); });
      if (got != 1) return writingFailed();
      if (answer.res < 0 && answer.res != -EINVAL) {
        failure = writingFailed(static_cast<int>(-answer.res));
      }
    }
    return failure;
  }

  static constexpr std::size_t most = 64;
  std::vector<Descriptor> items_;
  aio_context_t queue_ = 0;
};

/// One entry of a folder that is open.
struct Entry {
  int folder;
  const std::string& name;
};

Result copyBytes(int from, int to) {
  // The kernel copies, or lets both files share their blocks. Where it cannot, or stops, the loop
  // below goes on from there and meets whatever was in the way.
  while (copy_file_range(from, nullptr, to, nullptr, std::size_t{1} << 30, 0) > 0) {
  }
  std::vector<std::byte> buffer(std::size_t{1} << 17);
  while (true) {
    const ssize_t count = uninterrupted([&] { return read(from, buffer.data(), buffer.size()); });
    if (count < 0) return readingFailed();
    if (count == 0) return std::nullopt;
    if (const int number = writeAll(to, std::span(buffer).first(static_cast<std::size_t>(count)))) {
      return writingFailed(number);
    }
  }
}

/// The dates of last use and of modification.
std::array<timespec, 2> datesOf(const struct stat& status) {
  return {status.st_atim, status.st_mtim};
}

struct Source {
  Descriptor file;
  struct stat status {};
};

/// `known` is what the name stood for: a device is not even opened.
Result openFile(const Entry& from, const struct stat& known, Source& source) {
  if (!S_ISREG(known.st_mode)) return readingFailed(ESPIPE);
  // A file that became a pipe meanwhile must not make this wait.
  constexpr int read = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  source.file =
      Descriptor(uninterrupted([&] { return openat(from.folder, from.name.c_str(), read); }));
  if (!source.file.isOpen() || fstat(source.file.get(), &source.status) != 0) {
    return readingFailed();
  }
  return S_ISREG(source.status.st_mode) ? std::nullopt : readingFailed(ESPIPE);
}

/// Bytes, permissions and dates.
Result copyFile(const Source& from, int to) {
  if (Result failure = copyBytes(from.file.get(), to)) return failure;
  if (fchmod(to, from.status.st_mode & 0777) != 0 ||
      futimens(to, datesOf(from.status).data()) != 0) {
    return writingFailed();
  }
  return std::nullopt;
}

Result copyLink(const Entry& from, const Entry& to) {
  std::array<char, PATH_MAX> target;
  const ssize_t length =
      readlinkat(from.folder, from.name.c_str(), target.data(), target.size() - 1);
  if (length < 0) return readingFailed();
  target[static_cast<std::size_t>(length)] = '\0';
  if (symlinkat(target.data(), to.folder, to.name.c_str()) != 0) return writingFailed();
  return std::nullopt;
}

/// Of a folder only itself, for its owner alone while it is filled.
Result copyEntry(const Entry& from, const struct stat& status, const Entry& to, Flushes& flushes) {
  if (S_ISLNK(status.st_mode)) return copyLink(from, to);
  if (S_ISDIR(status.st_mode)) {
    if (mkdirat(to.folder, to.name.c_str(), 0700) != 0) return writingFailed();
    return std::nullopt;
  }
  Source source;
  if (Result failure = openFile(from, status, source)) return failure;
  constexpr int create = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
  Descriptor target(
      uninterrupted([&] { return openat(to.folder, to.name.c_str(), create, 0600); }));
  if (!target.isOpen()) return writingFailed();
  if (Result failure = copyFile(source, target.get())) return failure;
  return flushes.add(std::move(target));
}

/// The permissions and dates of a folder, once nothing more comes into it.
Result finishFolder(const struct stat& status, const Entry& to) {
  if (fchmodat(to.folder, to.name.c_str(), status.st_mode & 0777, 0) != 0 ||
      utimensat(to.folder, to.name.c_str(), datesOf(status).data(), AT_SYMLINK_NOFOLLOW) != 0) {
    return writingFailed();
  }
  return std::nullopt;
}

struct Level {
  std::string name;  // the same on both sides
  struct stat status;
  std::vector<std::string> entries;  // still to be copied
};

/// What the folder `from` holds into the folder `to`, which is empty; flushed.
Result copyContents(const Entry& from, const struct stat& status, const Entry& to) {
  Flushes flushes;
  DirectoryCursor source, target;
  if (const int number = source.begin(from.folder, from.name)) return readingFailed(number);
  if (const int number = target.begin(to.folder, to.name)) return writingFailed(number);
  const FolderIdentity copy = target.identity();
  std::vector<Level> levels{{{}, status, {}}};
  if (const int number = source.list(levels.back().entries)) return readingFailed(number);

  while (true) {
    if (levels.back().entries.empty()) {
      const Level done = std::move(levels.back());
      levels.pop_back();
      // Still open when its permissions may forbid that.
      Descriptor folder(fcntl(target.folder(), F_DUPFD_CLOEXEC, 0));
      if (!folder.isOpen()) return writingFailed();
      if (!levels.empty()) {
        if (const int number = source.ascend()) return readingFailed(number);
        if (const int number = target.ascend()) return writingFailed(number);
      }
      const Entry copied = levels.empty() ? to : Entry{target.folder(), done.name};
      if (Result failure = finishFolder(done.status, copied)) return failure;
      if (Result failure = flushes.add(std::move(folder))) return failure;
      if (levels.empty()) return flushes.flushAll();
      continue;
    }
    Level next{std::move(levels.back().entries.back()), {}, {}};
    levels.back().entries.pop_back();
    const Entry entry{source.folder(), next.name};
    if (fstatat(entry.folder, next.name.c_str(), &next.status, AT_SYMLINK_NOFOLLOW) != 0) {
      return readingFailed();
    }
    if (Result failure = copyEntry(entry, next.status, {target.folder(), next.name}, flushes)) {
      return failure;
    }
    if (!S_ISDIR(next.status.st_mode)) continue;
    if (const int number = source.descend(next.name)) return readingFailed(number);
    if (source.identity() == copy) return writingFailed(EINVAL);  // moved there meanwhile
    if (const int number = target.descend(next.name)) return writingFailed(number);
    if (const int number = source.list(next.entries)) return readingFailed(number);
    levels.push_back(std::move(next));
  }
}

/// Whether `folder` is the one with this status or lies in it, by whatever links and names its path
/// led there.
bool liesIn(int folder, const struct stat& status) {
  const auto same = [](const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
  };
  struct stat at {
  }, above{};
  if (fstat(folder, &at) != 0) return false;
  Descriptor parent;
  while (!same(at, status)) {
    parent = Descriptor(uninterrupted([&] {
      return openat(parent.isOpen() ? parent.get() : folder, "..",
                    O_PATH | O_DIRECTORY | O_CLOEXEC);
    }));
    if (!parent.isOpen() || fstat(parent.get(), &above) != 0) return false;
    if (same(at, above)) return false;  // the root
    at = above;
  }
  return true;
}

}  // namespace

std::optional<PosixFailure> copyItem(const std::string& path, const std::string& toPath) {
  const Entry from{AT_FDCWD, path};
  struct stat status {};
  if (fstatat(from.folder, path.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return readingFailed();
  NewItem item(toPath);
  if (item.failure()) return writingFailed(item.failure());
  // Asked for now to spare a long copy; giving the name is what decides.
  struct stat taken {};
  if (fstatat(item.folder(), item.name().c_str(), &taken, AT_SYMLINK_NOFOLLOW) == 0) {
    return writingFailed(EEXIST);
  }

  if (S_ISDIR(status.st_mode)) {
    if (liesIn(item.folder(), status)) return writingFailed(EINVAL);
    const Entry to{item.folder(), item.temporaryName()};
    if (mkdirat(to.folder, to.name.c_str(), 0700) != 0) return writingFailed();
    if (Result failure = copyContents(from, status, to)) return failure;
  } else if (S_ISLNK(status.st_mode)) {
    if (Result failure = copyLink(from, {item.folder(), item.temporaryName()})) return failure;
  } else {
    Source source;
    if (Result failure = openFile(from, status, source)) return failure;
    if (const int number = item.makeFile(0600)) return writingFailed(number);
    if (Result failure = copyFile(source, item.file())) return failure;
    if (const int number = flush(item.file())) return writingFailed(number);
  }
  if (const int number = item.putInPlace(Existing::keep)) return writingFailed(number);
  return std::nullopt;
}

}  // namespace FrameworkUtility::detail
