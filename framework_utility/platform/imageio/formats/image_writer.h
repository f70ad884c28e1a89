#pragma once

#include <framework_utility/platform/foundation/values/data.h>
#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/graphics/cg_image.h>
#include <framework_utility/platform/imageio/metadata/metadata_blocks.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace FrameworkUtility::detail {

/// What is written with an image.
struct EncodeRequest {
  double quality = 0.85;  ///< In 0...1; formats without loss ignore it.
  Data iccProfile;
  Dictionary properties;  ///< For what the format alone knows, such as a resolution.
  MetadataBlocks blocks;  ///< As they shall stand in the file.
};

/// The way out of an encoder: puts down in plain words what stands in the way, and answers false.
inline bool cannotEncode(std::string_view why, std::string& problem) {
  problem = why;
  return false;
}

/// A file in the making. False means that the file cannot be made, and `problem` says why; then
/// nothing more is asked of the writer.
///
/// Thread: one at a time.
class ImageWriter {
 public:
  ImageWriter() = default;
  ImageWriter(const ImageWriter&) = delete;
  ImageWriter& operator=(const ImageWriter&) = delete;
  virtual ~ImageWriter() = default;

  /// False when the format cannot hold the image, or not one more. Called as often as was announced
  /// when the writer was made.
  [[nodiscard]] virtual bool addImage(const CGImage& image, const EncodeRequest& request) = 0;
  /// Beside the image that was added last: depth, disparity or matte. Whether the format can hold
  /// it; the file can be made either way.
  virtual bool addAuxiliaryDataInfo(std::string_view, const Dictionary&) { return false; }
  /// Gives the file in `out`. `container` is what the caller set for all of it.
  [[nodiscard]] virtual bool finish(const Dictionary& container, std::vector<std::byte>& out) = 0;

  /// In plain words, the codec's own where it gave some.
  const std::string& problem() const { return problem_; }

 protected:
  std::string problem_;
};

}  // namespace FrameworkUtility::detail
