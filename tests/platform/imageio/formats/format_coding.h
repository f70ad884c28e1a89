#pragma once

#include <framework_utility/platform/imageio/formats/image_format.h>
#include <framework_utility/platform/imageio/row_decoding.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace FrameworkUtility::testing {

// One format from bytes to pixels and back, without a file's other ways.

inline detail::ImageHeader headerOf(const detail::ImageFormat& format, const Data& file) {
  return *format.open(detail::ByteSource(file))->headerAt(0);
}

inline std::optional<CGImage> decodedBy(const detail::ImageFormat& format, const Data& file) {
  const auto reader = format.open(detail::ByteSource(file));
  return reader->count() > 0 ? detail::decodedImage(*reader, 0, {}) : std::nullopt;
}

inline std::optional<CGImage> decodedReducedBy(const detail::ImageFormat& format, const Data& file,
                                               std::size_t maxPixelSize) {
  const auto reader = format.open(detail::ByteSource(file));
  return reader->count() > 0 ? detail::decodedReducedImage(*reader, 0, maxPixelSize, {})
                             : std::nullopt;
}

/// Empty when the format cannot hold the image.
inline Data encodedBy(const detail::ImageFormat& format, const CGImage& image,
                      const detail::EncodeRequest& request = {}) {
  const auto writer = format.create(format.types[0].identifier(), 1);
  std::vector<std::byte> file;
  return writer->addImage(image, request) && writer->finish({}, file) ? Data(std::move(file))
                                                                      : Data();
}

}  // namespace FrameworkUtility::testing
