#include <framework_utility/platform/graphics/gradient_positions.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace FrameworkUtility::detail {

namespace {

using Vector = std::array<long double, 2>;

long double dot(const Vector& a, const Vector& b) { return a[0] * b[0] + a[1] * b[1]; }

/// The inverse of a transform without its division: a pixel's point times `determinant` is
/// `perX` x + `perY` y + `origin`.
struct Unmapping {
  Vector perX;
  Vector perY;
  Vector origin;
  long double determinant;

  explicit Unmapping(const AffineTransform& t)
      : perX{t.d, -static_cast<long double>(t.b)},
        perY{-static_cast<long double>(t.c), t.a},
        origin{-dot(Vector{perX[0], perY[0]}, Vector{t.tx, t.ty}),
               -dot(Vector{perX[1], perY[1]}, Vector{t.tx, t.ty})},
        determinant(static_cast<long double>(t.a) * t.d - static_cast<long double>(t.b) * t.c) {}
};

/// A pixel's centre lies half a pixel beyond its place.
long double centerOf(std::size_t place) { return static_cast<long double>(place) + 0.5L; }

}  // namespace

std::array<MonotonePiece, 2> LinearRow::pieces(std::int64_t width) const {
  return {MonotonePiece{0, width, step >= 0}, MonotonePiece{width, width, true}};
}

LinearPositions::LinearPositions(Point start, Point end, const AffineTransform& transform) {
  const Unmapping pixels(transform);
  const Vector from{start.x, start.y};
  const Vector along{end.x - static_cast<long double>(start.x),
                     end.y - static_cast<long double>(start.y)};
  const long double side = pixels.determinant < 0 ? -1 : 1;
  perX_ = side * dot(pixels.perX, along);
  perY_ = side * dot(pixels.perY, along);
  origin_ = side * (dot(pixels.origin, along) - dot(from, along) * pixels.determinant);
  whole_ = side * dot(along, along) * pixels.determinant;
  if (whole_ == 0) origin_ = 1;
}

LinearRow LinearPositions::row(std::size_t y) const {
  return {perX_ * centerOf(0) + perY_ * centerOf(y) + origin_, perX_, whole_};
}

RadialRow::RadialRow(Vector start, const RadialScale& scale) : start_(start), scale_(scale) {
  const long double aside = start[0] * scale.step[1] - start[1] * scale.step[0];
  nearest_ = -dot(start, scale.step) / scale.stepSquared;
  asideSquared_ = aside / scale.stepSquared * (aside / scale.stepSquared);
}

bool RadialRow::reaches(std::int64_t x, double location) const {
  const auto place = static_cast<long double>(x);
  const Vector from{start_[0] + scale_.step[0] * place, start_[1] + scale_.step[1] * place};
  const long double limit = location * scale_.whole;
  return location <= 0 || dot(from, from) >= limit * limit;
}

long double RadialRow::at(std::int64_t x) const {
  const long double along = static_cast<long double>(x) - nearest_;
  return gain() * std::sqrt(along * along + asideSquared_);
}

long double RadialRow::crossing(double location, bool rises) const {
  if (location <= 0) return std::numeric_limits<long double>::infinity();  // reached everywhere
  const long double distance = location / gain();
  const long double half = std::sqrt(std::max(distance * distance - asideSquared_, 0.0L));
  return rises ? nearest_ + half : nearest_ - half;
}

std::array<MonotonePiece, 2> RadialRow::pieces(std::int64_t width) const {
  const double turn = std::clamp(static_cast<double>(nearest_), 0.0, static_cast<double>(width));
  const auto middle = static_cast<std::int64_t>(std::ceil(turn));
  return {MonotonePiece{0, middle, false}, MonotonePiece{middle, width, true}};
}

RadialPositions::RadialPositions(Point center, double radius, const AffineTransform& transform) {
  const Unmapping pixels(transform);
  perY_ = pixels.perY;
  origin_ = {pixels.origin[0] - center.x * pixels.determinant,
             pixels.origin[1] - center.y * pixels.determinant};
  scale_.step = pixels.perX;
  scale_.stepSquared = dot(pixels.perX, pixels.perX);
  scale_.whole = radius * std::abs(pixels.determinant);
  scale_.gain = std::sqrt(scale_.stepSquared) / scale_.whole;
}

RadialRow RadialPositions::row(std::size_t y) const {
  const auto at = [&](std::size_t i) {
    return scale_.step[i] * centerOf(0) + perY_[i] * centerOf(y) + origin_[i];
  };
  return {{at(0), at(1)}, scale_};
}

}  // namespace FrameworkUtility::detail
