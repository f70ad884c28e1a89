#pragma once

#include <framework_utility/platform/imageio/formats/image_format.h>
#include <framework_utility/platform/imageio/row_decoding.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace FrameworkUtility::testing {

// One format from bytes to pixels and back, without a file's other ways.

inline Data dataOf(std::string_view bytes) {
  return Data(std::as_bytes(std::span(bytes.data(), bytes.size())));
}

inline std::string textOf(const Data& data) {
  return {reinterpret_cast<const char*>(data.data()), data.size()};
}

inline Data cutAt(std::size_t size, const Data& file) {
  return Data(std::span<const std::byte>(file).first(size));
}

inline detail::ImageHeader headerOf(const detail::ImageFormat& format, const Data& file) {
  return *format.open(detail::ByteSource(file))->headerAt(0);
}

/// Reduced, unless `maxPixelSize` is 0.
inline std::optional<CGImage> decodedBy(const detail::ImageFormat& format, const Data& file,
                                        std::size_t maxPixelSize = 0) {
  const auto reader = format.open(detail::ByteSource(file));
  if (reader->count() == 0) return std::nullopt;
  return maxPixelSize == 0 ? detail::decodedImage(*reader, 0, {})
                           : detail::decodedReducedImage(*reader, 0, maxPixelSize, {});
}

/// Empty when the format cannot hold the image.
inline Data encodedBy(const detail::ImageFormat& format, const CGImage& image,
                      const detail::EncodeRequest& request = {}) {
  const auto writer = format.create(format.types[0].identifier(), 1);
  std::vector<std::byte> file;
  return writer->addImage(image, request) && writer->finish({}, file) ? Data(std::move(file))
                                                                      : Data();
}

/// Sample `index` of a row of samples of `depth` bits, the first in the highest bits.
inline std::uint32_t sampleOf(const std::uint8_t* row, std::size_t index, std::size_t depth) {
  if (depth == 16) return std::uint32_t{row[2 * index]} << 8 | row[2 * index + 1];
  const std::size_t bit = index * depth;
  return row[bit / 8] >> (8 - depth - bit % 8) & ((1U << depth) - 1);
}

}  // namespace FrameworkUtility::testing
