#pragma once

#include <framework_utility/platform/foundation/files/descriptor.h>

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace FrameworkUtility::detail {

enum class Existing { keep, replace };

/// A file, folder or link that is made under a hidden, unguessable name in the folder of its place,
/// and gets its own name when it is whole. If it does not come so far, nothing of it stays.
class NewItem {
 public:
  /// `path` is a system path.
  explicit NewItem(const std::string& path);
  NewItem(const NewItem&) = delete;
  NewItem& operator=(const NewItem&) = delete;
  ~NewItem();

  /// 0, or why the folder cannot be opened; nothing else may be asked then.
  int failure() const { return failure_; }
  int folder() const { return folder_.get(); }
  const std::string& name() const { return name_; }
  const std::string& temporaryName() const { return temporaryName_; }

  /// Gives the item its name. Its bytes must be on the disk already, or a crash could leave the
  /// name with half of them. Answers 0 or an error number, EEXIST for something that is kept.
  int putInPlace(Existing existing);

 private:
  Descriptor folder_;
  int failure_ = 0;
  std::string name_;
  std::string temporaryName_;
  bool isInPlace_ = false;
};

/// Whether an item that was never put in place has such a name.
bool isTemporaryName(std::string_view name);

/// Renames within or between folders; a name that is taken is EEXIST. Answers 0 or an error number.
int renameKeeping(int fromFolder, const std::string& from, int toFolder, const std::string& to);

/// Writes all bytes to the descriptor. Answers 0 or an error number.
int writeAll(int descriptor, std::span<const std::byte> bytes);

/// The whole file at `path`, a system path, or what was there before; flushed. A file that is
/// replaced hands on its permissions. Answers 0 or an error number.
int writeFileAtomically(std::span<const std::byte> bytes, const std::string& path);

}  // namespace FrameworkUtility::detail
