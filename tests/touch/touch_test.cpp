#include <framework_utility/touch/touch.h>

#include <framework_utility/platform/foundation/archives/keyed_archiver.h>
#include <framework_utility/platform/foundation/archives/keyed_unarchiver.h>
#include <framework_utility/platform/ui/scene.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace FrameworkUtility {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double largest = std::numeric_limits<double>::max();

constexpr EdgeInsets everySide(double inset) { return {inset, inset, inset, inset}; }

// Of a temporary, nothing refers to it.
static_assert(!std::is_reference_v<decltype(std::declval<KvTouchItem>().object())>);
static_assert(!std::is_reference_v<decltype(std::declval<KvTouchUITouch>().object())>);
static_assert(!std::is_reference_v<decltype(std::declval<KvTouchCGPoint>().view())>);

/// A platform object of class `Base` that is somewhere in a window, or anywhere without one.
template <class Base>
class Located : public Base {
 public:
  explicit Located(Point point = {}, const UIView* window = nullptr)
      : point_(point), window_(window) {}
  std::string_view className() const override { return "Located"; }
  Point locationInView(const UIView& view) const override {
    return window_ ? window_->convertPointToCoordinateSpace(point_, view) : point_;
  }

 private:
  Point point_;
  const UIView* window_;
};

class DraggedTouch : public UITouch, public UIDragSession {};
class DraggedGesture : public UIGestureRecognizer, public UIDragSession {};
class DraggedMenu : public UIContextMenuInteraction, public UIDragSession {};

/// A touch at `point` of `view`.
KvTouchItem touchAt(Point point, const std::shared_ptr<const UIView>& view) {
  return KvTouchItem(std::make_shared<KvTouchCGPoint>(point, view));
}

template <class Adapter>
const Adapter* adapterOf(const std::optional<KvTouchItem>& item) {
  return item ? dynamic_cast<const Adapter*>(item->object().get()) : nullptr;
}

/// An app's own view: its toolkit knows its rect, and it holds what is in a circle.
class RoundView : public UIView {
 public:
  Rect bounds() const override { return Rect(100, 100, 20, 20); }
  bool pointInside(Point point, const UIEvent*) const override {
    return std::hypot(point.x - 110, point.y - 110) < 10;
  }
};

TEST(ExtendTouchTest, InsetsMoveTheEdges) {
  const Rect bounds(0, 0, 44, 44), scrolled(5, 500, 44, 44);
  struct {
    Rect bounds;
    EdgeInsets insets;
    std::vector<Point> inside, outside;
  } const cases[] = {
      {bounds, {}, {{0, 0}, {43.9, 43.9}}, {{44, 0}, {0, 44}, {-0.1, 0}, {0, -0.1}}},
      {bounds, everySide(-10), {{-10, -10}, {53.9, 53.9}}, {{54, 54}, {54, 0}, {-10.1, 0}}},
      {bounds, {1, 2, 3, 4}, {{2, 1}, {39.9, 40.9}}, {{1.9, 1}, {2, 0.9}, {40, 1}, {2, 41}}},
      // The bounds' origin counts.
      {scrolled, everySide(-10), {{-5, 490}, {58.9, 553.9}}, {{59, 490}, {0, 0}, {5, 489.9}}},
      // Turned inside out, from 14 to 30; just closed.
      {bounds, everySide(30), {{14, 14}, {29.9, 29.9}}, {{30, 14}, {13.9, 14}}},
      {bounds, everySide(22), {}, {{22, 22}}},
      // No edge is a number, or one side is without an end.
      {bounds, everySide(nan), {}, {{0, 0}, {nan, nan}}},
      {bounds, everySide(infinity), {}, {{0, 0}, {infinity, infinity}}},
      {bounds, everySide(-infinity), {}, {{0, 0}, {-infinity, -infinity}}},
      {bounds, {0, 0, -infinity, -infinity}, {{0, 0}, {1e300, 1e300}}, {{-1, 0}, {nan, 0}}},
      {bounds, everySide(-largest), {}, {{nan, nan}, {infinity, infinity}}},
      {bounds, everySide(-1e300), {{0, 0}, {-1e300, -1e300}}, {{largest, 0}, {0, nan}}},
  };
  for (const auto& test : cases) {
    KvButtonExtendTouch button(bounds);
    button.setBounds(test.bounds);
    button.setHitTestEdgeInsets(test.insets);
    const auto check = [&](Point point, bool expected) {
      SCOPED_TRACE(::testing::Message()
                   << test.insets.left << " at " << point.x << ", " << point.y);
      EXPECT_EQ(button.hitAreaContainsPoint(point), expected);
      EXPECT_EQ(KvExtendTouchUtils::viewHitAreaContainsPoint(button, point), expected);
      EXPECT_EQ(button.pointInside(point, nullptr), expected);
    };
    for (const Point point : test.inside) check(point, true);
    for (const Point point : test.outside) check(point, false);
  }
}

