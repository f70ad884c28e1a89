#include <tools/kvtool/commands.h>
#include <tools/kvtool/console.h>

#include <framework_utility/imageio/image_writer.h>
#include <framework_utility/imageio/type_utility.h>
#include <framework_utility/platform/foundation/files.h>
#include <framework_utility/platform/foundation/path.h>
#include <framework_utility/platform/imageio/image_destination.h>

#include <fmt/core.h>

namespace kvtool {

using namespace FrameworkUtility;

bool writeThumbnail(const ThumbnailOptions& options) {
  const double side = options.size;
  const std::optional<UIImage> thumbnail =
      thumbnailForImageAtURL(URL::fileURLWithPath(options.file), {side, side});
  if (!thumbnail) {
    printProblem(options.file, "there is no picture that can be decoded");
    return false;
  }
  const UTType type = robustType(paths::pathExtension(options.out)).value_or(UTTypeJPEG);
  const std::unique_ptr<CGImageDestination> destination =
      CGImageDestination::createInMemory(type.identifier(), 1);
  if (!destination) {
    printProblem(options.out, fmt::format("nothing here writes {}", type.identifier()));
    return false;
  }
  destination->addImage(*thumbnail->cgImage());
  if (!destination->finalize()) {
    printProblem(options.out, "the thumbnail cannot be encoded");
    return false;
  }
  Error error;
  if (!FileManager::defaultManager().writeAtomically(*destination->data(), options.out, &error)) {
    printProblem(options.out, error);
    return false;
  }
  return true;
}

}  // namespace kvtool
