#include <framework_utility/platform/imageio/formats/jpeg/jpeg_encode.h>

#include <framework_utility/platform/foundation/app/uniform_type.h>
#include <framework_utility/platform/graphics/rgba_rows.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_extended_xmp.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_header.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_resolution.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_writer.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <optional>
#include <span>
#include <string>

namespace FrameworkUtility::detail {

namespace {

using Bytes = std::span<const std::byte>;

/// On a row of premultiplied red, green, blue, alpha.
void layOnWhite(std::uint8_t* row, std::size_t pixels) {
  for (std::uint8_t* pixel = row; pixel != row + 4 * pixels; pixel += 4) {
    const int white = 255 - pixel[3];
    for (int i = 0; i < 3; ++i) {
      pixel[i] = static_cast<std::uint8_t>(std::min(pixel[i] + white, 255));
    }
  }
}

/// Whether every pixel of a row of red, green, blue, alpha is opaque.
bool isOpaque(const std::uint8_t* row, std::size_t pixels) {
  std::uint32_t all = ~0U;  // whole pixels, so that the loop becomes wide
  for (std::size_t x = 0; x < pixels; ++x) {
    std::uint32_t pixel;
    std::memcpy(&pixel, row + 4 * x, sizeof pixel);
    all &= pixel;
  }
  return std::bit_cast<std::array<std::uint8_t, 4>>(all)[3] == 255;
}

/// An image's rows in one of the forms that libjpeg takes.
class EncoderRows {
 public:
  /// Absent for Lab. `image` must outlive the result.
  static std::optional<EncoderRows> of(const CGImage& image) {
    EncoderRows rows(image);
    const CGImageLayout& layout = image.layout();
    const CGColorSpaceModel model =
        image.colorSpace() ? image.colorSpace()->model() : CGColorSpaceModel::monochrome;
    const bool isPlain =
        layout.bitsPerComponent == 8 && (layout.byteOrder == CGImageByteOrder::unspecified ||
                                         layout.byteOrder == CGImageByteOrder::big32);
    const bool isBare = isPlain && layout.alphaInfo == CGImageAlphaInfo::none;
    if (model == CGColorSpaceModel::cmyk && isBare) {
      rows.setForm(JCS_CMYK, 4);
    } else if (model == CGColorSpaceModel::monochrome) {
      rows.setForm(JCS_GRAYSCALE, 1);
      rows.isInPlace_ = isBare;
    } else {
      rows.setForm(JCS_EXT_RGBX, 4);
      const bool isRgba = isPlain && model == CGColorSpaceModel::rgb;
      rows.isInPlace_ = isRgba && layout.alphaInfo == CGImageAlphaInfo::noneSkipLast;
      rows.isInPlaceWhereOpaque_ =
          isRgba && (layout.alphaInfo == CGImageAlphaInfo::premultipliedLast ||
                     layout.alphaInfo == CGImageAlphaInfo::last);
    }
    if (!rows.isInPlace_ && rows.colors_ != JCS_CMYK) {
      rows.converter_ = RGBARows::of(image, AlphaForm::premultiplied);
      if (!rows.converter_) return std::nullopt;
    }
    return rows;
  }

  J_COLOR_SPACE colors() const { return colors_; }
  int bytesPerPixel() const { return bytesPerPixel_; }

  /// Good until the next call.
  const std::uint8_t* row(std::size_t y) {
    const std::size_t width = image_.width();
    const auto* stored = reinterpret_cast<const std::uint8_t*>(image_.pixels().data()) +
                         y * image_.layout().bytesPerRow;
    if (isInPlace_ || (isInPlaceWhereOpaque_ && isOpaque(stored, width))) return stored;
    converted_.resize(4 * width);
    std::uint8_t* row = converted_.data();
    if (colors_ == JCS_CMYK) {  // inverted, as the Adobe segment that libjpeg writes means it
      std::transform(stored, stored + 4 * width, row,
                     [](std::uint8_t ink) { return static_cast<std::uint8_t>(~ink); });
      return row;
    }
    converter_->read(y, row);
    layOnWhite(row, width);
    if (colors_ == JCS_GRAYSCALE) {  // three equal components; the first of them
      for (std::size_t x = 1; x < width; ++x) row[x] = row[4 * x];
    }
    return row;
  }

 private:
  explicit EncoderRows(const CGImage& image) : image_(image) {}

  void setForm(J_COLOR_SPACE colors, int bytesPerPixel) {
    colors_ = colors;
    bytesPerPixel_ = bytesPerPixel;
  }