TEST(ExtendTouchTest, HiddenOrDisabledViewsAnswerAsThePlatformDoes) {
  KvControlExtendTouch control(Rect(0, 0, 44, 44));
  control.setHitTestEdgeInsets({20, 0, 0, -10});
  for (const bool hidden : {false, true}) {
    for (const bool enabled : {false, true}) {
      SCOPED_TRACE(::testing::Message() << "hidden " << hidden << ", enabled " << enabled);
      control.setHidden(hidden);
      control.setUserInteractionEnabled(enabled);
      const bool ownArea = enabled && !hidden;
      EXPECT_EQ(control.pointInside({0, 0}, nullptr), !ownArea);
      EXPECT_EQ(control.pointInside({50, 30}, nullptr), ownArea);
      // The area itself is what it is.
      EXPECT_FALSE(control.hitAreaContainsPoint({0, 0}));
      EXPECT_TRUE(control.hitAreaContainsPoint({50, 30}));
    }
  }
  // One inset is enough; what is no number differs from zero.
  for (const EdgeInsets& insets : {EdgeInsets{1, 0, 0, 0}, EdgeInsets{0, 1, 0, 0},
                                   EdgeInsets{0, 0, 43.5, 0}, EdgeInsets{0, 0, 0, nan}}) {
    KvViewExtendTouch view(Rect(0, 0, 44, 44));
    view.setHitTestEdgeInsets(insets);
    EXPECT_FALSE(view.pointInside({0.5, 0.5}, nullptr));
  }
}

TEST(ExtendTouchTest, AnAppExtendsItsOwnViews) {
  KvExtendTouch<RoundView> view;
  EXPECT_FALSE(view.pointInside({101, 101}, nullptr));  // its own answer while there are no insets
  EXPECT_TRUE(view.hitAreaContainsPoint({101, 101}));
  view.setHitTestEdgeInsets(everySide(-1));
  EXPECT_TRUE(view.pointInside({99, 99}, nullptr));
  view.setHidden(true);
  EXPECT_FALSE(view.pointInside({101, 101}, nullptr));

  // A view that decides its insets itself.
  class Finger : public KvViewExtendTouch {
   public:
    using KvViewExtendTouch::KvViewExtendTouch;
    EdgeInsets hitTestEdgeInsets() const override { return everySide(-12); }
  };
  EXPECT_TRUE(Finger(Rect(0, 0, 20, 20)).pointInside({-12, 31}, nullptr));
}

TEST(ExtendTouchTest, TheSixHaveTheConstructorsOfTheirBases) {
  const UIImage picture = UIImage::withoutBitmap({30, 20});
  EXPECT_EQ(KvImageViewExtendTouch(picture).bounds(), Rect(0, 0, 30, 20));
  EXPECT_EQ(KvImageViewExtendTouch(std::nullopt, picture).highlightedImage()->size(),
            picture.size());

  // A label takes no touches at first, so its insets wait.
  KvLabelExtendTouch label(Rect(0, 0, 10, 10));
  label.setHitTestEdgeInsets(everySide(-5));
  EXPECT_FALSE(label.pointInside({-1, 0}, nullptr));
  label.setUserInteractionEnabled(true);
  EXPECT_TRUE(label.pointInside({-1, 0}, nullptr));
}

