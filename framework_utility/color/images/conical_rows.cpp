#include <framework_utility/color/images/conical_rows.h>

#include <framework_utility/color/images/gradient_image.h>
#include <framework_utility/platform/foundation/values/stop.h>
#include <framework_utility/platform/graphics/gradient_kernels.h>
#include <framework_utility/platform/graphics/pixel_word.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <numbers>
#include <utility>

namespace FrameworkUtility::detail {

namespace {

constexpr double turn = 2 * std::numbers::pi;

/// Single precision holds whole and half pixels up to here.
constexpr std::size_t longestSide = std::size_t{1} << 22;
/// With more, most runs would be shorter than a vector.
constexpr std::size_t mostSegments = 1024;

/// Alpha of a pixel that is to be computed again.
constexpr std::uint32_t doubtful = 0;

/// Pixels that a loop fills at once; it may go beyond a run's end, for what follows is filled
/// later.
constexpr std::size_t block = 8;

/// The arc tangent for |q| up to tan(pi/8), within 4e-9: the first five terms of
///   atan(x tan 2t) = 2 sum (-1)^k tan(t)^(2k+1) / (2k+1) T_(2k+1)(x)
/// with t = pi/16, as a polynomial in q = x tan(pi/8).
[[gnu::always_inline]] inline float arcTangent(float q) {
  const float square = q * q;
  float sum = 0.07726177754631462F;
  sum = sum * square - 0.13751577271705973F;
  sum = sum * square + 0.19961549539561524F;
  sum = sum * square - 0.33332184265314274F;
  sum = sum * square + 0.9999999030343615F;
  return sum * q;
}

/// Levels are looked at as fixed-point numbers, which a single-precision number's lowest bits are
/// after a number of the right size is added: here 13 of them stand behind the point.
constexpr int fractionBits = 13;
constexpr std::uint32_t fractionMask = (1U << fractionBits) - 1;
constexpr float fixedPoint = 0x1.8p10F;

/// Angles of pixels from the middle of their sector. They stand between two loops, for in one the
/// processor would wait for each pixel's long chain of operations.
using Angles = std::array<float, 64 * block>;

struct SectorAngles {
  /// `pixels`, whole blocks, whose first is at (left, y) from the centre.
  [[gnu::always_inline]] static void run(const ConicalRows::Sector& sector, const float& left,
                                         const float& y, Angles& angles,
                                         const std::int32_t& pixels) {
    const float cosine = sector.cosine;
    const float sine = sector.sine;
    const float first = left;
    const float along = y * sine;
    const float across = y * cosine;
    for (std::int32_t i = 0, end = pixels; i < end; ++i) {
      const float x = first + static_cast<float>(i);
      angles[static_cast<std::size_t>(i)] = arcTangent((across - x * sine) / (x * cosine + along));
    }
  }
};

struct SectorColors {
  [[gnu::always_inline]] static void run(const ConicalRows::Sector& sector,
                                         const std::int32_t& doubt, const Angles& angles,
                                         std::uint8_t* const& row, const std::int32_t& pixels) {
    const auto [red, green, blue] = sector.base;
    const auto [redSlope, greenSlope, blueSlope] = sector.slope;
    const auto margin = static_cast<std::uint32_t>(doubt);
    std::uint8_t* const to = row;
    for (std::int32_t i = 0, end = pixels; i < end; ++i) {
      const float angle = angles[static_cast<std::size_t>(i)];
      const auto r = std::bit_cast<std::uint32_t>(red + angle * redSlope);
      const auto g = std::bit_cast<std::uint32_t>(green + angle * greenSlope);
      const auto b = std::bit_cast<std::uint32_t>(blue + angle * blueSlope);
      // How far each is above a whole level less the margin; small beside one.
      const auto above = [margin](std::uint32_t level) {
        return static_cast<std::int32_t>((level + margin) & fractionMask);
      };
      const std::int32_t least = std::min(above(r), std::min(above(g), above(b)));
      setWord(to + 4 * static_cast<std::size_t>(i),
              wordOf(r >> fractionBits & 255, g >> fractionBits & 255, b >> fractionBits & 255,
                     least >= 2 * static_cast<std::int32_t>(margin) ? 255 : doubtful));
    }
  }
};

/// How far a pixel lies right of or below the centre; whole and half pixels.
float fromCenter(std::size_t place, std::size_t side) {
  return static_cast<float>(static_cast<double>(place) - static_cast<double>(side) * 0.5);
}

std::uint8_t truncatedByte(double component) {
  const double level = component * 255;
  if (!(level > -1 && level < 256)) {
    stop("conicalGradientImage: a component is no level of 0...255");
  }
  return static_cast<std::uint8_t>(level);
}

bool isInRange(const KvColor& color) {
  const auto isUnit = [](double component) { return component >= 0 && component <= 1; };
  return isUnit(color.red) && isUnit(color.green) && isUnit(color.blue);
}

}  // namespace

ConicalRows::ConicalRows(std::vector<KvColor> colors, std::size_t width, std::size_t height)
    : colors_(std::move(colors)), width_(width), height_(height) {
  const std::size_t segments = colors_.size() - 1;
  if (segments > mostSegments || width > longestSide || height > longestSide ||
      !std::all_of(colors_.begin(), colors_.end(), isInRange)) {
    return;
  }
  makeSectors((8 + segments - 1) / segments);
}

void ConicalRows::makeSectors(std::size_t sectorsInSegment) {
  const std::size_t segments = colors_.size() - 1;
  const std::size_t count = segments * sectorsInSegment;
  double steepest = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t segment = i / sectorsInSegment;
    const KvColor& from = colors_[segment];
    const KvColor& to = colors_[segment + 1];
    const double middle = turn * (static_cast<double>(i) + 0.5) / static_cast<double>(count);
    Sector sector;
    sector.cosine = static_cast<float>(std::cos(middle));
    sector.sine = static_cast<float>(std::sin(middle));
    // Single precision has turned the middle a little.
    const double turned =
        std::atan2(static_cast<double>(sector.sine), static_cast<double>(sector.cosine));
    const double part =
        (turned < 0 ? turned + turn : turned) / turn * static_cast<double>(segments) -
        static_cast<double>(segment);
    const std::array<std::pair<double, double>, 3> components = {
        {{from.red, to.red}, {from.green, to.green}, {from.blue, to.blue}}};
    for (std::size_t c = 0; c < 3; ++c) {
      const auto [start, end] = components[c];
      const double slope = 255 * (end - start) * static_cast<double>(segments) / turn;
      // What does not change is exactly the colour's own level, and so beyond doubt.
      const double base =
          start == end ? std::floor(start * 255) + 0.5 : 255 * (start + part * (end - start));
      sector.base[c] = static_cast<float>(base + fixedPoint);
      sector.slope[c] = static_cast<float>(slope);
      steepest = std::max(steepest, std::abs(slope));
    }
    const double ray = turn * static_cast<double>(i) / static_cast<double>(count);
    sectors_.push_back(sector);
    cotangents_.push_back(std::cos(ray) / std::sin(ray));
  }
  // An angle is off by no more than 2.5e-7: the quotient's two products and two sums each by 2^-24
  // of the distance, the division and the polynomial by less. Base and sum are each rounded by half
  // a unit of the fixed point at most, the product by less.
  const double levelOff = steepest * 2.5e-7 * (1 << fractionBits) + 1.5;
  doubt_ = static_cast<std::int32_t>(std::ceil(levelOff));
}

