#include <framework_utility/platform/graphics/ui_image_drawing.h>

namespace FrameworkUtility {

namespace {

/// From the square of the bitmap as stored, (0, 0) at its top left and (1, 1) at its bottom right,
/// to that of the picture as it is shown.
AffineTransform turnFor(UIImageOrientation orientation) {
  switch (orientation) {
    case UIImageOrientation::up:
      break;
    case UIImageOrientation::down:
      return {-1, 0, 0, -1, 1, 1};
    case UIImageOrientation::left:
      return {0, -1, 1, 0, 0, 1};
    case UIImageOrientation::right:
      return {0, 1, -1, 0, 1, 0};
    case UIImageOrientation::upMirrored:
      return {-1, 0, 0, 1, 1, 0};
    case UIImageOrientation::downMirrored:
      return {1, 0, 0, -1, 0, 1};
    case UIImageOrientation::leftMirrored:
      return {0, 1, 1, 0, 0, 0};
    case UIImageOrientation::rightMirrored:
      return {0, -1, -1, 0, 1, 1};
  }
  return {};
}

}  // namespace

void drawInRect(const UIImage& image, CGContext& context, const Rect& rect) {
  if (!image.cgImage()) return;
  context.saveGState();
  context.concatCTM({rect.width(), 0, 0, rect.height(), rect.minX(), rect.minY()});
  context.concatCTM(turnFor(image.imageOrientation()));
  context.concatCTM({1, 0, 0, -1, 0, 1});  // the top row at the smallest y
  context.drawImage(*image.cgImage(), Rect(0, 0, 1, 1));
  context.restoreGState();
}

}  // namespace FrameworkUtility
