#include <framework_utility/platform/imageio/formats/jpeg/jpeg_reader.h>

#include <framework_utility/platform/imageio/image_source_error.h>

#include <algorithm>
#include <limits>
#include <string>

#include <jerror.h>

namespace FrameworkUtility::detail {

namespace {

constexpr std::size_t windowSize = 64 * 1024;

constexpr JOCTET endMarker[] = {0xFF, JPEG_EOI};

std::uint64_t roundedUp(std::uint64_t number, int multiple) {
  const auto unit = static_cast<std::uint64_t>(multiple);
  return (number + unit - 1) / unit * unit;
}

}  // namespace

JpegReader::JpegReader(const ByteSource& bytes, const DecodeRequest& request)
    : request_(request), source_(bytes) {
  info_.err = &errors_;
  progress_.mostScans = request.limits.mostScans;
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

bool JpegReader::open(unsigned eighths) {
  return jpegSucceeds(errors_, [&] {
    jpeg_create_decompress(&info_);
    info_.src = &source_;
    info_.progress = &progress_;
    jpeg_read_header(&info_, TRUE);
    chooseColors();
    info_.scale_num = eighths;
    info_.scale_denom = 8;
    jpeg_calc_output_dimensions(&info_);
  });
}

std::uint64_t JpegReader::memory() const {
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

bool JpegReader::start() {
  return jpegSucceeds(errors_, [&] {
    // What is counted beforehand is less than this; libjpeg itself keeps to it, whatever it does.
    info_.mem->max_memory_to_use = static_cast<long>(
        std::min<std::uint64_t>(request_.limits.mostMemory, std::numeric_limits<long>::max()));
    const bool hasSeveralScans = jpeg_has_multiple_scans(&info_) != FALSE;
    jpeg_start_decompress(&info_);
    if (hasSeveralScans && source_.ended) ERREXIT(&info_, JERR_INPUT_EOF);
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
        for (std::size_t x = 0; x < 4 * width(); ++x) row[x] = static_cast<JSAMPLE>(~row[x]);
      }
    }
  });
}

std::nullopt_t JpegReader::failed() const {
  if (progress_.isPastScans) {
    return detail::failed(
        request_, CGImageSourceError::tooLarge,
        "The image has more scans than the limit of " + std::to_string(progress_.mostScans) + ".");
  }
  switch (errors_.msg_code) {
    case JERR_OUT_OF_MEMORY:
    case JERR_NO_BACKING_STORE:
      return failedForMemory(request_);
    case JERR_BAD_PRECISION:
    case JERR_BAD_J_COLORSPACE:
    case JERR_CONVERSION_NOTIMPL:
    case JERR_FRACT_SAMPLE_NOTIMPL:
    case JERR_SOF_UNSUPPORTED:
      return detail::failed(request_, CGImageSourceError::unsupported);
    default:
      break;
  }
  return source_.ended ? detail::failed(request_, CGImageSourceError::corruptFile, cutOff)
                       : detail::failed(request_, CGImageSourceError::corruptFile);
}

}  // namespace FrameworkUtility::detail
