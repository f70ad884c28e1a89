#include <examples/demo/landscape.h>

#include <examples/demo/noise.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace demo {
namespace {

constexpr float waterline = 0.615F;
constexpr float sunRadius = 0.0165F;

constexpr std::size_t rockSize = 1024;  // of the tile's sides

struct Range {
  float crest;      // y of the mean ridge
  float amplitude;  // how far it goes up and down
  float frequency;  // of its mountains, a unit of width
  float haze;       // 0: all rock, 1: all air
  float trees;      // height of the trees on it
  std::uint32_t seed;
};

// From the farthest to the nearest.
constexpr Range ranges[rangeCount] = {
    {0.470F, 0.190F, 1.9F, 0.62F, 0, 11},      {0.520F, 0.150F, 2.3F, 0.50F, 0, 23},
    {0.560F, 0.105F, 2.9F, 0.37F, 0, 31},      {0.588F, 0.055F, 3.1F, 0.24F, 0.007F, 47},
    {0.604F, 0.030F, 3.6F, 0.11F, 0.017F, 59},
};

// Between the columns that are there.
float every4th(const std::vector<float>& values, std::size_t column) {
  return mix(values[column / 4], values[column / 4 + 1], static_cast<float>(column % 4) / 4);
}

}  // namespace

Landscape::Landscape(std::size_t width, std::size_t height, std::uint32_t seed)
    : width_(width),
      scale_(static_cast<float>(height)),
      seed_(seed),
      skyWidth_(width / 4 + 2),
      skyHeight_(static_cast<std::size_t>(waterline * scale_) / 4 + 3),
      sky_(skyWidth_ * skyHeight_),
      rock_(rockSize * rockSize),
      sunward_(width),
      wave_(width / 4 + 2),
      calm_(wave_.size()) {
  for (std::size_t column = 0; column < width_; ++column) {
    sunward_[column] = std::exp(-std::fabs(static_cast<float>(column) / scale_ - sun.x) * 2.6F);
  }
  makeSky();
  makeRock();
  for (std::size_t i = 0; i < rangeCount; ++i) {
    makeRidge(i);
    if (ranges[i].trees > 0) plantFirs(i);
  }
}

void Landscape::draw(Canvas& canvas) {
  for (std::size_t row = 0; row < canvas.height(); ++row) {
    const float y = canvas.y(row);
    const bool isLand = y < waterline;
    if (!isLand) makeWaves(y);
    for (std::size_t column = 0; column < canvas.width(); ++column) {
      const float x = canvas.x(column);
      canvas.put(column, row, isLand ? land(x, y) : lake(column, x, y));
    }
  }
}

std::size_t Landscape::columnAt(float x) const {
  const float last = static_cast<float>(width_ - 1);
  return static_cast<std::size_t>(std::min(std::max(x * scale_, 0.0F), last));
}

// The glow and the clouds change slowly, so a quarter of the size is drawn and enlarged.
void Landscape::makeSky() {
  struct Stop {
    float y;
    Light light;
  };
  const Stop stops[] = {{0.00F, screen(0x232C54)}, {0.14F, screen(0x3D4277)},
                        {0.26F, screen(0x74598F)}, {0.36F, screen(0xBB7590)},
                        {0.43F, screen(0xE79A83)}, {0.49F, screen(0xF7C08A)},
                        {0.64F, screen(0xFBD9A0)}};
  const Light glow = screen(0xFF9A4A), cloudLit = screen(0xFFB08A), cloudShade = screen(0x51487A);
  for (std::size_t row = 0; row < skyHeight_; ++row) {
    for (std::size_t column = 0; column < skyWidth_; ++column) {
      const float x = static_cast<float>(column) * 4 / scale_;
      const float y = static_cast<float>(row) * 4 / scale_;
      std::size_t i = 1;
      while (i + 1 < std::size(stops) && stops[i].y < y) ++i;
      const float t = smoothstep(stops[i - 1].y, stops[i].y, y);
      Light light = mix(stops[i - 1].light, stops[i].light, t);

      const float dx = (x - sun.x) * 0.72F, dy = y - sun.y;
      const float distance = std::sqrt(dx * dx + dy * dy);
      light = light + glow * (0.85F * std::exp(-distance * 7.5F) + 0.9F * std::exp(-distance * 26));

      // Clouds lie flat: seen from below they crowd together towards the horizon.
      const float far = 1 / (0.62F - y + 0.16F);
      const float u = (x - 0.66F) * far * 0.75F, v = far * 2.3F;
      const float warp = fractalNoise(u * 0.9F, v * 1.1F, 3, 0.5F, seed_ + 301);
      const float density =
          fractalNoise(u * 1.1F + warp * 0.5F, v * 2.1F + warp * 0.4F, 6, 0.53F, seed_ + 307);
      const float fade = smoothstep(0.50F, 0.40F, y) * smoothstep(-0.05F, 0.12F, y);
      const float cover = smoothstep(0.02F, 0.46F, density) * fade;
      const float thick = smoothstep(0.10F, 0.62F, density);
      const float sunward = std::exp(-distance * 2.3F);
      const Light lit = cloudLit * (0.42F + 1.25F * sunward) + glow * (0.35F * sunward);
      const Light shade = mix(cloudShade, light, 0.45F) * (0.62F + 0.5F * sunward);
      light = mix(light, mix(lit, shade, thick), cover * 0.88F);
      sky_[row * skyWidth_ + column] = light;
    }
  }
}

