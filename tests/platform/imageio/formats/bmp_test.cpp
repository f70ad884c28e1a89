#include <framework_utility/platform/imageio/formats/bmp/bmp_format.h>
#include <tests/platform/graphics/pictures.h>
#include <tests/platform/imageio/formats/format_coding.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <string>

namespace FrameworkUtility::testing {
namespace {

using detail::bmpFormat;
using detail::RowState;
using enum CGImageSourceStatus;
using Bytes = std::vector<std::uint8_t>;
using Masks = std::array<std::uint32_t, 4>;

detail::ImageHeader headerOf(const Data& file) { return testing::headerOf(bmpFormat, file); }

std::optional<CGImage> decoded(const Data& file, std::size_t maxPixelSize = 0) {
  return decodedBy(bmpFormat, file, maxPixelSize);
}

struct BmpFile {
  std::uint32_t header = 40;
  int bits = 24;
  std::uint32_t compression = 0;
  Masks masks{};
  std::uint32_t colors = 0;  // in the palette; 0 for as many as there can be
  int width = 13;
  int height = 7;
  Bytes pixels{};  // noise for none
  Bytes gap{};     // before them; a profile where there can be one

  std::size_t rowSize() const { return static_cast<std::size_t>(width * bits + 7) / 8; }
  std::size_t stride() const { return (rowSize() + 3) / 4 * 4; }
  std::size_t rows() const { return static_cast<std::size_t>(std::abs(height)); }
  Bytes stored() const { return pixels.empty() ? noise(stride() * rows()) : pixels; }
  std::size_t colorSize() const { return header == 12 ? 3 : 4; }
  Bytes palette() const {
    return bits > 8 ? Bytes() : noise((colors ? colors : 1U << bits) * colorSize(), 5);
  }

