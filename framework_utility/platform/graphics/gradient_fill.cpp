#include <framework_utility/platform/graphics/gradient_fill.h>

#include <framework_utility/platform/graphics/gradient_kernels.h>
#include <framework_utility/platform/graphics/pixel_word.h>
#include <framework_utility/platform/graphics/streaming_stores.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

namespace FrameworkUtility::detail {

namespace {

using Stop = CGGradient::Stop;

/// Pictures from here on are written past the caches, which could not hold them anyway.
constexpr std::size_t largePicture = std::size_t{8} << 20;

/// Only this near a pixel's centre, in pixels, rounding could decide on which side a stop lies.
constexpr double roundingAtMost = 1e-4;

std::array<double, 4> levelsOf(const RGBA& color) {
  return {color.red * 255, color.green * 255, color.blue * 255, color.alpha};
}

GradientSegment segmentBetween(const Stop& a, const Stop& b) {
  const auto to = levelsOf(b.color);
  GradientSegment segment;
  segment.from = levelsOf(a.color);
  for (std::size_t c = 0; c < 4; ++c) segment.change[c] = to[c] - segment.from[c];
  segment.gain = 1 / (static_cast<long double>(b.location) - a.location);
  segment.start = -a.location * segment.gain;
  segment.isOpaque = a.color.alpha == 1 && b.color.alpha == 1;
  return segment;
}

/// The segment's lines over another measure, at 0 of which the part is `start`, growing by `step`.
template <class Real>
RunColors<Real> runColors(const GradientSegment& segment, double start, double step) {
  RunColors<Real> colors;
  for (std::size_t c = 0; c < 4; ++c) {
    colors.base[c] = static_cast<Real>(segment.from[c] + segment.change[c] * start);
    colors.step[c] = static_cast<Real>(segment.change[c] * step);
  }
  return colors;
}

std::uint32_t pixelAt(const GradientSegment& segment, long double position) {
  const auto part = static_cast<double>(segment.start + position * segment.gain);
  std::array<double, 4> levels = segment.from;
  for (std::size_t c = 0; c < 4; ++c) levels[c] += segment.change[c] * std::clamp(part, 0.0, 1.0);
  return pixelOf(levels);
}

// These two fill a run by one loop. False when its colours are too steep for that.

bool fillBetween(const GradientSegment& segment, const LinearRow& row, std::int64_t first,
                 std::uint8_t* pixels, std::size_t count) {
  const auto start = static_cast<double>(segment.start + row.at(first) * segment.gain);
  const auto step = static_cast<double>(row.step / row.whole * segment.gain);
  fillRun(runColors<float>(segment, start, step), StraightRun{}, segment.isOpaque, pixels, count);
  return true;
}

bool fillBetween(const GradientSegment& segment, const RadialRow& row, std::int64_t first,
                 std::uint8_t* pixels, std::size_t count) {
  const auto along = static_cast<double>(static_cast<long double>(first) - row.nearest());
  const auto asideSquared = static_cast<double>(row.asideSquared());
  // At the centre itself the part may be far outside 0...1.
  const auto start = static_cast<double>(segment.start);
  const auto step = static_cast<double>(row.gain() * segment.gain);
  const double end = along + static_cast<double>(count);
  const double farthest = std::sqrt(std::max(along * along, end * end) + asideSquared);
  const auto fill = [&](auto real) {
    using Real = decltype(real);
    // Distances and their roots lose no more than three bits; an eighth of a level may be lost.
    constexpr double precision = 8 * std::numeric_limits<Real>::epsilon();
    if (!(255 * std::abs(step) * farthest * precision < 0.125)) return false;
    // What a Real cannot hold would be no number, and none is no level.
    if (!(farthest * farthest < std::numeric_limits<Real>::max() / 2)) return false;
    fillRun(runColors<Real>(segment, start, step),
            RadialRun<Real>{static_cast<Real>(along), static_cast<Real>(asideSquared)},
            segment.isOpaque, pixels, count);
    return true;
  };
  return fill(float{}) || fill(double{});
}

/// Fills one row, run by run.
template <class Row>
class RowFiller {
 public:
  RowFiller(const std::vector<Stop>& stops, const std::vector<GradientSegment>& segments,
            const Row& row, std::uint8_t* pixels)
      : stops_(stops), segments_(segments), row_(row), pixels_(pixels) {}

  void fill(const MonotonePiece& piece) const {
    if (piece.first == piece.end) return;
    std::size_t reached = stopsReached(piece.first);
    for (std::int64_t x = piece.first; x < piece.end;) {
      const std::int64_t end = endOfRun(x, piece, reached);
      fillRunAfter(reached, x, end);
      x = end;
      if (x < piece.end) reached = stopsReachedBeyond(reached, x, piece.rises);
    }
  }