std::uint32_t ConicalRows::exactPixel(std::size_t x, std::size_t y) const {
  const auto segments = static_cast<double>(colors_.size() - 1);
  const double position =
      conicalGradientStop({static_cast<double>(x), static_cast<double>(y)},
                          {static_cast<double>(width_), static_cast<double>(height_)});
  const auto locationOf = [segments](std::size_t i) { return static_cast<double>(i) / segments; };
  // The last stop that is not behind the position; one at the position stands on both sides.
  auto lower = std::min(static_cast<std::size_t>(position * segments), colors_.size() - 1);
  while (locationOf(lower) > position) --lower;
  while (lower + 1 < colors_.size() && locationOf(lower + 1) <= position) ++lower;
  const double start = locationOf(lower);
  const std::size_t upper = start == position ? lower : lower + 1;
  const double part = upper == lower ? 0 : (position - start) / (locationOf(upper) - start);
  const KvColor color = colors_[lower].interpolateWithColorWithColor(colors_[upper], part);
  return wordOf(truncatedByte(color.red), truncatedByte(color.green), truncatedByte(color.blue),
                255);
}

void ConicalRows::fillExactly(std::size_t y, std::size_t first, std::size_t end,
                              std::uint8_t* row) const {
  for (std::size_t x = first; x < end; ++x) setWord(row + 4 * x, exactPixel(x, y));
}

