#pragma once

#include <framework_utility/plane/edge_insets.h>
#include <framework_utility/plane/point.h>
#include <framework_utility/plane/rect.h>
#include <framework_utility/platform/foundation/values/object.h>
#include <framework_utility/platform/foundation/values/stop.h>
#include <framework_utility/platform/ui/controls.h>
#include <framework_utility/platform/ui/scroll_view.h>
#include <framework_utility/platform/ui/touches.h>
#include <framework_utility/platform/ui/view.h>

#include <concepts>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

// One interface to everything that is somewhere on the screen, and views that answer touches in a
// rect larger or smaller than their bounds. A finger covers some 44 points; a crop handle is drawn
// with 20.
//
//      (-12,-12)                        bounds            (0, 0, 20, 20)
//           +- - - - - - -+             hitTestEdgeInsets -12 on each side
//           |   +-----+   |             hit area          (-12, -12, 44, 44)
//               |     |
//           |   +-----+   |             The near edges belong to it, the far ones do not:
//           +- - - - - - -+             (-12, -12) touches, (32, 32) does not.
//                      (32,32)
//
// Lengths are in points, in a view's own coordinates, y downwards. Insets are measured inward:
// positive shrinks, negative enlarges. Insets larger than the view turn the area inside out, and it
// is read as the standardised rect; an area with a side of exactly 0, and one whose edges are no
// numbers, contains nothing.
//
// Thread: main only.

namespace FrameworkUtility {

/// Anything that is somewhere on the screen.
class KvTouchProtocol {
 public:
  virtual ~KvTouchProtocol() = default;
  /// Where it is, in the coordinates of `view`.
  /// Selector: locationIn:
  virtual Point locationIn(const UIView& view) const = 0;
};

/// The role of a view with a hit area of its own: its bounds less `hitTestEdgeInsets`.
class KvExtendTouchProtocol {
 public:
  virtual ~KvExtendTouchProtocol() = default;
  /// All zero at first.
  /// Selector: hitTestEdgeInsets
  virtual EdgeInsets hitTestEdgeInsets() const = 0;
  /// Selector: setHitTestEdgeInsets:
  virtual void setHitTestEdgeInsets(const EdgeInsets& insets) = 0;
  /// `point` is in the view's own coordinates. Whether the view is hidden or takes touches is not
  /// asked.
  /// Selector: hitAreaContainsPoint:
  virtual bool hitAreaContainsPoint(Point point) const = 0;
};

/// A view with a hit area of its own.
template <class View>
concept ExtendTouchView =
    std::derived_from<View, UIView> && std::derived_from<View, KvExtendTouchProtocol>;

/// The one rule of hit areas.
class KvExtendTouchUtils {
 public:
  KvExtendTouchUtils() = delete;

  /// Whether (x + left, y + top, w - (left + right), h - (top + bottom)) contains `point`, for
  /// bounds (x, y, w, h) and the view's own insets.
  /// Selector: view:hitAreaContainsPoint:
  template <ExtendTouchView View>
  static bool viewHitAreaContainsPoint(const View& view, Point point) {
    return hitArea(view.bounds(), view.hitTestEdgeInsets()).contains(point);
  }

 private:
  static Rect hitArea(const Rect& bounds, const EdgeInsets& insets);
};

/// Holds something that is somewhere on the screen, and says what it touches.
class KvTouchItem {
 public:
  KvTouchItem() = delete;
  /// Stops the process when `object` is null.
  /// Selector: initWithObject:
  explicit KvTouchItem(std::shared_ptr<const KvTouchProtocol> object);
  KvTouchItem(const KvTouchItem&) = default;
  KvTouchItem& operator=(const KvTouchItem&) = default;

  /// An item of the adapter that fits, tried in this order: touch, gesture recogniser, drag
  /// session, context-menu interaction. Absent for null and for any other object; a point goes into
  /// a `KvTouchCGPoint`.
  /// Selector: touchItemWithObject:
  static std::optional<KvTouchItem> touchItemWithObject(
      const std::shared_ptr<const NSObject>& object);

  /// Never null.
  const std::shared_ptr<const KvTouchProtocol>& object() const& { return object_; }
  std::shared_ptr<const KvTouchProtocol> object() const&& { return object_; }
  /// Where the object is, in the coordinates of `view`.
  /// Selector: locationIn:
  Point locationIn(const UIView& view) const;
  /// Whether the location is in the hit area of a view that has its own; for any other view,
  /// whether it is in (0, 0, w, h) with the size of the view's bounds. Their origin is not added
  /// there: a scrolled view is compared as if it were not, which callers allow for.
  /// Selector: isTouching:
  bool isTouching(const UIView& view) const;
  /// The same with (left, top, w - left - right, h - top - bottom) for a view without a hit area of
  /// its own; a view that has one ignores `insets`: its own area counts.
  /// Selector: isTouching:hitTestEdgeInsets:
  bool isTouching(const UIView& view, const EdgeInsets& insets) const;

