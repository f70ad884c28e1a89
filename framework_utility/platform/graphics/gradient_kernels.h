#pragma once

#include <framework_utility/platform/graphics/simd_dispatch.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace FrameworkUtility::detail {

/// The colours of a run of pixels between two stops: straight components that grow with a position.
/// Red, green and blue are in 0...255, alpha in 0...1.
template <class Real>
struct RunColors {
  std::array<Real, 4> base{};  ///< At position 0.
  std::array<Real, 4> step{};  ///< A unit of position.
};

/// A run's positions where it goes straight along the gradient: those of the pixels, from 0.
struct StraightRun {};

/// A run's positions on a row that passes a circle's centre: their distances from it in pixels, the
/// first pixel being `along` ahead of the nearest place and the row `asideSquared` beside it.
template <class Real>
struct RadialRun {
  Real along = 0;
  Real asideSquared = 0;
};

// Each writes `pixels` pixels, premultiplied and rounded to nearest. `isOpaque` says that alpha is
// 1 all along.

void fillRun(const RunColors<float>& colors, StraightRun run, bool isOpaque, std::uint8_t* row,
             std::size_t pixels, InstructionSet instructions = instructionSet());
void fillRun(const RunColors<float>& colors, RadialRun<float> run, bool isOpaque, std::uint8_t* row,
             std::size_t pixels, InstructionSet instructions = instructionSet());
void fillRun(const RunColors<double>& colors, RadialRun<double> run, bool isOpaque,
             std::uint8_t* row, std::size_t pixels, InstructionSet instructions = instructionSet());

/// One pixel for all.
void fillRun(std::uint32_t word, std::uint8_t* row, std::size_t pixels);

/// The pixel of straight red, green and blue in 0...255 and alpha in 0...1, premultiplied and
/// rounded to nearest.
std::uint32_t pixelOf(const std::array<double, 4>& levels);

}  // namespace FrameworkUtility::detail