 private:
  /// Shorter runs are filled pixel by pixel.
  static constexpr std::int64_t shortRun = 4;

  bool reaches(std::int64_t x, std::size_t stop) const {
    return row_.reaches(x, stops_[stop].location);
  }

  std::size_t stopsReached(std::int64_t x) const {
    const auto next = std::partition_point(stops_.begin(), stops_.end(), [&](const Stop& stop) {
      return row_.reaches(x, stop.location);
    });
    return static_cast<std::size_t>(next - stops_.begin());
  }

  /// The same where the stop that ended the run before `x` is passed: seldom more than that one.
  std::size_t stopsReachedBeyond(std::size_t before, std::int64_t x, bool rises) const {
    const std::size_t reached = rises ? before + 1 : before - 1;
    const bool isAll = rises ? reached == stops_.size() || !reaches(x, reached)
                             : reached == 0 || reaches(x, reached - 1);
    return isAll ? reached : stopsReached(x);
  }

  /// Where the run that begins at `x`, with `reached` stops behind it, meets the next stop.
  std::int64_t endOfRun(std::int64_t x, const MonotonePiece& piece, std::size_t reached) const {
    if (reached == (piece.rises ? stops_.size() : 0)) return piece.end;
    const std::size_t stop = piece.rises ? reached : reached - 1;
    std::int64_t before = x;  // not past the stop, for the run begins there
    std::int64_t end = piece.end;
    const auto crossing = static_cast<double>(row_.crossing(stops_[stop].location, piece.rises));
    if (crossing > static_cast<double>(x) && crossing < static_cast<double>(piece.end)) {
      const auto whole = static_cast<std::int64_t>(crossing);
      const double part = crossing - static_cast<double>(whole);
      if (part > roundingAtMost && part < 1 - roundingAtMost) return whole + 1;
      const std::int64_t near = part < 0.5 ? whole : whole + 1;
      const auto isPast = [&](std::int64_t place) { return reaches(place, stop) == piece.rises; };
      if (near - 1 > before && !isPast(near - 1)) before = near - 1;
      if (near + 1 < end && isPast(near + 1)) end = near + 1;
    } else if (crossing > static_cast<double>(piece.end) + roundingAtMost) {
      return end;
    }
    while (end - before > 1) {
      const std::int64_t middle = before + (end - before) / 2;
      (reaches(middle, stop) == piece.rises ? end : before) = middle;
    }
    return end;
  }

  void fillRunAfter(std::size_t reached, std::int64_t first, std::int64_t end) const {
    std::uint8_t* const pixels = pixels_ + 4 * first;
    const auto count = static_cast<std::size_t>(end - first);
    if (reached == 0 || reached == stops_.size()) {
      const Stop& nearest = reached == 0 ? stops_.front() : stops_.back();
      fillRun(pixelOf(levelsOf(nearest.color)), pixels, count);
      return;
    }
    const GradientSegment& segment = segments_[reached];
    if (end - first >= shortRun && fillBetween(segment, row_, first, pixels, count)) return;
    for (std::int64_t x = first; x < end; ++x) {
      setWord(pixels_ + 4 * x, pixelAt(segment, row_.at(x)));
    }
  }

  const std::vector<Stop>& stops_;
  const std::vector<GradientSegment>& segments_;
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

GradientFill::GradientFill(const CGGradient& gradient, const Positions& positions)
    : gradient_(gradient), segments_(1), positions_(positions) {
  const std::vector<Stop>& stops = gradient.stops();
  for (std::size_t i = 1; i < stops.size(); ++i) {
    segments_.push_back(segmentBetween(stops[i - 1], stops[i]));
  }
}

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
        const RowFiller filler(gradient_.stops(), segments_, row, pixels);
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
  StreamingStores stores;
  if (!ask([](const auto& positions) { return positions.changeFromRowToRow(); })) {
    std::vector<std::uint8_t> row(bytes);
    fillRow(0, row.data(), rows.width);
    for (std::size_t y = 0; y < rows.height; ++y) {
      if (isLarge) {
        stores.store(row.data(), rows.row(y), bytes);
      } else {
        std::memcpy(rows.row(y), row.data(), bytes);
      }
    }
  } else if (!ask([](const auto& positions) { return positions.changeAlongRows(); })) {
    for (std::size_t y = 0; y < rows.height; ++y) {
      std::array<std::uint8_t, 4> pixel;
      fillRow(y, pixel.data(), 1);
      if (isLarge) {
        stores.fill(wordAt(pixel.data()), rows.row(y), rows.width);
      } else {
        fillRun(wordAt(pixel.data()), rows.row(y), rows.width);
      }
    }
  } else {
    for (std::size_t y = 0; y < rows.height; ++y) fillRow(y, rows.row(y), rows.width);
  }
}

}  // namespace FrameworkUtility::detail
