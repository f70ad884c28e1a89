#pragma once

#include <examples/demo/canvas.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace demo {

inline constexpr Place sun{0.855F, 0.497F};
inline constexpr std::size_t rangeCount = 5;

/// What lies beyond the near shore: the sky with its sun, ranges of mountains in the haze, and the
/// lake that mirrors them.
class Landscape {
 public:
  /// For pictures of this size.
  Landscape(std::size_t width, std::size_t height, std::uint32_t seed);

  void draw(Canvas& canvas);

 private:
  void makeSky();
  void makeRock();
  void makeRidge(std::size_t index);
  void plantFirs(std::size_t index);
  void makeWaves(float y);

  Light sky(float x, float y) const;
  float rock(float x, float y) const;
  Light mountain(std::size_t index, float x, float y, float below) const;
  Light land(float x, float y) const;
  Light lake(std::size_t column, float x, float y) const;
  std::size_t columnAt(float x) const;

  std::size_t width_;
  float scale_;  // pixels a unit
  std::uint32_t seed_;
  std::size_t skyWidth_, skyHeight_;
  std::vector<Light> sky_;          // a quarter of the size
  std::vector<float> rock_;         // how slopes catch the light: a square tile for all ranges
  std::vector<float> sunward_;      // a column each: 1 below the sun, less aside
  std::vector<float> wave_, calm_;  // of one row of the lake, every fourth column
  std::array<std::vector<float>, rangeCount> ridges_;  // y of the ridge in each column
};

}  // namespace demo
