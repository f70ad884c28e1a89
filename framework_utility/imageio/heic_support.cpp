#include <framework_utility/imageio/image_writer.h>
#include <framework_utility/imageio/session_manager.h>
#include <framework_utility/platform/foundation/app/application.h>
#include <framework_utility/platform/foundation/app/user_defaults.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/foundation/values/random.h>
#include <framework_utility/platform/imageio/formats/codec_module.h>
#include <framework_utility/platform/imageio/image_destination.h>

#include <memory>
#include <string>

namespace FrameworkUtility {
namespace {

constexpr std::string_view answerKey = "canCreateHeic";
/// Beside the answer: the codec module that there was at that time.
constexpr std::string_view moduleKey = "canCreateHeicModule";

/// Empty when there is none.
std::string presentModule() {
  return detail::isCodecModulePresent() ? detail::codecModulePath() : "";
}

bool probe() {
  const std::optional<std::string> folder = KvSessionManager::getNewValidFolderPathGlobal();
  if (!folder) return false;
  const std::string path = *folder + "/" + newUUIDString() + ".heic";
  const bool canCreate = CGImageDestination::createWithURL(URL::fileURLWithPath(path),
                                                           UTTypeHEIC.identifier(), 1) != nullptr;
  FileManager::defaultManager().removeItemAtPath(path, nullptr);
  return canCreate;
}

}  // namespace

bool canCreateHeic() {
  const std::shared_ptr<UserDefaults> suite =
      UserDefaults::withSuiteName(application().groupSuiteName);
  if (!suite) return probe();
  const std::string module = presentModule();
  const std::optional<Value> answer = suite->objectForKey(answerKey);
  const Number* remembered = answer ? answer->as<Number>() : nullptr;
  if (remembered && suite->objectForKey(moduleKey) == Value(module)) return remembered->boolValue();

  const bool canCreate = probe();
  suite->setObject(canCreate, answerKey);
  suite->setObject(module, moduleKey);
  return canCreate;
}

}  // namespace FrameworkUtility
