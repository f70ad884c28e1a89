#include <framework_utility/platform/graphics/gradient_kernels.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

namespace FrameworkUtility::detail {
namespace {

/// Fills a run with the vector instructions that every machine has and with the widest of this one.
template <class Real, class Run>
void expectSameOnAllUnits(const RunColors<Real>& colors, const Run& run, bool isOpaque,
                          std::size_t pixels) {
  const auto filled = [&](InstructionSet instructions) {
    std::vector<std::uint8_t> row(4 * pixels + 1, 0xAB);
    fillRun(colors, run, isOpaque, row.data(), pixels, instructions);
    EXPECT_EQ(row.back(), 0xAB);
    return row;
  };
  ASSERT_EQ(filled(InstructionSet::baseline), filled(instructionSet())) << pixels << " pixels";
}

TEST(GradientKernelsTest, TheUnitsDoNotChangeTheResult) {
  if (instructionSet() == InstructionSet::baseline) GTEST_SKIP() << "this machine has no others";
  std::mt19937 random(1);
  const auto real = [&](double from, double to) {
    return std::uniform_real_distribution<>(from, to)(random);
  };
  for (std::size_t pixels = 0; pixels < 1000; pixels += 1 + pixels / 16) {
    RunColors<double> colors;
    RunColors<float> shorter;
    const double length = 1500;  // more than any position of these runs
    for (std::size_t c = 0; c < 4; ++c) {
      const double most = c < 3 ? 255 : 1;
      colors.base[c] = real(0, most);
      colors.step[c] = (real(0, most) - colors.base[c]) / length;
      shorter.base[c] = static_cast<float>(colors.base[c]);
      shorter.step[c] = static_cast<float>(colors.step[c]);
    }
    const RadialRun<double> circle{real(-500, 0), real(0, 500'000)};
    const RadialRun<float> shorterCircle{static_cast<float>(circle.along),
                                         static_cast<float>(circle.asideSquared)};
    for (const bool isOpaque : {true, false}) {
      expectSameOnAllUnits(shorter, StraightRun{}, isOpaque, pixels);
      expectSameOnAllUnits(shorter, shorterCircle, isOpaque, pixels);
      expectSameOnAllUnits(colors, circle, isOpaque, pixels);
    }
  }
}

}  // namespace
}  // namespace FrameworkUtility::detail
