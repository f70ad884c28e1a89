#pragma once

#include <examples/demo/canvas.h>

#include <cstdint>

namespace demo {

/// The near shore over a finished landscape: a dark bank, firs on the left, and grass whose tips
/// catch the last light.
void drawShore(Canvas& canvas, std::uint32_t seed);

}  // namespace demo