 private:
  std::shared_ptr<const KvTouchProtocol> object_;
};

/// A platform object that tells its place itself, through `locationInView`.
template <class Object>
class KvTouchAdapter final : public KvTouchProtocol {
 public:
  KvTouchAdapter() = delete;
  /// Stops the process when `object` is null.
  /// Selector: initWithObject:
  explicit KvTouchAdapter(std::shared_ptr<const Object> object) : object_(std::move(object)) {
    if (!object_) stop("KvTouchAdapter: initWithObject: object is null");
  }
  KvTouchAdapter(const KvTouchAdapter&) = default;
  KvTouchAdapter& operator=(const KvTouchAdapter&) = default;

  /// Never null.
  const std::shared_ptr<const Object>& object() const& { return object_; }
  std::shared_ptr<const Object> object() const&& { return object_; }
  Point locationIn(const UIView& view) const override { return object_->locationInView(view); }

 private:
  std::shared_ptr<const Object> object_;
};

using KvTouchUITouch = KvTouchAdapter<UITouch>;
using KvTouchUIGestureRecognizer = KvTouchAdapter<UIGestureRecognizer>;
using KvTouchUIDragSession = KvTouchAdapter<UIDragSession>;
using KvTouchUIContextMenuInteraction = KvTouchAdapter<UIContextMenuInteraction>;

/// A point of a view.
class KvTouchCGPoint final : public KvTouchProtocol {
 public:
  KvTouchCGPoint() = delete;
  /// `point` is in the coordinates of `view`. Without a view it is at (0, 0) of every view.
  /// Selector: initWithPoint:inView:
  KvTouchCGPoint(Point point, std::shared_ptr<const UIView> view);
  /// Always absent: no object is a point.
  /// Selector: initWithObject:
  static std::optional<KvTouchCGPoint> withObject(const std::shared_ptr<const NSObject>& object);

  Point object() const { return point_; }
  const std::shared_ptr<const UIView>& view() const& { return view_; }  ///< May be null.
  std::shared_ptr<const UIView> view() const&& { return view_; }
  Point locationIn(const UIView& view) const override;

 private:
  Point point_;
  std::shared_ptr<const UIView> view_;
};

/// `Base`, a view, with a hit area of its own and the constructors of `Base`. From an archive its
/// insets are zero again: they are not written. An app extends its own views the same way:
/// `class HandleView : public KvExtendTouch<AppView>`.
template <std::derived_from<UIView> Base>
class KvExtendTouch : public Base, public KvExtendTouchProtocol {
 public:
  using Base::Base;

  std::string_view className() const override { return Base::className(); }

  EdgeInsets hitTestEdgeInsets() const override { return insets_; }
  void setHitTestEdgeInsets(const EdgeInsets& insets) override { insets_ = insets; }
  bool hitAreaContainsPoint(Point point) const override {
    return KvExtendTouchUtils::viewHitAreaContainsPoint(*this, point);
  }
  /// Whether the hit area contains `point`, when there are insets and the view is not hidden and
  /// takes touches; in every other case what `Base` answers. So a hidden view does not refuse:
  /// the toolkit never asks it.
  /// Selector: pointInside:withEvent:
  bool pointInside(Point point, const UIEvent* event) const override {
    const bool ownArea = this->hitTestEdgeInsets() != EdgeInsets{} &&
                         this->isUserInteractionEnabled() && !this->isHidden();
    return ownArea ? this->hitAreaContainsPoint(point) : Base::pointInside(point, event);
  }

 private:
  EdgeInsets insets_;
};

using KvViewExtendTouch = KvExtendTouch<UIView>;
using KvButtonExtendTouch = KvExtendTouch<UIButton>;
using KvControlExtendTouch = KvExtendTouch<UIControl>;
using KvLabelExtendTouch = KvExtendTouch<UILabel>;
using KvImageViewExtendTouch = KvExtendTouch<UIImageView>;
using KvCollectionVieExtendTouch = KvExtendTouch<UICollectionView>;  // spelt so in the apps

// Implementation details

template <>
std::string_view KvViewExtendTouch::className() const;
template <>
std::string_view KvButtonExtendTouch::className() const;
template <>
std::string_view KvControlExtendTouch::className() const;
template <>
std::string_view KvLabelExtendTouch::className() const;
template <>
std::string_view KvImageViewExtendTouch::className() const;
template <>
std::string_view KvCollectionVieExtendTouch::className() const;

}  // namespace FrameworkUtility
