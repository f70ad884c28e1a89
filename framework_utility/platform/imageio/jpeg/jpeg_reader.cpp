#include <framework_utility/platform/imageio/jpeg/jpeg_reader.h>

#include <framework_utility/platform/graphics/pixel_buffer.h>

#include <jerror.h>

namespace FrameworkUtility::detail {

namespace {

constexpr std::size_t windowSize = 64 * 1024;
constexpr long maximumMemory = 1L << 31;
constexpr int maximumScans = 100;

constexpr JOCTET endMarker[] = {0xFF, JPEG_EOI};

/// A file of a few bytes a scan could otherwise keep the decoder busy for hours.
void limitScans(j_common_ptr info) {
  if (reinterpret_cast<j_decompress_ptr>(info)->input_scan_number > maximumScans) {
    ERREXIT(info, JERR_BAD_STATE);
  }
}

}  // namespace

JpegReader::JpegReader(const ByteSource& bytes) : source_(bytes) {
  info_.err = &errors_;
  progress_.progress_monitor = limitScans;
  source_.init_source = [](j_decompress_ptr) {};
  source_.term_source = [](j_decompress_ptr) {};
  source_.resync_to_restart = jpeg_resync_to_restart;
  source_.fill_input_buffer = [](j_decompress_ptr info) -> boolean {
    auto& source = *static_cast<Source*>(info->src);
    source.window = source.bytes.bytes(source.offset, windowSize);
    source.offset += source.window.size();
    source.ended = source.window.empty();
    source.next_input_byte =
        source.ended ? endMarker : reinterpret_cast<const JOCTET*>(source.window.data());
    source.bytes_in_buffer = source.ended ? sizeof(endMarker) : source.window.size();
    return TRUE;
  };
  source_.skip_input_data = [](j_decompress_ptr info, long count) {
    auto& source = *static_cast<Source*>(info->src);
    const std::size_t skipped = count > 0 ? static_cast<std::size_t>(count) : 0;
    if (skipped <= source.bytes_in_buffer) {
      source.next_input_byte += skipped;
      source.bytes_in_buffer -= skipped;
    } else {  // unread
      source.offset += skipped - source.bytes_in_buffer;
      source.bytes_in_buffer = 0;
    }
  };
}

JpegReader::~JpegReader() { jpeg_destroy_decompress(&info_); }

bool JpegReader::start(unsigned eighths) {
  return jpegSucceeds(errors_, [&] {
    jpeg_create_decompress(&info_);
    info_.src = &source_;
    info_.progress = &progress_;
    info_.mem->max_memory_to_use = maximumMemory;
    jpeg_read_header(&info_, TRUE);
    if (std::uint64_t{info_.image_width} * info_.image_height > maximumPixelBytes / 4) {
      ERREXIT(&info_, JERR_IMAGE_TOO_BIG);
    }
    chooseColors();
    info_.scale_num = eighths;
    info_.scale_denom = 8;
    const bool hasSeveralScans = jpeg_has_multiple_scans(&info_) != FALSE;
    jpeg_start_decompress(&info_);
    if (hasSeveralScans && source_.ended) {
      ERREXIT(&info_, JERR_INPUT_EOF);
    }
  });
}

void JpegReader::chooseColors() {
  switch (info_.num_components) {
    case 1:
      info_.out_color_space = JCS_GRAYSCALE;
      break;
    case 3:
      info_.out_color_space = JCS_EXT_RGBA;
      break;
    case 4:
      info_.out_color_space = JCS_CMYK;
      break;
    default:
      ERREXIT(&info_, JERR_BAD_J_COLORSPACE);
  }
}

bool JpegReader::readRows(std::byte* rows, std::size_t bytesPerRow, std::size_t count) {
  return jpegSucceeds(errors_, [&] {
    for (std::size_t y = 0; y < count; ++y) {
      auto* row = reinterpret_cast<JSAMPROW>(rows + y * bytesPerRow);
      jpeg_read_scanlines(&info_, &row, 1);
      // The programs that write an Adobe segment store CMYK inverted.
      if (isCmyk() && info_.saw_Adobe_marker) {
        for (std::size_t x = 0; x < 4 * width(); ++x) {
          row[x] = static_cast<JSAMPLE>(~row[x]);
        }
      }
    }
  });
}

}  // namespace FrameworkUtility::detail
