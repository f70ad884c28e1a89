#include <framework_utility/platform/graphics/gradient_fill.h>

#include <framework_utility/platform/graphics/gradient_kernels.h>
#include <framework_utility/platform/graphics/past_caches.h>
#include <framework_utility/platform/graphics/pixel_word.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <type_traits>
#include <vector>

namespace FrameworkUtility::detail {

namespace {

using Color = std::array<long double, 4>;
using Stop = CGGradient::Stop;

Color colorOf(const Stop& stop) {
  return {stop.color.red, stop.color.green, stop.color.blue, stop.color.alpha};
}

/// Pictures from here on are written past the caches, which could not hold them anyway.
constexpr std::size_t largePicture = std::size_t{8} << 20;

/// The colours between two stops, as straight lines over the positions.
struct Segment {
  Color from;
  Color change;  // a unit of position
  long double location;
  bool isOpaque;

  Segment(const Stop& a, const Stop& b)
      : from(colorOf(a)), location(a.location), isOpaque(a.color.alpha == 1 && b.color.alpha == 1) {
    const Color to = colorOf(b);
    for (std::size_t c = 0; c < 4; ++c) change[c] = (to[c] - from[c]) / (b.location - location);
  }

  Color at(long double position) const {
    Color color;
    for (std::size_t c = 0; c < 4; ++c) {
      color[c] = std::clamp(from[c] + (position - location) * change[c], 0.0L, 1.0L);
    }
    return color;
  }
};

/// Straight lines over another measure of position: `color` at 0, `change` a unit. Red, green and
/// blue become levels.
template <class Real>
RunColors<Real> runColors(const Color& color, const Color& change) {
  RunColors<Real> colors;
  for (std::size_t c = 0; c < 4; ++c) {
    const long double levels = c < 3 ? 255 : 1;
    colors.base[c] = static_cast<Real>(color[c] * levels);
    colors.step[c] = static_cast<Real>(change[c] * levels);
  }
  return colors;
}

Color times(Color color, long double factor) {
  for (long double& component : color) component *= factor;
  return color;
}

void fillBetween(const Segment& segment, const LinearRow& row, std::int64_t first,
                 std::uint8_t* pixels, std::size_t count) {
  fillRun(runColors<float>(segment.at(row.at(first)), times(segment.change, row.step / row.whole)),
          StraightRun{}, segment.isOpaque, pixels, count);
}

void fillBetween(const Segment& segment, const RadialRow& row, std::int64_t first,
                 std::uint8_t* pixels, std::size_t count) {
  const long double along = static_cast<long double>(first) - row.nearest();
  Color center = segment.from;  // what the line would be at the centre, perhaps far outside 0...1
  for (std::size_t c = 0; c < 4; ++c) center[c] -= segment.location * segment.change[c];
  const Color change = times(segment.change, row.gain());
  const auto fill = [&](auto real) {
    using Real = decltype(real);
    fillRun(runColors<Real>(center, change),
            RadialRun<Real>{static_cast<Real>(along), static_cast<Real>(row.asideSquared())},
            segment.isOpaque, pixels, count);
  };
  // Single precision keeps 24 bits, of which the distances and their roots lose no more than 3.
  long double steepest = 0;
  for (const long double component : change) steepest = std::max(steepest, std::abs(component));
  const long double end = along + static_cast<long double>(count);
  const long double farthest = std::sqrt(std::max(along * along, end * end) + row.asideSquared());
  if (255 * steepest * farthest < 0.125L * (1 << 21)) {
    fill(float{});
  } else {
    fill(double{});
  }
}

/// Fills one row, run by run.
template <class Row>
class RowFiller {
 public:
  RowFiller(const std::vector<Stop>& stops, const Row& row, std::uint8_t* pixels)
      : stops_(stops), row_(row), pixels_(pixels) {}

  void fill(const MonotonePiece& piece) const {
    for (std::int64_t x = piece.first; x < piece.end;) {
      const std::size_t reached = stopsReached(x);
      const std::int64_t end = endOfRun(x, piece, reached);
      fillRunAfter(reached, x, end);
      x = end;
    }
  }

 private:
  /// Shorter runs are filled pixel by pixel. Steep ones, which could need more than the loops'
  /// precision, are all among them.
  static constexpr std::int64_t shortRun = 4;

  std::size_t stopsReached(std::int64_t x) const {
    const auto next = std::partition_point(stops_.begin(), stops_.end(), [&](const Stop& stop) {
      return row_.reaches(x, stop.location);
    });
    return static_cast<std::size_t>(next - stops_.begin());
  }

