#include <tools/kvtool/files/targets.h>

#include <tools/kvtool/files/picture_output.h>

#include <framework_utility/imageio/image_writer.h>

#include <fmt/core.h>

namespace kvtool {

using namespace FrameworkUtility;

std::optional<UTType> Targets::type() const {
  if (!typeName) return out ? typeOfOutput(*out) : std::nullopt;
  const std::optional<UTType> type = typeNamed(*typeName);
  return type && type->conformsToType(UTTypeHEIC) && !canCreateHeic() ? UTTypeJPEG : type;
}

void addTargets(std::vector<Argument>& arguments, Targets& targets) {
  arguments.push_back({"-o,--out", anyName(targets.out, "FILE"),
                       "Where to write, under exactly this name; - is standard output"});
  arguments.push_back({"-O,--out-dir", anyName(targets.folder, "FOLDER"),
                       "Where to write several, each under its own name"});
  arguments.push_back(
      {"-t,--type", anyName(targets.typeName, "TYPE"), "jpeg, png, heic, or a type's identifier"});
}

std::string problemOf(const Targets& targets, std::size_t files) {
  if (targets.out && targets.folder) return "--out and --out-dir exclude each other";
  if (targets.out && files > 1) return "--out takes one picture; give --out-dir for several";
  const std::optional<UTType> type = targets.type();
  if (targets.typeName && !type) return fmt::format("there is no type {}", *targets.typeName);
  return problemOfOutput(targets.out.value_or(""), type);
}

UTType usualType(const PictureInput& input) {
  return input.source().type() == UTTypePNG.identifier() ? UTTypePNG : UTTypeJPEG;
}

TargetNames::TargetNames(const Targets& targets, const std::vector<std::string>& files)
    : out_(targets.out.value_or("")) {
  if (targets.folder) folder_.emplace(*targets.folder, files);
}

std::string TargetNames::nameFor(const std::string& file, const UTType& type) {
  return folder_ ? folder_->claim(file, resultName(file, type)) : out_;
}

}  // namespace kvtool
