#include <framework_utility/platform/graphics/ui_image.h>

#include <utility>

namespace FrameworkUtility {

namespace {

bool liesOnItsSide(UIImageOrientation orientation) {
  switch (orientation) {
    case UIImageOrientation::left:
    case UIImageOrientation::right:
    case UIImageOrientation::leftMirrored:
    case UIImageOrientation::rightMirrored:
      return true;
    default:
      return false;
  }
}

double usableScale(double scale) { return scale > 0 ? scale : 1; }

Size sizeInPoints(const CGImage& image, double scale, UIImageOrientation orientation) {
  const Size size{static_cast<double>(image.width()) / scale,
                  static_cast<double>(image.height()) / scale};
  return liesOnItsSide(orientation) ? size.inverted() : size;
}

}  // namespace

struct UIImage::Contents {
  std::optional<CGImage> image;
  Size size;
  double scale = 1;
  UIImageOrientation orientation = UIImageOrientation::up;
};

UIImage::UIImage(std::shared_ptr<const Contents> contents) : contents_(std::move(contents)) {}

UIImage::UIImage(const CGImage& image, double scale, UIImageOrientation orientation)
    : UIImage(std::make_shared<const Contents>(
          Contents{image, sizeInPoints(image, usableScale(scale), orientation), usableScale(scale),
                   orientation})) {}

UIImage UIImage::withoutBitmap(Size size, double scale) {
  return UIImage(std::make_shared<const Contents>(
      Contents{std::nullopt, size, usableScale(scale), UIImageOrientation::up}));
}

const std::optional<CGImage>& UIImage::cgImage() const& { return contents_->image; }

Size UIImage::size() const { return contents_->size; }

double UIImage::scale() const { return contents_->scale; }

UIImageOrientation UIImage::imageOrientation() const { return contents_->orientation; }

}  // namespace FrameworkUtility
