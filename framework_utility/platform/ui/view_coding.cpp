// Archives of views.

#include <framework_utility/platform/ui/view_coding.h>

#include <framework_utility/platform/foundation/archives/coder_failure.h>
#include <framework_utility/platform/foundation/archives/keyed_archiver.h>
#include <framework_utility/platform/foundation/archives/keyed_unarchiver.h>
#include <framework_utility/platform/ui/controls.h>
#include <framework_utility/platform/ui/geometry_text.h>
#include <framework_utility/platform/ui/scene.h>
#include <framework_utility/platform/ui/scroll_view.h>

#include <string>

namespace FrameworkUtility {
namespace {

constexpr std::string_view boundsKey = "UIBounds";
constexpr std::string_view centerKey = "UICenter";
constexpr std::string_view hiddenKey = "UIHidden";
constexpr std::string_view interactionDisabledKey = "UIUserInteractionDisabled";
constexpr std::string_view subviewsKey = "UISubviews";
constexpr std::string_view layoutKey = "UICollectionLayout";

std::string textIn(NSKeyedUnarchiver& coder, std::string_view key) {
  const std::optional<Value> object = coder.decodeObjectForKey(key);
  const auto* text = object ? object->as<std::string>() : nullptr;
  return text ? *text : std::string();
}

template <class T>
std::shared_ptr<T> objectIn(const std::optional<Value>& value) {
  const auto* object = value ? value->as<std::shared_ptr<NSObject>>() : nullptr;
  return object ? std::dynamic_pointer_cast<T>(*object) : nullptr;
}

Rect frameIn(NSKeyedUnarchiver& coder) {
  const Size size = CGRectFromString(textIn(coder, boundsKey)).size;
  const Point center = CGPointFromString(textIn(coder, centerKey));
  return {{center.x - size.width * 0.5, center.y - size.height * 0.5}, size};
}

std::shared_ptr<UICollectionViewLayout> layoutIn(NSKeyedUnarchiver& coder) {
  if (auto layout = objectIn<UICollectionViewLayout>(coder.decodeObjectForKey(layoutKey))) {
    return layout;
  }
  coder.failWithError(
      detail::coderError(CoderError::readCorrupt, "a collection view has no layout"));
  return std::make_shared<UICollectionViewLayout>();  // of a view that nobody will see
}

const bool areKnown =
    registerViewClass<UIView>("UIView", {"UIResponder"}) &&
    registerViewClass<UIWindow>("UIWindow", {"UIView", "UIResponder"}) &&
    registerViewClass<UIControl>("UIControl", {"UIView", "UIResponder"}) &&
    registerViewClass<UIButton>("UIButton", {"UIControl", "UIView", "UIResponder"}) &&
    registerViewClass<UILabel>("UILabel", {"UIView", "UIResponder"}) &&
    registerViewClass<UIImageView>("UIImageView", {"UIView", "UIResponder"}) &&
    registerViewClass<UIScrollView>("UIScrollView", {"UIView", "UIResponder"}) &&
    registerViewClass<UICollectionView>("UICollectionView",
                                        {"UIScrollView", "UIView", "UIResponder"}) &&
    registerCodingClass({"UICollectionViewLayout",
                         {},
                         [](NSKeyedUnarchiver&) -> std::optional<Value> {
                           return Value(std::make_shared<UICollectionViewLayout>());
                         },
                         [] { return false; }});

}  // namespace

UIView::UIView(NSKeyedUnarchiver& coder) : UIView(frameIn(coder)) {
  UIView::setBounds(CGRectFromString(textIn(coder, boundsKey)));
  UIView::setHidden(coder.decodeBoolForKey(hiddenKey));
  UIView::setUserInteractionEnabled(!coder.decodeBoolForKey(interactionDisabledKey));
  const std::optional<Value> subviews = coder.decodeObjectForKey(subviewsKey);
  if (const auto* views = subviews ? subviews->as<Array>() : nullptr) {
    for (const Value& view : *views) UIView::addSubview(objectIn<UIView>(view));
  }
}

void UIView::encodeWithCoder(NSKeyedArchiver& coder) const {
  const Rect place = frame();
  coder.encodeObject(Value(NSStringFromCGRect(bounds())), boundsKey);
  coder.encodeObject(Value(NSStringFromCGPoint({place.origin.x + place.size.width * 0.5,
                                                place.origin.y + place.size.height * 0.5})),
                     centerKey);
  if (isHidden()) coder.encodeBool(true, hiddenKey);
  if (!isUserInteractionEnabled()) coder.encodeBool(true, interactionDisabledKey);
  if (subviews().empty()) return;
  coder.encodeObject(Value(Array(subviews().begin(), subviews().end())), subviewsKey);
}

UILabel::UILabel(NSKeyedUnarchiver& coder) : UIView(coder) {}

UIImageView::UIImageView(NSKeyedUnarchiver& coder) : UIView(coder) {}

void UIImageView::encodeWithCoder(NSKeyedArchiver& coder) const {
  UIView::encodeWithCoder(coder);
  if (image_ || highlightedImage_) {
    coder.failWithError(
        detail::coderError(CoderError::invalidValue, "a view's pictures cannot be archived"));
  }
}

void UICollectionViewLayout::encodeWithCoder(NSKeyedArchiver&) const {}

UICollectionView::UICollectionView(NSKeyedUnarchiver& coder)
    : UIScrollView(coder), layout_(layoutIn(coder)) {}

void UICollectionView::encodeWithCoder(NSKeyedArchiver& coder) const {
  UIScrollView::encodeWithCoder(coder);
  coder.encodeObject(Value(layout_), layoutKey);
}

}  // namespace FrameworkUtility
