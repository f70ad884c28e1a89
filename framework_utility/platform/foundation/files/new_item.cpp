#include <framework_utility/platform/foundation/files/new_item.h>

#include <framework_utility/platform/foundation/files/remove_item.h>
#include <framework_utility/platform/foundation/random.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

namespace FrameworkUtility::detail {

namespace {

// The system writes at most about this much at once.
constexpr std::size_t largestWrite = std::size_t{1} << 30;

int openFolder(const char* path) {
  const auto opened = [&](int access) {
    return uninterrupted([&] { return open(path, access | O_DIRECTORY | O_CLOEXEC); });
  };
  const int folder = opened(O_RDONLY);
  // A folder that may be changed but not listed can be used, though not flushed.
  return folder < 0 && errno == EACCES ? opened(O_PATH) : folder;
}

}  // namespace

NewItem::NewItem(const std::string& path)
    : temporaryName_(std::string(".").append(newUUIDString())) {
  const std::size_t slash = path.rfind('/');
  const bool hasFolder = slash != std::string::npos;
  name_ = hasFolder ? path.substr(slash + 1) : path;
  folder_ = Descriptor(openFolder(hasFolder ? path.substr(0, slash + 1).c_str() : "."));
  if (!folder_.isOpen()) failure_ = errno;
}

NewItem::~NewItem() {
  if (folder_.isOpen() && !isInPlace_)
    removeItem(folder_.get(), temporaryName_, ClosedFolders::open);
}

int NewItem::putInPlace(Existing existing) {
  if (existing == Existing::keep) {
    if (const int number = renameKeeping(folder(), temporaryName_, folder(), name_)) return number;
  } else if (renameat(folder(), temporaryName_.c_str(), folder(), name_.c_str()) != 0) {
    return errno;
  }
  isInPlace_ = true;
  // The item has its name, so a refusal here is none of the operation's: some file systems cannot
  // flush a folder.
  uninterrupted([this] { return fsync(folder()); });
  return 0;
}

bool isTemporaryName(std::string_view name) {
  constexpr std::size_t identifierSize = 36;
  return name.size() == 1 + identifierSize && name.starts_with('.');
}

int renameKeeping(int fromFolder, const std::string& from, int toFolder, const std::string& to) {
  if (renameat2(fromFolder, from.c_str(), toFolder, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return errno;
  // A file system that cannot do both in one step: as near as it gets.
  struct stat status {};
  if (fstatat(toFolder, to.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) return EEXIST;
  return renameat(fromFolder, from.c_str(), toFolder, to.c_str()) == 0 ? 0 : errno;
}

int writeAll(int descriptor, std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = uninterrupted(
        [&] { return write(descriptor, bytes.data(), std::min(bytes.size(), largestWrite)); });
    if (written < 0) return errno;
    bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return 0;
}

int writeFileAtomically(std::span<const std::byte> bytes, const std::string& path) {
  NewItem item(path);
  if (item.failure()) return item.failure();
  struct stat old {};
  const bool replaces =
      fstatat(item.folder(), item.name().c_str(), &old, AT_SYMLINK_NOFOLLOW) == 0 &&
      S_ISREG(old.st_mode);
  const Descriptor file(uninterrupted([&] {
    return openat(item.folder(), item.temporaryName().c_str(),
                  O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, replaces ? 0600 : 0666);
  }));
  if (!file.isOpen()) return errno;
  if (replaces && fchmod(file.get(), old.st_mode & 0777) != 0) return errno;
  if (const int number = writeAll(file.get(), bytes)) return number;
  if (uninterrupted([&] { return fsync(file.get()); }) != 0) return errno;
  return item.putInPlace(Existing::replace);
}

}  // namespace FrameworkUtility::detail
