#include <examples/demo/scene.h>

#include <examples/demo/canvas.h>
#include <examples/demo/landscape.h>
#include <examples/demo/shore.h>

namespace demo {

std::vector<std::byte> renderScene(std::size_t width, std::size_t height, std::uint32_t seed) {
  Canvas canvas(width, height, seed);
  Landscape(width, height, seed).draw(canvas);
  drawShore(canvas, seed);
  return canvas.takePixels();
}

}  // namespace demo
