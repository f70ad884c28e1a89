#pragma once

#include <framework_utility/geometry/plane/affine_transform.h>
#include <framework_utility/geometry/plane/point.h>
#include <framework_utility/platform/graphics/cg_gradient.h>
#include <framework_utility/platform/graphics/cg_image.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <span>

namespace FrameworkUtility {

namespace detail {
class GradientFill;
}

/// A bitmap that is drawn into: 8-bit red, green, blue and alpha in the device RGB space, alpha
/// premultiplied (`premultipliedLast`) or not there (`noneSkipLast`). As on the platform, its
/// points begin as its pixels, from the bottom left with y upwards, while memory holds the top row
/// first; `concatCTM` turns and scales them.
///
/// Thread: one at a time.
class CGContext {
 public:
  /// In memory of its own, transparent or, without alpha, black. Null when a side is 0, the alpha
  /// information is none of the two, or memory is short.
  /// Platform: CGBitmapContextCreate
  static std::unique_ptr<CGContext> createBitmap(
      std::size_t width, std::size_t height,
      CGImageAlphaInfo alphaInfo = CGImageAlphaInfo::premultipliedLast);
  /// In `memory`, which must outlive the context, over what stands there. Null when the layout is
  /// none of the two or needs more memory.
  /// Platform: CGBitmapContextCreate
  static std::unique_ptr<CGContext> createBitmapWithData(std::span<std::byte> memory,
                                                         const CGImageLayout& layout);
  CGContext(const CGContext&) = delete;
  CGContext& operator=(const CGContext&) = delete;
  ~CGContext();

  const CGImageLayout& layout() const { return layout_; }

  /// From points to pixels whose y grows downwards from the top row.
  /// Platform: CGContextGetCTM, but for the direction of y
  const AffineTransform& ctm() const { return ctm_; }
  /// From now on points are mapped by `transform` first.
  /// Platform: CGContextConcatCTM
  void concatCTM(const AffineTransform& transform);

  // Both fill the whole bitmap, going on beyond the start and the end as with the platform's
  // drawing options 3. They draw nothing when a number is not finite or the transform has no
  // inverse.

  /// With both points the same, the last colour everywhere.
  /// Platform: CGContextDrawLinearGradient
  void drawLinearGradient(const CGGradient& gradient, Point start, Point end);
  /// From `center` outwards; the end is at `radius`. With a radius of 0, the last colour
  /// everywhere; a negative one draws nothing.
  /// Platform: CGContextDrawRadialGradient, both circles centred on one point and the first of
  /// radius 0
  void drawRadialGradient(const CGGradient& gradient, Point center, double radius);

  /// The bitmap as it is now; later drawing leaves the image as it is. Absent when memory is short.
  /// Platform: CGBitmapContextCreateImage
  std::optional<CGImage> createImage();

 private:
  class Memory;

  CGContext(const CGImageLayout& layout, std::unique_ptr<Memory> memory);
  void draw(const std::optional<detail::GradientFill>& fill, bool isOpaque);

  CGImageLayout layout_;
  AffineTransform ctm_;
  std::unique_ptr<Memory> memory_;
};

}  // namespace FrameworkUtility
