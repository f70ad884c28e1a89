#include <framework_utility/platform/imageio/formats/jpeg/jpeg_writer.h>

#include <jerror.h>

#include <new>

namespace FrameworkUtility::detail {

/// Takes over what the buffer holds; false when memory is short.
bool JpegWriter::Destination::flush() {
  const auto* bytes = reinterpret_cast<const std::byte*>(buffer.data());
  try {
    out.insert(out.end(), bytes, bytes + (buffer.size() - free_in_buffer));
  } catch (const std::bad_alloc&) {
    return false;
  }
  next_output_byte = buffer.data();
  free_in_buffer = buffer.size();
  return true;
}

JpegWriter::JpegWriter(std::vector<std::byte>& out) : destination_(out) {
  info_.err = &errors_;
  destination_.init_destination = [](j_compress_ptr info) {
    auto& destination = *static_cast<Destination*>(info->dest);
    destination.next_output_byte = destination.buffer.data();
    destination.free_in_buffer = destination.buffer.size();
  };
  destination_.empty_output_buffer = [](j_compress_ptr info) -> boolean {
    auto& destination = *static_cast<Destination*>(info->dest);
    destination.free_in_buffer = 0;  // libjpeg leaves it at its value of the last flush
    if (!destination.flush()) ERREXIT1(info, JERR_OUT_OF_MEMORY, 0);
    return TRUE;
  };
  destination_.term_destination = [](j_compress_ptr info) {
    if (!static_cast<Destination*>(info->dest)->flush()) ERREXIT1(info, JERR_OUT_OF_MEMORY, 0);
  };
}

JpegWriter::~JpegWriter() { jpeg_destroy_compress(&info_); }

bool JpegWriter::start(const Format& format) {
  return jpegSucceeds(errors_, [&] {
    jpeg_create_compress(&info_);
    info_.dest = &destination_;
    if (format.width > JPEG_MAX_DIMENSION || format.height > JPEG_MAX_DIMENSION) {
      ERREXIT1(&info_, JERR_IMAGE_TOO_BIG, JPEG_MAX_DIMENSION);
    }
    info_.image_width = static_cast<JDIMENSION>(format.width);
    info_.image_height = static_cast<JDIMENSION>(format.height);
    info_.in_color_space = format.colors;
    info_.input_components = format.bytesPerPixel;
    jpeg_set_defaults(&info_);  // for three colours 4:2:0
    jpeg_set_quality(&info_, format.quality, TRUE);
    info_.write_JFIF_header = format.jfif ? TRUE : FALSE;
    if (format.jfif) {
      info_.JFIF_major_version = format.jfif->majorVersion;
      info_.JFIF_minor_version = format.jfif->minorVersion;
      info_.density_unit = format.jfif->unit;
      info_.X_density = format.jfif->x;
      info_.Y_density = format.jfif->y;
    }
    jpeg_start_compress(&info_, TRUE);
  });
}

bool JpegWriter::writeSegment(int marker, std::string_view signature,
                              std::span<const std::byte> contents) {
  return jpegSucceeds(errors_, [&] {
    // libjpeg refuses a length that does not fit.
    jpeg_write_m_header(&info_, marker, static_cast<unsigned>(signature.size() + contents.size()));
    for (const char character : signature) {
      jpeg_write_m_byte(&info_, static_cast<unsigned char>(character));
    }
    for (const std::byte byte : contents) jpeg_write_m_byte(&info_, std::to_integer<int>(byte));
  });
}

bool JpegWriter::writeProfile(std::span<const std::byte> profile) {
  return jpegSucceeds(errors_, [&] {
    jpeg_write_icc_profile(&info_, reinterpret_cast<const JOCTET*>(profile.data()),
                           static_cast<unsigned>(profile.size()));
  });
}

bool JpegWriter::writeRow(const std::uint8_t* row) {
  return jpegSucceeds(errors_, [&] {
    auto* samples = const_cast<JSAMPROW>(row);  // libjpeg only reads them
    jpeg_write_scanlines(&info_, &samples, 1);
  });
}

bool JpegWriter::finish() {
  return jpegSucceeds(errors_, [&] { jpeg_finish_compress(&info_); });
}

std::string JpegWriter::problem() {
  std::array<char, JMSG_LENGTH_MAX> text;
  errors_.format_message(reinterpret_cast<j_common_ptr>(&info_), text.data());
  return text.data();
}

}  // namespace FrameworkUtility::detail
