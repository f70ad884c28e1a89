#pragma once

#include <framework_utility/platform/imageio/byte_source.h>
#include <framework_utility/platform/imageio/jpeg/jpeg_errors.h>

#include <cstddef>
#include <cstdint>

namespace FrameworkUtility::detail {

/// The pixels of a JPEG file, row by row. Refused before anything is allocated: more pixels than
/// `maximumPixelBytes` holds at four bytes each, more than 2 GiB of coefficients (progressive files
/// need them all at once). Refused as soon as it shows: more than 100 scans.
///
/// Damaged or cut pixels are a failure. A missing end marker alone is none where the file has one
/// scan, for then every row is there; where it has several, nothing else tells that none is lost.
class JpegReader {
 public:
  explicit JpegReader(const ByteSource& bytes);
  JpegReader(const JpegReader&) = delete;
  JpegReader& operator=(const JpegReader&) = delete;
  ~JpegReader();

  /// Reads up to the pixels, which come reduced to `eighths` / 8, sides rounded up.
  bool start(unsigned eighths);

  // Known once started.
  std::size_t width() const { return info_.output_width; }
  std::size_t height() const { return info_.output_height; }
  /// 1 is grey; 4 is CMYK, 255 full ink, when `isCmyk`, else red, green, blue and 255.
  std::size_t bytesPerPixel() const { return static_cast<std::size_t>(info_.output_components); }
  bool isCmyk() const { return info_.out_color_space == JCS_CMYK; }

  /// The next rows.
  bool readRows(std::byte* rows, std::size_t bytesPerRow, std::size_t count);

 private:
  struct Source : jpeg_source_mgr {
    const ByteSource& bytes;
    std::uint64_t offset = 0;
    Data window;
    bool ended = false;

    explicit Source(const ByteSource& all) : jpeg_source_mgr(), bytes(all) {}
  };

  void chooseColors();

  JpegErrors errors_;
  Source source_;
  jpeg_progress_mgr progress_ = {};
  jpeg_decompress_struct info_ = {};
};

}  // namespace FrameworkUtility::detail
