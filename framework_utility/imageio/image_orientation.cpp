#include <framework_utility/imageio/image_orientation.h>

#include <framework_utility/platform/graphics/exif_orientation.h>

namespace FrameworkUtility {

std::uint32_t exifOrientationWithImageOrientation(UIImageOrientation orientation) {
  return detail::exifOrientation(orientation).value_or(0);
}

Size adjustSizeToExif(Size size, std::int64_t exifOrientation) {
  // 4 exchanges the sides although it only mirrors, 7 does not although it turns: see the header.
  switch (exifOrientation) {
    case 4:
    case 5:
    case 6:
    case 8:
      return {size.height, size.width};
    default:
      return size;
  }
}

}  // namespace FrameworkUtility
