#include <framework_utility/platform/graphics/gradient_kernels.h>

#include <framework_utility/platform/graphics/pixel_word.h>

#include <algorithm>
#include <cmath>

namespace FrameworkUtility::detail {

namespace {

template <class Real>
[[gnu::always_inline]] inline Real positionAt(StraightRun, std::int32_t x) {
  return static_cast<Real>(x);
}

template <class Real>
[[gnu::always_inline]] inline Real positionAt(RadialRun<Real> run, std::int32_t x) {
  const Real along = run.along + static_cast<Real>(x);
  return std::sqrt(along * along + run.asideSquared);
}

/// To nearest; `value` is not negative but for what rounding may have done.
template <class Real>
[[gnu::always_inline]] inline std::int32_t rounded(Real value) {
  return static_cast<std::int32_t>(value + Real{0.5});
}

/// The word of levels in 0...255.
[[gnu::always_inline]] inline std::uint32_t wordOfLevels(std::int32_t red, std::int32_t green,
                                                         std::int32_t blue, std::int32_t alpha) {
  return wordOf(static_cast<std::uint32_t>(red), static_cast<std::uint32_t>(green),
                static_cast<std::uint32_t>(blue), static_cast<std::uint32_t>(alpha));
}

struct OpaqueFill {
  template <class Real, class Run>
  [[gnu::always_inline]] static void run(const RunColors<Real>& colors, const Run& run,
                                         std::uint8_t* const& row, const std::int32_t& pixels) {
    const auto [r0, g0, b0, a0] = colors.base;
    const auto [r1, g1, b1, a1] = colors.step;
    std::uint8_t* const to = row;
    const Run own = run;
    for (std::int32_t x = 0, end = pixels; x < end; ++x) {
      const Real at = positionAt<Real>(own, x);
      setWord(
          to + 4 * static_cast<std::size_t>(x),
          wordOfLevels(rounded(r0 + at * r1), rounded(g0 + at * g1), rounded(b0 + at * b1), 255));
    }
  }
};

struct TranslucentFill {
  template <class Real, class Run>
  [[gnu::always_inline]] static void run(const RunColors<Real>& colors, const Run& run,
                                         std::uint8_t* const& row, const std::int32_t& pixels) {
    const auto [r0, g0, b0, a0] = colors.base;
    const auto [r1, g1, b1, a1] = colors.step;
    std::uint8_t* const to = row;
    const Run own = run;
    for (std::int32_t x = 0, end = pixels; x < end; ++x) {
      const Real at = positionAt<Real>(own, x);
      const Real alpha = a0 + at * a1;
      const std::int32_t cover = rounded(alpha * 255);
      // Rounding must not lift a component above alpha.
      setWord(to + 4 * static_cast<std::size_t>(x),
              wordOfLevels(std::min(rounded((r0 + at * r1) * alpha), cover),
                           std::min(rounded((g0 + at * g1) * alpha), cover),
                           std::min(rounded((b0 + at * b1) * alpha), cover), cover));
    }
  }
};

template <class Real, class Run>
void fill(const RunColors<Real>& colors, Run run, bool isOpaque, std::uint8_t* row,
          std::size_t pixels, InstructionSet instructions) {
  const auto count = static_cast<std::int32_t>(pixels);
  if (isOpaque) {
    runWith<OpaqueFill>(instructions, colors, run, row, count);
  } else {
    runWith<TranslucentFill>(instructions, colors, run, row, count);
  }
}

}  // namespace

void fillRun(const RunColors<float>& colors, StraightRun run, bool isOpaque, std::uint8_t* row,
             std::size_t pixels, InstructionSet instructions) {
  fill(colors, run, isOpaque, row, pixels, instructions);
}

void fillRun(const RunColors<float>& colors, RadialRun<float> run, bool isOpaque, std::uint8_t* row,
             std::size_t pixels, InstructionSet instructions) {
  fill(colors, run, isOpaque, row, pixels, instructions);
}

void fillRun(const RunColors<double>& colors, RadialRun<double> run, bool isOpaque,
             std::uint8_t* row, std::size_t pixels, InstructionSet instructions) {
  fill(colors, run, isOpaque, row, pixels, instructions);
}

void fillRun(std::uint32_t word, std::uint8_t* row, std::size_t pixels) {
  for (std::size_t x = 0; x < pixels; ++x) setWord(row + 4 * x, word);
}

std::uint32_t pixelOf(const std::array<double, 4>& levels) {
  const double alpha = levels[3];
  return wordOfLevels(rounded(levels[0] * alpha), rounded(levels[1] * alpha),
                      rounded(levels[2] * alpha), rounded(255 * alpha));
}

}  // namespace FrameworkUtility::detail