TEST(ExtendTouchTest, TheSixComeFromArchives) {
  const auto layout = std::make_shared<UICollectionViewLayout>();
  const Rect frame(10, 20, 30, 40);
  const auto collection = std::make_shared<KvCollectionVieExtendTouch>(frame, layout);
  EXPECT_EQ(collection->collectionViewLayout(), layout);
  const std::pair<const char*, std::shared_ptr<UIView>> views[] = {
      {"KvViewExtendTouch", std::make_shared<KvViewExtendTouch>(frame)},
      {"KvButtonExtendTouch", std::make_shared<KvButtonExtendTouch>(frame)},
      {"KvControlExtendTouch", std::make_shared<KvControlExtendTouch>(frame)},
      {"KvLabelExtendTouch", std::make_shared<KvLabelExtendTouch>(frame)},
      {"KvImageViewExtendTouch", std::make_shared<KvImageViewExtendTouch>(frame)},
      {"KvCollectionVieExtendTouch", collection},
  };
  for (const auto& [name, view] : views) {
    SCOPED_TRACE(name);
    EXPECT_EQ(view->className(), std::string("FrameworkUtility.") + name);
    dynamic_cast<KvExtendTouchProtocol&>(*view).setHitTestEdgeInsets(everySide(-10));
    const auto data =
        NSKeyedArchiver::archivedDataWithRootObject(Value(view), SecureCoding::notRequired);
    ASSERT_TRUE(data);
    const auto root = NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(*data);
    ASSERT_TRUE(root);
    const auto again = std::dynamic_pointer_cast<UIView>(*root->as<std::shared_ptr<NSObject>>());
    ASSERT_TRUE(again);
    EXPECT_EQ(again->className(), view->className());
    EXPECT_EQ(again->frame(), frame);
    // The insets are no part of the archive, which is meant.
    EXPECT_EQ(dynamic_cast<KvExtendTouchProtocol&>(*again).hitTestEdgeInsets(), EdgeInsets());
  }
}

/// Whether a touch at `point` of a view touches it.
bool touches(Point point, const std::shared_ptr<const UIView>& view,
             const EdgeInsets& insets = {}) {
  return touchAt(point, view).isTouching(*view, insets);
}

TEST(TouchItemTest, PlainViewsIgnoreTheirScrolling) {
  const auto view = std::make_shared<UIScrollView>(Rect(10, 20, 100, 80));
  view->setContentOffset({0, 500});
  EXPECT_TRUE(touches({0, 0}, view));
  EXPECT_FALSE(touches({100, 0}, view));
  EXPECT_FALSE(touches({0, 510}, view));  // although it is seen there
  EXPECT_TRUE(touches({0, 510}, view, {500, 0, -500, 0}));

  // A view with a hit area of its own counts it.
  const auto collection = std::make_shared<KvCollectionVieExtendTouch>(
      Rect(10, 20, 100, 80), std::make_shared<UICollectionViewLayout>());
  collection->setContentOffset({0, 500});
  EXPECT_FALSE(touches({0, 0}, collection));
  EXPECT_TRUE(touches({0, 510}, collection));
}

TEST(TouchItemTest, InsetsAreForViewsWithoutTheirOwn) {
  const auto plain = std::make_shared<UIButton>(Rect(0, 0, 44, 44));
  const Point beyond{-5, -5};
  EXPECT_FALSE(touches(beyond, plain));
  EXPECT_TRUE(touches(beyond, plain, everySide(-10)));
  EXPECT_TRUE(touches({10, 10}, plain, {10, 10, 33, 33}));
  EXPECT_FALSE(touches({nan, 1}, plain));
  EXPECT_FALSE(touches({1, 1}, plain, everySide(nan)));

  const auto extended = std::make_shared<KvButtonExtendTouch>(Rect(0, 0, 44, 44));
  EXPECT_FALSE(touches(beyond, extended, everySide(-10)));
  extended->setHitTestEdgeInsets(everySide(-10));
  extended->setHidden(true);  // asked by hit testing only
  EXPECT_TRUE(touches(beyond, extended, everySide(10)));
}

TEST(TouchItemTest, TheTwoRulesRoundDifferently) {
  // 0.3 - 0.1 - 0.2 is just below zero, 0.3 - (0.1 + 0.2) further below.
  const double width = 0.3, left = 0.1, right = 0.2;
  ASSERT_NE(width - left - right, width - (left + right));
  const auto plain = std::make_shared<UIView>(Rect(0, 0, width, 1));
  const auto extended = std::make_shared<KvViewExtendTouch>(Rect(0, 0, width, 1));
  extended->setHitTestEdgeInsets({0, left, 0, right});
  const Point edge{left + (width - (left + right)), 0};
  EXPECT_TRUE(touches(edge, extended));
  EXPECT_FALSE(touches(edge, plain, {0, left, 0, right}));
}

