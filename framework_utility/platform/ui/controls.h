#pragma once

#include <framework_utility/plane/rect.h>
#include <framework_utility/platform/graphics/ui_image.h>
#include <framework_utility/platform/ui/view.h>

#include <optional>
#include <string_view>

// The views that an interface is made of, as far as touches see them: what they show and do is the
// toolkit's.
//
// Thread: main only.

namespace FrameworkUtility {

/// What sends an action when it is used.
class UIControl : public UIView {
 public:
  using UIView::UIView;
  std::string_view className() const override;
};

/// A control to press.
class UIButton : public UIControl {
 public:
  using UIControl::UIControl;
  std::string_view className() const override;
};

/// A line of text. It takes no user interaction until `setUserInteractionEnabled(true)`.
class UILabel : public UIView {
 public:
  /// Selector: initWithFrame:
  explicit UILabel(const Rect& frame = {});
  /// Selector: initWithCoder:
  explicit UILabel(NSKeyedUnarchiver& coder);
  std::string_view className() const override;
};

/// Shows a picture. It takes no user interaction until `setUserInteractionEnabled(true)`.
class UIImageView : public UIView {
 public:
  /// Selector: initWithFrame:
  explicit UIImageView(const Rect& frame = {});
  /// Without pictures. Selector: initWithCoder:
  explicit UIImageView(NSKeyedUnarchiver& coder);
  /// At (0, 0) with the size of `image`, in points; of no size when that is absent.
  /// Selector: initWithImage:, initWithImage:highlightedImage:
  explicit UIImageView(const std::optional<UIImage>& image,
                       const std::optional<UIImage>& highlightedImage = std::nullopt);
  std::string_view className() const override;
  /// Fails while it has a picture: archives hold none. Selector: encodeWithCoder:
  void encodeWithCoder(NSKeyedArchiver& coder) const override;

  const std::optional<UIImage>& image() const;
  /// What it shows in place of `image` while it is highlighted.
  const std::optional<UIImage>& highlightedImage() const;

 private:
  std::optional<UIImage> image_;
  std::optional<UIImage> highlightedImage_;
};

}  // namespace FrameworkUtility
