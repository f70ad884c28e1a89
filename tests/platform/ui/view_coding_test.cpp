#include <framework_utility/platform/foundation/archives/keyed_archiver.h>
#include <framework_utility/platform/foundation/archives/keyed_unarchiver.h>
#include <framework_utility/platform/ui/controls.h>
#include <framework_utility/platform/ui/scene.h>
#include <framework_utility/platform/ui/scroll_view.h>
#include <framework_utility/platform/ui/view_coding.h>
#include <tests/support/archives.h>
#include <tests/support/is_error.h>

#include <gtest/gtest.h>

#include <memory>

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
  scroll->setContentOffset({0, 500});
  const auto label = std::make_shared<UILabel>(Rect(1, 2, 3, 4));
  const auto image = std::make_shared<UIImageView>(Rect(5, 6, 7, 8));
  image->setUserInteractionEnabled(true);
  image->setHidden(true);
  const auto badge = std::make_shared<BadgeView>(Rect(-1.5, 0, 44, 44));
  scroll->addSubview(label);
  scroll->addSubview(image);
  window->addSubview(scroll);
  window->addSubview(badge);

  const auto data = archived(window);
  ASSERT_TRUE(data);
  const auto again = unarchived(*data);
  ASSERT_TRUE(again);
  EXPECT_EQ(again->className(), "UIWindow");
  EXPECT_EQ(again->frame(), window->frame());
  ASSERT_EQ(again->subviews().size(), 2U);
  const UIView& first = *again->subviews()[0];
  EXPECT_EQ(first.className(), "UIScrollView");
  EXPECT_EQ(first.frame(), scroll->frame());
  EXPECT_EQ(first.bounds(), Rect(0, 500, 100, 80));
  EXPECT_EQ(first.superview(), again.get());
  ASSERT_EQ(first.subviews().size(), 2U);
  EXPECT_EQ(first.subviews()[0]->frame(), Rect(1, 2, 3, 4));
  EXPECT_FALSE(first.subviews()[0]->isUserInteractionEnabled());
  EXPECT_TRUE(first.subviews()[1]->isUserInteractionEnabled());
  EXPECT_TRUE(first.subviews()[1]->isHidden());
  EXPECT_TRUE(dynamic_cast<const BadgeView*>(again->subviews()[1].get()));
  EXPECT_FALSE(again->subviews()[1]->isHidden());
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

  const auto layout = std::make_shared<UICollectionViewLayout>();
  const auto collection = std::make_shared<UICollectionView>(Rect(), layout);
  const auto again = std::dynamic_pointer_cast<UICollectionView>(unarchived(*archived(collection)));
  ASSERT_TRUE(again);
  EXPECT_TRUE(again->collectionViewLayout());
  EXPECT_FALSE(unarchived(archiveOfObject({}, "UICollectionView"), &error));
  EXPECT_THAT(error, IsError(CoderError::readCorrupt));
}

}  // namespace
}  // namespace FrameworkUtility
