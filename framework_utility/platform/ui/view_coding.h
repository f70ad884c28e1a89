#pragma once

#include <framework_utility/platform/foundation/archives/coding.h>
#include <framework_utility/platform/ui/view.h>

#include <concepts>
#include <memory>
#include <optional>
#include <string_view>

namespace FrameworkUtility {

/// Lets archives hold views of a class that has the constructor from a coder. Views do not support
/// secure coding, as on the platform: decode only what the app itself has written. For the rest see
/// `registerCodingClass`; the superclasses of a class that derives from UIControl are "UIControl",
/// "UIView", "UIResponder". Thread: any.
template <std::derived_from<UIView> View>
bool registerViewClass(std::string_view name, const ClassNames& superclasses) {
  return registerCodingClass({name, superclasses,
                              [](NSKeyedUnarchiver& coder) -> std::optional<Value> {
                                return Value(std::make_shared<View>(coder));
                              },
                              [] { return false; }});
}

}  // namespace FrameworkUtility
