#include <tools/kvtool/files/picture_output.h>

#include <tools/kvtool/console/console.h>
#include <tools/kvtool/files/output.h>

#include <framework_utility/imageio/type_utility.h>
#include <framework_utility/platform/foundation/values/path.h>
#include <framework_utility/platform/imageio/image_destination.h>

#include <fmt/core.h>

#include <algorithm>
#include <cctype>

namespace kvtool {

using namespace FrameworkUtility;

std::string formatName(const UTType& type) {
  std::string name = type.preferredFilenameExtension().value_or(type.description());
  std::transform(name.begin(), name.end(), name.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
  return name;
}

std::optional<UTType> typeNamed(std::string_view name) {
  const auto type = name.find('.') == std::string_view::npos ? robustType(name)
                                                             : UTType::typeWithIdentifier(name);
  return type && type->isDeclared() ? type : std::nullopt;
}

std::optional<UTType> typeOfOutput(const std::string& out) {
  return isStandardOutput(out) ? std::nullopt : robustType(paths::pathExtension(out));
}

std::string problemOfOutput(const std::string& out, const std::optional<UTType>& type) {
  const std::optional<UTType> named = typeOfOutput(out);
  if (type && named && *named != *type) {
    return fmt::format("{} is not a name for {}", out, formatName(*type));
  }
  const std::optional<UTType> written = type ? type : named;
  if (written && !CGImageDestination::createInMemory(written->identifier(), 1)) {
    return fmt::format("{} is not written here, only JPEG and PNG", formatName(*written));
  }
  return "";
}

std::string resultName(const std::string& file, const UTType& type) {
  return typeOfOutput(file) == type ? paths::lastPathComponent(file)
                                    : appendingPathExtensionForType(stemOf(file), type);
}

std::optional<Data> encodedPicture(const CGImage& picture, const UTType& type,
                                   const std::string& name, const Dictionary& properties,
                                   const std::shared_ptr<const MetadataBlocks>& blocks) {
  const auto destination = CGImageDestination::createInMemory(type.identifier(), 1);
  if (destination) destination->addImage(picture, properties, blocks);
  Error error;
  if (destination && destination->finalize(&error)) return destination->data();
  printProblem(name, error);
  return std::nullopt;
}

bool writePicture(const CGImage& picture, const UTType& type, const std::string& name) {
  const std::optional<Data> bytes = encodedPicture(picture, type, name);
  return bytes && writeOutput(*bytes, name);
}

}  // namespace kvtool
