#include <tools/kvtool/commands.h>
#include <tools/kvtool/console.h>
#include <tools/kvtool/picture_file.h>

#include <framework_utility/imageio/image_writer.h>
#include <framework_utility/imageio/type_utility.h>
#include <framework_utility/platform/foundation/path.h>

namespace kvtool {

using namespace FrameworkUtility;

bool writeThumbnail(const ThumbnailOptions& options) {
  const double side = options.size;
  const std::optional<UIImage> thumbnail =
      thumbnailForImageAtURL(URL::fileURLWithPath(options.file), {side, side});
  if (!thumbnail) {
    printNoPicture(options.file, "picture");
    return false;
  }
  const UTType type = robustType(paths::pathExtension(options.out)).value_or(UTTypeJPEG);
  return writePicture(*thumbnail->cgImage(), type.identifier(), options.out);
}

}  // namespace kvtool
