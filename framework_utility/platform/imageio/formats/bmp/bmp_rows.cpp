#include <framework_utility/platform/imageio/formats/bmp/bmp_rows.h>

#include <framework_utility/platform/foundation/files/byte_stream.h>
#include <framework_utility/platform/imageio/formats/bmp/bmp_header.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>

namespace FrameworkUtility::detail {

namespace {

constexpr std::size_t windowSize = std::size_t{256} << 10;

using Pixel = std::array<std::uint8_t, 4>;
using Palette = std::array<Pixel, 256>;

const std::uint8_t* bytesOf(const Data& data) {
  return reinterpret_cast<const std::uint8_t*>(data.data());
}

Palette paletteOf(const ByteSource& source, const BmpPixels& pixels) {
  Palette palette;
  palette.fill({0, 0, 0, 255});
  const Data stored = source.bytes(pixels.paletteOffset, pixels.paletteSize * pixels.colorSize);
  for (std::size_t i = 0; (i + 1) * pixels.colorSize <= stored.size(); ++i) {
    const std::uint8_t* color = bytesOf(stored) + i * pixels.colorSize;
    palette[i] = {color[2], color[1], color[0], 255};
  }
  return palette;
}

/// One component of a pixel that is a number of up to 32 bits, as one of 8 bits.
struct Field {
  Field() = default;
  explicit Field(std::uint32_t bits)
      : mask(bits),
        shift(bits == 0 ? 0 : std::countr_zero(bits)),
        scale(bits == 0 ? 0 : 255.0 / (bits >> shift)) {}

  /// To the nearest, and there are no ties: the largest number is odd.
  std::uint8_t of(std::uint32_t pixel) const {
    return static_cast<std::uint8_t>(std::lround(((pixel & mask) >> shift) * scale));
  }
  bool isByte() const { return mask >> shift == 0xFF && shift % 8 == 0; }

  std::uint32_t mask = 0;
  int shift = 0;
  double scale = 0;
};

class BmpRows : public RowReader {
 protected:
  BmpRows(const ByteSource& source, const BmpPixels& pixels)
      : source_(source),
        pixels_(pixels),
        stride_((std::uint64_t{pixels.size.width} * pixels.bitsPerPixel + 31) / 32 * 4) {
    layout_.width = pixels.size.width;
    layout_.height = pixels.size.height;
    layout_.bytesPerRow = 4 * layout_.width;
    layout_.alphaInfo =
        pixels.masks[3] != 0 ? CGImageAlphaInfo::last : CGImageAlphaInfo::noneSkipLast;
    if (pixels.isIndexed()) palette_ = paletteOf(source, pixels);
  }

  const ByteSource source_;
  const BmpPixels pixels_;
  const std::uint64_t stride_;  // of rows without runs
  Palette palette_;
};

class PlainRows final : public BmpRows {
 public:
  PlainRows(const ByteSource& source, const BmpPixels& pixels)
      : BmpRows(source, pixels),
        rowSize_((std::uint64_t{pixels.size.width} * pixels.bitsPerPixel + 7) / 8) {
    if (pixels.status != CGImageSourceStatus::complete) {
      state_ = RowState::damaged;
    } else if (pixels.coding == BmpCoding::unsupported) {
      state_ = RowState::unsupported;
    } else if (const std::uint64_t there = source.size() - pixels.offset;
               there < rowSize_ || (there - rowSize_) / stride_ < layout_.height - 1) {
      state_ = RowState::cut;
    } else {
      rowsPerWindow_ = std::clamp<std::uint64_t>(windowSize / stride_, 1, layout_.height);
      memory_ = rowsPerWindow_ * stride_;
      for (std::size_t i = 0; i < 4; ++i) {
        fields_[i] = Field(pixels.masks[i]);
        areBytes_ &= fields_[i].isByte() || (i == 3 && pixels.masks[i] == 0);
      }
    }
  }

  std::size_t readRows(std::uint8_t* rows, std::size_t count) override {
    for (std::size_t i = 0; i < count; ++i, ++rowsRead_) {
      const std::uint8_t* stored = storedRow();
      if (!stored) {  // the file has become shorter
        state_ = RowState::cut;
        return i;
      }
      expand(stored, rows + i * layout_.bytesPerRow);
    }
    return count;
  }

 private:
  /// The next one; null where it cannot be read.
  const std::uint8_t* storedRow() {
    const std::uint64_t row = pixels_.isTopDown ? rowsRead_ : layout_.height - 1 - rowsRead_;
    if (rowsRead_ % rowsPerWindow_ == 0) {
      const std::uint64_t count = std::min(rowsPerWindow_, layout_.height - rowsRead_);
      firstInWindow_ = pixels_.isTopDown ? row : row + 1 - count;
      window_ = source_.bytes(pixels_.offset + firstInWindow_ * stride_,
                              static_cast<std::size_t>(count * stride_));
    }
    const std::uint64_t begin = (row - firstInWindow_) * stride_;
    return begin + rowSize_ <= window_.size() ? bytesOf(window_) + begin : nullptr;
  }

  void expand(const std::uint8_t* stored, std::uint8_t* row) const {
    if (pixels_.isIndexed()) {
      expandIndices(stored, row);
    } else if (areBytes_) {
      expandBytes(stored, row);
    } else {
      expandFields(stored, row);
    }
  }

