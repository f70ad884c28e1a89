#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/foundation/files/posix_error.h>
#include <framework_utility/platform/foundation/values/data.h>
#include <framework_utility/platform/foundation/values/date.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <mutex>
#include <utility>

namespace FrameworkUtility {

namespace {

using detail::fail;
using detail::FileAccess;

constexpr std::int64_t capacity = std::int64_t{1} << 40;
constexpr std::size_t longestName = 255;

/// The path from "/" without ".", ".." and needless slashes, a relative one too; "" is "/" itself.
/// There are no links, so the text is all that it takes.
std::string normalised(std::string_view path) {
  std::string result;
  for (std::size_t start = 0; start < path.size();) {
    const std::size_t end = std::min(path.find('/', start), path.size());
    const std::string_view name = path.substr(start, end - start);
    start = end + 1;
    if (name == "..") {
      result.erase(result.empty() ? 0 : result.rfind('/'));
    } else if (!name.empty() && name != ".") {
      result.append("/").append(name);
    }
  }
  return result;
}

class MemoryFileReader final : public FileReader {
 public:
  MemoryFileReader(Data bytes, std::string_view path) : bytes_(std::move(bytes)), path_(path) {}

  std::int64_t size() const override { return static_cast<std::int64_t>(bytes_.size()); }

  std::optional<std::size_t> readAt(std::int64_t offset, std::span<std::byte> bytes,
                                    Error* error) const override {
    if (offset < 0) return fail(error, {EINVAL, FileAccess::reading}, path_);
    if (offset >= size()) return 0;
    const auto rest = std::span(bytes_).subspan(static_cast<std::size_t>(offset));
    const std::size_t count = std::min(rest.size(), bytes.size());
    std::copy_n(rest.begin(), count, bytes.begin());
    return count;
  }

 private:
  Data bytes_;  // shared with the file as it was when it was opened
  std::string path_;
};

struct Item {
  FileKind kind = FileKind::directory;
  Data bytes = {};
  Date modified = Clock::current().now();
};
using Items = std::map<std::string, Item>;  // what a folder holds comes right after "folder/"

class MemoryFileManager final : public FileManager {
 public:
  std::optional<FileAttributes> attributesOfItemAtPath(std::string_view path,
                                                       Error* error) const override {
    const std::lock_guard lock(mutex_);
    const Item* item = find(path, error);
    if (!item) return std::nullopt;
    const auto size = static_cast<std::int64_t>(item->bytes.size());
    return FileAttributes{item->kind, size, item->modified};
  }

  std::optional<FileSystemAttributes> attributesOfFileSystemForPath(std::string_view path,
                                                                    Error* error) const override {
    const std::lock_guard lock(mutex_);
    if (!find(path, error)) return std::nullopt;
    std::int64_t used = 0;
    for (const auto& [name, item] : items_) used += static_cast<std::int64_t>(item.bytes.size());
    return FileSystemAttributes{capacity, capacity - used};
  }

  std::optional<std::vector<std::string>> contentsOfDirectoryAtPath(std::string_view path,
                                                                    Error* error) const override {
    const std::lock_guard lock(mutex_);
    const Item* folder = find(path, error);
    if (!folder) return std::nullopt;
    if (folder->kind != FileKind::directory) {
      return fail(error, {ENOTDIR, FileAccess::reading}, path);
    }
    std::vector<std::string> names;
    for (const auto& [suffix, item] : subtree(normalised(path))) {
      if (suffix.rfind('/') == 0) names.push_back(suffix.substr(1));
    }
    return names;
  }

  std::unique_ptr<FileReader> openFileAtPath(std::string_view path, Error* error) const override {
    const std::lock_guard lock(mutex_);
    const Item* item = find(path, error);
    if (!item) return nullptr;
    if (item->kind == FileKind::file) return std::make_unique<MemoryFileReader>(item->bytes, path);
    return fail(error, {EISDIR, FileAccess::reading}, path);
  }

  bool writeAtomically(std::span<const std::byte> bytes, std::string_view path,
                       Error* error) override {
    const std::lock_guard lock(mutex_);
    const std::string item = normalised(path);
    int number = refusalToMake(path);
    if (number == EEXIST) number = items_[item].kind == FileKind::file ? 0 : EISDIR;
    if (number == 0) items_[item] = {.kind = FileKind::file, .bytes = Data(bytes)};
    return succeed(number, path, error);
  }

  bool createDirectoryAtPath(std::string_view path, IntermediateDirectories intermediates,
                             Error* error) override {
    const std::lock_guard lock(mutex_);
    const std::string item = normalised(path);
    int number = refusalToMake(path);
    if (intermediates == IntermediateDirectories::create) {
      for (std::size_t slash = item.find('/', 1); number == ENOENT && slash != std::string::npos;
           slash = item.find('/', slash + 1)) {
        items_.try_emplace(item.substr(0, slash));
      }
      if (number == ENOENT) number = refusalToMake(path);
      if (number == EEXIST && items_[item].kind == FileKind::directory) return true;
    }
    if (number == 0) items_[item] = {};
    return succeed(number, path, error);
  }

