#include <framework_utility/imageio/type_utility.h>

namespace FrameworkUtility {

std::optional<UTType> robustType(std::string_view filenameExtension) {
  auto data = UTType::typeWithFilenameExtension(filenameExtension, UTTypeData);
  if (data && data->isDeclared()) return data;
  const auto package = UTType::typeWithFilenameExtension(filenameExtension, UTTypePackage);
  return package && package->isDeclared() ? package : data;
}

}  // namespace FrameworkUtility
