#include <framework_utility/platform/foundation/files/copy_item.h>

#include <framework_utility/platform/foundation/files/directory_cursor.h>
#include <framework_utility/platform/foundation/files/new_item.h>

#include <fcntl.h>
#include <sys/stat.h>
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

// When what was written must be on the disk.
enum class Flush { now, later };

// One entry of a folder that is open.
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
    if (const int number = writeAll(to, std::span(buffer).first(static_cast<std::size_t>(count))))
      return writingFailed(number);
  }
}

// The dates of last use and of modification.
std::array<timespec, 2> datesOf(const struct stat& status) {
  return {status.st_atim, status.st_mtim};
}

Result copyFile(const Entry& from, const Entry& to, Flush flush) {
  // A file that became a pipe meanwhile must not make this wait.
  constexpr int read = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  constexpr int create = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
  const Descriptor source(
      uninterrupted([&] { return openat(from.folder, from.name.c_str(), read); }));
  struct stat status {};
  if (!source.isOpen() || fstat(source.get(), &status) != 0) return readingFailed();
  if (!S_ISREG(status.st_mode)) return readingFailed(ESPIPE);
  const Descriptor target(
      uninterrupted([&] { return openat(to.folder, to.name.c_str(), create, 0600); }));
  if (!target.isOpen()) return writingFailed();
  if (Result failure = copyBytes(source.get(), target.get())) return failure;
  if (fchmod(target.get(), status.st_mode & 0777) != 0 ||
      futimens(target.get(), datesOf(status).data()) != 0)
    return writingFailed();
  if (flush == Flush::now && uninterrupted([&] { return fsync(target.get()); }) != 0)
    return writingFailed();
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

// Of a folder only itself, for its owner alone while it is filled.
Result copyEntry(const Entry& from, const struct stat& status, const Entry& to, Flush flush) {
  if (S_ISREG(status.st_mode)) return copyFile(from, to, flush);
  if (S_ISLNK(status.st_mode)) return copyLink(from, to);
  if (!S_ISDIR(status.st_mode)) return readingFailed(ESPIPE);
  if (mkdirat(to.folder, to.name.c_str(), 0700) != 0) return writingFailed();
  return std::nullopt;
}

// The permissions and dates of a folder, once nothing more comes into it.
Result finishFolder(const struct stat& status, const Entry& to) {
  if (fchmodat(to.folder, to.name.c_str(), status.st_mode & 0777, 0) != 0 ||
      utimensat(to.folder, to.name.c_str(), datesOf(status).data(), AT_SYMLINK_NOFOLLOW) != 0)
    return writingFailed();
  return std::nullopt;
}

struct Level {
  std::string name;  // the same on both sides
  struct stat status;
  std::vector<std::string> entries;  // still to be copied
};

// What the folder `from` holds into the folder `to`, which is empty.
Result copyContents(const Entry& from, const struct stat& status, const Entry& to) {
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
      if (levels.empty()) return finishFolder(done.status, to);
      if (const int number = source.ascend()) return readingFailed(number);
      if (const int number = target.ascend()) return writingFailed(number);
      if (Result failure = finishFolder(done.status, {target.folder(), done.name})) return failure;
      continue;
    }
    Level next{std::move(levels.back().entries.back()), {}, {}};
    levels.back().entries.pop_back();
    const Entry entry{source.folder(), next.name};
    if (fstatat(entry.folder, next.name.c_str(), &next.status, AT_SYMLINK_NOFOLLOW) != 0)
      return readingFailed();
    if (Result failure = copyEntry(entry, next.status, {target.folder(), next.name}, Flush::later))
      return failure;
    if (!S_ISDIR(next.status.st_mode)) continue;
    if (const int number = source.descend(next.name)) return readingFailed(number);
    if (source.identity() == copy) return writingFailed(EINVAL);  // a folder into itself
    if (const int number = target.descend(next.name)) return writingFailed(number);
    if (const int number = source.list(next.entries)) return readingFailed(number);
    levels.push_back(std::move(next));
  }
}

}  // namespace

std::optional<PosixFailure> copyItem(const std::string& path, const std::string& toPath) {
  const Entry from{AT_FDCWD, path};
  struct stat status {};
  if (fstatat(from.folder, path.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return readingFailed();
  NewItem item(toPath);
  if (item.failure()) return writingFailed(item.failure());
  // Asked for now to spare a long copy; `putInPlace` is what decides.
  struct stat taken {};
  if (fstatat(item.folder(), item.name().c_str(), &taken, AT_SYMLINK_NOFOLLOW) == 0)
    return writingFailed(EEXIST);

  const Entry to{item.folder(), item.temporaryName()};
  if (Result failure = copyEntry(from, status, to, Flush::now)) return failure;
  if (S_ISDIR(status.st_mode)) {
    if (Result failure = copyContents(from, status, to)) return failure;
    // One flush for the whole tree. A folder that may not be listed cannot be asked for one.
    if (uninterrupted([&] { return syncfs(item.folder()); }) != 0 && errno != EBADF)
      return writingFailed();
  }
  if (const int number = item.putInPlace(Existing::keep)) return writingFailed(number);
  return std::nullopt;
}

}  // namespace FrameworkUtility::detail
