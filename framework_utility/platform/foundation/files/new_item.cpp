#include <framework_utility/platform/foundation/files/new_item.h>

#include <framework_utility/platform/foundation/files/remove_item.h>
#include <framework_utility/platform/foundation/values/random.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>

namespace FrameworkUtility::detail {

namespace {

/// The system writes at most about this much at once.
constexpr std::size_t largestWrite = std::size_t{1} << 30;

/// Not open, with `errno`, where that fails.
Descriptor openFolder(const std::string& path) {
  const auto opened = [&path](int access) {
    return uninterrupted([&] { return open(path.c_str(), access | O_DIRECTORY | O_CLOEXEC); });
  };
  const int folder = opened(O_RDONLY);
  // A folder that may be changed but not listed can be used, though not flushed.
  return Descriptor(folder < 0 && errno == EACCES ? opened(O_PATH) : folder);
}

/// Where an open file can be linked from, without the privilege that its number alone would need.
std::string pathOf(int file) { return "/proc/self/fd/" + std::to_string(file); }

/// Puts off, in this thread, every signal that can be, while it lives.
class SignalsPutOff {
 public:
  SignalsPutOff() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  SignalsPutOff(const SignalsPutOff&) = delete;
  SignalsPutOff& operator=(const SignalsPutOff&) = delete;
  ~SignalsPutOff() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_;
};

}  // namespace

NewItem::NewItem(const std::string& path)
    : temporaryName_(std::string(".").append(newUUIDString())) {
  const std::size_t slash = path.rfind('/');
  const bool hasFolder = slash != std::string::npos;
  name_ = hasFolder ? path.substr(slash + 1) : path;
  folder_ = openFolder(hasFolder ? path.substr(0, slash + 1) : ".");
  if (!folder_.isOpen()) failure_ = errno;
}

NewItem::~NewItem() {
  if (folder_.isOpen() && !isNameless_ && !isInPlace_) {
    removeItem(folder(), temporaryName_, ClosedFolders::open);
  }
}

int NewItem::makeFile(mode_t mode) {
  file_ = Descriptor(
      uninterrupted([&] { return openat(folder(), ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, mode); }));
  isNameless_ = file_.isOpen() && access(pathOf(file()).c_str(), F_OK) == 0;
  if (isNameless_) return 0;
  file_ = Descriptor(uninterrupted([&] {
    return openat(folder(), temporaryName_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
  }));
  return file_.isOpen() ? 0 : errno;
}

int NewItem::putInPlace(Existing existing) {
  if (const int number = giveName(existing)) return number;
  isInPlace_ = true;
  const int number = flush(folder());
  if (number != 0 && !hasReplaced_) removeItem(folder(), name_, ClosedFolders::open);
  return number;
}

int NewItem::giveName(Existing existing) {
  const int number =
      isNameless_ ? link(name_) : renameKeeping(folder(), temporaryName_, folder(), name_);
  if (number != EEXIST || existing == Existing::keep) return number;
  // A link cannot replace, so the file needs a name that a rename can take away.
  const SignalsPutOff whileItIsHidden;
  if (isNameless_) {
    if (const int refusal = link(temporaryName_)) return refusal;
  }
  hasReplaced_ = renameat(folder(), temporaryName_.c_str(), folder(), name_.c_str()) == 0;
  if (hasReplaced_) return 0;
  const int refusal = errno;
  unlinkat(folder(), temporaryName_.c_str(), 0);
  return refusal;
}

int NewItem::link(const std::string& name) const {
  const std::string file = pathOf(file_.get());
  return linkat(AT_FDCWD, file.c_str(), folder(), name.c_str(), AT_SYMLINK_FOLLOW) == 0 ? 0 : errno;
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

int flush(int descriptor) {
  if (uninterrupted([descriptor] { return fsync(descriptor); }) == 0) return 0;
  return errno == EBADF || errno == EINVAL ? 0 : errno;
}

int flushFolder(const std::string& path) {
  const Descriptor folder = openFolder(path);
  return folder.isOpen() ? flush(folder.get()) : errno;
}

int writeFileAtomically(std::span<const std::byte> bytes, const std::string& path) {
  NewItem item(path);
  if (item.failure()) return item.failure();
  struct stat old {};
  const bool replaces =
      fstatat(item.folder(), item.name().c_str(), &old, AT_SYMLINK_NOFOLLOW) == 0 &&
      S_ISREG(old.st_mode);
  if (const int number = item.makeFile(replaces ? 0600 : 0666)) return number;
  if (replaces && fchmod(item.file(), old.st_mode & 0777) != 0) return errno;
  if (const int number = writeAll(item.file(), bytes)) return number;
  if (const int number = flush(item.file())) return number;
  return item.putInPlace(Existing::replace);
}

}  // namespace FrameworkUtility::detail
