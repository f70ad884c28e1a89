#include <framework_utility/platform/graphics/coverage.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <iterator>

namespace FrameworkUtility::detail {

namespace {

/// One side of the polygon, from its upper to its lower end, never level.
struct Edge {
  pixman_point_fixed_t top;
  pixman_point_fixed_t bottom;
  int winding = 0;  ///< 1 where the polygon runs down along it, -1 where it runs up.

  double xAt(double y) const {
    const double part = (y - top.y) / (static_cast<double>(bottom.y) - top.y);
    return top.x + part * (static_cast<double>(bottom.x) - top.x);
  }
};

/// The part of a polygon where one coordinate is at least `bound`, or at most where `sign` is -1
/// (Sutherland and Hodgman, Reentrant Polygon Clipping, 1974). Windings around what stays are kept.
std::vector<Point> clipped(const std::vector<Point>& corners, double Point::*coordinate,
                           double bound, double sign) {
  std::vector<Point> kept;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    const Point& a = corners[i];
    const Point& b = corners[(i + 1) % corners.size()];
    const double inside = sign * (a.*coordinate - bound);
    const double next = sign * (b.*coordinate - bound);
    if (inside >= 0) kept.push_back(a);
    if ((inside >= 0) != (next >= 0)) {
      const double part = inside / (inside - next);
      kept.push_back({a.x + part * (b.x - a.x), a.y + part * (b.y - a.y)});
      kept.back().*coordinate = bound;  // just there, however far away the corners are
    }
  }
  return kept;
}

/// What lies within a pixel of the box, so that every number fits and the new sides are not seen.
std::vector<Point> clipped(std::vector<Point> corners, const PixelBox& box) {
  corners = clipped(corners, &Point::x, box.left - 1, 1);
  corners = clipped(corners, &Point::x, box.right + 1, -1);
  corners = clipped(corners, &Point::y, box.top - 1, 1);
  return clipped(corners, &Point::y, box.bottom + 1, -1);
}

pixman_fixed_t fixed(double v) { return static_cast<pixman_fixed_t>(std::lround(v * 65536)); }

std::vector<Edge> edgesOf(const std::vector<Point>& corners) {
  std::vector<Edge> edges;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    const Point& from = corners[i];
    const Point& to = corners[(i + 1) % corners.size()];
    const pixman_point_fixed_t a{fixed(from.x), fixed(from.y)};
    const pixman_point_fixed_t b{fixed(to.x), fixed(to.y)};
    if (a.y < b.y) edges.push_back({a, b, 1});
    if (a.y > b.y) edges.push_back({b, a, -1});
  }
  return edges;
}

/// The heights at which edges begin, end or cross, from the top: between two of them the edges have
/// one order from left to right.
std::vector<pixman_fixed_t> heightsOf(const std::vector<Edge>& edges) {
  std::vector<pixman_fixed_t> heights;
  for (const Edge& edge : edges) {
    heights.push_back(edge.top.y);
    heights.push_back(edge.bottom.y);
  }
  for (auto a = edges.begin(); a != edges.end(); ++a) {
    for (auto b = std::next(a); b != edges.end(); ++b) {
      const double top = std::max(a->top.y, b->top.y);
      const double bottom = std::min(a->bottom.y, b->bottom.y);
      const double before = a->xAt(top) - b->xAt(top);
      const double after = a->xAt(bottom) - b->xAt(bottom);
      if (top < bottom && before * after < 0) {
        heights.push_back(static_cast<pixman_fixed_t>(
            std::lround(top + before / (before - after) * (bottom - top))));
      }
    }
  }
  std::sort(heights.begin(), heights.end());
  heights.erase(std::unique(heights.begin(), heights.end()), heights.end());
  return heights;
}

