#include <framework_utility/platform/imageio/formats/jpeg/jpeg_rows.h>

#include <framework_utility/platform/foundation/files/byte_stream.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_errors.h>

#include <algorithm>
#include <limits>

#include <jerror.h>

namespace FrameworkUtility::detail {

namespace {

constexpr JOCTET endMarker[] = {0xFF, JPEG_EOI};

std::uint64_t roundedUp(std::uint64_t number, int multiple) {
  const auto unit = static_cast<std::uint64_t>(multiple);
  return (number + unit - 1) / unit * unit;
}

/// The fewest eighths that libjpeg may reduce to and still leave no less than the least.
unsigned eighthsFor(const PixelSize& size, const PixelSize& least) {
  if (least == PixelSize{}) return 8;
  for (const unsigned eighths : {1U, 2U, 4U}) {
    if (size.width * eighths >= least.width * 8 && size.height * eighths >= least.height * 8) {
      return eighths;
    }
  }
  return 8;
}

class JpegRows final : public RowReader {
 public:
  JpegRows(const ByteSource& bytes, const RowRequest& request);
  ~JpegRows() override { jpeg_destroy_decompress(&info_); }

  std::size_t readRows(std::uint8_t* rows, std::size_t count) override;

 private:
  struct Source : jpeg_source_mgr {
    ByteStream bytes;
    bool ended = false;

    explicit Source(const ByteSource& all)
        : jpeg_source_mgr(), bytes(all, 0, std::size_t{64} * 1024) {}
  };

  struct Progress : jpeg_progress_mgr {
    std::uint64_t mostScans = 0;
    bool isPastScans = false;
  };

  void open(const PixelSize& least);
  void chooseColors();
  std::uint64_t memoryOfCodec() const;
  /// Reads up to the pixels, of a file of several scans all of it.
  void start();
  RowState reasonOfFailure() const;

