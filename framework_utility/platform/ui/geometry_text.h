#pragma once

#include <framework_utility/plane/point.h>
#include <framework_utility/plane/rect.h>

#include <string>
#include <string_view>

namespace FrameworkUtility {

// Places as text, the form that views' archives hold them in. Numbers read back as the same double,
// in every locale. Thread: any.

/// "{1.5, 2}". Platform: NSStringFromCGPoint
std::string NSStringFromCGPoint(Point point);
/// "{{1.5, 2}, {30, 40}}": the origin, then the size. Platform: NSStringFromCGRect
std::string NSStringFromCGRect(const Rect& rect);

/// (0, 0) for a text of another form; blanks may stand anywhere. Platform: CGPointFromString
Point CGPointFromString(std::string_view text);
/// The zero rect for a text of another form. Platform: CGRectFromString
Rect CGRectFromString(std::string_view text);

}  // namespace FrameworkUtility
