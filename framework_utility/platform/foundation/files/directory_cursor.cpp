#include <framework_utility/platform/foundation/files/directory_cursor.h>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <memory>
#include <string_view>
#include <utility>

namespace FrameworkUtility::detail {

namespace {

constexpr int openFolder = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

int identityOf(const Descriptor& folder, FolderIdentity& identity) {
  struct stat status {};
  if (fstat(folder.get(), &status) != 0) return errno;
  identity = {status.st_dev, status.st_ino};
  return 0;
}

}  // namespace

int DirectoryCursor::begin(int at, const std::string& name) {
  path_.clear();
  return open(at, name);
}

int DirectoryCursor::descend(const std::string& name) { return open(folder_.get(), name); }

int DirectoryCursor::open(int at, const std::string& name) {
  Descriptor folder(uninterrupted([&] { return openat(at, name.c_str(), openFolder); }));
  if (!folder.isOpen()) return errno;
  FolderIdentity identity;
  if (const int number = identityOf(folder, identity)) return number;
  folder_ = std::move(folder);
  path_.push_back(identity);
  return 0;
}

int DirectoryCursor::ascend() {
  Descriptor parent(uninterrupted([&] { return openat(folder_.get(), "..", openFolder); }));
  if (!parent.isOpen()) return errno;
  FolderIdentity identity;
  if (const int number = identityOf(parent, identity)) return number;
  path_.pop_back();
  if (identity != path_.back()) return ESTALE;
  folder_ = std::move(parent);
  return 0;
}

int DirectoryCursor::list(std::vector<std::string>& names) const {
  Descriptor own(uninterrupted([&] { return openat(folder_.get(), ".", openFolder); }));
  if (!own.isOpen()) return errno;
  return listFolder(std::move(own), names);
}

int listFolder(Descriptor folder, std::vector<std::string>& names) {
  const std::unique_ptr<DIR, int (*)(DIR*)> stream(fdopendir(folder.get()), closedir);
  if (!stream) return errno;
  folder.release();  // the stream closes it
  errno = 0;         // the end and a failure differ in nothing else
  while (const dirent* entry = readdir(stream.get())) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") names.emplace_back(name);
  }
  return errno;
}

}  // namespace FrameworkUtility::detail
