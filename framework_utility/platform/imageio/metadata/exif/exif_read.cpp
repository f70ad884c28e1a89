#include <framework_utility/platform/imageio/metadata/exif/exif.h>
#include <framework_utility/platform/imageio/metadata/exif/exif_directories.h>
#include <framework_utility/platform/imageio/metadata/exif/exif_tags.h>
#include <framework_utility/platform/imageio/metadata/exif/exif_values.h>
#include <framework_utility/platform/imageio/metadata/exif/maker_note.h>
#include <framework_utility/platform/imageio/metadata/exif/tiff_structure.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <algorithm>
#include <bitset>
#include <optional>
#include <string_view>
#include <utility>

namespace FrameworkUtility::detail {
namespace {

/// Those of the two resolutions: inches when none is given; with the unit 1, none, they only give a
/// pixel's shape.
double unitsPerInch(const Dictionary& image) {
  const Number* unit = image.get<Number>(kCGImagePropertyTIFFResolutionUnit);
  return !unit || *unit == 2 ? 1 : *unit == 3 ? 2.54 : 0;
}

class Reading {
 public:
  Reading(const TiffReader& reader, MetadataBudget& budget)
      : reader_(reader), at_(exifDirectories(reader)), budget_(budget) {}

  void addTo(Dictionary& properties) {
    Dictionary image = directory(ExifDirectory::image, at_.image);
    Dictionary exif = directory(ExifDirectory::exif, at_.exif);
    Dictionary gps = directory(ExifDirectory::gps, at_.gps);
    // Last, so that a note that expands takes nothing from what everybody asks for.
    std::optional<Dictionary> makerNote;
    if (!note_.empty()) makerNote = readMakerNote(note_, budget_);
    addTopLevel(image, properties);
    add(exifDictionaryKey(ExifDirectory::image), std::move(image), properties);
    add(exifDictionaryKey(ExifDirectory::exif), std::move(exif), properties);
    add(kCGImagePropertyExifAuxDictionary, std::move(auxiliary_), properties);
    add(exifDictionaryKey(ExifDirectory::gps), std::move(gps), properties);
    if (makerNote) add(kCGImagePropertyMakerAppleDictionary, std::move(*makerNote), properties);
  }

 private:
  Dictionary directory(ExifDirectory which, std::uint32_t offset) {
    Dictionary values;
    std::bitset<exifTagLimit> seen;
    const ExifTag* const tags = exifTags(which).data();
    const std::uint32_t count = offset == 0 ? 0 : reader_.entryCount(offset);
    values.reserve(std::min<std::size_t>(count, exifTags(which).size()));
    for (std::uint32_t i = 0; i < count; ++i) {
      const TiffEntry entry = reader_.entry(offset, i);
      if (which == ExifDirectory::exif && entry.tag == makerNoteTag &&
          !std::exchange(sawNote_, true)) {
        note_ = entry.value;
      }
      const ExifTag* tag = exifTag(which, entry.tag);
      // Of records with the same tag the first one counts.
      if (!tag || seen.test(static_cast<std::size_t>(tag - tags))) continue;
      seen.set(static_cast<std::size_t>(tag - tags));
      if (!spend(*tag, entry)) {
        budget_.leaveOut(exifDictionaryKey(which));
        continue;
      }
      const Value* value = appendExifValue(values, *tag, reader_, entry);
      if (value && !tag->auxiliaryKey.empty()) {
        auxiliary_.append(Key::withConstant(tag->auxiliaryKey), *value);
      }
    }
    return values;
  }

  /// At least what the entry's value takes.
  bool spend(const ExifTag& tag, const TiffEntry& entry) {
    if (tag.shape == ExifShape::array) return budget_.spend(1 + tiffNumberCount(entry), 0);
    return budget_.spend(tag.auxiliaryKey.empty() ? 1 : 2,
                         tag.auxiliaryKey.empty() ? entry.value.size() : 2 * entry.value.size());
  }

  static void addTopLevel(const Dictionary& image, Dictionary& properties) {
    if (const Number* orientation = image.get<Number>(kCGImagePropertyTIFFOrientation)) {
      properties.set(Key::withConstant(kCGImagePropertyOrientation), *orientation);
    }
    const double inInches = unitsPerInch(image);
    if (inInches == 0) return;
    for (const auto& [resolution, key] :
         {std::pair{kCGImagePropertyTIFFXResolution, kCGImagePropertyDPIWidth},
          {kCGImagePropertyTIFFYResolution, kCGImagePropertyDPIHeight}}) {
      if (const Number* number = image.get<Number>(resolution)) {
        properties.set(Key::withConstant(key),
                       inInches == 1 ? *number : Number(number->doubleValue() * inInches));
      }
    }
  }

  static void add(std::string_view key, Dictionary&& values, Dictionary& properties) {
    if (values.empty()) return;
    if (!properties.find(key)) {
      properties.append(Key::withConstant(key), std::move(values));
      return;
    }
    Dictionary& present = properties.subdictionary(Key::withConstant(key));
    for (const auto& [name, value] : values) present.set(name, value);
  }

  const TiffReader& reader_;
  const ExifDirectories at_;
  MetadataBudget& budget_;
  Dictionary auxiliary_;
  std::span<const std::byte> note_;
  bool sawNote_ = false;  // The first record counts here too.
};

}  // namespace

void readExif(std::span<const std::byte> tiff, Dictionary& properties, MetadataBudget& budget) {
  if (const std::optional<TiffReader> reader = TiffReader::open(tiff)) {
    Reading(*reader, budget).addTo(properties);
  }
}

std::optional<Number> readExifOrientation(std::span<const std::byte> tiff) {
  const std::optional<TiffReader> reader = TiffReader::open(tiff);
  const std::uint32_t directory = reader ? reader->firstDirectory() : 0;
  const std::uint32_t count = reader ? reader->entryCount(directory) : 0;
  for (std::uint32_t i = 0; i < count; ++i) {
    if (reader->tag(directory, i) == exifOrientationTag) {
      return reader->number(reader->entry(directory, i));
    }
  }
  return std::nullopt;
}

double tiffDotsPerInch(const Dictionary& properties, std::string_view key) {
  const auto* image = properties.get<Dictionary>(kCGImagePropertyTIFFDictionary);
  const Number* number = image ? image->get<Number>(key) : nullptr;
  return number ? number->doubleValue() * unitsPerInch(*image) : 0;
}

}  // namespace FrameworkUtility::detail
