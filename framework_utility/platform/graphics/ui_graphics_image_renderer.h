#pragma once

#include <framework_utility/plane/size.h>
#include <framework_utility/platform/graphics/cg_context.h>
#include <framework_utility/platform/graphics/ui_image.h>

#include <functional>
#include <optional>

namespace FrameworkUtility {

struct UIGraphicsImageRendererFormat {
  double scale = 0;     ///< Pixels a point. 0 or less: the main screen's.
  bool opaque = false;  ///< Without alpha, and black before anything is drawn.
};

/// Draws new images. Their points begin at the top left with y downwards.
///
///     const UIGraphicsImageRenderer renderer({200, 100}, {.scale = 2});
///     const auto image = renderer.imageWithActions([&](CGContext& context) {
///       gradient.drawInContex(context, {200, 100});
///     });
///
/// Thread: any.
class UIGraphicsImageRenderer {
 public:
  /// Selector: initWithSize:format:
  explicit UIGraphicsImageRenderer(Size size, UIGraphicsImageRendererFormat format = {});

  /// Each side has as many pixels as its points need, a begun one counted. Absent when a side is
  /// not above 0, a number is not finite, or there is no memory for so many pixels; nothing is
  /// drawn then.
  /// Selector: imageWithActions:
  std::optional<UIImage> imageWithActions(const std::function<void(CGContext&)>& actions) const;

 private:
  Size size_;
  UIGraphicsImageRendererFormat format_;
};

}  // namespace FrameworkUtility
