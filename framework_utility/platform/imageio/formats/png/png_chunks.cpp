#include <framework_utility/platform/imageio/formats/png/png_chunks.h>

#include <cstdint>
#include <memory>
#include <string_view>

#include <zlib.h>

namespace FrameworkUtility::detail {

namespace {

constexpr std::string_view signature = "\x89PNG\r\n\x1A\n";
constexpr std::uint32_t maximumLength = 0x7FFFFFFF;
constexpr std::size_t checksumSize = 4;

bool isLetter(std::uint32_t c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

bool isType(std::uint32_t type) {
  return isLetter(type >> 24) && isLetter(type >> 16 & 255) && isLetter(type >> 8 & 255) &&
         isLetter(type & 255);
}

}  // namespace

bool hasPngSignature(std::span<const std::byte> beginning) {
  return asText(beginning).starts_with(signature);
}

std::optional<PngChunk> PngChunks::next() {
  if (isBroken_) return std::nullopt;
  const Data bytes = source_.bytes(offset_, 8);
  if (bytes.size() < 8) return std::nullopt;
  const ByteReader head(bytes);
  const PngChunk chunk{head.at<std::uint32_t>(4), head.at<std::uint32_t>(0), offset_ + 8};
  if (chunk.length > maximumLength || !isType(chunk.type)) {
    isBroken_ = true;
    return std::nullopt;
  }
  offset_ = chunk.offset + chunk.length + checksumSize;
  return chunk;
}

bool PngChunks::holds(const PngChunk& chunk) const {
  return chunk.offset + chunk.length + checksumSize <= source_.size();
}

std::optional<Data> PngChunks::data(const PngChunk& chunk) const {
  if (!holds(chunk)) return std::nullopt;
  // The checksum covers the type too.
  const std::size_t covered = std::size_t{4} + chunk.length;
  const auto bytes =
      std::make_shared<const Data>(source_.bytes(chunk.offset - 4, covered + checksumSize));
  if (bytes->size() < covered + checksumSize) return std::nullopt;
  const auto* begin = reinterpret_cast<const Bytef*>(bytes->data());
  if (crc32_z(0, begin, covered) != ByteReader(*bytes).at<std::uint32_t>(covered)) {
    return std::nullopt;
  }
  return Data::withBytesNoCopy({bytes->data() + 4, chunk.length}, bytes);
}

}  // namespace FrameworkUtility::detail
