// touch: binds the widgets of a toolkit as views, moves its mouse over them and maps what answers.

#include <framework_utility/touch/touch.h>

#include <iostream>
#include <memory>
#include <string_view>

using namespace FrameworkUtility;

namespace {

/// What some toolkit gives: a place in the parent, how far it is scrolled, a pointer for the app.
struct Widget {
  const Widget* parent = nullptr;
  double x = 0, y = 0, width = 0, height = 0, scrolled = 0;
  const UIView* appData = nullptr;
};

/// The binding: asks the widget each time, so that nothing has to be kept in step.
class WidgetView : public UIView {
 public:
  explicit WidgetView(Widget& widget) : widget_(widget) { widget.appData = this; }
  ~WidgetView() override { widget_.appData = nullptr; }
  std::string_view className() const override { return "WidgetView"; }

  Rect frame() const override { return {widget_.x, widget_.y, widget_.width, widget_.height}; }
  Rect bounds() const override { return {0, widget_.scrolled, widget_.width, widget_.height}; }
  const UIView* superview() const override {
    return widget_.parent ? widget_.parent->appData : nullptr;
  }

 private:
  Widget& widget_;
};

/// The toolkit's mouse, in the window's coordinates.
class Mouse : public UITouch {
 public:
  Mouse(const UIView& window, Point point) : window_(window), point_(point) {}
  std::string_view className() const override { return "Mouse"; }
  Point locationInView(const UIView& view) const override {
    return window_.convertPointToCoordinateSpace(point_, view);
  }

 private:
  const UIView& window_;
  Point point_;
};

/// Whether the touch is where `view` is drawn, and whether the view answers it.
char mark(const KvTouchItem& touch, const UIView& view) {
  const bool isDrawn = view.bounds().contains(touch.locationIn(view));
  if (touch.isTouching(view)) return isDrawn ? '#' : '+';
  return isDrawn ? '-' : ' ';
}

}  // namespace

int main() {
  Widget top{.width = 232, .height = 112};
  Widget handle{&top, 28, 44, 20, 24}, list{&top, 88, 16, 48, 80}, gallery{&top, 160, 16, 48, 80};
  list.scrolled = gallery.scrolled = 32;

  const WidgetView window(top), plainList(list);
  KvExtendTouch<WidgetView> wideHandle(handle), ownAreaGallery(gallery);
  wideHandle.setHitTestEdgeInsets({-16, -12, -16, -12});

  for (double y = 4; y < top.height; y += 8, std::cout << '\n') {
    for (double x = 2; x < top.width; x += 4) {
      const auto mouse = std::make_shared<Mouse>(window, Point{x, y});
      const auto touch = KvTouchItem::touchItemWithObject(mouse);
      std::cout << mark(*touch, x < 76 ? wideHandle : x < 148 ? plainList : ownAreaGallery);
    }
  }
  std::cout
      << "    a handle          a list, scrolled  a gallery, scrolled\n"
         "# answers, + answers beyond what is drawn, - is drawn and does not answer: without a\n"
         "hit area of its own a scrolled view is compared as if it were not scrolled\n";
}