  const CGImage& image_;
  J_COLOR_SPACE colors_ = JCS_EXT_RGBX;
  int bytesPerPixel_ = 4;
  bool isInPlace_ = false;
  bool isInPlaceWhereOpaque_ = false;
  std::optional<RGBARows> converter_;
  std::vector<std::uint8_t> converted_;
};

/// 1 to 100; no scale between the platform's and libjpeg's qualities is published.
int qualityNumber(double quality) {
  return static_cast<int>(std::lround(std::clamp(100 * quality, 1.0, 100.0)));
}

bool fits(std::string_view signature, const Data& contents) {
  return !contents.empty() && signature.size() + contents.size() <= JpegWriter::maximumSegmentSize;
}

/// Photoshop's resources go on in the next segment where they are too long for one.
bool writeImageResources(JpegWriter& writer, Bytes resources) {
  constexpr std::size_t pieceSize = JpegWriter::maximumSegmentSize - jpegResourcesSignature.size();
  for (std::size_t i = 0; i < resources.size(); i += pieceSize) {
    const Bytes rest = resources.subspan(i);
    if (!writer.writeSegment(JPEG_APP0 + 13, jpegResourcesSignature,
                             rest.first(std::min(pieceSize, rest.size())))) {
      return false;
    }
  }
  return true;
}

bool writeXmp(JpegWriter& writer, const MetadataBlocks& blocks) {
  if (blocks.xmp.empty()) return true;
  const std::optional<XmpParts> xmp = xmpForSegments(blocks.xmp, blocks.extendedXmp);
  if (!xmp) return true;
  const Bytes extension = xmp->extension;
  const std::string name = extension.empty() ? "" : xmpExtensionName(xmp->packet);
  const std::size_t pieceSize = JpegWriter::maximumSegmentSize - extendedXmpHead(name, 0, 0).size();
  bool isWritten = writer.writeSegment(JPEG_APP0 + 1, jpegXmpSignature, xmp->packet);
  for (std::size_t i = 0; i < extension.size() && isWritten; i += pieceSize) {
    const Bytes rest = extension.subspan(i);
    isWritten = writer.writeSegment(JPEG_APP0 + 1, extendedXmpHead(name, extension.size(), i),
                                    rest.first(std::min(pieceSize, rest.size())));
  }
  return isWritten;
}

bool writeParts(JpegWriter& writer, const MetadataBlocks& blocks) {
  return blocks.format != UTTypeJPEG.identifier() ||
         std::all_of(blocks.formatParts.begin(), blocks.formatParts.end(),
                     [&](const FormatPart& part) {
                       return writer.writeSegment(static_cast<int>(part.kind), "", part.contents);
                     });
}

/// The profile says what components mean, so it may only stand beside as many.
bool profileFits(const EncodeRequest& request, const CGImage& image, const EncoderRows& rows) {
  const std::size_t components = rows.colors() == JCS_GRAYSCALE ? 1
                                 : rows.colors() == JCS_CMYK    ? 4
                                                                : 3;
  return !request.iccProfile.empty() && image.colorSpace() &&
         image.colorSpace()->numberOfComponents() == components &&
         request.iccProfile.size() <= JpegWriter::maximumProfileSize;
}

}  // namespace

bool encodeJpeg(const CGImage& image, const EncodeRequest& request, std::vector<std::byte>& out,
                std::string& problem) {
  std::optional<EncoderRows> rows = EncoderRows::of(image);
  if (!rows) return cannotEncode("JPEG cannot hold the colours of this image", problem);
  const MetadataBlocks& blocks = request.blocks;
  const bool hasExif = fits(jpegExifSignature, blocks.exif);
  JpegWriter writer(out);
  bool isWritten =
      writer.start({.width = image.width(),
                    .height = image.height(),
                    .colors = rows->colors(),
                    .bytesPerPixel = rows->bytesPerPixel(),
                    .quality = qualityNumber(request.quality),
                    .jfif = jpegResolution(request.properties, !hasExif)}) &&
      (!hasExif || writer.writeSegment(JPEG_APP0 + 1, jpegExifSignature, blocks.exif)) &&
      writeXmp(writer, blocks) && writeImageResources(writer, blocks.imageResources) &&
      (!profileFits(request, image, *rows) || writer.writeProfile(request.iccProfile)) &&
      writeParts(writer, blocks);
  for (std::size_t y = 0; y < image.height() && isWritten; ++y) {
    isWritten = writer.writeRow(rows->row(y));
  }
  return (isWritten && writer.finish()) || cannotEncode(writer.problem(), problem);
}

}  // namespace FrameworkUtility::detail
