#include <framework_utility/platform/graphics/exif_orientation.h>

#include <algorithm>
#include <array>

namespace FrameworkUtility::detail {

namespace {

/// By EXIF number less 1.
constexpr std::array orientations = {UIImageOrientation::up,
                                     UIImageOrientation::upMirrored,
                                     UIImageOrientation::down,
                                     UIImageOrientation::downMirrored,
                                     UIImageOrientation::leftMirrored,
                                     UIImageOrientation::right,
                                     UIImageOrientation::rightMirrored,
                                     UIImageOrientation::left};

}  // namespace

UIImageOrientation imageOrientation(double exifOrientation) {
  return exifOrientation >= 1 && exifOrientation <= 8
             ? orientations[static_cast<std::size_t>(exifOrientation) - 1]
             : UIImageOrientation::up;
}

std::optional<std::uint32_t> exifOrientation(UIImageOrientation orientation) {
  const auto* found = std::find(orientations.begin(), orientations.end(), orientation);
  if (found == orientations.end()) return std::nullopt;
  return static_cast<std::uint32_t>(found - orientations.begin() + 1);
}

}  // namespace FrameworkUtility::detail
