#pragma once

#include <framework_utility/platform/foundation/files/descriptor.h>

#include <sys/types.h>

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace FrameworkUtility::detail {

enum class Existing { keep, replace };

/// A file or folder that is made out of sight in the folder of its place, and gets its name when it
/// is whole. If it does not come so far, nothing of it stays.
///
/// What stays when the process is killed or the machine stops: of a file nothing, for it has no
/// name at all while it is filled. But where it replaces something it has, between two system
/// calls, a hidden name beside the other's, and a process that is killed just then leaves the whole
/// file under it; signals that can be put off are. Where the file system knows no files without
/// names, and for folders and links everywhere, the hidden name is there from the beginning, and
/// what the process was killed over stays under it.
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
  /// Hidden and unguessable; a folder is made under it by the caller.
  const std::string& temporaryName() const { return temporaryName_; }

  /// Makes a file, to be written by `file`. Answers 0 or an error number.
  int makeFile(mode_t mode);
  int file() const { return file_.get(); }

  /// Gives the item its name, once its bytes are on the disk: else a crash could leave the name
  /// with half of them. Answers 0 or an error number, EEXIST for something that is kept. When the
  /// folder cannot be flushed, a new name is taken back; what was replaced cannot be.
  int putInPlace(Existing existing);

 private:
  int giveName(Existing existing);
  int link(const std::string& name) const;

  Descriptor folder_;
  int failure_ = 0;
  std::string name_;
  std::string temporaryName_;
  Descriptor file_;
  bool isNameless_ = false;   // as long as nothing but `file_` leads to it
  bool hasReplaced_ = false;  // so that the name cannot be taken back
  bool isInPlace_ = false;
};

/// Whether an item that was never put in place has such a name.
bool isTemporaryName(std::string_view name);

/// Renames within or between folders; a name that is taken is EEXIST. Answers 0 or an error number.
int renameKeeping(int fromFolder, const std::string& from, int toFolder, const std::string& to);

/// Writes all bytes to the descriptor. Answers 0 or an error number.
int writeAll(int descriptor, std::span<const std::byte> bytes);

/// Waits until a file, or the names in a folder, are on the disk. Answers 0 or an error number; 0
/// too where that cannot be asked for: of a folder that may be changed but not listed, and of file
/// systems without this operation.
int flush(int descriptor);

/// The same of the folder at `path`, a system path.
int flushFolder(const std::string& path);

/// The whole file at `path`, a system path, or what was there before; flushed. A file that is
/// replaced hands on its permissions. Answers 0 or an error number.
int writeFileAtomically(std::span<const std::byte> bytes, const std::string& path);

}  // namespace FrameworkUtility::detail
