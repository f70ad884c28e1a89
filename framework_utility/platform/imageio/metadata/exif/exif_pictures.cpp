#include <framework_utility/platform/imageio/metadata/exif/exif_pictures.h>

#include <framework_utility/platform/imageio/metadata/exif/embedded_thumbnail.h>

#include <algorithm>
#include <iterator>
#include <optional>

namespace FrameworkUtility::detail {
namespace {

/// Where pixels stand, and how many bytes each piece has.
struct PixelTags {
  std::uint16_t offsets;
  std::uint16_t sizes;
};
constexpr PixelTags strips{0x0111, 0x0117};
constexpr PixelTags tiles{0x0144, 0x0145};
constexpr PixelTags thumbnail{0x0201, 0x0202};
constexpr PixelTags pixelTags[] = {strips, tiles, thumbnail};
/// A longer value of a thumbnail's directory stays where it is, though nothing leads to it.
constexpr std::size_t longestValue = 256;
constexpr std::uint16_t childrenTag = 0x014A;
constexpr std::uint16_t profileTag = 0x8773;

/// In ascending order (TIFF 6.0).
constexpr std::uint16_t descriptions[] = {
    0x00FE, 0x00FF, 0x0100, 0x0101, 0x0102, 0x0103, 0x0106, 0x0107, 0x0108, 0x0109, 0x010A, 0x0115,
    0x0116, 0x0118, 0x0119, 0x011C, 0x0120, 0x0121, 0x0122, 0x0123, 0x0124, 0x0125, 0x013D, 0x0140,
    0x0141, 0x0142, 0x0143, 0x014C, 0x014D, 0x014E, 0x0150, 0x0152, 0x0153, 0x0154, 0x0155, 0x0156,
    0x015B, 0x0200, 0x0203, 0x0205, 0x0206, 0x0207, 0x0208, 0x0209, 0x0211, 0x0212, 0x0213, 0x0214};

std::optional<TiffEntry> findEntry(const TiffReader& reader, std::uint32_t directory,
                                   std::uint16_t tag) {
  const std::uint32_t count = reader.entryCount(directory);
  for (std::uint32_t i = 0; i < count; ++i) {
    if (reader.tag(directory, i) == tag) return reader.entry(directory, i);
  }
  return std::nullopt;
}

class Pictures {
 public:
  explicit Pictures(const TiffReader& reader) : reader_(reader) {}

  void addPixels(std::uint32_t directory) {
    for (const PixelTags& tags : pixelTags) {
      const std::optional<TiffEntry> offsets = findEntry(reader_, directory, tags.offsets);
      const std::optional<TiffEntry> sizes = findEntry(reader_, directory, tags.sizes);
      const bool isJpeg = tags.offsets == thumbnail.offsets;
      for (std::uint32_t i = 0; offsets && sizes && !(isJpeg && i > 0); ++i) {
        const std::optional<std::uint32_t> offset = reader_.unsignedInteger(*offsets, i);
        const std::optional<std::uint32_t> size = reader_.unsignedInteger(*sizes, i);
        if (!offset || !size) break;
        if (isJpeg) {
          add(*offset, leadingJpeg(reader_.block().partInside(*offset, *size)).size());
        } else if (reader_.block().holds(*offset, *size)) {
          add(*offset, *size);
        }
      }
    }
    const std::optional<TiffEntry> children = findEntry(reader_, directory, childrenTag);
    for (std::uint32_t i = 0; children && budget_ > 0; ++i) {
      const std::optional<std::uint32_t> child = reader_.unsignedInteger(*children, i);
      if (!child) break;
      addDirectories(*child);
    }
  }

  void addDirectories(std::uint32_t directory) {
    for (; budget_ > 0; directory = reader_.nextDirectory(directory)) {
      const std::uint32_t count = directory == 0 ? 0 : reader_.entryCount(directory);
      if (count == 0) return;
      --budget_;
      addPixels(directory);
      if (!isSound(directory, count)) return;
      add(directory, tiffDirectorySize(count));
      for (std::uint32_t i = 0; i < count; ++i) {
        const TiffEntry entry = reader_.entry(directory, i);
        if (entry.value.size() > tiffInlineSize && entry.value.size() <= longestValue) {
          add(entry.offset, entry.value.size());
        }
      }
    }
  }

  std::vector<ByteRange> places() && { return std::move(places_); }

 private:
  /// Whether all of its records are there, and all of their values.
  bool isSound(std::uint32_t directory, std::uint32_t count) const {
    if (count != reader_.block().at<std::uint16_t>(directory)) return false;
    for (std::uint32_t i = 0; i < count; ++i) {
      if (reader_.entry(directory, i).isDamaged()) return false;
    }
    return true;
  }

  void add(std::uint64_t offset, std::uint64_t size) {
    const std::uint64_t end = reader_.block().size();
    places_.push_back({offset, std::min(offset + size, end)});
  }

  const TiffReader& reader_;
  std::vector<ByteRange> places_;
  int budget_ = 16;  // Directories: more than devices write, and an end to every circle.
};

}  // namespace

std::vector<ByteRange> exifPictures(const TiffReader& reader) {
  Pictures pictures(reader);
  pictures.addPixels(reader.firstDirectory());
  pictures.addDirectories(reader.nextDirectory(reader.firstDirectory()));
  return std::move(pictures).places();
}

bool holdsPixels(const TiffReader& reader) {
  return findEntry(reader, reader.firstDirectory(), strips.offsets) ||
         findEntry(reader, reader.firstDirectory(), tiles.offsets);
}

bool leadsToPixels(std::uint16_t tag) {
  return tag == childrenTag || tag == profileTag ||
         std::any_of(std::begin(pixelTags), std::end(pixelTags), [&](const PixelTags& tags) {
           return tag == tags.offsets || tag == tags.sizes;
         });
}

bool describesPixels(std::uint16_t tag) {
  return std::binary_search(std::begin(descriptions), std::end(descriptions), tag);
}

}  // namespace FrameworkUtility::detail
