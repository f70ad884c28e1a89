#include <framework_utility/platform/ui/scene.h>

namespace FrameworkUtility {

std::string_view UIWindow::className() const { return "UIWindow"; }

const UIScene* UIWindow::windowScene() const { return windowScene_; }

void UIWindow::setWindowScene(const UIScene* scene) { windowScene_ = scene; }

}  // namespace FrameworkUtility
