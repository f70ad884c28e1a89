#pragma once

#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <framework_utility/platform/foundation/values/number.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace FrameworkUtility::detail {

// The structure of TIFF 6.0, which EXIF shares: a header, and directories of twelve-byte records
// whose values stand in the record when they have at most four bytes, else anywhere in the block.

/// The field types of TIFF 6.0, that of its supplement 1 for an offset of a directory, and
/// Exif 3.0's for text.
enum class TiffType : std::uint16_t {
  unsignedByte = 1,
  ascii,
  unsignedShort,
  unsignedLong,
  unsignedRational,
  signedByte,
  undefined,
  signedShort,
  signedLong,
  signedRational,
  singleFloat,
  doubleFloat,
  directory,
  utf8 = 129,
};

/// Bytes of one value; 0 for a type that is none of these.
constexpr std::uint32_t tiffTypeSize(TiffType type) {
  // Four bits a type, the first one's the lowest: 0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4.
  constexpr std::uint64_t sizes = 0x48'4842'1184'2110;
  if (type == TiffType::utf8) return 1;
  const auto index = static_cast<std::uint32_t>(type);
  return index < 14 ? sizes >> (4 * index) & 0xF : 0;
}

inline constexpr std::uint32_t tiffHeaderSize = 8;
inline constexpr std::uint32_t tiffRecordSize = 12;
inline constexpr std::uint32_t tiffInlineSize = 4;

/// Bytes of a directory with `count` records: their number, the records, the next one's offset.
constexpr std::uint64_t tiffDirectorySize(std::uint64_t count) {
  return 2 + tiffRecordSize * count + 4;
}

/// One record of a directory. A value that lies outside the block is empty; of an unknown type the
/// value is the record's own four bytes, whatever they mean.
struct TiffEntry {
  std::uint16_t tag = 0;
  TiffType type = TiffType::undefined;
  std::uint32_t count = 0;
  std::uint32_t offset = 0;  ///< Where the value stands in the block.
  std::span<const std::byte> value;
  std::span<const std::byte> field;  ///< The record's last four bytes, as stored.

  /// The value lies outside, or the type is a number that no standard would choose.
  bool isDamaged() const {
    const auto number = static_cast<std::uint16_t>(type);
    return number == 0 || number > 255 || (value.empty() && count != 0);
  }
};

/// A value that is to be stored.
struct TiffValue {
  TiffType type = TiffType::undefined;
  std::uint32_t count = 0;
  std::vector<std::byte> bytes;
};

/// What the letters say that a TIFF structure begins with; absent when there are others.
std::optional<std::endian> tiffOrder(std::span<const std::byte> mark);

/// Looks at bytes of a TIFF structure without ever leaving them; keeps no copy. Offsets may be any
/// number: what lies outside reads as absent.
class TiffReader {
 public:
  /// A block that begins with a TIFF header; absent when it does not.
  static std::optional<TiffReader> open(std::span<const std::byte> block);
  /// Bytes without a header that offsets count from.
  TiffReader(std::span<const std::byte> block, std::endian order) : block_(block, order) {}

  const ByteReader& block() const { return block_; }
  std::endian order() const { return block_.order(); }
  std::uint32_t firstDirectory() const { return block_.at<std::uint32_t>(4); }

  /// How many records of the directory at `directory` lie inside the block.
  std::uint32_t entryCount(std::uint32_t directory) const;
  /// `index` is less than `entryCount`.
  TiffEntry entry(std::uint32_t directory, std::uint32_t index) const;
  /// That of the same record, which costs less than the whole of it.
  std::uint16_t tag(std::uint32_t directory, std::uint32_t index) const {
    return block_.at<std::uint16_t>(std::uint64_t{directory} + 2 +
                                    std::uint64_t{tiffRecordSize} * index);
  }
  /// 0 at the end of the chain, or where its offset is cut off.
  std::uint32_t nextDirectory(std::uint32_t directory) const;

  /// A rational becomes a double, or an integer when it is one. Absent past the end, for text, for
  /// a denominator of 0 and for what is not finite.
  std::optional<Number> number(const TiffEntry& entry, std::uint32_t index = 0) const;
  /// An unsigned integer of any width, such as an offset.
  std::optional<std::uint32_t> unsignedInteger(const TiffEntry& entry,
                                               std::uint32_t index = 0) const;

 private:
  ByteReader block_;
};

// Implementation details

inline TiffEntry TiffReader::entry(std::uint32_t directory, std::uint32_t index) const {
  const std::uint32_t at = directory + 2 + tiffRecordSize * index;
  const ByteReader record(block_.part(at, tiffRecordSize), order());
  TiffEntry entry{.tag = record.at<std::uint16_t>(0),
                  .type = static_cast<TiffType>(record.at<std::uint16_t>(2)),
                  .count = record.at<std::uint32_t>(4),
                  .offset = at + 8,
                  .value = {},
                  .field = record.part(8, tiffInlineSize)};
  const std::uint32_t unit = tiffTypeSize(entry.type);
  const std::uint64_t size = unit == 0 ? tiffInlineSize : std::uint64_t{unit} * entry.count;
  if (size > tiffInlineSize) entry.offset = record.at<std::uint32_t>(8);
  entry.value = block_.part(entry.offset, size);
  return entry;
}

}  // namespace FrameworkUtility::detail
