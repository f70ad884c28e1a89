#pragma once

#include <framework_utility/platform/foundation/values/data.h>
#include <framework_utility/platform/imageio/metadata/exif/byte_ranges.h>
#include <framework_utility/platform/imageio/metadata/exif/tiff_structure.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace FrameworkUtility::detail {

/// A record of a directory that is being written.
struct TiffRecord {
  std::uint16_t tag = 0;
  TiffType type = TiffType::undefined;
  std::uint32_t count = 0;
  Data value;
  ByteRange place = {};    ///< What the tag's value has in the source; empty where it is inline.
  bool unchanged = false;  ///< The value is that of the source.
  bool pinned = false;     ///< It refers to itself by absolute offsets, so it cannot move.
  /// The directory whose offset is the value.
  std::optional<std::size_t> child = std::nullopt;
};

struct TiffDirectory {
  ByteRange place = {};             ///< What it has in the source.
  std::vector<TiffRecord> records;  ///< In the order in which they shall stand.
  std::uint32_t next = 0;           ///< What stands behind the records.

  void keep(const TiffEntry& entry);
  void replace(const TiffEntry& entry, TiffValue value);
  void add(std::uint16_t tag, TiffValue value);
  /// Ascending, as TIFF asks.
  void sortRecords();
};

/// A changed structure, in terms of the source that it came from.
struct TiffPlan {
  std::span<const std::byte> source;  ///< Empty for a new structure.
  std::endian order = std::endian::big;
  std::vector<std::byte> header;
  /// The first directory stands right behind the header, and values make way for it. Else the
  /// header's last four bytes are its offset.
  bool hasFixedDirectory = false;
  std::vector<TiffDirectory> directories;
  std::vector<ByteRange> dropped;  ///< Of the source, beside the places of what is in here.

  void drop(const TiffEntry& entry);
};

enum class TiffPlacement : std::uint8_t {
  inPlace,  ///< All that nobody mentions and all that is unchanged stays where it is.
  compact,  ///< Only what is in the plan, without gaps; what is pinned stays where it is.
};

/// Finds a place for all that is new or has grown: its own, dropped bytes, the end. Dropped bytes
/// that are not used again are zero, or cut at the end.
std::vector<std::byte> layOutTiff(TiffPlan plan, TiffPlacement placement);

}  // namespace FrameworkUtility::detail
