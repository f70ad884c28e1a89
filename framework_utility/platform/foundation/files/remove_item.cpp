#include <framework_utility/platform/foundation/files/remove_item.h>

#include <framework_utility/platform/foundation/files/directory_cursor.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>
#include <vector>

namespace FrameworkUtility::detail {

namespace {

/// Anything but a folder with something in it: for that it answers ENOTEMPTY.
int removeLeaf(int at, const std::string& name) {
  if (unlinkat(at, name.c_str(), 0) == 0) return 0;
  if (errno != EISDIR) return errno;
  if (unlinkat(at, name.c_str(), AT_REMOVEDIR) == 0) return 0;
  return errno == EEXIST ? ENOTEMPTY : errno;
}

struct Level {
  std::string name;
  std::vector<std::string> entries;  // still to be removed
};

}  // namespace

int removeItem(int at, const std::string& name, ClosedFolders closed) {
  if (const int number = removeLeaf(at, name); number != ENOTEMPTY) return number;
  const auto open = [closed](int folder, const std::string& entry) {
    if (closed == ClosedFolders::open) fchmodat(folder, entry.c_str(), 0700, 0);
  };
  DirectoryCursor cursor;
  open(at, name);
  if (const int number = cursor.begin(at, name)) return number;
  int refusal = 0;
  const auto note = [&refusal](int number) {
    if (refusal == 0 && number != ENOENT) refusal = number;  // somebody else may have removed it
  };
  std::vector<Level> levels{{name, {}}};
  note(cursor.list(levels.back().entries));

  while (true) {
    if (levels.back().entries.empty()) {
      const std::string emptied = std::move(levels.back().name);
      levels.pop_back();
      if (levels.empty()) {
        const int number = removeLeaf(at, emptied);
        return refusal != 0 ? refusal : number;
      }
      if (const int number = cursor.ascend()) return refusal != 0 ? refusal : number;
      note(removeLeaf(cursor.folder(), emptied));
      continue;
    }
    std::string entry = std::move(levels.back().entries.back());
    levels.back().entries.pop_back();
    int number = removeLeaf(cursor.folder(), entry);
    if (number == ENOTEMPTY) {
      open(cursor.folder(), entry);
      number = cursor.descend(entry);
      if (number == 0) {
        levels.push_back({std::move(entry), {}});
        number = cursor.list(levels.back().entries);
      }
    }
    note(number);
  }
}

}  // namespace FrameworkUtility::detail
