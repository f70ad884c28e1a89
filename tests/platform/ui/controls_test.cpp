#include <framework_utility/platform/ui/controls.h>
#include <framework_utility/platform/ui/scroll_view.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace FrameworkUtility {
namespace {

TEST(ControlsTest, LabelsAndPicturesTakeNoTouchesAtFirst) {
  EXPECT_TRUE(UIControl().isUserInteractionEnabled());
  EXPECT_TRUE(UIButton().isUserInteractionEnabled());
  EXPECT_FALSE(UILabel().isUserInteractionEnabled());
  EXPECT_FALSE(UIImageView().isUserInteractionEnabled());
  EXPECT_FALSE(UIImageView(std::optional<UIImage>()).isUserInteractionEnabled());
}

TEST(ControlsTest, APictureGivesItsViewItsSize) {
  const UIImage small = UIImage::withoutBitmap({30, 20}, 3),
                large = UIImage::withoutBitmap({300, 200});
  const UIImageView view(small, large), empty(std::nullopt, large);
  EXPECT_EQ(view.frame(), Rect(0, 0, 30, 20));
  EXPECT_EQ(view.image()->size(), small.size());
  EXPECT_EQ(view.highlightedImage()->size(), large.size());
  EXPECT_EQ(empty.frame(), Rect());
  EXPECT_EQ(empty.image(), std::nullopt);
}

TEST(ScrollViewTest, ScrollingMovesTheBoundsAndWhatIsInside) {
  UIScrollView view(Rect(10, 20, 100, 100));
  const auto cell = std::make_shared<UIView>(Rect(0, 500, 100, 50));
  view.addSubview(cell);
  view.setContentOffset({0, 480});
  EXPECT_EQ(view.contentOffset(), (Point{0, 480}));
  EXPECT_EQ(view.bounds(), Rect(0, 480, 100, 100));
  EXPECT_EQ(view.frame(), Rect(10, 20, 100, 100));
  const UIView screen;
  EXPECT_EQ(cell->convertPointToCoordinateSpace({5, 5}, screen), (Point{15, 45}));
}

TEST(CollectionViewDeathTest, NeedsALayout) {
  EXPECT_DEATH(UICollectionView({}, nullptr),
               "must be initialized with a non-nil layout parameter");
}

}  // namespace
}  // namespace FrameworkUtility
