#pragma once

#include <framework_utility/platform/foundation/data.h>

#include <vector>

namespace FrameworkUtility {

/// One image's metadata as its file stores it, without the file format's wrapping. An empty block
/// is one that the file does not have.
struct MetadataBlocks {
  Data exif;            ///< A TIFF structure, from its byte-order mark on.
  Data xmp;             ///< An XMP packet.
  Data imageResources;  ///< Photoshop image resources ("8BIM" ...), which hold the IPTC record.
  /// JPEG's extended XMP: whole APP1 contents, signature included, in file order.
  std::vector<Data> extendedXmp;
};

}  // namespace FrameworkUtility
