#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace demo {

/// A mountain lake at dusk, drawn from numbers alone: rows of red, green, blue and an unused byte,
/// top row first. The picture depends on the seed only; its parts scale with the height. At
/// 4032 x 3024 one thread needs a second or two.
std::vector<std::byte> renderScene(std::size_t width, std::size_t height, std::uint32_t seed);

}  // namespace demo
