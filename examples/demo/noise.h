#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace demo {

/// 32 well-mixed bits of a number: the finaliser of MurmurHash3.
constexpr std::uint32_t mixed(std::uint32_t n) {
  n ^= n >> 16;
  n *= 0x85EBCA6BU;
  n ^= n >> 13;
  n *= 0xC2B2AE35U;
  return n ^ n >> 16;
}

/// 0...1, the same for the same integers.
inline float random01(std::uint32_t a, std::uint32_t b, std::uint32_t seed) {
  return static_cast<float>(mixed(a * 0x9E3779B1U ^ mixed(b + seed)) >> 8) / 16777216.0F;
}

/// `a` for 0, `b` for 1. Numbers and colours.
template <class T>
constexpr T mix(T a, T b, float t) {
  return a + (b - a) * t;
}

/// 0 below `from`, 1 above `to`, without a corner between.
inline float smoothstep(float from, float to, float value) {
  const float t = std::min(std::max((value - from) / (to - from), 0.0F), 1.0F);
  return t * t * (3 - 2 * t);
}

/// Value noise, -1...1: random numbers at whole coordinates, smooth between.
inline float noise(float x, float y, std::uint32_t seed) {
  const float fx = std::floor(x), fy = std::floor(y);
  const auto ix = static_cast<std::uint32_t>(static_cast<std::int32_t>(fx));
  const auto iy = static_cast<std::uint32_t>(static_cast<std::int32_t>(fy));
  float tx = x - fx, ty = y - fy;
  tx = tx * tx * tx * (tx * (tx * 6 - 15) + 10);
  ty = ty * ty * ty * (ty * (ty * 6 - 15) + 10);
  const float top = mix(random01(ix, iy, seed), random01(ix + 1, iy, seed), tx);
  const float bottom = mix(random01(ix, iy + 1, seed), random01(ix + 1, iy + 1, seed), tx);
  return 2 * mix(top, bottom, ty) - 1;
}

/// Twice the size, and turned a little so that the lattices of two octaves do not line up.
constexpr void nextOctave(float& x, float& y) {
  const float turned = 1.6F * x - 1.2F * y;
  y = 1.2F * x + 1.6F * y;
  x = turned;
}

/// Octaves of noise, each `gain` times as strong as the coarser one before; about -1...1.
inline float fractalNoise(float x, float y, int octaves, float gain, std::uint32_t seed) {
  float sum = 0, weight = 1, total = 0;
  for (int i = 0; i < octaves; ++i, nextOctave(x, y), weight *= gain) {
    sum += weight * noise(x, y, seed + static_cast<std::uint32_t>(i));
    total += weight;
  }
  return sum / total;
}

/// The same folded at 0, so that it has sharp crests; about 0...1.
inline float ridgedNoise(float x, float y, int octaves, float gain, std::uint32_t seed) {
  float sum = 0, weight = 1, total = 0;
  for (int i = 0; i < octaves; ++i, nextOctave(x, y), weight *= gain) {
    sum += weight * (1 - std::fabs(noise(x, y, seed + static_cast<std::uint32_t>(i))));
    total += weight;
  }
  return sum / total;
}

}  // namespace demo
