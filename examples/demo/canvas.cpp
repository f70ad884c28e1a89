#include <examples/demo/canvas.h>

#include <examples/demo/noise.h>

#include <algorithm>
#include <cmath>

namespace demo {
namespace {

constexpr float screenGamma = 2.2F;
constexpr float brightest = 4;  // brighter lights look the same

// Straight in the shadows, a long shoulder for the sun; 0...255.
float developed(float light) {
  constexpr float knee = 0.6F, rest = 1 - knee;
  const float value = light < knee ? light : knee + rest * (1 - std::exp((knee - light) / rest));
  return 255 * std::pow(value, 1 / screenGamma);
}

}  // namespace

Light screen(std::uint32_t rgb) {
  const auto linear = [&](int shift) {
    return std::pow(static_cast<float>(rgb >> shift & 0xFF) / 255.0F, screenGamma);
  };
  return {linear(16), linear(8), linear(0)};
}

Canvas::Canvas(std::size_t width, std::size_t height, std::uint32_t seed)
    : width_(width), height_(height), seed_(seed), pixels_(width * height * 4) {
  for (std::size_t i = 0; i < tones_.size(); ++i) {
    tones_[i] =
        developed(brightest * static_cast<float>(i) / static_cast<float>(tones_.size() - 1));
  }
}

float Canvas::tone(float light) const {
  const float at =
      std::min(std::max(light / brightest, 0.0F), 1.0F) * static_cast<float>(tones_.size() - 1);
  const auto index = std::min(static_cast<std::size_t>(at), tones_.size() - 2);
  return mix(tones_[index], tones_[index + 1], at - static_cast<float>(index));
}

void Canvas::put(std::size_t column, std::size_t row, Light light) {
  // The sum of two uniform numbers is near to a bell; shadows show grain more than lights.
  const std::uint32_t bits = mixed(static_cast<std::uint32_t>(row * width_ + column) ^ seed_);
  const float grain = static_cast<float>((bits & 0xFFFF) + (bits >> 16)) / 65536.0F - 1;
  const float channels[] = {tone(light.red), tone(light.green), tone(light.blue)};
  std::byte* const pixel = &pixels_[(row * width_ + column) * 4];
  for (std::size_t i = 0; i < 3; ++i) {
    const float value = channels[i] + grain * (4.2F - channels[i] * 0.008F) + 0.5F;
    pixel[i] = static_cast<std::byte>(std::min(std::max(value, 0.0F), 255.0F));
  }
  pixel[3] = std::byte{255};
}

void Canvas::stroke(Place from, Place to, float widthFrom, float widthTo, Light light) {
  from = {from.x * scale(), from.y * scale()};
  to = {to.x * scale(), to.y * scale()};
  const float half = std::max(widthFrom, widthTo) * scale() / 2 + 1;
  const auto bound = [](float value, std::size_t limit) {
    return static_cast<std::size_t>(std::min(std::max(value, 0.0F), static_cast<float>(limit)));
  };
  const std::size_t left = bound(std::min(from.x, to.x) - half, width_);
  const std::size_t right = bound(std::max(from.x, to.x) + half + 1, width_);
  const std::size_t top = bound(std::min(from.y, to.y) - half, height_);
  const std::size_t bottom = bound(std::max(from.y, to.y) + half + 1, height_);
  const float dx = to.x - from.x, dy = to.y - from.y;
  const float squaredLength = std::max(dx * dx + dy * dy, 1e-6F);
  const float channels[] = {tone(light.red), tone(light.green), tone(light.blue)};
  for (std::size_t row = top; row < bottom; ++row) {
    for (std::size_t column = left; column < right; ++column) {
      const float px = static_cast<float>(column) + 0.5F - from.x;
      const float py = static_cast<float>(row) + 0.5F - from.y;
      const float t = std::min(std::max((px * dx + py * dy) / squaredLength, 0.0F), 1.0F);
      const float ax = px - t * dx, ay = py - t * dy;
      const float radius = mix(widthFrom, widthTo, t) * scale() / 2;
      const float inside = radius + 0.5F - std::sqrt(ax * ax + ay * ay);
      if (inside <= 0) continue;
      // A line thinner than a pixel covers only part of it.
      const float cover = std::min(inside, 1.0F) * std::min(2 * radius, 1.0F);
      std::byte* const pixel = &pixels_[(row * width_ + column) * 4];
      for (std::size_t i = 0; i < 3; ++i) {
        const auto old = static_cast<float>(std::to_integer<int>(pixel[i]));
        pixel[i] = static_cast<std::byte>(mix(old, channels[i], cover) + 0.5F);
      }
    }
  }
}

}  // namespace demo
