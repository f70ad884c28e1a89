#include <framework_utility/platform/ui/scroll_view.h>

#include <framework_utility/platform/foundation/values/stop.h>

#include <utility>

namespace FrameworkUtility {

std::string_view UIScrollView::className() const { return "UIScrollView"; }

Point UIScrollView::contentOffset() const { return bounds().origin; }

void UIScrollView::setContentOffset(Point offset) { setBounds({offset, bounds().size}); }

std::string_view UICollectionViewLayout::className() const { return "UICollectionViewLayout"; }

UICollectionView::UICollectionView(const Rect& frame,
                                   std::shared_ptr<UICollectionViewLayout> layout)
    : UIScrollView(frame), layout_(std::move(layout)) {
  if (!layout_) stop("UICollectionView must be initialized with a non-nil layout parameter");
}

std::string_view UICollectionView::className() const { return "UICollectionView"; }

const std::shared_ptr<UICollectionViewLayout>& UICollectionView::collectionViewLayout() const {
  return layout_;
}

}  // namespace FrameworkUtility
