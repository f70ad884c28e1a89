#pragma once

#include <framework_utility/platform/foundation/files/descriptor.h>
#include <framework_utility/platform/foundation/values/data.h>
#include <framework_utility/platform/foundation/values/value.h>

#include <sys/stat.h>

#include <string>
#include <string_view>

namespace FrameworkUtility::detail {

/// The property list of a suite of settings, in a folder of its own, and the lock that processes
/// take to change it. Thread: one at a time.
class SettingsFile {
 public:
  explicit SettingsFile(std::string folder);

  /// What the file holds now; nothing when it is missing or no property list. When it cannot be
  /// read, what it held before.
  const Dictionary& settings();

  /// Puts `value` under `key`, or takes the key away when it is null, in what the file holds now.
  /// Whether that is stored. A file that is no property list of settings is kept under another name
  /// beside the new one.
  bool change(std::string_view key, const Value* value);

 private:
  bool refresh();
  void forget();
  bool keepAside() const;
  void removeLeftovers() const;

  std::string folder_;
  std::string path_;
  bool hasLookedForLeftovers_ = false;

  /// What was read last. As long as the file is open no other can get its number, so that one look
  /// at the number tells whether the file was replaced.
  Descriptor file_;
  struct stat status_ {};
  Data bytes_;
  Dictionary settings_;
  bool isDamaged_ = false;  // there is a file, and it holds something else
};

}  // namespace FrameworkUtility::detail
