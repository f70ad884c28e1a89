#pragma once

#include <framework_utility/platform/foundation/values/data.h>

#include <cstdint>
#include <string_view>
#include <vector>

namespace FrameworkUtility {

/// A part of a file that only files of its format can hold.
struct FormatPart {
  std::uint32_t kind = 0;  ///< JPEG: a segment's marker. PNG: a chunk's type.
  Data contents;
};

/// One image's metadata as its file stores it, without the file format's wrapping. An empty block
/// is one that the file does not have.
struct MetadataBlocks {
  Data exif;  ///< A TIFF structure, from its byte-order mark on.
  Data xmp;   ///< An XMP packet.
  /// The packet that `xmp` asks for as its continuation. A format that has no place for it writes
  /// both as one.
  Data extendedXmp;
  Data imageResources;  ///< Photoshop image resources ("8BIM" ...), which hold the IPTC record.
  /// The type identifier of the format that `formatParts` are of, and may be written by.
  std::string_view format;
  /// All else that the file says of its image, in file order, less what is true of its pixels only.
  std::vector<FormatPart> formatParts;
};

}  // namespace FrameworkUtility
