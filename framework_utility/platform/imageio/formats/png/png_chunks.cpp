#include <framework_utility/platform/imageio/formats/png/png_chunks.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>

#include <zlib.h>

namespace FrameworkUtility::detail {

namespace {

constexpr std::array<std::uint8_t, 8> signature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::uint32_t maximumLength = 0x7FFFFFFF;
constexpr std::size_t checksumSize = 4;

bool isLetter(std::uint32_t c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

bool isType(std::uint32_t type) {
  return isLetter(type >> 24) && isLetter(type >> 16 & 255) && isLetter(type >> 8 & 255) &&
         isLetter(type & 255);
}

}  // namespace

std::uint32_t pngNumber(std::span<const std::byte> bytes, std::size_t offset) {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    number = number << 8 | std::to_integer<std::uint32_t>(bytes[offset + i]);
  }
  return number;
}

bool hasPngSignature(std::span<const std::byte> beginning) {
  return beginning.size() >= signature.size() &&
         std::equal(signature.begin(), signature.end(), beginning.begin(),
                    [](std::uint8_t a, std::byte b) { return std::byte{a} == b; });
}

std::optional<PngChunk> PngChunks::next() {
  if (isBroken_) return std::nullopt;
  const Data head = source_.bytes(offset_, 8);
  if (head.size() < 8) return std::nullopt;
  const PngChunk chunk{pngNumber(head, 4), pngNumber(head, 0), offset_ + 8};
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
  if (crc32_z(0, begin, covered) != pngNumber(*bytes, covered)) return std::nullopt;
  return Data::withBytesNoCopy({bytes->data() + 4, chunk.length}, bytes);
}

}  // namespace FrameworkUtility::detail
