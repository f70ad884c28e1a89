#include <framework_utility/imageio/session_manager.h>

#include <framework_utility/imageio/made_folders.h>
#include <framework_utility/platform/foundation/app/application.h>
#include <framework_utility/platform/foundation/app/temporary_directory.h>
#include <framework_utility/platform/foundation/app/user_defaults.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/foundation/values/random.h>

#include <vector>

namespace FrameworkUtility {
namespace {

constexpr std::string_view globalIdentifierKey = "sessionTemporaryFolderPath";

const UIScene* sceneOf(const UIView* view) {
  const UIWindow* window = view ? view->window() : nullptr;
  return window ? window->windowScene() : nullptr;
}

}  // namespace

std::string KvSessionManager::sessionIdentifierGlobal() {
  const std::shared_ptr<UserDefaults> defaults = UserDefaults::standardUserDefaults();
  if (const std::optional<Value> stored = defaults->objectForKey(globalIdentifierKey)) {
    // A path from the second time on, the bare identifier the first time, as the header says.
    if (const std::string* identifier = stored->as<std::string>()) {
      return temporaryDirectory() + *identifier;
    }
  }
  std::string identifier = "SceneGlobal_" + newUUIDString();
  defaults->setObject(identifier, globalIdentifierKey);
  return identifier;
}

std::string KvSessionManager::sessionIdentifierForScene(const UIScene* scene) {
  if (application().isExtension()) return sessionIdentifierGlobal();
  const UISceneSession* session = scene ? scene->session() : nullptr;
  const std::string persistent = session ? session->persistentIdentifier() : "";
  if (persistent.empty()) return sessionIdentifierGlobal();

  const auto* delegate = dynamic_cast<const KvSceneDelegateProtocol*>(scene->delegate());
  const std::optional<std::string> prefix = delegate ? delegate->identifierPrefix() : std::nullopt;
  return prefix.value_or("SceneUnknown") + persistent;
}

std::string KvSessionManager::sessionIdentifierForView(const UIView* view) {
  return sessionIdentifierForScene(sceneOf(view));
}

std::string KvSessionManager::sessionIdentifierForViewController(
    const UIViewController* controller) {
  // A controller without the role has the global session even when its view is in a scene.
  const auto* named = dynamic_cast<const KvSessionIdentifierProtocol*>(controller);
  if (!named) return sessionIdentifierGlobal();
  if (const std::optional<std::string> identifier = named->sessionIdentifier()) return *identifier;
  const UIView* view = controller->viewIfLoaded();
  return view ? sessionIdentifierForView(view) : sessionIdentifierGlobal();
}

std::optional<std::string> KvSessionManager::getPathForSessionIdentifier(
    std::string_view identifier) {
  detail::MadeFolders made;
  std::optional<std::string> folder = detail::sessionFolder(identifier, made);
  made.keep(nullptr);
  return folder;
}

std::optional<std::string> KvSessionManager::getNewValidFolderPathForSessionIdentifier(
    std::string_view identifier) {
  detail::MadeFolders made;
  std::optional<std::string> folder = detail::newFolderOfSession(identifier, made);
  made.keep(nullptr);
  return folder;
}

std::optional<std::string> KvSessionManager::getNewValidFolderPathGlobal() {
  // Unlike its namesake it makes no sub-folder: what is global is shared.
  return getPathForSessionIdentifier(sessionIdentifierGlobal());
}

void KvSessionManager::destroySessionForSessionIdentifierSuffix(std::string_view suffix) {
  if (suffix.empty()) return;
  FileManager& files = FileManager::defaultManager();
  const std::string folder = temporaryDirectory();
  const auto names = files.contentsOfDirectoryAtPath(folder, nullptr);
  if (!names) return;
  for (const std::string& name : *names) {
    if (name.ends_with(suffix)) files.removeItemAtPath(folder + name, nullptr);
  }
}

void KvSessionManager::destroySessionForScene(const UIScene* scene) {
  if (scene) destroySessionForSceneSession(scene->session());
}

void KvSessionManager::destroySessionForSceneSession(const UISceneSession* session) {
  if (session) destroySessionForSessionIdentifierSuffix(session->persistentIdentifier());
}

}  // namespace FrameworkUtility
