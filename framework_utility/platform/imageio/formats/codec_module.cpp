#include <framework_utility/platform/imageio/formats/codec_module.h>

#include <framework_utility/platform/foundation/app/application.h>
#include <framework_utility/platform/foundation/files/files.h>

namespace FrameworkUtility::detail {

std::string codecModulePath() {
  const std::string& configured = application().codecModulePath;
  return configured.empty() ? FRAMEWORK_UTILITY_CODEC_MODULE : configured;
}

bool isCodecModulePresent() {
  const auto attributes =
      FileManager::defaultManager().attributesOfItemAtPath(codecModulePath(), nullptr);
  return attributes && attributes->kind == FileKind::file;
}

}  // namespace FrameworkUtility::detail
