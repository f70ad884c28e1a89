#pragma once

#include <framework_utility/platform/foundation/files/byte_source.h>
#include <framework_utility/platform/foundation/values/data.h>
#include <framework_utility/platform/foundation/values/error.h>
#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/graphics/cg_image.h>
#include <framework_utility/platform/imageio/formats/decode_request.h>
#include <framework_utility/platform/imageio/image_source.h>
#include <framework_utility/platform/imageio/metadata/metadata_blocks.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace FrameworkUtility::detail {

/// What a file says of its image before any pixel is decoded.
struct ImageHeader {
  CGImageSourceStatus status = CGImageSourceStatus::unknownType;
  std::size_t width = 0;  ///< In pixels, as stored.
  std::size_t height = 0;
  std::size_t bitsPerComponent = 8;
  CGColorSpaceModel model = CGColorSpaceModel::rgb;
  bool hasAlpha = false;
  bool isIndexed = false;
  Data iccProfile;
  /// What the format alone knows, in the properties' shape: "{JFIF}", "{PNG}", DPIWidth and so on.
  Dictionary formatProperties;
  MetadataBlocks blocks;
};

/// What a file that is being written shall hold beside the pixels.
struct EncodeRequest {
  double quality = 0.85;  ///< In 0...1; formats without loss ignore it.
  Data iccProfile;
  Dictionary properties;  ///< For what the format alone knows, such as a resolution.
  MetadataBlocks blocks;  ///< As they shall stand in the file.
};

/// One file format. Stateless: one constant object each, listed in `imageCodecs`. Nothing here
/// throws, whatever the bytes are.
class ImageCodec {
 public:
  virtual ~ImageCodec() = default;

  virtual std::string_view typeIdentifier() const = 0;
  /// Whether a file that begins with these bytes (at least 16 unless it is shorter) is of this
  /// format.
  virtual bool recognizes(std::span<const std::byte> beginning) const = 0;
  /// Touches only the bytes that hold the facts, never the pixels.
  virtual ImageHeader readHeader(const ByteSource& source) const = 0;
  /// Absent when the pixels are damaged or beyond the request's limits, which are asked before
  /// anything is allocated.
  virtual std::optional<CGImage> decode(const ByteSource& source, const ImageHeader& header,
                                        const DecodeRequest& request) const = 0;
  /// The image reduced so that no side exceeds `maxPixelSize`, never enlarged, not turned.
  virtual std::optional<CGImage> decodeReduced(const ByteSource& source, const ImageHeader& header,
                                               std::size_t maxPixelSize,
                                               const DecodeRequest& request) const = 0;
  /// False, by `cannotEncode`, when the format cannot hold the image or memory is short.
  virtual bool encode(const CGImage& image, const EncodeRequest& request,
                      std::vector<std::byte>& out, Error* error) const = 0;
};

/// Fills `error`, when there is one, and answers false: why an image does not become a file, in
/// plain words, the codec's own where it gave some.
bool cannotEncode(std::string_view why, Error* error);

/// Every format that this build reads or writes.
std::span<const ImageCodec* const> imageCodecs();

}  // namespace FrameworkUtility::detail
