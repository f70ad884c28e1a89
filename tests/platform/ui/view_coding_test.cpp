#include <framework_utility/platform/foundation/archives/keyed_archiver.h>
#include <framework_utility/platform/foundation/archives/keyed_unarchiver.h>
#include <framework_utility/platform/ui/controls.h>
#include <framework_utility/platform/ui/geometry_text.h>
#include <framework_utility/platform/ui/scene.h>
#include <framework_utility/platform/ui/scroll_view.h>
#include <framework_utility/platform/ui/view_coding.h>
#include <tests/support/archives.h>
#include <tests/support/is_error.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <typeinfo>

namespace FrameworkUtility {
namespace {

using namespace testing;

class BadgeView : public UIButton {
 public:
  using UIButton::UIButton;
  std::string_view className() const override { return "Sketch.BadgeView"; }
};
const bool badgesAreKnown = registerViewClass<BadgeView>(
    "Sketch.BadgeView", {"UIButton", "UIControl", "UIView", "UIResponder"});

std::optional<Data> archived(const std::shared_ptr<UIView>& view, Error* error = nullptr) {
  return NSKeyedArchiver::archivedDataWithRootObject(Value(view), SecureCoding::notRequired, error);
}

std::shared_ptr<UIView> unarchived(const Data& data, Error* error = nullptr) {
  const auto root = NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(data, error);
  const auto* object = root ? root->as<std::shared_ptr<NSObject>>() : nullptr;
  return object ? std::dynamic_pointer_cast<UIView>(*object) : nullptr;
}

TEST(ViewCodingTest, ATreeOfViewsComesBack) {
  const auto window = std::make_shared<UIWindow>(Rect(0, 0, 320, 480));
  const auto scroll = std::make_shared<UIScrollView>(Rect(10, 20, 100, 80));
  const auto image = std::make_shared<UIImageView>(Rect(5, 6, 7, 8));
  scroll->setContentOffset({0, 500});
  image->setUserInteractionEnabled(true);
  image->setHidden(true);
  scroll->addSubview(std::make_shared<UILabel>(Rect(1, 2, 3, 4)));
  scroll->addSubview(image);
  window->addSubview(scroll);
  window->addSubview(std::make_shared<BadgeView>(Rect(-1.5, 0, 44, 44)));

  const auto data = archived(window);
  ASSERT_TRUE(data);
  const auto again = unarchived(*data);
  ASSERT_TRUE(again);
  const std::function<void(const UIView&, const UIView&)> expectSame = [&](const UIView& found,
                                                                           const UIView& view) {
    EXPECT_EQ(typeid(found), typeid(view)) << found.className();
    EXPECT_EQ(found.frame(), view.frame());
    EXPECT_EQ(found.bounds(), view.bounds());
    EXPECT_EQ(found.isHidden(), view.isHidden());
    EXPECT_EQ(found.isUserInteractionEnabled(), view.isUserInteractionEnabled());
    ASSERT_EQ(found.subviews().size(), view.subviews().size());
    for (std::size_t i = 0; i < view.subviews().size(); ++i) {
      EXPECT_EQ(found.subviews()[i]->superview(), &found);
      expectSame(*found.subviews()[i], *view.subviews()[i]);
    }
  };
  expectSame(*again, *window);
}

TEST(ViewCodingTest, ReadsWhatOthersWrite) {
  const auto view = unarchived(archiveOf(
      {Dictionary{{"UIBounds", reference(3)},
                  {"UICenter", reference(4)},
                  {"UISubviews", reference(5)},
                  {"UIOpaque", true},
                  {"$class", reference(2)}},
       classRecord("UIButton", {"UIControl", "UIView", "UIResponder"}), "{{0, 0}, {30, 40}}",
       "{25, 40}",
       // A view that stands twice ends where it was put last; what is no view is left out.
       Dictionary{{"NS.objects", references({7, 3, 7, 8})}, {"$class", reference(6)}},
       classRecord("NSArray"), Dictionary{{"$class", reference(9)}},
       Dictionary{{"$class", reference(9)}}, classRecord("UIShadow", {"UIView", "UIResponder"})}));
  ASSERT_TRUE(view);
  EXPECT_EQ(view->className(), "UIButton");
  EXPECT_EQ(view->frame(), Rect(10, 20, 30, 40));
  EXPECT_TRUE(view->isUserInteractionEnabled());
  ASSERT_EQ(view->subviews().size(), 2U);
  EXPECT_EQ(view->subviews()[0]->className(), "UIView");
  EXPECT_EQ(view->subviews()[0]->frame(), Rect());
}

TEST(ViewCodingTest, WhatIsNotHeldIsRefused) {
  Error error;
  const auto picture = std::make_shared<UIImageView>(UIImage::withoutBitmap({3, 2}));
  EXPECT_FALSE(archived(picture, &error));
  EXPECT_THAT(error, IsError(CoderError::invalidValue));

  // Views do not support secure coding.
  const auto view = std::make_shared<UIView>();
  EXPECT_FALSE(NSKeyedArchiver::archivedDataWithRootObject(Value(view), SecureCoding::required));
  EXPECT_FALSE(NSKeyedUnarchiver::unarchivedObjectOfClasses({"UIView"}, *archived(view), &error));
  EXPECT_THAT(error, IsError(CoderError::readCorrupt));

  // A collection view without its layout.
  EXPECT_FALSE(unarchived(archiveOfObject({}, "UICollectionView"), &error));
  EXPECT_THAT(error, IsError(CoderError::readCorrupt));
}

TEST(GeometryTextTest, PlacesReadBackAsTheSame) {
  EXPECT_EQ(NSStringFromCGPoint({-1.5, 2}), "{-1.5, 2}");
  EXPECT_EQ(NSStringFromCGRect({0.1, 0, 1e300, -4}), "{{0.1, 0}, {1e+300, -4}}");
  for (const Rect& rect : {Rect(0.1, 1.0 / 3, 1e300, -4), Rect()}) {
    EXPECT_EQ(CGRectFromString(NSStringFromCGRect(rect)), rect);
  }
  EXPECT_EQ(CGPointFromString(" { 1.50 ,\n2e1 } "), (Point{1.5, 20}));
  EXPECT_EQ(CGRectFromString("{{1,2},{0.10000000000000001,4}}"), Rect(1, 2, 0.1, 4));
}

TEST(GeometryTextTest, OtherTextsAreZero) {
  for (const char* text : {"", "{", "1, 2", "{1 2}", "{1, 2", "{1, 2} 3", "{a, 2}", "{{1, 2}}",
                           "{1, 2, 3}", "{, 2}"}) {
    EXPECT_EQ(CGPointFromString(text), Point()) << text;
  }
  for (const char* text : {"{1, 2}", "{{1, 2}, {3, 4}", "{{1, 2} {3, 4}}", "{{1, 2}, {3, 4}}}"}) {
    EXPECT_EQ(CGRectFromString(text), Rect()) << text;
  }
}

}  // namespace
}  // namespace FrameworkUtility
