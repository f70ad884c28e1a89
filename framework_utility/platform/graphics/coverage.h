#pragma once

#include <framework_utility/plane/point.h>
#include <framework_utility/platform/graphics/pixman_image.h>

#include <optional>
#include <vector>

namespace FrameworkUtility::detail {

/// A box of whole pixels: those from `left` on and before `right`, from `top` on and before
/// `bottom`. Empty when there are none.
struct PixelBox {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;

  int width() const { return right - left; }
  int height() const { return bottom - top; }
  bool isEmpty() const { return right <= left || bottom <= top; }
};

/// How much of each pixel a shape covers, 0 to 255, in its box; nothing outside. Moved only.
class Coverage {
 public:
  /// The inside of a closed polygon by the non-zero winding rule, as far as it lies in `bounds`.
  /// Corners are in pixels, y downwards; one beyond 1e30 or NaN makes it empty. Absent when memory
  /// is short. The time grows with the square of the number of corners.
  static std::optional<Coverage> ofPolygon(const std::vector<Point>& corners,
                                           const PixelBox& bounds);
  /// What both cover, each pixel the product. Absent when memory is short.
  std::optional<Coverage> intersected(const Coverage& other) const;

  const PixelBox& box() const { return box_; }
  /// Of one component, the box's size; null for an empty box.
  pixman_image_t* mask() const { return mask_.get(); }

 private:
  Coverage() = default;
  static std::optional<Coverage> ofNothing(const PixelBox& box);

  PixelBox box_;
  PixmanImage mask_;
};

}  // namespace FrameworkUtility::detail