  Bytes bytes() const {
    Bytes file(14 + 124);
    const auto put = [&](std::size_t place, auto value, std::size_t size = 4) {
      const auto number = static_cast<std::uint32_t>(value);
      for (std::size_t i = 0; i < size; ++i) file[place + i] = (number >> 8 * i) & 0xFF;
    };
    const std::size_t side = header == 12 ? 2 : 4;
    const std::size_t behind = header != 40 || compression < 3 ? 0 : compression == 3 ? 12 : 16;
    put(0, 'B' | 'M' << 8, 2);
    put(10, 14 + header + behind + palette().size() + gap.size());
    put(14, header);
    put(18, width, side);
    put(18 + side, height, side);
    put(20 + 2 * side, bits, 2);
    if (header >= 40) {
      put(30, compression);
      put(38, 3780);
      put(42, 3779);
      put(46, colors);
      for (std::size_t i = 0; i < 4; ++i) put(54 + 4 * i, masks[i]);
      put(70, 0x4D424544);
      put(126, 124 + palette().size());
      put(130, gap.size());
    }
    file.resize(14 + header + behind);
    for (const Bytes& part : {palette(), gap, stored()}) {
      file.insert(file.end(), part.begin(), part.end());
    }
    return file;
  }
  Data data() const { return dataOf(bytes()); }
};

Pixel colorOf(const BmpFile& file, std::size_t index) {
  const Bytes palette = file.palette();
  const std::size_t i = index * file.colorSize();
  return i < palette.size() ? Pixel{palette[i + 2], palette[i + 1], palette[i], 255}
                            : Pixel{0, 0, 0, 255};
}

/// By definition, of a row without runs.
Pixel expectedAt(const BmpFile& file, const std::uint8_t* row, std::size_t x, const Masks& masks) {
  const auto bits = static_cast<std::size_t>(file.bits);
  if (bits <= 8) return colorOf(file, sampleOf(row, x, bits));
  std::uint32_t number = 0;
  for (std::size_t i = bits / 8; i-- > 0;) number = number << 8 | row[x * bits / 8 + i];
  Pixel pixel{};
  for (std::size_t c = 0; c < 4; ++c) {
    const int shift = std::countr_zero(masks[c] | 1U << 31);
    const double share = static_cast<double>((number & masks[c]) >> shift) / (masks[c] >> shift);
    pixel[c] = masks[c] == 0 ? 0 : static_cast<std::uint8_t>(std::lround(255 * share));
  }
  return pixel;
}

TEST(BmpTest, ReadsEveryKind) {
  constexpr Masks none{};
  constexpr Masks bytes{0xFF0000, 0xFF00, 0xFF, 0};
  constexpr Masks fives{0x7C00, 0x3E0, 0x1F, 0};
  constexpr Masks withAlpha{0xFF, 0xFF00, 0xFF0000, 0xFF000000};
  const std::pair<int, Masks> fields[] = {{16, {0x3, 0x1FF8, 0xE000, 0}},
                                          {16, {0xF00, 0xF0, 0xF, 0xF000}},
                                          {24, bytes},
                                          {32, withAlpha},
                                          {32, {0x3FF00000, 0xFFC00, 0x3FF, 0xC0000000}},
                                          {32, {0xFFFFFFFF, 0, 0, 0}}};
  const Dictionary resolution{{"DPIWidth", 96}, {"DPIHeight", 96}};
  std::vector<std::pair<BmpFile, Masks>> files;
  files.push_back({{.width = 300, .height = 700}, bytes});  // more than is read at once
  for (const std::uint32_t header : {12U, 16U, 40U, 52U, 56U, 64U, 108U, 124U}) {
    for (const int bits : {1, 2, 4, 8, 16, 24, 32}) {
      // With masks that do not count, and a fourth byte that is no alpha.
      const Masks& usual = bits <= 8 ? none : bits == 16 ? fives : bytes;
      files.push_back({{.header = header, .bits = bits, .masks = withAlpha}, usual});
    }
    if (header < 40) continue;
    files.push_back({{.header = header, .bits = 8, .colors = 9}, {}});
    for (const std::uint32_t coding : {3U, 6U}) {
      for (auto [bits, masks] : fields) {
        const BmpFile file{.header = header, .bits = bits, .compression = coding, .masks = masks};
        if (header == 52 || (header == 40 && coding == 3)) masks[3] = 0;
        if (header != 64) files.push_back({file, masks});
      }
    }
  }
  // An alpha that lies beyond the pixel.
  constexpr Masks beyond{0x7C00, 0x3E0, 0x1F, 0xFF000000};
  files.push_back({{.header = 108, .bits = 16, .compression = 3, .masks = beyond}, fives});
  for (auto& [file, masks] : files) {
    for (const bool isTopDown : {false, true}) {
      if (isTopDown && file.header == 12) continue;
      SCOPED_TRACE(::testing::Message() << file.header << ' ' << file.bits << ' '
                                        << file.compression << std::hex << ' ' << file.masks[0]);
      if (isTopDown) std::tie(file.height, file.gap) = std::pair(-file.height, Bytes{1, 2, 3});
      const detail::ImageHeader header = headerOf(file.data());
      EXPECT_EQ(header.hasAlpha, masks[3] != 0);
      EXPECT_EQ(header.isIndexed, file.bits <= 8);
      EXPECT_EQ(header.formatProperties, file.header < 40 ? Dictionary() : resolution);
      EXPECT_EQ(header.iccProfile, dataOf(file.header == 124 ? file.gap : Bytes()));
      const auto image = decoded(file.data());
      ASSERT_TRUE(image);
      EXPECT_EQ(image->alphaInfo() == CGImageAlphaInfo::last, masks[3] != 0);
      const Bytes stored = file.stored();
      for (std::size_t y = 0; y < image->height(); ++y) {
        const std::size_t row = isTopDown ? y : image->height() - 1 - y;
        for (std::size_t x = 0; x < image->width(); ++x) {
          Pixel read = pixelAt(*image, x, y);
          Pixel expected = expectedAt(file, &stored[row * file.stride()], x, masks);
          if (masks[3] == 0) read[3] = expected[3] = 255;
          ASSERT_EQ(read, expected) << x << ' ' << y;
        }
      }
    }
  }
}

TEST(BmpTest, RunsSkipJumpAndEnd) {
  using enum RowState;
  // The colours of 5 x 3 pixels, from the file's first row on.
  constexpr const char* rle4 = "121213456789800";
  const std::tuple<int, Bytes, RowState, std::string> cases[] = {
      {8, {5, 1, 0, 0, 2, 2, 0, 3, 3, 4, 5, 0, 0, 0, 1, 6, 4, 7, 0, 1}, whole, "111112234567777"},
      {8, {0, 2, 1, 1, 2, 3, 0, 0, 1, 4, 0, 1}, whole, "000000330040000"},
      {8, {8, 1, 0, 0, 8, 2, 0, 0, 8, 3, 0, 0}, whole, "111112222233333"},  // into the padding
      {8, {5, 1, 0, 0, 5, 2, 0, 0, 5, 3}, whole, "111112222233333"},        // no mark of the end
      {4, {5, 0x12, 0, 0, 0, 5, 0x34, 0x56, 0x70, 0, 0, 0, 3, 0x89, 0, 1}, whole, rle4},
      {8, {0, 3, 1, 2}, cut, ""},
      {8, {0, 2, 1}, cut, ""},
      {8, {9, 1, 0, 1}, damaged, ""},
      {4, {9, 0x12, 0, 1}, damaged, ""},
      {8, {5, 1, 0, 4, 1, 1, 1, 1, 0, 1}, damaged, ""},
      {8, {0, 2, 0, 4, 0, 1}, damaged, ""},
      {8, {0, 2, 9, 0, 0, 1}, damaged, ""}};
  for (const auto& [bits, runs, state, expected] : cases) {
    for (const int height : {3, -3}) {
      SCOPED_TRACE(::testing::PrintToString(runs));
      BmpFile file{.bits = bits, .compression = bits == 8 ? 1U : 2U, .width = 5, .height = height};
      file.pixels = runs;
      const auto rows = bmpFormat.open(detail::ByteSource(file.data()))->rowsAt(0, {});
      Bytes pixels(5 * 3 * 4 + 1, 0xEE);
      EXPECT_EQ(rows->readRows(pixels.data(), 3), state == whole ? 3U : 0U);
      EXPECT_EQ(rows->state(), state);
      EXPECT_EQ(pixels.back(), 0xEE);
      for (std::size_t i = 0; i < expected.size(); ++i) {
        const std::uint8_t* p = &pixels[((height < 0 ? i / 5 : 2 - i / 5) * 5 + i % 5) * 4];
        const auto index = static_cast<std::size_t>(expected[i] - '0');
        EXPECT_EQ((Pixel{p[0], p[1], p[2], p[3]}), colorOf(file, index));
      }
    }
  }
}

TEST(BmpTest, AFileThatIsCutHasNoPixels) {
  for (const auto& [file, padding] :
       {std::pair{BmpFile{.width = 3}, 3U},
        {{.header = 12, .bits = 1}, 2U},
        {{.header = 124, .bits = 32}, 0U},
        {{.bits = 8, .compression = 1, .width = 3, .height = 1, .pixels = {3, 1}}, 0U}}) {
    const Data all = file.data();
    for (std::size_t size = 0; size <= all.size(); ++size) {
      SCOPED_TRACE(size);
      const Data cut = cutAt(size, all);
      const bool hasPixels = size + file.stored().size() > all.size();
      EXPECT_EQ(headerOf(cut).status, size < 2 ? unknownType : hasPixels ? complete : incomplete);
      EXPECT_EQ(decoded(cut).has_value(), size + padding >= all.size());
    }
  }
}

TEST(BmpTest, RefusesWhatContradictsItself) {
  const Bytes some(64);
  for (const BmpFile& file : {BmpFile{.width = -1, .pixels = some},
                              {.width = 0, .pixels = some},
                              {.height = 0, .pixels = some}}) {
    EXPECT_EQ(headerOf(file.data()).status, invalidData);
  }
  // Pixels inside the header, beyond the file, a header of 41 bytes, and a sign of no one's.
  const std::tuple<std::size_t, std::uint8_t, CGImageSourceStatus> changes[] = {
      {10, 53, invalidData}, {13, 1, incomplete}, {14, 41, unknownType}, {0, 'b', unknownType}};
  for (const auto& [place, byte, status] : changes) {
    Bytes bytes = BmpFile().bytes();
    bytes[place] = byte;
    EXPECT_EQ(headerOf(dataOf(bytes)).status, status);
  }

  using enum RowState;
  constexpr int large = 0x7FFFFFFF;
  for (const auto& [file, state] :
       {std::pair{BmpFile{.bits = 7, .pixels = some}, unsupported},
        {{.bits = 0, .compression = 4, .pixels = some}, unsupported},
        {{.bits = 4, .compression = 1, .pixels = some}, unsupported},
        {{.header = 64, .bits = 16, .compression = 3, .pixels = some}, unsupported},
        {{.bits = 16, .compression = 3, .masks = {0xF0F, 0, 0, 0}, .pixels = some}, unsupported},
        {{.bits = 32, .width = large, .height = -large - 1, .pixels = some}, cut},
        {{.bits = 1, .width = 1, .height = 17, .pixels = some}, cut},
        // More than the limits, which are asked above.
        {{.bits = 8, .compression = 1, .width = large, .height = large, .pixels = some}, whole}}) {
    EXPECT_EQ(bmpFormat.open(detail::ByteSource(file.data()))->rowsAt(0, {})->state(), state);
    EXPECT_FALSE(decoded(file.data()));
    EXPECT_FALSE(decoded(file.data(), 9));
  }
}

}  // namespace
}  // namespace FrameworkUtility::testing