/// The row through the centre: one angle on either side of it.
void ConicalRows::fillMiddleRow(std::size_t y, std::uint8_t* row) const {
  const std::size_t center = width_ / 2;  // the first pixel that is not left of it
  const std::size_t right = std::min(center + 1, width_ - 1);
  detail::fillRun(exactPixel(0, y), row, center);
  fillExactly(y, center, right, row);
  detail::fillRun(exactPixel(width_ - 1, y), row + 4 * right, width_ - right);
}

void ConicalRows::fillRun(const Sector& sector, std::size_t y, std::size_t first, std::size_t end,
                          std::uint8_t* row, InstructionSet instructions) const {
  Angles angles;
  const auto fill = [&](std::size_t x, std::uint8_t* to, std::size_t blocks) {
    const auto pixels = static_cast<std::int32_t>(blocks * block);
    runWith<SectorAngles>(instructions, sector, fromCenter(x, width_), fromCenter(y, height_),
                          angles, pixels);
    runWith<SectorColors>(instructions, sector, doubt_, angles, to, pixels);
  };
  std::size_t x = first;
  while (x < end && x + block <= width_) {
    const std::size_t wanted = (end - x + block - 1) / block;
    const std::size_t blocks = std::min({wanted, (width_ - x) / block, angles.size() / block});
    fill(x, row + 4 * x, blocks);
    x += blocks * block;
  }
  if (x < end) {  // less than a block before the row's end
    std::array<std::uint8_t, 4 * block> last;
    fill(x, last.data(), 1);
    std::memcpy(row + 4 * x, last.data(), 4 * (end - x));
  }
  computeDoubtfulAgain(y, first, end, row);
}

void ConicalRows::computeDoubtfulAgain(std::size_t y, std::size_t first, std::size_t end,
                                       std::uint8_t* row) const {
  constexpr std::size_t stretch = 64;  // seldom one of so many
  const std::uint32_t alpha = wordOf(0, 0, 0, 255);
  for (std::size_t x = first; x < end; x += stretch) {
    const std::size_t stretchEnd = std::min(x + stretch, end);
    std::uint32_t all = alpha;
    for (std::size_t i = x; i < stretchEnd; ++i) all &= wordAt(row + 4 * i);
    if (all == alpha) continue;
    for (std::size_t i = x; i < stretchEnd; ++i) {
      if ((wordAt(row + 4 * i) & alpha) == 0) fillExactly(y, i, i + 1, row);
    }
  }
}

void ConicalRows::fillRow(std::size_t y, std::uint8_t* row, InstructionSet instructions) const {
  const double below = static_cast<double>(y) - static_cast<double>(height_) * 0.5;
  if (sectors_.empty()) {
    fillExactly(y, 0, width_, row);
    return;
  }
  if (below == 0) {
    fillMiddleRow(y, row);
    return;
  }
  // From left to right the angle falls from half a turn to 0 below the centre, where y is greater,
  // and rises from half a turn to a whole one above it.
  const bool falls = below > 0;
  const std::size_t count = sectors_.size();
  const std::size_t last = falls ? 0 : count - 1;
  std::size_t sector = falls ? (count + 1) / 2 - 1 : count / 2;
  std::size_t x = 0;
  while (sector != last && x < width_) {
    const double ray = cotangents_[falls ? sector : sector + 1];
    const double crossing = static_cast<double>(width_) * 0.5 + below * ray;
    const double near = std::nearbyint(crossing);
    const bool meetsPixel = std::abs(crossing - near) < 1e-6;
    const double place = std::clamp(meetsPixel ? near : std::ceil(crossing), static_cast<double>(x),
                                    static_cast<double>(width_));
    const auto end = static_cast<std::size_t>(place);
    fillRun(sectors_[sector], y, x, end, row, instructions);
    x = end;
    if (meetsPixel && place == near && x < width_) {
      fillExactly(y, x, x + 1, row);
      ++x;
    }
    sector = falls ? sector - 1 : sector + 1;
  }
  fillRun(sectors_[last], y, x, width_, row, instructions);
}

}  // namespace FrameworkUtility::detail
