#pragma once

#include <cstdint>
#include <string_view>

namespace FrameworkUtility::detail {

/// How the text of an XMP property and an entry of the image properties say the same.
enum class XmpForm : std::uint8_t {
  text,
  languages,    ///< A text in several languages; the entry is the default one.
  list,         ///< Texts.
  integer,      ///< "6"
  integers,     ///< A list; a single number is a list of one.
  rational,     ///< "9/5"
  rationals,    ///< A list.
  lensInfo,     ///< "24/1 105/1 4/1 4/1" as four numbers.
  dateTime,     ///< "2024-05-01T12:30:15" and "2024:05:01 12:30:15".
  iptcDate,     ///< The same and "20240501", with "123015" as the second entry.
  gpsDate,      ///< The same in universal time and "12:30:15", with "2024:05:01" as the second.
  coordinate,   ///< "48,51.504N" and 48.8584, with "N" as the second entry.
  altitude,     ///< A rational, and a number that may be negative. Second entry: the reference.
  altitudeRef,  ///< "1" below sea level. Second entry: the altitude.
  pixelWidth,   ///< Follows the pixels, whatever the entry says.
  pixelHeight,
  extensionName,  ///< By which a packet asks for another one that continues it.
  obsolete,       ///< A fact about the old pixels that a changed file must not keep.
};

/// A property of the XMP packet and the entries that say the same.
struct XmpMapping {
  std::string_view name;  ///< Without its namespace.
  XmpForm form = XmpForm::text;
  std::string_view dictionary{};  ///< Empty when no entry corresponds.
  std::string_view key{};
  std::string_view secondKey{};  ///< Empty when one entry says all.
};

/// Properties of the TIFF and EXIF schemas fill entries that EXIF does not have. Those that
/// continue IPTC datasets fill nothing, for most photos have some and none of their facts needs
/// them: they only follow when their entry is changed.
enum class XmpUse : std::uint8_t { reading, merging };

/// The property of this name, "http://ns.adobe.com/tiff/1.0/|Make"; null when it is in no table.
const XmpMapping* findXmpMapping(std::string_view name);

/// A quick look for the namespaces of these properties: false means that parsing a packet is vain.
bool mentionsMappedNamespace(std::string_view packet, XmpUse use);

}  // namespace FrameworkUtility::detail
