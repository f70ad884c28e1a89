#include <framework_utility/platform/imageio/formats/png/png_rows.h>

#include <framework_utility/platform/foundation/files/byte_stream.h>

#include <algorithm>
#include <csetjmp>
#include <cstring>

#include <png.h>

namespace FrameworkUtility::detail {

namespace {

/// No stream of deflated data grows by more than this factor, so a file cannot hold more pixels
/// than that, whatever it announces.
constexpr double largestExpansion = 1032;

[[noreturn]] void jumpOut(png_structp png, png_const_charp) { png_longjmp(png, 1); }

void ignoreWarning(png_structp, png_const_charp) {}

/// The file as libpng reads it.
struct Input {
  ByteStream stream;
  bool hasEnded = false;

  static void read(png_structp png, png_bytep bytes, std::size_t count) {
    auto* input = static_cast<Input*>(png_get_io_ptr(png));
    while (count > 0) {
      const std::span<const std::byte> ahead = input->stream.ahead();
      if (ahead.empty()) {
        input->hasEnded = true;
        png_error(png, "the file ends");
      }
      const std::size_t part = std::min(count, ahead.size());
      std::memcpy(bytes, ahead.data(), part);
      input->stream.take(part);
      bytes += part;
      count -= part;
    }
  }
};

// Errors leave libpng by longjmp, so no frame between one of the functions that call setjmp and
// libpng's own may hold an object with a destructor.

class PngRows final : public RowReader {
 public:
  explicit PngRows(const ByteSource& source)
      : input_{ByteStream(source)}, fileSize_(source.size()) {
    png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, jumpOut, ignoreWarning);
    if (png_) info_ = png_create_info_struct(png_);
    if (!info_) {
      state_ = RowState::memoryIsShort;
    } else if (!open()) {
      fail();
    }
  }
  ~PngRows() override { png_destroy_read_struct(&png_, &info_, nullptr); }

  std::size_t readRows(std::uint8_t* rows, std::size_t count) override {
    const std::size_t before = rowsRead_;
    if (!read(rows, count)) fail();
    return rowsRead_ - before;
  }

 private:
  void fail() { state_ = input_.hasEnded ? RowState::cut : RowState::damaged; }

  /// Reads up to the pixels.
  bool open() {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    png_set_read_fn(png_, &input_, Input::read);
    // The header's reader has the metadata already; here nothing is unpacked for it.
    png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_read_info(png_, info_);

    layout_.width = png_get_image_width(png_, info_);
    layout_.height = png_get_image_height(png_, info_);
    const int depth = png_get_bit_depth(png_, info_);
    const double bytesPerPixel = depth * png_get_channels(png_, info_) / 8.0;
    if (static_cast<double>(layout_.width) * static_cast<double>(layout_.height) * bytesPerPixel >
        static_cast<double>(fileSize_) * largestExpansion) {
      input_.hasEnded = true;
      return false;
    }
    expand(depth == 16);
    return true;
  }

  /// Says what the rows shall become, and how they will lie.
  void expand(bool has16Bits) {
    const int color = png_get_color_type(png_, info_);
    const bool isColor = (color & PNG_COLOR_MASK_COLOR) != 0;
    const bool hasAlpha =
        png_get_valid(png_, info_, PNG_INFO_tRNS) != 0 || (color & PNG_COLOR_MASK_ALPHA) != 0;
    png_set_expand(png_);
    if (isColor && !hasAlpha) png_set_filler(png_, 0xFFFF, PNG_FILLER_AFTER);
    passes_ = png_set_interlace_handling(png_);
    isWhole_ = passes_ > 1;

    layout_.bitsPerComponent = has16Bits ? 16 : 8;
    layout_.bitsPerPixel = layout_.bitsPerComponent * (isColor ? 4 : hasAlpha ? 2 : 1);
    layout_.bytesPerRow = layout_.width * layout_.bitsPerPixel / 8;
    layout_.alphaInfo = hasAlpha  ? CGImageAlphaInfo::last
                        : isColor ? CGImageAlphaInfo::noneSkipLast
                                  : CGImageAlphaInfo::none;
    model_ = isColor ? CGColorSpaceModel::rgb : CGColorSpaceModel::monochrome;
    // Two rows of the largest pixels that there are on the way.
    memory_ = 2 * layout_.width * (has16Bits ? 8 : 4);
  }

  bool read(std::uint8_t* rows, std::size_t count) {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    if (rowsRead_ == 0) {
      png_read_update_info(png_, info_);
      if (png_get_rowbytes(png_, info_) != layout_.bytesPerRow) return false;
    }
    for (int pass = 0; pass < passes_; ++pass) {
      for (std::size_t y = 0; y < count; ++y) {
        png_read_row(png_, rows + y * layout_.bytesPerRow, nullptr);
        if (pass == passes_ - 1) ++rowsRead_;
      }
    }
    return true;
  }

  Input input_;
  std::uint64_t fileSize_;
  png_structp png_ = nullptr;
  png_infop info_ = nullptr;
  int passes_ = 1;
  std::size_t rowsRead_ = 0;
};

}  // namespace

std::unique_ptr<RowReader> pngRows(const ByteSource& source, const RowRequest&) {
  return std::make_unique<PngRows>(source);
}

}  // namespace FrameworkUtility::detail
