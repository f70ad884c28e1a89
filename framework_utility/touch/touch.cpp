#include <framework_utility/touch/touch.h>

#include <framework_utility/platform/ui/view_coding.h>

namespace FrameworkUtility {

namespace {

const bool areKnown =
    registerViewClass<KvViewExtendTouch>("FrameworkUtility.KvViewExtendTouch",
                                         {"UIView", "UIResponder"}) &&
    registerViewClass<KvButtonExtendTouch>("FrameworkUtility.KvButtonExtendTouch",
                                           {"UIButton", "UIControl", "UIView", "UIResponder"}) &&
    registerViewClass<KvControlExtendTouch>("FrameworkUtility.KvControlExtendTouch",
                                            {"UIControl", "UIView", "UIResponder"}) &&
    registerViewClass<KvLabelExtendTouch>("FrameworkUtility.KvLabelExtendTouch",
                                          {"UILabel", "UIView", "UIResponder"}) &&
    registerViewClass<KvImageViewExtendTouch>("FrameworkUtility.KvImageViewExtendTouch",
                                              {"UIImageView", "UIView", "UIResponder"}) &&
    registerViewClass<KvCollectionVieExtendTouch>(
        "FrameworkUtility.KvCollectionVieExtendTouch",
        {"UICollectionView", "UIScrollView", "UIView", "UIResponder"});

template <class Object>
std::optional<KvTouchItem> itemOf(const std::shared_ptr<const NSObject>& object) {
  const auto adapted = std::dynamic_pointer_cast<const Object>(object);
  if (!adapted) return std::nullopt;
  return KvTouchItem(std::make_shared<KvTouchAdapter<Object>>(adapted));
}

}  // namespace

Rect KvExtendTouchUtils::hitArea(const Rect& bounds, const EdgeInsets& insets) {
  return {bounds.origin.x + insets.left, bounds.origin.y + insets.top,
          bounds.size.width - (insets.left + insets.right),
          bounds.size.height - (insets.top + insets.bottom)};
}

KvTouchItem::KvTouchItem(std::shared_ptr<const KvTouchProtocol> object)
    : object_(std::move(object)) {
  if (!object_) stop("KvTouchItem: initWithObject: object is null");
}

std::optional<KvTouchItem> KvTouchItem::touchItemWithObject(
    const std::shared_ptr<const NSObject>& object) {
  if (auto item = itemOf<UITouch>(object)) return item;
  if (auto item = itemOf<UIGestureRecognizer>(object)) return item;
  if (auto item = itemOf<UIDragSession>(object)) return item;
  return itemOf<UIContextMenuInteraction>(object);
}

Point KvTouchItem::locationIn(const UIView& view) const { return object_->locationIn(view); }

bool KvTouchItem::isTouching(const UIView& view) const { return isTouching(view, {}); }

bool KvTouchItem::isTouching(const UIView& view, const EdgeInsets& insets) const {
  const Point location = locationIn(view);
  if (const auto* extended = dynamic_cast<const KvExtendTouchProtocol*>(&view)) {
    return extended->hitAreaContainsPoint(location);
  }
  // Not `hitArea`: it adds the bounds' origin, and it rounds differently.
  const Size size = view.bounds().size;
  return Rect(insets.left, insets.top, size.width - insets.left - insets.right,
              size.height - insets.top - insets.bottom)
      .contains(location);
}

KvTouchCGPoint::KvTouchCGPoint(Point point, std::shared_ptr<const UIView> view)
    : point_(point), view_(std::move(view)) {}

std::optional<KvTouchCGPoint> KvTouchCGPoint::withObject(const std::shared_ptr<const NSObject>&) {
  return std::nullopt;
}

Point KvTouchCGPoint::locationIn(const UIView& view) const {
  return view_ ? view_->convertPointToCoordinateSpace(point_, view) : Point{};
}

template <>
std::string_view KvViewExtendTouch::className() const {
  return "FrameworkUtility.KvViewExtendTouch";
}
template <>
std::string_view KvButtonExtendTouch::className() const {
  return "FrameworkUtility.KvButtonExtendTouch";
}
template <>
std::string_view KvControlExtendTouch::className() const {
  return "FrameworkUtility.KvControlExtendTouch";
}
template <>
std::string_view KvLabelExtendTouch::className() const {
  return "FrameworkUtility.KvLabelExtendTouch";
}
template <>
std::string_view KvImageViewExtendTouch::className() const {
  return "FrameworkUtility.KvImageViewExtendTouch";
}
template <>
std::string_view KvCollectionVieExtendTouch::className() const {
  return "FrameworkUtility.KvCollectionVieExtendTouch";
}

}  // namespace FrameworkUtility