Light Landscape::sky(float x, float y) const {
  const float column = std::min(std::max(x * scale_ / 4, 0.0F), static_cast<float>(skyWidth_ - 2));
  const float row = std::min(std::max(y * scale_ / 4, 0.0F), static_cast<float>(skyHeight_ - 2));
  const auto c = static_cast<std::size_t>(column), r = static_cast<std::size_t>(row);
  const Light* const at = &sky_[r * skyWidth_ + c];
  const float tx = column - static_cast<float>(c), ty = row - static_cast<float>(r);
  Light light = mix(mix(at[0], at[1], tx), mix(at[skyWidth_], at[skyWidth_ + 1], tx), ty);

  const float dx = x - sun.x, dy = y - sun.y;
  const float distance = std::sqrt(dx * dx + dy * dy);
  if (distance < sunRadius * 1.2F) {
    const float disc = 1 - smoothstep(sunRadius * 0.9F, sunRadius * 1.1F, distance);
    light = light + Light{3.0F, 2.1F, 1.1F} * disc;
  }
  return light;
}

void Landscape::makeRock() {
  std::vector<float> heights(rock_.size());
  for (std::size_t i = 0; i < heights.size(); ++i) {
    const float x = static_cast<float>(i % rockSize) / 84,
                y = static_cast<float>(i / rockSize) / 104;
    heights[i] = ridgedNoise(x, y, 8, 0.58F, seed_ + 401);
  }
  for (std::size_t i = 0; i < rock_.size(); ++i) {
    const std::size_t next = i % rockSize == rockSize - 1 ? i : i + 1;
    const std::size_t below = i + rockSize < rock_.size() ? i + rockSize : i;
    rock_[i] = (heights[i] - heights[next]) * 20 + (heights[below] - heights[i]) * 7;
  }
}

float Landscape::rock(float x, float y) const {
  // Mirrored at its edges, it has no seams.
  const auto fold = [](float v) {
    const float period = 2 * (rockSize - 1);
    v = std::fabs(v - period * std::floor(v / period));
    return v < rockSize - 1 ? v : period - v;
  };
  const float column = fold(x), row = fold(y);
  const auto c = std::min(static_cast<std::size_t>(column), rockSize - 2);
  const auto r = std::min(static_cast<std::size_t>(row), rockSize - 2);
  const float tx = column - static_cast<float>(c), ty = row - static_cast<float>(r);
  const float* const at = &rock_[r * rockSize + c];
  return mix(mix(at[0], at[1], tx), mix(at[rockSize], at[rockSize + 1], tx), ty);
}

void Landscape::makeRidge(std::size_t index) {
  const Range& range = ranges[index];
  std::vector<float>& ridge = ridges_[index];
  ridge.resize(width_);
  for (std::size_t column = 0; column < width_; ++column) {
    const float x = static_cast<float>(column) / scale_;
    const float u = x * range.frequency;
    float up = ridgedNoise(u, 0.5F, 9, 0.52F, seed_ + range.seed) - 0.62F;
    // A high mountain on the left, and a valley that lets the sun shine through.
    const float hill = (x - 0.47F) / 0.17F, valley = (x - sun.x) / 0.17F;
    if (index == 0) up += 0.56F * std::exp(-std::pow(std::fabs(hill), 1.3F));
    up -= (index < 3 ? 0.42F : 0.2F) * std::exp(-valley * valley);
    ridge[column] = range.crest - range.amplitude * up;
  }
}

// Firs along a ridge: a cone each, its edge notched by the branches.
void Landscape::plantFirs(std::size_t index) {
  const Range& range = ranges[index];
  std::vector<float>& ridge = ridges_[index];
  const std::vector<float> ground = ridge;
  const float spacing = range.trees * 0.23F;
  const auto count = static_cast<std::uint32_t>(static_cast<float>(width_) / scale_ / spacing) + 2;
  for (std::uint32_t tree = 0; tree < count; ++tree) {
    const auto random = [&](std::uint32_t what) {
      return random01(tree, what, seed_ + range.seed);
    };
    const float x = (static_cast<float>(tree) + random(1)) * spacing;
    const float clump = fractalNoise(x * 5 / (range.trees * 60), 3.7F, 3, 0.6F, seed_ + range.seed);
    const float tall = range.trees * (0.55F + 0.75F * random(2)) * (1 + 0.5F * clump);
    const float half = tall * (0.17F + 0.06F * random(3));
    const float foot = ground[columnAt(x)];
    const auto first = std::max(0.0F, (x - half) * scale_), last = (x + half) * scale_;
    for (auto column = static_cast<std::size_t>(first);
         column < width_ && static_cast<float>(column) <= last; ++column) {
      const float away = std::fabs(static_cast<float>(column) / scale_ - x) / half;
      if (away >= 1) continue;
      const float notch = std::fabs(std::fmod(away * 6 + random(4), 1.0F) - 0.5F) * 0.16F;

      ridge[column] = std::min(ridge[column], foot - tall * (1 - away - notch));
    }
  }
}

