#pragma once

#include <framework_utility/plane/affine_transform.h>
#include <framework_utility/plane/point.h>
#include <framework_utility/plane/rect.h>
#include <framework_utility/platform/graphics/cg_gradient.h>
#include <framework_utility/platform/graphics/cg_image.h>
#include <framework_utility/platform/graphics/ui_color.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace FrameworkUtility {

namespace detail {
class BitmapMemory;
class Coverage;
class GradientFill;
}  // namespace detail

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
  AffineTransform ctm() const;
  /// From now on points are mapped by `transform` first.
  /// Platform: CGContextConcatCTM
  void concatCTM(const AffineTransform& transform);

  /// Remembers the transform, the fill colour and the clip.
  /// Platform: CGContextSaveGState
  void saveGState();
  /// Takes back what was remembered last; without it, nothing.
  /// Platform: CGContextRestoreGState
  void restoreGState();

  /// From now on nothing is drawn outside the polygon either: what its sides go round by the
  /// non-zero winding rule. Pixels on its edge are drawn as far as they lie inside, so that the
  /// cells of a collage meet without steps. Fewer than three corners, or one that is not a number,
  /// leave nothing to draw on. The time grows with the square of the number of corners.
  /// Platform: CGContextAddLines and CGContextClip
  void clipToPolygon(const std::vector<Point>& corners);

  /// What `fillRect` fills with; black at first. Components are clamped into 0...1.
  /// Platform: CGContextSetFillColorWithColor
  void setFillColor(const CGColor& color);
  /// Pixels that the rect covers in part are filled in part.
  /// Platform: CGContextFillRect
  void fillRect(const Rect& rect);
  /// Stretches the bitmap into the rect, its top row at the largest y: where y grows downwards, as
  /// in an image renderer, it stands on its head, as on the platform (see `drawInRect`). Reduced by
  /// averaging areas, enlarged by bilinear interpolation; its colours are brought into sRGB. A Lab
  /// bitmap and an alpha mask are not drawn.
  /// Platform: CGContextDrawImage
  void drawImage(const CGImage& image, const Rect& rect);

  // Both fill the whole bitmap within the clip, going on beyond the start and the end as with the
  // platform's drawing options 3. They draw nothing when a number is not finite or the transform
  // has no inverse.

  /// With both points the same, the last colour everywhere.
  /// Platform: CGContextDrawLinearGradient
  void drawLinearGradient(const CGGradient& gradient, Point start, Point end);
  /// From `center` outwards; the end is at `radius`. With a radius of 0, the last colour
  /// everywhere; a negative one draws nothing.
  /// Platform: CGContextDrawRadialGradient, both circles centred on one point and the first of
  /// radius 0
  void drawRadialGradient(const CGGradient& gradient, Point center, double radius);

  /// The bitmap as it is now; later drawing leaves the image as it is. Absent when memory is short,
  /// or was for something that should have been drawn, or when a side of a bitmap that was clipped,
  /// filled or drawn into exceeds 32,766 pixels, or an image had to be taken from further away.
  /// Platform: CGBitmapContextCreateImage
  std::optional<CGImage> createImage();

 private:
  struct State;

  CGContext(const CGImageLayout& layout, std::unique_ptr<detail::BitmapMemory> memory);

  std::optional<detail::Coverage> insideOf(const std::vector<Point>& corners) const;
  template <class Draw>
  void drawInside(const detail::Coverage& where, const Draw& draw);
  template <class Draw>
  void drawInside(const Rect& rect, const Draw& draw);
  void draw(const std::optional<detail::GradientFill>& fill, bool isOpaque);

  CGImageLayout layout_;
  std::unique_ptr<detail::BitmapMemory> memory_;
  std::vector<State> states_;  // those remembered, and last the one in force
  bool isIncomplete_ = false;  // memory was short for something
};

}  // namespace FrameworkUtility
