#include <framework_utility/geometry/collage_shape_side.h>

#include <cmath>

namespace FrameworkUtility {
namespace {

/// How far from a corner its bisector is probed, in points: short, so that the chord stays short.
constexpr double probeDistance = 0.5;

/// Half the angle of a corner, from half the chord between the two points probed: the other leg of
/// the triangle of corner, probed point and the chord's middle is the root.
double halfAngle(double halfChord) {
  // In a straight corner the half chord is the probe's distance, and rounding lifts it above that
  // for every other direction. What is more than rounding has no angle.
  constexpr double rounding = 1e-9;
  double squaredLeg = probeDistance * probeDistance - halfChord * halfChord;
  if (squaredLeg < 0 && squaredLeg >= -rounding) squaredLeg = 0;
  return std::atan2(halfChord, std::sqrt(squaredLeg));
}

}  // namespace

KvCollageShapeSide::KvCollageShapeSide(Point point1, Point point2)
    : KvCollageShapeSide(point1, point2, KvCollageSegment(point1, point2)) {}

KvCollageShapeSide::KvCollageShapeSide(Point point1, Point point2, const KvCollageSegment& line)
    : segment(line), p1_(point1), p2_(point2) {}

KvCollageShapeSide KvCollageShapeSide::withVertical(bool isVertical, double a, double b, double c) {
  return {{}, {}, KvCollageSegment::withVertical(isVertical, a, b, c)};
}

void KvCollageShapeSide::calculateBorderWithThickness(double thickness) {
  if (!segment) return;
  const KvCollageSegment perpandiculaire = segment->perpandiculaire(averagePoint);
  // (0, 0) without a foot, as the apps' interface has it: not finite slopes have none.
  const Point foot = segment->intersectionPointWithSegment(perpandiculaire).value_or(Point{});
  // With the average point on the line this is a vertical segment of length 0, which locates
  // upwards: a border has to go somewhere.
  const KvCollageSegment inward(foot, averagePoint);
  parallele = segment->parallele(inward.locatePointOnStart(thickness));
}

void KvCollageShapeSide::calculateBissectrice(const KvCollageShapeSide& previous) {
  if (!segment || !previous.segment) return;
  const KvCollageSegment chord(segment->locatePointOnStart(probeDistance),
                               previous.segment->locatePointOnEndWithD(probeDistance));
  const double halfChord = chord.length * 0.5;
  bissectriceAngle = halfAngle(halfChord);
  bissectrice = KvCollageSegment(p1_, chord.locatePointOnStart(halfChord));
}

}  // namespace FrameworkUtility
