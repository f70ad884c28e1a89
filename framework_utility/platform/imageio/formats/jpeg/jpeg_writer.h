#pragma once

#include <framework_utility/platform/imageio/formats/jpeg/jpeg_errors.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_resolution.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace FrameworkUtility::detail {

/// A baseline JPEG file in the making: `start`, the segments, the rows, `finish`. False means that
/// the file cannot be made.
class JpegWriter {
 public:
  struct Format {
    std::size_t width = 0;
    std::size_t height = 0;
    J_COLOR_SPACE colors = JCS_EXT_RGBX;  // of the rows
    int bytesPerPixel = 4;
    int quality = 85;
    std::optional<JpegResolution> jfif;  // absent: no JFIF segment
  };

  /// The largest contents of a segment, signature included.
  static constexpr std::size_t maximumSegmentSize = 65533;
  /// 255 segments, each with a signature and two numbers.
  static constexpr std::size_t maximumProfileSize = 255 * (maximumSegmentSize - 14);

  /// Appends to `out`, which must outlive the writer.
  explicit JpegWriter(std::vector<std::byte>& out);
  JpegWriter(const JpegWriter&) = delete;
  JpegWriter& operator=(const JpegWriter&) = delete;
  ~JpegWriter();

  bool start(const Format& format);
  /// `marker` is JPEG_APP0 and so on.
  bool writeSegment(int marker, std::string_view signature, std::span<const std::byte> contents);
  bool writeProfile(std::span<const std::byte> profile);
  bool writeRow(const std::uint8_t* row);
  bool finish();

  /// After a false: what libjpeg said.
  std::string problem();

 private:
  struct Destination : jpeg_destination_mgr {
    std::vector<std::byte>& out;
    std::array<JOCTET, std::size_t{64} * 1024> buffer;

    explicit Destination(std::vector<std::byte>& bytes) : jpeg_destination_mgr(), out(bytes) {}
    bool flush();
  };

  JpegErrors errors_;
  Destination destination_;
  jpeg_compress_struct info_ = {};
};

}  // namespace FrameworkUtility::detail
