#pragma once

#include <framework_utility/platform/foundation/files/byte_source.h>
#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <framework_utility/platform/foundation/values/data.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace FrameworkUtility::detail {

/// A chunk's type as a number: `pngType("IHDR")`.
constexpr std::uint32_t pngType(const char (&letters)[5]) { return fourCharCode(letters); }

bool hasPngSignature(std::span<const std::byte> beginning);

struct PngChunk {
  std::uint32_t type = 0;
  std::uint32_t length = 0;
  std::uint64_t offset = 0;  ///< Of its data in the file.
};

/// Steps over the chunks behind a PNG's signature, reading eight bytes of each.
class PngChunks {
 public:
  /// `source` must outlive the walk.
  explicit PngChunks(const ByteSource& source) : source_(source) {}

  /// Absent at the end of the file, and at bytes that are no chunk.
  std::optional<PngChunk> next();
  /// Whether `next` met bytes that are no chunk.
  bool isBroken() const { return isBroken_; }
  /// Whether the file holds the whole chunk.
  bool holds(const PngChunk& chunk) const;
  /// The chunk's data; absent when the file ends before or the checksum is wrong.
  std::optional<Data> data(const PngChunk& chunk) const;

 private:
  const ByteSource& source_;
  std::uint64_t offset_ = 8;
  bool isBroken_ = false;
};

}  // namespace FrameworkUtility::detail
