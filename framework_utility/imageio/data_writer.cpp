#include <framework_utility/imageio/data_writer.h>

#include <framework_utility/imageio/fail.h>
#include <framework_utility/imageio/session_manager.h>
#include <framework_utility/platform/foundation/files.h>
#include <framework_utility/platform/foundation/random.h>

#include <string>

namespace FrameworkUtility {

using detail::fail;

std::optional<URL> writeToDisk(std::span<const std::byte> data, const std::optional<UTType>& uti,
                               std::string_view sessionIdentifier, Error* error) {
  if (!uti) return fail(error, NSDataWriteToDiskError::noType);
  const std::string name = appendingPathExtensionForType(newUUIDString(), *uti);
  const std::optional<std::string> folder =
      KvSessionManager::getNewValidFolderPathForSessionIdentifier(sessionIdentifier);
  if (!folder) return fail(error, NSDataWriteToDiskError::noFolder);

  const std::string path = *folder + "/" + name;
  Error cause;
  if (!FileManager::defaultManager().writeAtomically(data, path, &cause))
    return fail(error, NSDataWriteToDiskError::writeFailed, cause);
  return URL::fileURLWithPath(path);
}

}  // namespace FrameworkUtility
