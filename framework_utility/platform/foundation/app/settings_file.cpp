#include <framework_utility/platform/foundation/app/settings_file.h>

#include <framework_utility/platform/foundation/files/new_item.h>
#include <framework_utility/platform/foundation/files/real_file_manager.h>
#include <framework_utility/platform/foundation/property_lists/property_list.h>
#include <framework_utility/platform/foundation/values/path.h>
#include <framework_utility/platform/foundation/values/random.h>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace FrameworkUtility::detail {

namespace {

constexpr std::string_view fileName = "/defaults.plist";
constexpr std::string_view lockName = "/.lock";
/// A file of more bytes is none of ours.
constexpr off_t largestFile = 64 << 20;

bool isSameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
         a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

bool isMissing(int number) { return number == ENOENT || number == ENOTDIR; }

/// The right to change what is in a folder, given back at the end. The lock is a file of its own:
/// the settings' file changes its identity with each write.
class FolderLock {
 public:
  explicit FolderLock(const std::string& folder) {
    const std::string path = folder + std::string(lockName);
    constexpr int attempts = 8;  // somebody may be removing the folder
    for (int i = 0; i < attempts && !isHeld_; ++i) {
      makeFolder(folder);
      file_ = Descriptor(uninterrupted(
          [&] { return open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600); }));
      if (!file_.isOpen() && errno != ENOENT) return;
      if (!file_.isOpen() || uninterrupted([&] { return flock(file_.get(), LOCK_EX); }) != 0) {
        continue;
      }
      struct stat own {
      }, named{};
      isHeld_ = fstat(file_.get(), &own) == 0 && stat(path.c_str(), &named) == 0 &&
                own.st_dev == named.st_dev && own.st_ino == named.st_ino;
    }
  }
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;
  // Closing would not do: a child that was forked meanwhile has the descriptor too.
  ~FolderLock() {
    if (isHeld_) flock(file_.get(), LOCK_UN);
  }

  bool isHeld() const { return isHeld_; }

 private:
  static void makeFolder(const std::string& folder) {
    // Not readable by others, whatever the mask; the lock file shows whether it worked.
    if (mkdir(folder.c_str(), 0700) == 0 || errno != ENOENT) return;
    realFileManager().createDirectoryAtPath(paths::deletingLastPathComponent(folder),
                                            IntermediateDirectories::create, nullptr);
    mkdir(folder.c_str(), 0700);
  }

  Descriptor file_;
  bool isHeld_ = false;
};

/// At most `size` bytes of the file; absent when it cannot be read.
std::optional<Data> readAll(const Descriptor& file, off_t size) {
  std::vector<std::byte> bytes(static_cast<std::size_t>(size));
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t count = uninterrupted([&] {
      return pread(file.get(), bytes.data() + done, bytes.size() - done, static_cast<off_t>(done));
    });
    if (count < 0) return std::nullopt;
    if (count == 0) break;
    done += static_cast<std::size_t>(count);
  }
  bytes.resize(done);
  return Data(std::move(bytes));
}

std::optional<Dictionary> dictionaryIn(const Data& bytes) {
  std::optional<Value> value = propertyListWithData(bytes);
  Dictionary* dictionary = value ? value->as<Dictionary>() : nullptr;
  return dictionary ? std::optional(std::move(*dictionary)) : std::nullopt;
}

}  // namespace

SettingsFile::SettingsFile(std::string folder)
    : folder_(std::move(folder)), path_(folder_ + std::string(fileName)) {}

const Dictionary& SettingsFile::settings() {
  refresh();
  return settings_;
}

bool SettingsFile::change(std::string_view key, const Value* value) {
  // Nothing to take away, so not worth a folder.
  if (!value && refresh() && !settings_.find(key)) return true;

  const FolderLock lock(folder_);
  // Settings that are there and cannot be read just now must not be replaced by fewer.
  if (!lock.isHeld() || !refresh()) return false;
  if (!std::exchange(hasLookedForLeftovers_, true)) removeLeftovers();
  Dictionary changed = settings_;
  if (value) {
    changed.set(std::string(key), *value);
  } else {
    changed.remove(key);
  }
  const std::optional<Data> bytes = dataWithPropertyList(changed);
  if (bytes && *bytes == bytes_) return true;
  return bytes && (!isDamaged_ || keepAside()) && writeFileAtomically(*bytes, path_) == 0;
}

/// Whoever can repair the file finds in it all that was ever set.
bool SettingsFile::keepAside() const {
  const std::string other = folder_ + "/defaults-damaged-" + newUUIDString() + ".plist";
  return renameKeeping(AT_FDCWD, path_, AT_FDCWD, other) == 0;
}

/// Reads the file again if it is another one. False when there is one that cannot be read.
bool SettingsFile::refresh() {
  struct stat status {};
  if (stat(path_.c_str(), &status) != 0) {
    if (!isMissing(errno)) return false;
    forget();
    return true;
  }
  if (file_.isOpen() && isSameFile(status, status_)) return true;

  // Without waiting for the other end of a pipe that bears the name.
  Descriptor file(
      uninterrupted([this] { return open(path_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC); }));
  if (!file.isOpen() && isMissing(errno)) {
    forget();
    return true;
  }
  if (!file.isOpen() || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  std::optional<Data> bytes = readAll(file, status.st_size > largestFile ? 0 : status.st_size);
  if (!bytes) return false;
  file_ = std::move(file);
  status_ = status;
  bytes_ = *std::move(bytes);
  std::optional<Dictionary> settings = dictionaryIn(bytes_);
  // A file without bytes, or with too many to be read here: only the first is nothing to keep.
  isDamaged_ = !settings && status.st_size > 0;
  settings_ = std::move(settings).value_or(Dictionary());
  return true;
}

void SettingsFile::forget() {
  file_ = Descriptor();
  bytes_ = Data();
  settings_ = Dictionary();
  isDamaged_ = false;
}

/// The temporary files of writers that were killed; who holds the lock is the only writer.
void SettingsFile::removeLeftovers() const {
  const auto names = realFileManager().contentsOfDirectoryAtPath(folder_, nullptr);
  for (const std::string& name : names.value_or(std::vector<std::string>())) {
    if (isTemporaryName(name)) unlink((folder_ + "/" + name).c_str());
  }
}

}  // namespace FrameworkUtility::detail
