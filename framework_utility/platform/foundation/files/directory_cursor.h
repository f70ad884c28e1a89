#pragma once

#include <framework_utility/platform/foundation/files/descriptor.h>

#include <sys/types.h>

#include <string>
#include <vector>

namespace FrameworkUtility::detail {

/// Which folder it is, whatever its name.
struct FolderIdentity {
  dev_t device = 0;
  ino_t inode = 0;
  friend bool operator==(const FolderIdentity&, const FolderIdentity&) = default;
};

/// A place in a tree of folders. It needs one descriptor and no stack however deep the tree is, no
/// path that could grow too long, and never leaves the tree: links are not followed, and a folder
/// that was moved away meanwhile is noticed on the way up.
///
/// Operations answer 0 or an error number.
class DirectoryCursor {
 public:
  /// Begins at the folder `name` in the folder that `at` is open on.
  int begin(int at, const std::string& name);
  int descend(const std::string& name);
  int ascend();

  int folder() const { return folder_.get(); }
  const FolderIdentity& identity() const { return path_.back(); }
  /// The names in the folder, without "." and "..".
  int list(std::vector<std::string>& names) const;

 private:
  int open(int at, const std::string& name);

  Descriptor folder_;
  std::vector<FolderIdentity> path_;  // from the beginning to `folder_`
};

/// The names in the folder that `folder` is open on, without "." and "..". Answers as above.
int listFolder(Descriptor folder, std::vector<std::string>& names);

}  // namespace FrameworkUtility::detail
