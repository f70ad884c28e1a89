#include <framework_utility/platform/ui/controls.h>

namespace FrameworkUtility {

std::string_view UIControl::className() const { return "UIControl"; }

std::string_view UIButton::className() const { return "UIButton"; }

UILabel::UILabel(const Rect& frame) : UIView(frame) { UIView::setUserInteractionEnabled(false); }

std::string_view UILabel::className() const { return "UILabel"; }

UIImageView::UIImageView(const Rect& frame) : UIView(frame) {
  UIView::setUserInteractionEnabled(false);
}

UIImageView::UIImageView(const std::optional<UIImage>& image,
                         const std::optional<UIImage>& highlightedImage)
    : UIImageView(image ? image->size().rect() : Rect()) {
  image_ = image;
  highlightedImage_ = highlightedImage;
}

std::string_view UIImageView::className() const { return "UIImageView"; }

const std::optional<UIImage>& UIImageView::image() const { return image_; }

const std::optional<UIImage>& UIImageView::highlightedImage() const { return highlightedImage_; }

}  // namespace FrameworkUtility
