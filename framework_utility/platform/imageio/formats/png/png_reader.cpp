#include <framework_utility/platform/imageio/formats/png/png_reader.h>

#include <framework_utility/platform/imageio/image_source_error.h>

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

}  // namespace

// Errors leave libpng by longjmp, so no frame between one of the functions that call setjmp and
// libpng's own may hold an object with a destructor.

struct PngReader::State {
  explicit State(const ByteSource& bytes) : source(bytes) {}
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State() { png_destroy_read_struct(&png, &info, nullptr); }

  ByteSource source;
  std::uint64_t offset = 0;  // of what follows the window
  Data window;
  std::size_t used = 0;  // of the window
  bool hasEnded = false;
  png_structp png = nullptr;
  png_infop info = nullptr;

  /// Whether there are bytes in the window, after loading the next when it is used up.
  bool hasBytes() {
    constexpr std::size_t size = std::size_t{256} << 10;
    if (used < window.size()) return true;
    window = source.bytes(offset, size);
    offset += window.size();
    used = 0;
    return !window.empty();
  }

  static void read(png_structp png, png_bytep bytes, std::size_t count) {
    auto* state = static_cast<State*>(png_get_io_ptr(png));
    while (count > 0) {
      if (!state->hasBytes()) {
        state->hasEnded = true;
        png_error(png, "the file ends");
      }
      const std::size_t part = std::min(count, state->window.size() - state->used);
      std::memcpy(bytes, state->window.data() + state->used, part);
      state->used += part;
      bytes += part;
      count -= part;
    }
  }
};

PngReader::PngReader(const ByteSource& source, const DecodeRequest& request)
    : request_(request), state_(std::make_unique<State>(source)) {
  State& state = *state_;
  state.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, jumpOut, ignoreWarning);
  if (state.png) state.info = png_create_info_struct(state.png);
}

PngReader::~PngReader() = default;

bool PngReader::open(PngForm form) {
  const png_structp png = state_->png;
  const png_infop info = state_->info;
  if (!png || !info) return false;
  if (setjmp(png_jmpbuf(png)) != 0) return false;

  png_set_read_fn(png, state_.get(), State::read);
  // The header's reader has the metadata already; here nothing is unpacked for it.
  png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
  png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
  png_read_info(png, info);

  width_ = png_get_image_width(png, info);
  height_ = png_get_image_height(png, info);
  const double bytesPerPixel = png_get_bit_depth(png, info) * png_get_channels(png, info) / 8.0;
  if (static_cast<double>(width_) * static_cast<double>(height_) * bytesPerPixel >
      static_cast<double>(state_->source.size()) * largestExpansion) {
    state_->hasEnded = true;
    return false;
  }

  const bool has16Bits = png_get_bit_depth(png, info) == 16;
  const int color = png_get_color_type(png, info);
  const bool hasTransparency = png_get_valid(png, info, PNG_INFO_tRNS) != 0;
  hasAlpha_ = hasTransparency || (color & PNG_COLOR_MASK_ALPHA) != 0;
  png_set_expand(png);
  if (form == PngForm::reduced) {
    png_set_scale_16(png);
    if (hasAlpha_) png_set_gray_to_rgb(png);
  }
  if ((color & PNG_COLOR_MASK_COLOR) != 0 && !hasAlpha_) {
    png_set_filler(png, 0xFFFF, PNG_FILLER_AFTER);
  }
  passes_ = png_set_interlace_handling(png);
  const bool isColor =
      (color & PNG_COLOR_MASK_COLOR) != 0 || (hasAlpha_ && form == PngForm::reduced);
  components_ = isColor ? 4 : hasAlpha_ ? 2 : 1;
  bitsPerComponent_ = has16Bits && form == PngForm::whole ? 16 : 8;
  // Two rows of the largest pixels that there are on the way.
  memory_ = 2 * width_ * (has16Bits ? 8 : 4);
  return true;
}

bool PngReader::start() {
  const png_structp png = state_->png;
  const png_infop info = state_->info;
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  png_read_update_info(png, info);
  return png_get_rowbytes(png, info) == bytesPerRow();
}

bool PngReader::readRow(std::uint8_t* row) {
  if (setjmp(png_jmpbuf(state_->png)) != 0) return false;
  png_read_row(state_->png, row, nullptr);
  return true;
}

bool PngReader::readAllRows(std::uint8_t* rows) {
  if (setjmp(png_jmpbuf(state_->png)) != 0) return false;
  for (int pass = 0; pass < passes_; ++pass) {
    for (std::size_t y = 0; y < height_; ++y) {
      png_read_row(state_->png, rows + y * bytesPerRow(), nullptr);
    }
  }
  return true;
}

std::nullopt_t PngReader::failed() const {
  if (!state_->png || !state_->info) return failedForMemory(request_);
  return detail::failed(request_, CGImageSourceError::corruptFile,
                        state_->hasEnded ? cutOff : std::string_view());
}

}  // namespace FrameworkUtility::detail
