#pragma once

#include <framework_utility/color/color.h>
#include <framework_utility/platform/graphics/simd_dispatch.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace FrameworkUtility::detail {

/// A conical gradient's rows of 8-bit red, green, blue, alpha, to the byte what a plain loop over
/// `conicalGradientStop` and `interpolatedColor` gives, for colours evenly spaced over the turn.
///
/// The circle is cut into sectors no wider than an eighth of a turn, each between two stops, and a
/// row into runs by the rays between them. In a run an arc tangent in single precision gives each
/// component within a known error; where that error could change a byte, and beside a ray, the
/// pixel is computed again as the plain loop does it.
class ConicalRows {
 public:
  /// `colors`, at least two, with the first one again at the end.
  ConicalRows(std::vector<KvColor> colors, std::size_t width, std::size_t height);

  void fillRow(std::size_t y, std::uint8_t* row,
               InstructionSet instructions = instructionSet()) const;

  /// A sector's components over the angle from its middle.
  struct Sector {
    float cosine = 1;  ///< Of the direction of its middle.
    float sine = 0;
    std::array<float, 3> base{};   ///< Red, green, blue there, in fixed point.
    std::array<float, 3> slope{};  ///< A radian.
  };

 private:
  void makeSectors(std::size_t sectorsInSegment);
  std::uint32_t exactPixel(std::size_t x, std::size_t y) const;
  void fillExactly(std::size_t y, std::size_t first, std::size_t end, std::uint8_t* row) const;
  void fillMiddleRow(std::size_t y, std::uint8_t* row) const;
  void fillRun(const Sector& sector, std::size_t y, std::size_t first, std::size_t end,
               std::uint8_t* row, InstructionSet instructions) const;
  void computeDoubtfulAgain(std::size_t y, std::size_t first, std::size_t end,
                            std::uint8_t* row) const;

  std::vector<KvColor> colors_;
  std::size_t width_;
  std::size_t height_;
  std::vector<Sector> sectors_;     // from angle 0 on; none where every pixel is computed exactly
  std::vector<double> cotangents_;  // of the ray before each sector
  std::int32_t doubt_ = 0;  // how near a whole level a component is in doubt, in 2^-13 of a level
};

}  // namespace FrameworkUtility::detail
