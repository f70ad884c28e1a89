#pragma once

#include <framework_utility/platform/foundation/files/byte_source.h>
#include <framework_utility/platform/imageio/formats/decode_request.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_errors.h>

#include <cstddef>
#include <cstdint>

namespace FrameworkUtility::detail {

/// The pixels of a JPEG file, row by row, within the request's scans and memory. After a false it
/// is of no more use, and `failed` says why.
///
/// Damaged or cut pixels are a failure. A missing end marker alone is none where the file has one
/// scan, for then every row is there; where it has several, nothing else tells that none is lost.
class JpegReader {
 public:
  JpegReader(const ByteSource& bytes, const DecodeRequest& request);
  JpegReader(const JpegReader&) = delete;
  JpegReader& operator=(const JpegReader&) = delete;
  ~JpegReader();

  /// Reads the header. The pixels will come reduced to `eighths` / 8, sides rounded up.
  bool open(unsigned eighths);
  /// What libjpeg will keep: of a file of several scans all coefficients, else some rows.
  std::uint64_t memory() const;
  /// Reads up to the pixels, of a file of several scans all of it.
  bool start();

  // Known once opened.
  std::size_t width() const { return info_.output_width; }
  std::size_t height() const { return info_.output_height; }
  /// 1 is grey; 4 is CMYK, 255 full ink, when `isCmyk`, else red, green, blue and 255.
  std::size_t bytesPerPixel() const { return static_cast<std::size_t>(info_.output_components); }
  bool isCmyk() const { return info_.out_color_space == JCS_CMYK; }

  /// The next rows.
  bool readRows(std::byte* rows, std::size_t bytesPerRow, std::size_t count);

  std::nullopt_t failed() const;

 private:
  struct Source : jpeg_source_mgr {
    const ByteSource& bytes;
    std::uint64_t offset = 0;
    Data window;
    bool ended = false;

    explicit Source(const ByteSource& all) : jpeg_source_mgr(), bytes(all) {}
  };

  struct Progress : jpeg_progress_mgr {
    std::uint64_t mostScans = 0;
    bool isPastScans = false;
  };

  void chooseColors();

  const DecodeRequest& request_;
  JpegErrors errors_;
  Source source_;
  Progress progress_ = {};
  jpeg_decompress_struct info_ = {};
};

}  // namespace FrameworkUtility::detail
