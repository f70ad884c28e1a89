#include <framework_utility/platform/ui/controls.h>
#include <framework_utility/platform/ui/scene.h>
#include <framework_utility/platform/ui/scroll_view.h>
#include <framework_utility/platform/ui/view.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace FrameworkUtility {
namespace {

std::shared_ptr<UIView> addView(UIView& superview, const Rect& frame = {}) {
  auto view = std::make_shared<UIView>(frame);
  superview.addSubview(view);
  return view;
}

TEST(ViewTest, FrameAndBoundsMoveEachOther) {
  UIView view(Rect(10, 20, 30, 40));
  EXPECT_EQ(view.frame(), Rect(10, 20, 30, 40));
  EXPECT_EQ(view.bounds(), Rect(0, 0, 30, 40));
  view.setBounds(Rect(0, 500, 30, 40));  // scrolled
  EXPECT_EQ(view.frame(), Rect(10, 20, 30, 40));
  view.setBounds(Rect(5, 500, 10, 60));  // around the same centre
  EXPECT_EQ(view.frame(), Rect(20, 10, 10, 60));
  view.setFrame(Rect(1, 2, 3, 4));  // stays scrolled
  EXPECT_EQ(view.frame(), Rect(1, 2, 3, 4));
  EXPECT_EQ(view.bounds(), Rect(5, 500, 3, 4));

  view.setHidden(true);  // which is for hit testing, not for the place
  view.setUserInteractionEnabled(false);
  EXPECT_TRUE(view.pointInside({5, 500}, nullptr));
  EXPECT_TRUE(view.pointInside({7.9, 503.9}, nullptr));
  EXPECT_FALSE(view.pointInside({8, 500}, nullptr));
  EXPECT_FALSE(view.pointInside({5, 499}, nullptr));
}

TEST(ViewTest, AViewHasOnePlaceInOneTree) {
  UIView first, second;
  const auto a = addView(first), b = addView(first);
  first.addSubview(a);  // comes to the front
  EXPECT_EQ(first.subviews(), (std::vector{b, a}));
  second.addSubview(a);
  EXPECT_EQ(first.subviews(), std::vector{b});
  EXPECT_EQ(second.subviews(), std::vector{a});
  EXPECT_EQ(a->superview(), &second);
  a->removeFromSuperview();
  a->removeFromSuperview();
  EXPECT_TRUE(second.subviews().empty());
  EXPECT_EQ(a->superview(), nullptr);
  second.addSubview(nullptr);
  EXPECT_TRUE(second.subviews().empty());
}

TEST(ViewTest, WhatIsHeldOutlivesItsSuperview) {
  auto top = std::make_unique<UIView>();
  const auto middle = addView(*top);
  const auto below = addView(*middle);
  const std::weak_ptr<UIView> unheld = addView(*top);
  top.reset();
  EXPECT_EQ(middle->superview(), nullptr);
  EXPECT_EQ(below->superview(), middle.get());
  EXPECT_TRUE(unheld.expired());
}

TEST(ViewTest, ConvertsPointsWithinATreeAndOverTheScreen) {
  UIWindow top(Rect(0, 0, 800, 600)), second(Rect(800, 100, 400, 300));
  const auto left = addView(top, Rect(10, 20, 100, 100));
  const auto inner = addView(*left, Rect(3, 4, 50, 50));
  const auto right = addView(top, Rect(200, 0, 100, 100));
  const auto other = addView(*addView(second, Rect(20, 20, 90, 90)), Rect(1, 1, 5, 5));
  left->setBounds(Rect(0, 7, 100, 100));  // scrolled by 7
  right->setBounds(Rect(1, 0, 100, 100));
  for (const auto& [to, point] : {std::pair<UIView*, Point>{left.get(), {4, 5}},
                                  {&top, {14, 18}},
                                  {right.get(), {-185, 18}},
                                  {inner.get(), {1, 1}},
                                  {other.get(), {14 - 821, 18 - 121}}}) {
    EXPECT_EQ(inner->convertPointToCoordinateSpace({1, 1}, *to), point);
    EXPECT_EQ(to->convertPointToCoordinateSpace(point, *inner), (Point{1, 1}));
  }
  const Point exact{0.1, 0.3};  // no way, no rounding
  EXPECT_EQ(inner->convertPointToCoordinateSpace(exact, *inner), exact);
}

TEST(ViewTest, DeepTreesAreBuiltConvertedAndTakenApart) {
  constexpr int levels = 100'000;
  const auto place = Rect(1, 0, 1, 1);
  for (const bool downwards : {true, false}) {
    auto top = std::make_shared<UIView>(place);
    auto bottom = top;
    for (int i = 1; i < levels; ++i) {
      if (downwards) {
        bottom = addView(*bottom, place);
      } else {
        auto above = std::make_shared<UIView>(place);
        above->addSubview(top);
        top = above;
      }
    }
    EXPECT_EQ(bottom->window(), nullptr);
    EXPECT_EQ(bottom->convertPointToCoordinateSpace({}, *top), (Point{levels - 1, 0}));
    top.reset();
    EXPECT_EQ(bottom->superview(), nullptr);
  }
}

TEST(ViewDeathTest, AViewCannotBeAboveItself) {
  const auto top = std::make_shared<UIView>();
  const auto below = addView(*addView(*top));
  EXPECT_DEATH(top->addSubview(top), "into itself");
  EXPECT_DEATH(below->addSubview(top), "into itself");
}

TEST(ControlsTest, LabelsAndPicturesTakeNoTouchesAtFirst) {
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
}

TEST(CollectionViewDeathTest, NeedsALayout) {
  EXPECT_DEATH(UICollectionView({}, nullptr),
               "must be initialized with a non-nil layout parameter");
}

TEST(SceneTest, AViewFindsItsWindowAndThatItsScene) {
  class Scene : public UIScene {
   public:
    std::string_view className() const override { return "Scene"; }
    const UISceneSession* session() const override { return nullptr; }
    const UISceneDelegate* delegate() const override { return nullptr; }
  };
  const Scene scene;
  UIWindow window;
  EXPECT_EQ(window.window(), &window);
  EXPECT_EQ(window.windowScene(), nullptr);
  window.setWindowScene(&scene);
  const auto view = addView(*addView(window));
  EXPECT_EQ(view->window()->windowScene(), &scene);
  view->removeFromSuperview();
  EXPECT_EQ(view->window(), nullptr);
}

}  // namespace
}  // namespace FrameworkUtility
