#include <framework_utility/platform/imageio/formats/jpeg/jpeg_codec.h>

#include <framework_utility/platform/foundation/app/uniform_type.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_decode.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_encode.h>
#include <framework_utility/platform/imageio/formats/jpeg/jpeg_header.h>

namespace FrameworkUtility::detail {

namespace {

class JpegCodec final : public ImageCodec {
 public:
  std::string_view typeIdentifier() const override { return UTTypeJPEG.identifier(); }

  /// SOI and the beginning of another marker.
  bool recognizes(std::span<const std::byte> beginning) const override {
    return beginning.size() >= 3 && beginning[0] == std::byte{0xFF} &&
           beginning[1] == std::byte{0xD8} && beginning[2] == std::byte{0xFF};
  }

  ImageHeader readHeader(const ByteSource& source) const override { return readJpegHeader(source); }

  std::optional<CGImage> decode(const ByteSource& source, const ImageHeader& header,
                                const DecodeRequest& request) const override {
    return decodeJpeg(source, header, request);
  }

  std::optional<CGImage> decodeReduced(const ByteSource& source, const ImageHeader& header,
                                       std::size_t maxPixelSize,
                                       const DecodeRequest& request) const override {
    return decodeJpegReduced(source, header, maxPixelSize, request);
  }

  bool encode(const CGImage& image, const EncodeRequest& request, std::vector<std::byte>& out,
              Error* error) const override {
    return encodeJpeg(image, request, out, error);
  }
};

}  // namespace

const ImageCodec& jpegCodec() {
  static const JpegCodec codec;
  return codec;
}

}  // namespace FrameworkUtility::detail