TEST(TouchItemTest, AdaptersAreTriedInOrder) {
  const auto touch = std::make_shared<Located<DraggedTouch>>();
  const auto gesture = std::make_shared<Located<DraggedGesture>>();
  const auto drag = std::make_shared<Located<DraggedMenu>>();
  const auto menu = std::make_shared<Located<UIContextMenuInteraction>>();
  const auto item = [](const auto& object) { return KvTouchItem::touchItemWithObject(object); };
  EXPECT_EQ(adapterOf<KvTouchUITouch>(item(touch))->object(), touch);
  EXPECT_EQ(adapterOf<KvTouchUIGestureRecognizer>(item(gesture))->object(), gesture);
  EXPECT_EQ(adapterOf<KvTouchUIDragSession>(item(drag))->object(), drag);
  EXPECT_EQ(adapterOf<KvTouchUIContextMenuInteraction>(item(menu))->object(), menu);
  EXPECT_EQ(item(std::make_shared<UIView>()), std::nullopt);
  EXPECT_EQ(item(nullptr), std::nullopt);
  EXPECT_EQ(KvTouchCGPoint::withObject(touch), std::nullopt);
}

TEST(TouchItemTest, HoldsItsObject) {
  const UIView view;
  auto touch = std::make_shared<Located<UITouch>>(Point{3, 4});
  const std::weak_ptr<const UITouch> watched = touch;
  auto item = KvTouchItem::touchItemWithObject(std::exchange(touch, nullptr));
  EXPECT_FALSE(watched.expired());
  EXPECT_EQ(item->locationIn(view), (Point{3, 4}));
  const KvTouchItem kept = std::move(*item);
  EXPECT_EQ(item->locationIn(view), (Point{3, 4}));  // moving copies: an item is never empty
  EXPECT_EQ(kept.object(), item->object());
}

TEST(TouchItemDeathTest, NothingTouchesThroughNull) {
  EXPECT_DEATH(KvTouchItem(nullptr), "KvTouchItem: initWithObject: object is null");
  EXPECT_DEATH(KvTouchUITouch(nullptr), "KvTouchAdapter: initWithObject: object is null");
}

TEST(TouchItemTest, LocationsAreCarriedIntoAnyView) {
  const auto window = std::make_shared<UIWindow>(Rect(100, 0, 400, 300));
  const auto list = std::make_shared<UIScrollView>(Rect(50, 50, 200, 200));
  const auto button = std::make_shared<KvButtonExtendTouch>(Rect(10, 310, 20, 20));
  window->addSubview(list);
  list->addSubview(button);
  list->setContentOffset({0, 300});
  button->setHitTestEdgeInsets(everySide(-12));

  // The button is at (60, 60) of the window, its hit area from 48 to 92.
  const auto touching = [&](Point point) {
    const auto touch = std::make_shared<Located<UITouch>>(point, window.get());
    return KvTouchItem::touchItemWithObject(touch)->isTouching(*button);
  };
  EXPECT_TRUE(touching({48, 48}));
  EXPECT_TRUE(touching({91.5, 91.5}));
  EXPECT_FALSE(touching({92, 60}));
  EXPECT_FALSE(touching({47.5, 60}));

  const UIView alone(Rect(7, 7, 7, 7));
  EXPECT_EQ(touchAt({1, 2}, button).locationIn(alone), (Point{154, 55}));
  // A point holds its view; one of no view is at the origin of each.
  EXPECT_EQ(touchAt({1, 2}, std::make_shared<UIView>(Rect(1, 0, 1, 1))).locationIn(UIView()),
            (Point{2, 2}));
  EXPECT_EQ(touchAt({30, 40}, nullptr).locationIn(*button), Point());
  EXPECT_TRUE(touchAt({30, 40}, nullptr).isTouching(*button));
}

}  // namespace
}  // namespace FrameworkUtility
