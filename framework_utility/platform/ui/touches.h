#pragma once

#include <framework_utility/plane/point.h>
#include <framework_utility/platform/foundation/values/object.h>
#include <framework_utility/platform/ui/view.h>

// What happens somewhere on the screen. An app derives from these classes for its own toolkit's
// touches, gestures and drags; a location is usually a point of a window, carried into the view by
// `convertPointToCoordinateSpace`.
//
// Thread: main only.

namespace FrameworkUtility {

/// What a view is told of the input at hand. This library passes it on and never looks into it.
class UIEvent : public NSObject {};

/// A finger, a pen or a mouse button that is down.
class UITouch : public NSObject {
 public:
  /// Where it is, in points, in the coordinates of `view`.
  /// Selector: locationInView:
  virtual Point locationInView(const UIView& view) const = 0;
};

/// What reads touches as a gesture.
class UIGestureRecognizer : public NSObject {
 public:
  /// The gesture's place, for several touches their centroid, in the coordinates of `view`.
  /// Selector: locationInView:
  virtual Point locationInView(const UIView& view) const = 0;
};

/// What opens a menu on a view.
class UIContextMenuInteraction : public NSObject {
 public:
  /// Where the menu was asked for, in the coordinates of `view`.
  /// Selector: locationInView:
  virtual Point locationInView(const UIView& view) const = 0;
};

/// The role of something dragged, which an object of any class may take beside its own.
class UIDragSession {
 public:
  virtual ~UIDragSession() = default;
  /// Where the drag is, in the coordinates of `view`.
  /// Selector: locationInView:
  virtual Point locationInView(const UIView& view) const = 0;
};

}  // namespace FrameworkUtility