  JpegErrors errors_;
  Source source_;
  Progress progress_ = {};
  jpeg_decompress_struct info_ = {};
  std::uint64_t mostMemory_;
  bool hasStarted_ = false;
};

JpegRows::JpegRows(const ByteSource& bytes, const RowRequest& request)
    : source_(bytes), mostMemory_(request.mostMemory) {
  info_.err = &errors_;
  progress_.mostScans = request.mostScans;
  progress_.progress_monitor = [](j_common_ptr info) {
    auto& progress = *static_cast<Progress*>(info->progress);
    const int scans = reinterpret_cast<j_decompress_ptr>(info)->input_scan_number;
    if (static_cast<std::uint64_t>(scans) > progress.mostScans) {
      progress.isPastScans = true;
      ERREXIT(info, JERR_BAD_STATE);
    }
  };
  source_.init_source = [](j_decompress_ptr) {};
  source_.term_source = [](j_decompress_ptr) {};
  source_.resync_to_restart = jpeg_resync_to_restart;
  source_.fill_input_buffer = [](j_decompress_ptr info) -> boolean {
    auto& source = *static_cast<Source*>(info->src);
    const std::span<const std::byte> ahead = source.bytes.ahead();
    source.bytes.take(ahead.size());
    source.ended = ahead.empty();
    source.next_input_byte =
        source.ended ? endMarker : reinterpret_cast<const JOCTET*>(ahead.data());
    source.bytes_in_buffer = source.ended ? sizeof(endMarker) : ahead.size();
    return TRUE;
  };
  source_.skip_input_data = [](j_decompress_ptr info, long count) {
    auto& source = *static_cast<Source*>(info->src);
    const std::size_t skipped = count > 0 ? static_cast<std::size_t>(count) : 0;
    if (skipped <= source.bytes_in_buffer) {
      source.next_input_byte += skipped;
      source.bytes_in_buffer -= skipped;
    } else {  // unread
      source.bytes.skip(skipped - source.bytes_in_buffer);
      source.bytes_in_buffer = 0;
    }
  };
  if (!jpegSucceeds(errors_, [&] { open(request.least); })) state_ = reasonOfFailure();
}

void JpegRows::open(const PixelSize& least) {
  jpeg_create_decompress(&info_);
  info_.src = &source_;
  info_.progress = &progress_;
  jpeg_read_header(&info_, TRUE);
  chooseColors();
  info_.scale_num = eighthsFor({info_.image_width, info_.image_height}, least);
  info_.scale_denom = 8;
  jpeg_calc_output_dimensions(&info_);

  layout_.width = info_.output_width;
  layout_.height = info_.output_height;
  layout_.bitsPerPixel = 8 * static_cast<std::size_t>(info_.output_components);
  layout_.bytesPerRow = layout_.width * static_cast<std::size_t>(info_.output_components);
  layout_.alphaInfo =
      model_ == CGColorSpaceModel::rgb ? CGImageAlphaInfo::noneSkipLast : CGImageAlphaInfo::none;
  memory_ = memoryOfCodec();
}

void JpegRows::chooseColors() {
  switch (info_.num_components) {
    case 1:
      info_.out_color_space = JCS_GRAYSCALE;
      model_ = CGColorSpaceModel::monochrome;
      break;
    case 3:
      info_.out_color_space = JCS_EXT_RGBA;
      break;
    case 4:
      info_.out_color_space = JCS_CMYK;
      model_ = CGColorSpaceModel::cmyk;
      break;
    default:
      ERREXIT(&info_, JERR_BAD_J_COLORSPACE);
  }
}

/// Of a file of several scans all coefficients, else some rows.
std::uint64_t JpegRows::memoryOfCodec() const {
  const auto components = static_cast<std::size_t>(info_.num_components);
  // Of each component a row of blocks and half as many rows about them, twice: as coded, and as
  // large as the picture.
  std::uint64_t bytes = std::uint64_t{info_.image_width} * components *
                        static_cast<std::uint64_t>(info_.max_v_samp_factor) * 3 * DCTSIZE;
  if (jpeg_has_multiple_scans(const_cast<j_decompress_ptr>(&info_)) != FALSE) {
    for (std::size_t i = 0; i < components; ++i) {
      const jpeg_component_info& component = info_.comp_info[i];
      bytes += roundedUp(component.width_in_blocks, component.h_samp_factor) *
               roundedUp(component.height_in_blocks, component.v_samp_factor) * sizeof(JBLOCK);
    }
  }
  return bytes;
}

void JpegRows::start() {
  // What is counted beforehand is less than this; libjpeg itself keeps to it, whatever it does.
  info_.mem->max_memory_to_use =
      static_cast<long>(std::min<std::uint64_t>(mostMemory_, std::numeric_limits<long>::max()));
  const bool hasSeveralScans = jpeg_has_multiple_scans(&info_) != FALSE;
  jpeg_start_decompress(&info_);
  if (hasSeveralScans && source_.ended) ERREXIT(&info_, JERR_INPUT_EOF);
}

std::size_t JpegRows::readRows(std::uint8_t* rows, std::size_t count) {
  const JDIMENSION first = info_.output_scanline;
  const bool succeeds = jpegSucceeds(errors_, [&] {
    if (!hasStarted_) start();
    hasStarted_ = true;
    for (std::size_t y = 0; y < count; ++y) {
      JSAMPROW row = rows + y * layout_.bytesPerRow;
      jpeg_read_scanlines(&info_, &row, 1);
      // The programs that write an Adobe segment store CMYK inverted.
      if (model_ == CGColorSpaceModel::cmyk && info_.saw_Adobe_marker) {
        for (std::size_t x = 0; x < layout_.bytesPerRow; ++x) {
          row[x] = static_cast<JSAMPLE>(~row[x]);
        }
      }
    }
  });
  if (succeeds) return count;
  state_ = reasonOfFailure();
  return hasStarted_ ? info_.output_scanline - first : 0;
}

RowState JpegRows::reasonOfFailure() const {
  if (progress_.isPastScans) return RowState::tooManyScans;
  switch (errors_.msg_code) {
    case JERR_OUT_OF_MEMORY:
    case JERR_NO_BACKING_STORE:
      return RowState::memoryIsShort;
    case JERR_BAD_PRECISION:
    case JERR_BAD_J_COLORSPACE:
    case JERR_CONVERSION_NOTIMPL:
    case JERR_FRACT_SAMPLE_NOTIMPL:
    case JERR_SOF_UNSUPPORTED:
      return RowState::unsupported;
    default:
      return source_.ended ? RowState::cut : RowState::damaged;
  }
}

}  // namespace

std::unique_ptr<RowReader> jpegRows(const ByteSource& source, const RowRequest& request) {
  return std::make_unique<JpegRows>(source, request);
}

}  // namespace FrameworkUtility::detail
