#pragma once

#include <framework_utility/plane/rect.h>
#include <framework_utility/platform/graphics/cg_context.h>
#include <framework_utility/platform/graphics/ui_image.h>

namespace FrameworkUtility {

/// Stretches the picture, turned as its orientation says, into a rect of a context whose y grows
/// downwards, as an image renderer's does. Without a bitmap nothing is drawn. Thread: that of the
/// context.
///
///     renderer.imageWithActions([&](CGContext& context) {
///       context.clipToPolygon(cell);
///       drawInRect(photo, context, Rect(0, 0, 300, 200));
///     });
/// Selector: drawInRect:
void drawInRect(const UIImage& image, CGContext& context, const Rect& rect);

}  // namespace FrameworkUtility