  void expandIndices(const std::uint8_t* stored, std::uint8_t* row) const {
    const std::size_t bits = pixels_.bitsPerPixel;
    const unsigned mask = (1U << bits) - 1;
    for (std::size_t x = 0; x < layout_.width; ++x) {
      const std::size_t bit = x * bits;
      const unsigned index = stored[bit / 8] >> (8 - bits - bit % 8) & mask;
      std::memcpy(row + 4 * x, palette_[index].data(), 4);
    }
  }

  void expandBytes(const std::uint8_t* stored, std::uint8_t* row) const {
    std::array<std::size_t, 4> places;
    for (std::size_t i = 0; i < 4; ++i) places[i] = static_cast<std::size_t>(fields_[i].shift / 8);
    const std::size_t step = pixels_.bitsPerPixel / 8;
    for (std::size_t x = 0; x < layout_.width; ++x, stored += step, row += 4) {
      for (std::size_t i = 0; i < 4; ++i) row[i] = stored[places[i]];
    }
  }

  void expandFields(const std::uint8_t* stored, std::uint8_t* row) const {
    const std::size_t step = pixels_.bitsPerPixel / 8;
    for (std::size_t x = 0; x < layout_.width; ++x, stored += step, row += 4) {
      std::uint32_t pixel = 0;
      for (std::size_t i = step; i-- > 0;) pixel = pixel << 8 | stored[i];
      for (std::size_t i = 0; i < 4; ++i) row[i] = fields_[i].of(pixel);
    }
  }

  const std::uint64_t rowSize_;  // without padding
  std::array<Field, 4> fields_;  // the last skipped where its mask is 0
  bool areBytes_ = true;
  std::uint64_t rowsPerWindow_ = 1;
  Data window_;
  std::uint64_t firstInWindow_ = 0;
  std::uint64_t rowsRead_ = 0;
};

/// From the bottom up as a rule, and with jumps, so that there is no first row before there is the
/// last. A pixel is written once beside the first colour, whatever the file says.
class RunRows final : public BmpRows {
 public:
  RunRows(const ByteSource& source, const BmpPixels& pixels)
      : BmpRows(source, pixels), input_(source_, pixels.offset, windowSize) {
    isWhole_ = true;
    memory_ = windowSize;
  }

  std::size_t readRows(std::uint8_t* rows, std::size_t count) override {
    rows_ = rows;
    for (std::size_t i = 0; i < layout_.width * layout_.height; ++i) {
      std::memcpy(rows + 4 * i, palette_[0].data(), 4);
    }
    while (y_ < layout_.height && state_ == RowState::whole) {
      const int length = next();
      const int value = next();
      if (value < 0) {
        // Nothing is missing but the mark of the end.
        if (y_ + 1 < layout_.height || x_ < layout_.width) state_ = RowState::cut;
        break;
      }
      if (length > 0) {
        putRun(length, value);
      } else if (value == 0) {  // the end of the row
        x_ = 0;
        ++y_;
      } else if (value == 1) {  // the end of the picture
        break;
      } else if (value == 2) {
        jump();
      } else {
        putLiteral(value);
      }
    }
    return state_ == RowState::whole ? count : 0;
  }

 private:
  void jump() {
    const int right = next();
    const int on = next();
    if (on < 0) {
      state_ = RowState::cut;
      return;
    }
    y_ += static_cast<std::size_t>(on);
    if (y_ > layout_.height || !fits(right)) state_ = RowState::damaged;
    x_ += static_cast<std::size_t>(right);
  }

  void putRun(int length, int value) {
    if (!fits(length)) {
      state_ = RowState::damaged;
      return;
    }
    for (int i = 0; i < length; ++i) put(value, i);
  }

  void putLiteral(int length) {
    if (!fits(length)) {
      state_ = RowState::damaged;
      return;
    }
    const int perByte = is4Bits() ? 2 : 1;
    int value = 0;
    for (int i = 0; i < length; ++i) {
      if (i % perByte == 0) value = next();
      if (value < 0) {
        state_ = RowState::cut;
        return;
      }
      put(value, i);
    }
    // To a whole number of two bytes.
    if ((length + perByte - 1) / perByte % 2 == 1) next();
  }

  /// Whether so many more pixels are within the row and its padding.
  bool fits(int length) const {
    return x_ + static_cast<std::size_t>(length) <= stride_ * 8 / pixels_.bitsPerPixel;
  }

  /// Pixel `i` of those that a byte repeats or, of 4 bits, holds.
  void put(int value, int i) {
    const int index = !is4Bits() ? value : i % 2 == 0 ? value >> 4 : value & 15;
    const std::size_t row = pixels_.isTopDown ? y_ : layout_.height - 1 - y_;
    if (x_ < layout_.width) {
      std::memcpy(rows_ + row * layout_.bytesPerRow + 4 * x_,
                  palette_[static_cast<std::size_t>(index)].data(), 4);
    }
    ++x_;
  }

  /// A byte of the file; negative at its end.
  int next() {
    const std::span<const std::byte> ahead = input_.ahead();
    if (ahead.empty()) return -1;
    input_.take(1);
    return std::to_integer<int>(ahead[0]);
  }

  bool is4Bits() const { return pixels_.bitsPerPixel == 4; }

  ByteStream input_;
  std::uint8_t* rows_ = nullptr;
  std::size_t x_ = 0;
  std::size_t y_ = 0;  // in the file's order
};

}  // namespace

std::unique_ptr<RowReader> bmpRows(const ByteSource& source, const RowRequest&) {
  const BmpPixels pixels = readBmpPixels(source);
  if (pixels.coding == BmpCoding::runs) return std::make_unique<RunRows>(source, pixels);
  return std::make_unique<PlainRows>(source, pixels);
}

}  // namespace FrameworkUtility::detail
