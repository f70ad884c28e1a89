#include <framework_utility/platform/imageio/formats/png/png_codec.h>

#include <framework_utility/platform/foundation/app/uniform_type.h>
#include <framework_utility/platform/imageio/formats/png/png_chunks.h>
#include <framework_utility/platform/imageio/formats/png/png_decode.h>
#include <framework_utility/platform/imageio/formats/png/png_encode.h>
#include <framework_utility/platform/imageio/formats/png/png_header.h>

namespace FrameworkUtility::detail {

namespace {

class PngCodec final : public ImageCodec {
 public:
  std::string_view typeIdentifier() const override { return UTTypePNG.identifier(); }

  bool recognizes(std::span<const std::byte> beginning) const override {
    return hasPngSignature(beginning);
  }

  ImageHeader readHeader(const ByteSource& source) const override { return readPngHeader(source); }

  std::optional<CGImage> decode(const ByteSource& source, const ImageHeader& header,
                                const DecodeRequest& request) const override {
    return decodePng(source, header, request);
  }

  std::optional<CGImage> decodeReduced(const ByteSource& source, const ImageHeader& header,
                                       std::size_t maxPixelSize,
                                       const DecodeRequest& request) const override {
    return decodePngReduced(source, header, maxPixelSize, request);
  }

  bool encode(const CGImage& image, const EncodeRequest& request, std::vector<std::byte>& out,
              Error* error) const override {
    return encodePng(image, request, out, error);
  }
};

}  // namespace

const ImageCodec& pngCodec() {
  static const PngCodec codec;
  return codec;
}

}  // namespace FrameworkUtility::detail
