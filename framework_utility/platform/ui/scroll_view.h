#pragma once

#include <framework_utility/plane/point.h>
#include <framework_utility/plane/rect.h>
#include <framework_utility/platform/foundation/values/object.h>
#include <framework_utility/platform/ui/view.h>

#include <memory>
#include <string_view>

namespace FrameworkUtility {

/// A view whose content moves beneath it: the origin of its bounds is the point of the content at
/// its upper left corner.
///
/// Thread: main only.
class UIScrollView : public UIView {
 public:
  using UIView::UIView;
  std::string_view className() const override;

  /// The origin of the bounds, in points.
  Point contentOffset() const;
  void setContentOffset(Point offset);
};

/// How a collection view places its cells. An app derives from it for its own arrangements.
class UICollectionViewLayout : public NSObject, public NSCoding {
 public:
  std::string_view className() const override;
  void encodeWithCoder(NSKeyedArchiver& coder) const override;
};

/// A scrolling collection of cells.
///
/// Thread: main only.
class UICollectionView : public UIScrollView {
 public:
  /// Stops the process when `layout` is null, as the platform does.
  /// Selector: initWithFrame:collectionViewLayout:
  UICollectionView(const Rect& frame, std::shared_ptr<UICollectionViewLayout> layout);
  /// Decoding fails when the archive has no layout. Selector: initWithCoder:
  explicit UICollectionView(NSKeyedUnarchiver& coder);
  std::string_view className() const override;
  void encodeWithCoder(NSKeyedArchiver& coder) const override;

  /// Never null.
  const std::shared_ptr<UICollectionViewLayout>& collectionViewLayout() const;

 private:
  std::shared_ptr<UICollectionViewLayout> layout_;
};

}  // namespace FrameworkUtility
