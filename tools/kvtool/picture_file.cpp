#include <tools/kvtool/picture_file.h>

#include <tools/kvtool/console.h>

#include <framework_utility/platform/foundation/files.h>
#include <framework_utility/platform/imageio/image_destination.h>

#include <fmt/core.h>

namespace kvtool {

using namespace FrameworkUtility;

void printNoPicture(const std::string& file, std::string_view what) {
  if (FileManager::defaultManager().fileExistsAtPath(file))
    printProblem(file, fmt::format("there is no {} that can be decoded", what));
  else
    printProblem(file, "there is no such file");
}

bool writePicture(const CGImage& picture, std::string_view typeIdentifier,
                  const std::string& file) {
  const std::unique_ptr<CGImageDestination> destination =
      CGImageDestination::createInMemory(typeIdentifier, 1);
  if (!destination) {
    printProblem(file, fmt::format("nothing here writes {}", typeIdentifier));
    return false;
  }
  destination->addImage(picture);
  if (!destination->finalize()) {
    printProblem(file, "the picture cannot be encoded");
    return false;
  }
  Error error;
  if (!FileManager::defaultManager().writeAtomically(*destination->data(), file, &error)) {
    printProblem(file, error);
    return false;
  }
  return true;
}

}  // namespace kvtool
