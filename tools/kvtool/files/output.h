#pragma once

#include <cstddef>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kvtool {

/// Writes to `name` and reports what fails. A file, or nothing, is replaced by the whole new file
/// or stays; behind a link that is its target. A pipe or a device is written to. "-" is standard
/// output.
[[nodiscard]] bool writeOutput(std::span<const std::byte> bytes, const std::string& name);

/// Whether `name` stands for standard output.
bool isStandardOutput(std::string_view name);

/// A folder for the results of several files, each under a name made from the file's.
class OutputFolder {
 public:
  /// Makes `folder` when something is claimed in it. `files` are never replaced.
  OutputFolder(std::string folder, const std::vector<std::string>& files);

  /// The path for the result of `file` under `name`. Empty, and reported, when it would replace one
  /// of the files or another result, or the folder cannot be made.
  std::string claim(const std::string& file, const std::string& name);

 private:
  std::string folder_;
  std::set<std::string> files_;    // by their paths without links
  std::set<std::string> claimed_;  // names
};

/// "photo" of "/a/photo.jpg", "stdin" of "-".
std::string stemOf(const std::string& file);

}  // namespace kvtool
