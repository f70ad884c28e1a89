#include <framework_utility/platform/ui/view.h>

#include <framework_utility/platform/foundation/values/stop.h>
#include <framework_utility/platform/ui/scene.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace FrameworkUtility {

struct UIView::Contents {
  Rect frame;
  Rect bounds;
  bool isHidden = false;
  bool isUserInteractionEnabled = true;
  UIView* superview = nullptr;  // which holds this view, and clears this when it goes first
  std::vector<std::shared_ptr<UIView>> subviews;
};

namespace {

/// A point of `view` in the coordinates of its superview; of a window, in those of the screen.
Point lifted(const UIView& view, Point point) {
  const Point place = view.frame().origin;
  const Point scroll = view.bounds().origin;
  return {point.x - scroll.x + place.x, point.y - scroll.y + place.y};
}

/// The number of views from `view` to the top of its tree, both included.
std::size_t depth(const UIView* view) {
  std::size_t count = 0;
  for (; view; view = view->superview()) ++count;
  return count;
}

}  // namespace

UIView::UIView(const Rect& frame) : contents_(std::make_unique<Contents>()) {
  contents_->frame = frame;
  contents_->bounds = frame.size.rect();
}

UIView::~UIView() {
  // Each view below that nothing else holds gives its subviews up before it goes, so that a deep
  // tree does not end in as many nested calls.
  std::vector<std::shared_ptr<UIView>> pending = std::move(contents_->subviews);
  while (!pending.empty()) {
    const std::shared_ptr<UIView> view = std::move(pending.back());
    pending.pop_back();
    view->contents_->superview = nullptr;
    if (view.use_count() > 1) continue;
    auto& subviews = view->contents_->subviews;
    std::move(subviews.begin(), subviews.end(), std::back_inserter(pending));
    subviews.clear();
  }
}

std::string_view UIView::className() const { return "UIView"; }

Rect UIView::frame() const { return contents_->frame; }

void UIView::setFrame(const Rect& frame) {
  contents_->frame = frame;
  contents_->bounds.size = frame.size;
}

Rect UIView::bounds() const { return contents_->bounds; }

void UIView::setBounds(const Rect& bounds) {
  // The centre stays where it is.
  const Size before = contents_->bounds.size;
  contents_->frame.origin.x += (before.width - bounds.size.width) * 0.5;
  contents_->frame.origin.y += (before.height - bounds.size.height) * 0.5;
  contents_->frame.size = bounds.size;
  contents_->bounds = bounds;
}

bool UIView::isHidden() const { return contents_->isHidden; }

void UIView::setHidden(bool hidden) { contents_->isHidden = hidden; }

bool UIView::isUserInteractionEnabled() const { return contents_->isUserInteractionEnabled; }

void UIView::setUserInteractionEnabled(bool enabled) {
  contents_->isUserInteractionEnabled = enabled;
}

const UIView* UIView::superview() const { return contents_->superview; }

const UIWindow* UIView::window() const {
  for (const UIView* view = this; view; view = view->superview()) {
    if (const auto* window = dynamic_cast<const UIWindow*>(view)) return window;
  }
  return nullptr;
}

const std::vector<std::shared_ptr<UIView>>& UIView::subviews() const { return contents_->subviews; }

void UIView::addSubview(std::shared_ptr<UIView> view) {
  if (!view) return;
  // Only a view with subviews can stand above this one: leaves are added without a walk.
  if (view.get() == this || !view->contents_->subviews.empty()) {
    for (const UIView* above = this; above; above = above->contents_->superview) {
      if (above == view.get()) stop("UIView: addSubview: a view cannot be put into itself");
    }
  }
  view->removeFromSuperview();
  view->contents_->superview = this;
  contents_->subviews.push_back(std::move(view));
}

void UIView::removeFromSuperview() {
  if (!contents_->superview) return;
  auto& siblings = std::exchange(contents_->superview, nullptr)->contents_->subviews;
  const auto isThis = [this](const std::shared_ptr<UIView>& view) { return view.get() == this; };
  siblings.erase(std::find_if(siblings.begin(), siblings.end(), isThis));
}

Point UIView::convertPointToCoordinateSpace(Point point, const UIView& space) const {
  // Both climb to the nearest view above them, or out of their windows to the screen, so that what
  // they share costs no rounding.
  const UIView* from = this;
  const UIView* to = &space;
  std::size_t fromDepth = depth(from);
  std::size_t toDepth = depth(to);
  Point origin;
  while (from != to) {
    if (fromDepth >= toDepth) {
      point = lifted(*from, point);
      from = from->superview();
      --fromDepth;
    } else {
      origin = lifted(*to, origin);
      to = to->superview();
      --toDepth;
    }
  }
  return {point.x - origin.x, point.y - origin.y};
}

bool UIView::pointInside(Point point, const UIEvent*) const { return bounds().contains(point); }

}  // namespace FrameworkUtility