  bool flushDirectoryAtPath(std::string_view path, Error* error) override {
    const std::lock_guard lock(mutex_);
    int number = refusalToFind(path);
    if (number == 0 && items_[normalised(path)].kind != FileKind::directory) number = ENOTDIR;
    return succeed(number, path, error);
  }

  bool copyItemAtPath(std::string_view path, std::string_view toPath, Error* error) override {
    const std::lock_guard lock(mutex_);
    const std::string from = normalised(path), to = normalised(toPath);
    if (!find(path, error)) return false;
    int number = refusalToMake(toPath);
    if (number == 0 && to.starts_with(from + "/")) number = EINVAL;
    if (number == 0) insert(subtree(from), to);
    return succeed(number, toPath, error);
  }

  bool moveItemAtPath(std::string_view path, std::string_view toPath, Error* error) override {
    const std::lock_guard lock(mutex_);
    const std::string from = normalised(path), to = normalised(toPath);
    if (const int number = refusalToFind(path)) return succeed(number, path, error);
    int number = refusalToMake(toPath);
    if (number == 0 && to.starts_with(from + "/")) number = EINVAL;
    if (number != 0) return succeed(number, toPath, error);
    const Items moved = subtree(from);
    remove(moved, from);
    insert(moved, to);
    return true;
  }

  bool removeItemAtPath(std::string_view path, Error* error) override {
    const std::lock_guard lock(mutex_);
    const std::string item = normalised(path);
    int number = refusalToFind(path);
    if (number == 0 && !detail::isRemovable(path)) number = EINVAL;
    if (number == 0) remove(subtree(item), item);
    return succeed(number, path, error);
  }

  bool removeEmptyDirectoryAtPath(std::string_view path, Error* error) override {
    const std::lock_guard lock(mutex_);
    const std::string item = normalised(path);
    int number = refusalToFind(path);
    if (number == 0 && items_[item].kind != FileKind::directory) number = ENOTDIR;
    if (number == 0 && subtree(item).size() > 1) number = ENOTEMPTY;
    if (number == 0 && item.empty()) number = EBUSY;
    if (number == 0) items_.erase(item);
    return succeed(number, path, error);
  }

 private:
  static bool succeed(int number, std::string_view path, Error* error) {
    return number == 0 || fail(error, {number, FileAccess::writing}, path);
  }

  /// 0 when something is there, else the system's error number.
  int refusalToFind(std::string_view path) const {
    if (path.find('\0') != std::string_view::npos) return EILSEQ;
    if (path.empty()) return ENOENT;
    const std::string item = normalised(path);
    for (std::size_t start = 1, end; start < item.size(); start = end + 1) {
      end = std::min(item.find('/', start), item.size());
      if (end - start > longestName) return ENAMETOOLONG;
      const auto found = items_.find(item.substr(0, end));
      if (found == items_.end()) return ENOENT;
      if (end < item.size() && found->second.kind != FileKind::directory) return ENOTDIR;
    }
    return 0;
  }

  /// 0 when something new can be made there: in a folder, where nothing is yet.
  int refusalToMake(std::string_view path) const {
    const int number = refusalToFind(path);
    if (number == 0) return EEXIST;
    const std::string item = normalised(path);
    const std::size_t slash = item.rfind('/');
    const bool isFree = number == ENOENT && slash != std::string::npos &&
                        item.size() - slash - 1 <= longestName &&
                        items_.contains(item.substr(0, slash));
    return isFree ? 0 : number;
  }

  const Item* find(std::string_view path, Error* error) const {
    const int number = refusalToFind(path);
    if (number == 0) return &items_.at(normalised(path));
    return fail(error, {number, FileAccess::reading}, path);
  }

  /// An item and all in it, by what follows its path: "" and "/name".
  Items subtree(const std::string& path) const {
    Items items{{"", items_.at(path)}};
    const std::string inside = path + "/";
    for (auto at = items_.lower_bound(inside); at != items_.end() && at->first.starts_with(inside);
         ++at) {
      items.emplace_hint(items.end(), at->first.substr(path.size()), at->second);
    }
    return items;
  }

  void insert(const Items& items, const std::string& path) {
    for (const auto& [suffix, item] : items) items_.insert_or_assign(path + suffix, item);
  }

  void remove(const Items& items, const std::string& path) {
    for (const auto& [suffix, item] : items) items_.erase(path + suffix);
  }

  mutable std::mutex mutex_;
  Items items_{{"", {}}};
};

}  // namespace

std::unique_ptr<FileManager> makeInMemoryFileManager() {
  return std::make_unique<MemoryFileManager>();
}

}  // namespace FrameworkUtility
