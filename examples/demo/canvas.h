#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace demo {

/// Linear light; 1 is the white of the screen, and lights may be brighter.
struct Light {
  float red = 0, green = 0, blue = 0;

  friend Light operator+(Light a, Light b) {
    return {a.red + b.red, a.green + b.green, a.blue + b.blue};
  }
  friend Light operator-(Light a, Light b) {
    return {a.red - b.red, a.green - b.green, a.blue - b.blue};
  }
  friend Light operator*(Light a, float f) { return {a.red * f, a.green * f, a.blue * f}; }
  friend Light operator*(Light a, Light b) {
    return {a.red * b.red, a.green * b.green, a.blue * b.blue};
  }
};

/// The light of 0xRRGGBB as a colour picker shows it.
Light screen(std::uint32_t rgb);

/// In units of the picture's height: y from 0 at the top to 1, x from 0 to width / height.
struct Place {
  float x = 0, y = 0;
};

/// A photograph in the making: light becomes pixels through a film's curve and grain.
class Canvas {
 public:
  Canvas(std::size_t width, std::size_t height, std::uint32_t seed);

  std::size_t width() const { return width_; }
  std::size_t height() const { return height_; }
  float scale() const { return static_cast<float>(height_); }  ///< Pixels a unit.
  float aspect() const { return static_cast<float>(width_) / scale(); }

  /// The middle of a pixel.
  float x(std::size_t column) const { return (static_cast<float>(column) + 0.5F) / scale(); }
  float y(std::size_t row) const { return (static_cast<float>(row) + 0.5F) / scale(); }

  void put(std::size_t column, std::size_t row, Light light);
  /// A line that tapers, with soft edges, over what is there.
  void stroke(Place from, Place to, float widthFrom, float widthTo, Light light);

  /// Rows of red, green, blue and 255.
  std::vector<std::byte> takePixels() { return std::move(pixels_); }

 private:
  float tone(float light) const;

  std::size_t width_, height_;
  std::uint32_t seed_;
  std::array<float, 8192> tones_;
  std::vector<std::byte> pixels_;
};

}  // namespace demo
