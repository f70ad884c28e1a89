#include <framework_utility/imageio/data_writer.h>

#include <framework_utility/errors/fail.h>
#include <framework_utility/imageio/made_folders.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/foundation/values/random.h>

#include <string>

namespace FrameworkUtility {

using detail::fail;

std::optional<URL> writeToDisk(std::span<const std::byte> data, const std::optional<UTType>& uti,
                               std::string_view sessionIdentifier, Error* error) {
  if (!uti) return fail(error, NSDataWriteToDiskError::noType);
  const std::string name = appendingPathExtensionForType(newUUIDString(), *uti);
  detail::MadeFolders made;
  const std::optional<std::string> folder = detail::newFolderOfSession(sessionIdentifier, made);
  if (!folder) return fail(error, NSDataWriteToDiskError::noFolder);

  const std::string path = *folder + "/" + name;
  FileManager& files = FileManager::defaultManager();
  Error cause;
  if (files.writeAtomically(data, path, &cause)) {
    if (made.keep(&cause)) return URL::fileURLWithPath(path);
    files.removeItemAtPath(path, nullptr);
  }
  return fail(error, NSDataWriteToDiskError::writeFailed, made.failure().value_or(cause));
}

}  // namespace FrameworkUtility
