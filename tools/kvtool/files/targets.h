#pragma once

#include <tools/kvtool/console/command.h>
#include <tools/kvtool/files/output.h>
#include <tools/kvtool/files/picture_input.h>

#include <framework_utility/platform/foundation/app/uniform_type.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace kvtool {

/// Where a command writes its pictures, and as what.
struct Targets {
  std::optional<std::string> out = std::nullopt;
  std::optional<std::string> folder = std::nullopt;
  std::optional<std::string> typeName = std::nullopt;

  /// What the type's name or the extension of `out` says; HEIC becomes JPEG where nothing encodes
  /// it. Absent when neither says any.
  std::optional<FrameworkUtility::UTType> type() const;
};

/// --out, --out-dir and --type.
void addTargets(std::vector<Argument>& arguments, Targets& targets);

/// What is wrong with them for so many files; empty for nothing.
std::string problemOf(const Targets& targets, std::size_t files);

/// PNG for PNG, else JPEG.
FrameworkUtility::UTType usualType(const PictureInput& input);

/// Gives each file's result its place.
class TargetNames {
 public:
  TargetNames(const Targets& targets, const std::vector<std::string>& files);

  /// Empty, and reported, when there is none; or neither --out nor --out-dir was given.
  std::string nameFor(const std::string& file, const FrameworkUtility::UTType& type);

 private:
  std::string out_;
  std::optional<OutputFolder> folder_;
};

}  // namespace kvtool