  /// Where the run that begins at `x`, with `reached` stops behind it, meets the next stop.
  std::int64_t endOfRun(std::int64_t x, const MonotonePiece& piece, std::size_t reached) const {
    if (reached == (piece.rises ? stops_.size() : 0)) return piece.end;
    const double location = stops_[piece.rises ? reached : reached - 1].location;
    const auto isPast = [&](std::int64_t place) {
      return row_.reaches(place, location) == piece.rises;
    };
    const long double crossing = row_.crossing(location, piece.rises);
    const long double place = piece.rises ? std::ceil(crossing) : std::floor(crossing) + 1;
    std::int64_t end = place > static_cast<long double>(x) ? piece.end : x + 1;
    if (end == piece.end && place < static_cast<long double>(end)) {
      end = static_cast<std::int64_t>(place);
    }
    // Rounding decides only near a pixel's centre.
    const bool isClear = crossing > static_cast<long double>(x) &&
                         std::abs(crossing - std::nearbyint(crossing)) > 1e-4L;
    if (isClear || ((end == piece.end || isPast(end)) && (end == x + 1 || !isPast(end - 1)))) {
      return end;
    }
    std::int64_t before = x;  // not past, for the run begins there
    end = piece.end;
    while (end - before > 1) {
      const std::int64_t middle = before + (end - before) / 2;
      (isPast(middle) ? end : before) = middle;
    }
    return end;
  }

  void fillRunAfter(std::size_t reached, std::int64_t first, std::int64_t end) const {
    std::uint8_t* const pixels = pixels_ + 4 * first;
    const auto count = static_cast<std::size_t>(end - first);
    if (reached == 0 || reached == stops_.size()) {
      const Stop& nearest = reached == 0 ? stops_.front() : stops_.back();
      fillRun(pixelOf(colorOf(nearest)), pixels, count);
      return;
    }
    const Segment segment(stops_[reached - 1], stops_[reached]);
    if (end - first >= shortRun) {
      fillBetween(segment, row_, first, pixels, count);
      return;
    }
    for (std::int64_t x = first; x < end; ++x) {
      setWord(pixels_ + 4 * x, pixelOf(segment.at(row_.at(x))));
    }
  }

  const std::vector<Stop>& stops_;
  const Row& row_;
  std::uint8_t* pixels_;
};

bool isFinite(Point point) { return std::isfinite(point.x) && std::isfinite(point.y); }

bool isUsable(const AffineTransform& t) {
  const double determinant = t.a * t.d - t.b * t.c;
  return std::isfinite(determinant) && determinant != 0 && std::isfinite(t.tx) &&
         std::isfinite(t.ty);
}

}  // namespace

std::optional<GradientFill> GradientFill::linear(const CGGradient& gradient, Point start, Point end,
                                                 const AffineTransform& transform) {
  if (!isFinite(start) || !isFinite(end) || !isUsable(transform)) return std::nullopt;
  return GradientFill(gradient, LinearPositions(start, end, transform));
}

std::optional<GradientFill> GradientFill::radial(const CGGradient& gradient, Point center,
                                                 double radius, const AffineTransform& transform) {
  if (!isFinite(center) || !std::isfinite(radius) || radius < 0 || !isUsable(transform)) {
    return std::nullopt;
  }
  return GradientFill(gradient, RadialPositions(center, radius, transform));
}

void GradientFill::fillRow(std::size_t y, std::uint8_t* pixels, std::size_t count) const {
  std::visit(
      [&](const auto& positions) {
        const auto row = positions.row(y);
        const RowFiller filler(gradient_.stops(), row, pixels);
        for (const MonotonePiece& piece : row.pieces(static_cast<std::int64_t>(count))) {
          filler.fill(piece);
        }
      },
      positions_);
}

void GradientFill::fill(const PixelRows& rows) const {
  const auto ask = [&](const auto& question) { return std::visit(question, positions_); };
  const bool isLarge = rows.height * rows.bytesPerRow >= largePicture;
  const std::size_t bytes = 4 * rows.width;
  PastCaches memory;
  if (!ask([](const auto& positions) { return positions.changeFromRowToRow(); })) {
    std::vector<std::uint8_t> row(bytes);
    fillRow(0, row.data(), rows.width);
    for (std::size_t y = 0; y < rows.height; ++y) {
      if (isLarge) {
        memory.store(row.data(), rows.row(y), bytes);
      } else {
        std::memcpy(rows.row(y), row.data(), bytes);
      }
    }
  } else if (!ask([](const auto& positions) { return positions.changeAlongRows(); })) {
    for (std::size_t y = 0; y < rows.height; ++y) {
      std::array<std::uint8_t, 4> pixel;
      fillRow(y, pixel.data(), 1);
      if (isLarge) {
        memory.fill(wordAt(pixel.data()), rows.row(y), rows.width);
      } else {
        fillRun(wordAt(pixel.data()), rows.row(y), rows.width);
      }
    }
  } else {
    for (std::size_t y = 0; y < rows.height; ++y) fillRow(y, rows.row(y), rows.width);
  }
}

}  // namespace FrameworkUtility::detail