Light Landscape::mountain(std::size_t index, float x, float y, float below) const {
  static const Light stone = screen(0x2C2F55), forest = screen(0x16212C), snow = screen(0xF2B6A8);
  static const Light airCool = screen(0x716AA6), airWarm = screen(0xFFB884);
  static const Light mistCool = screen(0xB793B2), mistWarm = screen(0xFFC894);
  const Range& range = ranges[index];
  const auto order = static_cast<float>(index);
  const float sunward = sunward_[columnAt(x)];
  const float size = 1500 + 260 * order;
  const float slope = rock(x * size + order * 331, below * size * 0.9F + order * 97);
  // Faces turned to the sun are on its side of each crest.
  const float side = std::min(std::max(x < sun.x ? slope : -slope, -1.3F), 1.8F);
  Light light = mix(stone, forest, order / 4) * (1 + 0.62F * side);
  if (index < 2) {
    const float line = (index == 0 ? 0.085F : 0.03F) + 0.02F * slope;
    const float cap = smoothstep(line + 0.02F, line - 0.02F, below) * smoothstep(-0.5F, 0.7F, side);
    light = mix(light, snow, cap * 0.62F);
  }
  light = mix(light, mix(airCool, airWarm, std::min(sunward * 1.1F, 1.0F)), range.haze);
  // Mist gathers at the feet of the mountains.
  const float foot = smoothstep(range.crest - range.amplitude * 0.1F, waterline + 0.012F, y);
  return mix(light, mix(mistCool * 0.8F, mistWarm, sunward), foot * (0.74F - 0.1F * order));
}

Light Landscape::land(float x, float y) const {
  const auto column = columnAt(x);
  float seen = 1;  // what nearer ranges leave to see
  Light light;
  for (std::size_t i = rangeCount; i-- > 0;) {
    const float below = (y - ridges_[i][column]) * scale_;
    if (below <= -0.5F) continue;
    const float cover = std::min(below + 0.5F, 1.0F) * seen;
    light = light + mountain(i, x, y, below / scale_) * cover;
    seen -= cover;
    if (seen <= 0.001F) return light;
  }
  return light + sky(x, y) * seen;
}

// The waves of one row, every fourth pixel: they lie flat, so that is fine enough.
void Landscape::makeWaves(float y) {
  const float distance = 1 / (y - waterline + 0.012F);
  for (std::size_t i = 0; i < wave_.size(); ++i) {
    const float x = static_cast<float>(i) * 4 / scale_;
    const float u = x * distance * 0.55F, v = distance * 2.6F;
    wave_[i] = noise(u * 4, v * 7, seed_ + 601) * 0.6F + noise(u * 11, v * 17, seed_ + 607) * 0.4F;
    calm_[i] = noise(x * 2.2F, v * 0.55F, seed_ + 613);
  }
}

// The mirror of what stands above the water, drawn out and broken by ripples.
Light Landscape::lake(std::size_t column, float x, float y) const {
  static const Light deep = screen(0x141C33), edge = screen(0x2A2638);
  const float depth = y - waterline;
  const float near = depth / (1 - waterline);
  const float wave = every4th(wave_, column), calm = every4th(calm_, column);
  const float strength = (0.006F + 0.034F * near) * (0.55F + 0.45F * calm);
  const float mirrored = waterline - depth * 0.95F - wave * strength;
  const Light image =
      land(x + wave * strength * 0.3F, std::min(std::max(mirrored, 0.0F), waterline));
  // The steeper the view into the water, the less it mirrors.
  Light light = mix(image * Light{0.84F, 0.82F, 0.87F}, deep, 0.06F + 0.42F * near * near);
  // Glitter below the sun.
  const float aside = (x - sun.x) / (0.024F + 0.10F * near);
  const float glint = std::exp(-aside * aside) * smoothstep(0.25F, 0.85F, wave + 0.25F * calm);
  light = light + Light{1.5F, 0.86F, 0.42F} * (glint * (0.9F - 0.45F * near));
  return mix(light, edge, 0.55F * std::exp(-depth * 330));
}

}  // namespace demo
