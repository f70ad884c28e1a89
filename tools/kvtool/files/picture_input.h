#pragma once

#include <tools/kvtool/console/command.h>

#include <framework_utility/platform/foundation/values/url.h>
#include <framework_utility/platform/imageio/image_source.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kvtool {

/// A picture that was opened and whose headers are whole.
class PictureInput {
 public:
  /// `name` is a file, or "-": standard input, read to its end. Absent, and reported, when it
  /// cannot be opened or is no picture that is read here.
  static std::optional<PictureInput> open(const std::string& name,
                                          const FrameworkUtility::CGImageSourceLimits& limits = {});

  const std::string& name() const { return name_; }
  /// Where its bytes can be read from the beginning, while this lives.
  const std::string& path() const { return path_; }
  FrameworkUtility::URL url() const { return FrameworkUtility::URL::fileURLWithPath(path_); }
  const FrameworkUtility::CGImageSource& source() const { return *source_; }

 private:
  std::string name_, path_;
  std::shared_ptr<void> spool_;  // of standard input; null for a file
  std::optional<FrameworkUtility::CGImageSource> source_;
};

/// --max-pixels and --max-memory, of which the help shows `mostMemory` as the standard.
void addLimits(std::vector<Argument>& arguments, FrameworkUtility::CGImageSourceLimits& limits,
               const std::string& mostMemory = "2GiB");

}  // namespace kvtool