/// Adds what lies inside the polygon between two neighbouring heights.
void addSlab(std::vector<Edge>& edges, pixman_fixed_t top, pixman_fixed_t bottom,
             std::vector<pixman_trapezoid_t>& trapezoids) {
  const auto crosses = [&](const Edge& e) { return e.top.y <= top && e.bottom.y >= bottom; };
  const auto end = std::partition(edges.begin(), edges.end(), crosses);
  const double middle = (static_cast<double>(top) + bottom) / 2;
  std::sort(edges.begin(), end,
            [&](const Edge& a, const Edge& b) { return a.xAt(middle) < b.xAt(middle); });
  int winding = 0;
  const Edge* left = nullptr;
  for (auto edge = edges.begin(); edge != end; ++edge) {
    if (winding == 0) left = &*edge;
    winding += edge->winding;
    if (winding == 0) {
      trapezoids.push_back({top, bottom, {left->top, left->bottom}, {edge->top, edge->bottom}});
    }
  }
}

/// The pixels of `bounds` that the corners' own box touches.
PixelBox boxOf(const std::vector<Point>& corners, const PixelBox& bounds) {
  if (corners.empty()) return {};
  const auto [left, right] = std::minmax_element(
      corners.begin(), corners.end(), [](const Point& a, const Point& b) { return a.x < b.x; });
  const auto [top, bottom] = std::minmax_element(
      corners.begin(), corners.end(), [](const Point& a, const Point& b) { return a.y < b.y; });
  return {std::max(bounds.left, static_cast<int>(std::floor(left->x))),
          std::max(bounds.top, static_cast<int>(std::floor(top->y))),
          std::min(bounds.right, static_cast<int>(std::ceil(right->x))),
          std::min(bounds.bottom, static_cast<int>(std::ceil(bottom->y)))};
}

}  // namespace

std::optional<Coverage> Coverage::ofNothing(const PixelBox& box) {
  Coverage coverage;
  if (box.isEmpty()) return coverage;
  coverage.box_ = box;
  coverage.mask_.reset(pixman_image_create_bits(PIXMAN_a8, box.width(), box.height(), nullptr, 0));
  return coverage.mask_ ? std::optional(std::move(coverage)) : std::nullopt;
}

std::optional<Coverage> Coverage::ofPolygon(const std::vector<Point>& corners,
                                            const PixelBox& bounds) {
  constexpr double farthest = 1e30;  // products of two stay finite
  const bool isUsable = std::all_of(corners.begin(), corners.end(), [](const Point& p) {
    return std::abs(p.x) <= farthest && std::abs(p.y) <= farthest;
  });
  if (!isUsable) return ofNothing({});
  const std::vector<Point> near = clipped(corners, bounds);
  std::optional<Coverage> coverage = ofNothing(boxOf(near, bounds));
  if (!coverage || !coverage->mask_) return coverage;

  std::vector<Edge> edges = edgesOf(near);
  const std::vector<pixman_fixed_t> heights = heightsOf(edges);
  std::vector<pixman_trapezoid_t> trapezoids;
  for (std::size_t i = 1; i < heights.size(); ++i) {
    addSlab(edges, heights[i - 1], heights[i], trapezoids);
  }
  for (const pixman_trapezoid_t& trapezoid : trapezoids) {
    pixman_rasterize_trapezoid(coverage->mask(), &trapezoid, -coverage->box_.left,
                               -coverage->box_.top);
  }
  return coverage;
}

std::optional<Coverage> Coverage::intersected(const Coverage& other) const {
  std::optional<Coverage> both =
      ofNothing({std::max(box_.left, other.box_.left), std::max(box_.top, other.box_.top),
                 std::min(box_.right, other.box_.right), std::min(box_.bottom, other.box_.bottom)});
  if (!both || !both->mask_) return both;
  const PixelBox& box = both->box_;
  pixman_image_composite32(PIXMAN_OP_SRC, mask(), other.mask(), both->mask(), box.left - box_.left,
                           box.top - box_.top, box.left - other.box_.left, box.top - other.box_.top,
                           0, 0, box.width(), box.height());
  return both;
}

}  // namespace FrameworkUtility::detail
