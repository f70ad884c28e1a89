#include <framework_utility/platform/imageio/metadata/exif/exif_directories.h>

namespace FrameworkUtility::detail {
namespace {

/// The offset in the first record of `directory` with this tag, when a directory stands there.
std::uint32_t pointer(const TiffReader& reader, std::uint32_t directory, std::uint16_t tag) {
  const std::uint32_t count = reader.entryCount(directory);
  for (std::uint32_t i = 0; i < count; ++i) {
    if (reader.tag(directory, i) != tag) continue;
    const std::uint32_t offset = reader.unsignedInteger(reader.entry(directory, i)).value_or(0);
    return reader.entryCount(offset) > 0 ? offset : 0;
  }
  return 0;
}

}  // namespace

ExifDirectories exifDirectories(const TiffReader& reader) {
  const auto unless = [](bool refused, std::uint32_t offset) { return refused ? 0 : offset; };
  ExifDirectories at;
  at.image = reader.entryCount(reader.firstDirectory()) > 0 ? reader.firstDirectory() : 0;
  if (at.image == 0) return at;
  at.exif = pointer(reader, at.image, exifPointerTag);
  at.exif = unless(at.exif == at.image, at.exif);
  at.gps = pointer(reader, at.image, gpsPointerTag);
  at.gps = unless(at.gps == at.image || at.gps == at.exif, at.gps);
  if (at.exif == 0) return at;
  at.interop = pointer(reader, at.exif, interopPointerTag);
  at.interop =
      unless(at.interop == at.image || at.interop == at.exif || at.interop == at.gps, at.interop);
  return at;
}

}  // namespace FrameworkUtility::detail
