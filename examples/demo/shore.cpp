#include <examples/demo/shore.h>

#include <examples/demo/landscape.h>
#include <examples/demo/noise.h>

#include <algorithm>
#include <cmath>

namespace demo {
namespace {

class Shore {
 public:
  Shore(Canvas& canvas, std::uint32_t seed) : canvas_(canvas), seed_(seed) {}
  void draw();

 private:
  float bank(float x) const;
  void fir(Place foot, float tall, std::uint32_t seed);
  void grass();

  Canvas& canvas_;
  std::uint32_t seed_;
};

// y of the near shore's edge.
float Shore::bank(float x) const {
  const float rise = 0.055F * std::exp(-std::pow((x - 0.10F) / 0.36F, 2.0F)) +
                     0.030F * std::exp(-std::pow((x - 1.40F) / 0.22F, 2.0F));
  return 0.955F - rise + 0.008F * fractalNoise(x * 5, 1.5F, 4, 0.5F, seed_ + 701);
}

void Shore::fir(Place foot, float tall, std::uint32_t seed) {
  const Light dark = screen(0x0B1016), warm = screen(0x33281F);
  const auto random = [&](std::uint32_t a, std::uint32_t b) {
    return random01(a, b, seed_ + seed);
  };
  canvas_.stroke(foot, {foot.x, foot.y - tall}, tall * 0.020F, tall * 0.001F, dark);
  constexpr std::uint32_t levels = 120, pieces = 6, needles = 8;
  for (std::uint32_t level = 0; level < levels; ++level) {
    for (std::uint32_t side = 0; side < 2; ++side) {
      const auto chance = [&](std::uint32_t what) { return random(level, 2 * what + side); };
      const float down = (static_cast<float>(level) + chance(5)) / levels;  // 0 at the top
      const float way = side == 0 ? -1.0F : 1.0F;
      const float reach =
          tall * (0.003F + 0.205F * std::pow(down, 0.9F) * (0.40F + 0.60F * std::sqrt(chance(6))));
      const float sag = reach * (0.05F + 0.38F * chance(7));
      Place last{foot.x, foot.y - tall * (1 - 0.92F * down)};
      const Place root = last;
      for (std::uint32_t piece = 1; piece <= pieces; ++piece) {
        const float t = static_cast<float>(piece) / pieces;
        const Place next{root.x + way * reach * t, root.y + sag * (1.6F * t * t - 0.4F * t)};
        canvas_.stroke(last, next, reach * 0.05F * (1.1F - t), reach * 0.05F * (1.0F - t), dark);
        for (std::uint32_t needle = 0; needle < needles; ++needle) {
          const std::uint32_t which = (level * pieces + piece) * needles + needle;
          const float r = random(which, 30 + side), q = random(which, 40 + side),
                      s = random(which, 50 + side);
          const Place from{mix(last.x, next.x, q), mix(last.y, next.y, q)};
          const float length =
              (tall * 0.007F + reach * 0.15F) * (0.35F + 0.85F * r) * (1 - 0.5F * t);
          const Place to{from.x + way * length * (0.75F * s - 0.1F),
                         from.y + length * (0.8F - 0.35F * s)};
          // The side towards the sun is rimmed with its light.
          const float rim = way > 0 ? t * t * r * 0.8F : 0;
          canvas_.stroke(from, to, length * 0.20F, tall * 0.0006F, mix(dark, warm, rim));
        }
        last = next;
      }
    }
  }
}

void Shore::grass() {
  const Light dark = screen(0x0B0E12), olive = screen(0x25261C), gold = screen(0xB8793F);
  constexpr std::uint32_t rows = 9, blades = 620;
  for (std::uint32_t row = 0; row < rows; ++row) {
    for (std::uint32_t blade = 0; blade < blades; ++blade) {
      const auto random = [&](std::uint32_t what) {
        return random01(row * blades + blade, what, seed_ + 809);
      };
      const float aspect = canvas_.aspect();
      const float x = aspect * (static_cast<float>(blade) + random(1)) / blades;
      const float y = bank(x) + 0.012F * static_cast<float>(row) + 0.006F * random(2);
      const float patch = 0.55F + 0.75F * noise(x * 6, static_cast<float>(row) * 0.7F, seed_ + 811);
      const float length =
          (0.012F + 0.036F * random(3) * random(3)) * std::max(patch, 0.25F) * 1.5F;
      const float lean = (random(4) - 0.42F) * 0.85F * length;
      const float sunward = std::exp(-std::fabs(x - sun.x) * 2.4F);
      const float rim = sunward * random(5) * (row < 4 ? 0.55F : 0.22F);
      const Light light = mix(mix(dark, olive, random(6)), gold, rim);
      Place last{x, y};
      constexpr std::uint32_t pieces = 4;
      for (std::uint32_t piece = 1; piece <= pieces; ++piece) {
        const float t = static_cast<float>(piece) / pieces;
        const Place next{x + lean * t * t, y - length * (t - 0.18F * t * t)};
        const float thick = 0.0011F * (0.6F + 0.6F * random(7));
        canvas_.stroke(last, next, thick * (1.15F - t + 0.25F), thick * (1.15F - t), light);
        last = next;
      }
      if (random(8) > 0.965F && row < 6) {  // an ear
        canvas_.stroke(last, {last.x + lean * 0.22F, last.y - length * 0.16F}, 0.0022F, 0.0009F,
                       mix(light, gold, 0.35F + 0.4F * sunward));
      }
    }
  }
}

void Shore::draw() {
  const Light soil = screen(0x0A0C10), warm = screen(0x1A1613);
  for (std::size_t column = 0; column < canvas_.width(); ++column) {
    const float x = canvas_.x(column);
    const float edge = bank(x);
    for (auto row = static_cast<std::size_t>(edge * canvas_.scale()); row < canvas_.height();
         ++row) {
      const float below = canvas_.y(row) - edge;
      canvas_.put(column, row, mix(warm, soil, smoothstep(0, 0.03F, below)));
    }
  }
  fir({0.075F, bank(0.075F) + 0.01F}, 0.62F, 901);
  fir({0.205F, bank(0.205F) + 0.012F}, 0.44F, 907);
  fir({-0.02F, bank(0) + 0.02F}, 0.80F, 911);
  fir({0.292F, bank(0.292F) + 0.008F}, 0.25F, 919);
  grass();
}

}  // namespace

void drawShore(Canvas& canvas, std::uint32_t seed) { Shore(canvas, seed).draw(); }

}  // namespace demo
