#include <framework_utility/platform/imageio/metadata/exif/exif.h>
#include <framework_utility/platform/imageio/metadata/exif/exif_directories.h>
#include <framework_utility/platform/imageio/metadata/exif/exif_pictures.h>
#include <framework_utility/platform/imageio/metadata/exif/exif_tags.h>
#include <framework_utility/platform/imageio/metadata/exif/exif_values.h>
#include <framework_utility/platform/imageio/metadata/exif/exif_wanted.h>
#include <framework_utility/platform/imageio/metadata/exif/maker_note.h>
#include <framework_utility/platform/imageio/metadata/exif/tiff_layout.h>
#include <framework_utility/platform/imageio/metadata/exif/tiff_structure.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <algorithm>
#include <bitset>
#include <optional>
#include <string_view>
#include <utility>

namespace FrameworkUtility::detail {
namespace {

/// What a JPEG segment holds beside its length and "Exif\0\0".
constexpr std::size_t segmentLimit = 65535 - 2 - 6;
/// A larger source is a whole TIFF file, of which nothing but the metadata is wanted.
constexpr std::size_t inPlaceLimit = 1 << 20;
/// A directory counts its records in 16 bits.
constexpr std::size_t recordLimit = 65535;

constexpr std::uint16_t imageWidthTag = 0x0100;
constexpr std::uint16_t imageLengthTag = 0x0101;
constexpr std::uint16_t pixelXDimensionTag = 0xA002;
constexpr std::uint16_t pixelYDimensionTag = 0xA003;

/// A longer value of a tag that goes with the pixels stays where it is, though nothing leads to it.
constexpr std::size_t longestPixelFact = 256;

constexpr std::string_view newHeader("MM\0\x2A\0\0\0\0", tiffHeaderSize);

class Merge {
 public:
  /// `reader` is null for a new block. `before` is what it reads as.
  Merge(const TiffReader* reader, const Dictionary& before, const Dictionary& properties,
        const PixelFacts& pixels)
      : reader_(reader), before_(before), wanted_(exifWanted(before, properties)), pixels_(pixels) {
    if (reader_) {
      plan_.source = reader_->block().bytes();
      plan_.order = reader_->order();
      plan_.dropped = exifPictures(*reader_);
      at_ = exifDirectories(*reader_);
      holdsPixels_ = holdsPixels(*reader_);
    }
    const auto header =
        reader_ ? plan_.source.first(tiffHeaderSize) : std::as_bytes(std::span(newHeader));
    plan_.header.assign(header.begin(), header.end());
    supply();
  }

  /// Absent when there is nothing to store.
  std::optional<TiffPlan> plan() && {
    plan_.directories.resize(1);  // The image's, which the header leads to.
    TiffDirectory image = directoryAt(at_.image);
    image.next = 0;  // It led to the thumbnail.
    TiffDirectory exif = directoryAt(at_.exif);
    TiffDirectory gps = directoryAt(at_.gps);
    mergeInterop(exif);
    mergeMakerNote(exif);
    merge(ExifDirectory::image, at_.image, wanted_.image, image);
    merge(ExifDirectory::exif, at_.exif, wanted_.exif, exif);
    merge(ExifDirectory::gps, at_.gps, wanted_.gps, gps);
    addUnlessIdle(ExifDirectory::exif, std::move(exif), image);
    addUnlessIdle(ExifDirectory::gps, std::move(gps), image);
    if (image.records.empty()) return std::nullopt;
    finish(image);
    plan_.directories.front() = std::move(image);
    return std::move(plan_);
  }

 private:
  /// What a directory needs beside the caller's entries. It is not worth a directory.
  void supply() {
    if (at_.exif == 0) supply(ExifDirectory::exif, 0x9000, Value(Array{2, 3, 2}));
    if (at_.gps == 0) supply(ExifDirectory::gps, 0x0000, Value(Array{2, 3, 0, 0}));
    supplyPixels(pixelXDimensionTag, pixels_.width);
    supplyPixels(pixelYDimensionTag, pixels_.height);
  }
  /// A directory that came without them stays without.
  void supplyPixels(std::uint16_t tag, std::size_t size) {
    if (size == 0) return;
    bool isThere = at_.exif == 0;
    forEachEntry(at_.exif, [&](const TiffEntry& entry) { isThere |= entry.tag == tag; });
    if (isThere) supply(ExifDirectory::exif, tag, size);
  }
  void supply(ExifDirectory which, std::uint16_t tag, Value value) {
    Dictionary& wanted = which == ExifDirectory::exif ? wanted_.exif : wanted_.gps;
    const std::string_view key = exifTag(which, tag)->key;
    const bool isAsked = wanted.find(key) != nullptr;
    if (!isAsked) supplied_.emplace_back(which, tag);
    if (!isAsked || tag == pixelXDimensionTag || tag == pixelYDimensionTag) {
      wanted.set(Key::withConstant(key), std::move(value));
    }
  }

  TiffDirectory directoryAt(std::uint32_t offset) const {
    if (offset == 0) return {};
    const std::uint64_t end = offset + tiffDirectorySize(reader_->entryCount(offset));
    return {.place = {offset, std::min<std::uint64_t>(end, plan_.source.size())},
            .records = {},
            .next = reader_->nextDirectory(offset)};
  }

  template <class Visitor>
  void forEachEntry(std::uint32_t offset, Visitor visit) const {
    const std::uint32_t count = offset == 0 ? 0 : reader_->entryCount(offset);
    for (std::uint32_t i = 0; i < count; ++i) visit(reader_->entry(offset, i));
  }

  void merge(ExifDirectory which, std::uint32_t offset, const Dictionary& wanted,
             TiffDirectory& result) {
    const ExifTag* const tags = exifTags(which).data();
    const Dictionary& before = entriesBefore(exifDictionaryKey(which));
    std::bitset<exifTagLimit> seen, kept, stored;
    forEachEntry(offset, [&](const TiffEntry& entry) {
      if (isHandledElsewhere(which, entry.tag)) return;
      const ExifTag* tag = exifTag(which, entry.tag);
      if (which == ExifDirectory::image && mergeOldPixels(entry, result)) return;
      if (!tag) return keep(entry, result);
      // Of records with the same tag the first one counts, and the others follow it.
      const auto index = static_cast<std::size_t>(tag - tags);
      if (!seen.test(index)) {
        seen.set(index);
        stored.set(index, !entry.isDamaged());
        kept.set(index,
                 mergeEntry(*tag, entry, before.find(tag->key), wanted.find(tag->key), result));
      } else if (kept.test(index)) {
        keep(entry, result);
      } else {
        plan_.drop(entry);
      }
    });
    for (const auto& [key, value] : wanted) {
      const ExifTag* tag = exifTag(which, key);
      if (!tag || stored.test(static_cast<std::size_t>(tag - tags))) continue;
      if (std::optional<TiffValue> added = exifValue(*tag, value, std::nullopt, plan_.order)) {
        result.add(tag->tag, std::move(*added));
      }
    }
  }

  /// A damaged record is dropped: what it leads to must not come to lie in what is appended.
  static void keep(const TiffEntry& entry, TiffDirectory& result) {
    if (!entry.isDamaged()) result.keep(entry);
  }

  const Dictionary& entriesBefore(std::string_view key) const {
    static const Dictionary none;
    const Dictionary* entries = before_.get<Dictionary>(key);
    return entries ? *entries : none;
  }

  /// Whether the entry stays as it is: also when it does not read, or was left out.
  bool mergeEntry(const ExifTag& tag, const TiffEntry& entry, const Value* before,
                  const Value* wanted, TiffDirectory& result) {
    if (entry.isDamaged()) return false;
    if (tag.shape == ExifShape::layout) {
      result.keep(entry);
      return true;
    }
    const bool keeps = wanted && before ? *before == *wanted : !wanted && !before;
    std::optional<TiffValue> value;
    if (!keeps && wanted) value = exifValue(tag, *wanted, entry.type, plan_.order);
    if (keeps) {
      keep(entry, result);
    } else if (value) {
      result.replace(entry, std::move(*value));
    } else {
      plan_.drop(entry);
    }
    return keeps;
  }

  static bool isHandledElsewhere(ExifDirectory which, std::uint16_t tag) {
    return which == ExifDirectory::image
               ? tag == exifPointerTag || tag == gpsPointerTag
               : which == ExifDirectory::exif && (tag == interopPointerTag || tag == makerNoteTag);
  }

  bool mergeOldPixels(const TiffEntry& entry, TiffDirectory& result) {
    if (leadsToPixels(entry.tag) || (holdsPixels_ && describesPixels(entry.tag))) {
      // What says that it is long may be damaged.
      if (entry.value.size() <= longestPixelFact) plan_.drop(entry);
      return true;
    }
    if (entry.tag != imageWidthTag && entry.tag != imageLengthTag) return false;
    const std::size_t size = entry.tag == imageWidthTag ? pixels_.width : pixels_.height;
    if (size == 0) return false;
    const ExifTag tag{entry.tag, {}, ExifShape::number, TiffType::unsignedLong};
    const std::optional<Number> stored = reader_->number(entry);
    const Value before = stored ? Value(*stored) : Value();
    const Value value(size);
    mergeEntry(tag, entry, &before, &value, result);
    return true;
  }

  void mergeInterop(TiffDirectory& exif) {
    TiffDirectory interop = directoryAt(at_.interop);
    forEachEntry(at_.interop, [&](const TiffEntry& entry) { keep(entry, interop); });
    if (!interop.records.empty()) addChild(interopPointerTag, std::move(interop), exif);
  }

  void mergeMakerNote(TiffDirectory& exif) {
    std::optional<TiffEntry> source;
    forEachEntry(at_.exif, [&](const TiffEntry& entry) {
      if (entry.tag != makerNoteTag) return;
      if (source) {
        plan_.drop(entry);
      } else {
        source = entry;
      }
    });
    if (!source || source->isDamaged()) {
      if (TiffValue note = makerNote({}); !note.bytes.empty()) {
        exif.add(makerNoteTag, std::move(note));
      }
      return;
    }
    if (entriesBefore(kCGImagePropertyMakerAppleDictionary) == wanted_.makerNote) {
      exif.keep(*source);
      // Other makers' notes refer to themselves by offsets from the start of the block.
      exif.records.back().pinned =
          !isMakerNote(source->value) && source->offset + source->value.size() <= segmentLimit;
    } else if (TiffValue note = makerNote(source->value); !note.bytes.empty()) {
      exif.replace(*source, std::move(note));
    } else {
      plan_.drop(*source);
    }
  }
  TiffValue makerNote(std::span<const std::byte> source) const {
    std::vector<std::byte> note = detail::mergeMakerNote(
        source, entriesBefore(kCGImagePropertyMakerAppleDictionary), wanted_.makerNote);
    const auto size = static_cast<std::uint32_t>(note.size());
    return {TiffType::undefined, size, std::move(note)};
  }

  /// Without records that somebody asked for, a directory goes.
  void addUnlessIdle(ExifDirectory which, TiffDirectory&& child, TiffDirectory& image) {
    const auto isSupplied = [&](const TiffRecord& record) {
      return std::find(supplied_.begin(), supplied_.end(), std::pair(which, record.tag)) !=
             supplied_.end();
    };
    if (std::all_of(child.records.begin(), child.records.end(), isSupplied)) {
      plan_.dropped.push_back(child.place);
      for (const TiffRecord& record : child.records) plan_.dropped.push_back(record.place);
      return;
    }
    addChild(which == ExifDirectory::exif ? exifPointerTag : gpsPointerTag, std::move(child),
             image);
  }

  void addChild(std::uint16_t tag, TiffDirectory&& child, TiffDirectory& parent) {
    finish(child);
    parent.add(tag, {TiffType::unsignedLong, 1, {}});
    parent.records.back().child = plan_.directories.size();
    plan_.directories.push_back(std::move(child));
  }

  static void finish(TiffDirectory& directory) {
    directory.sortRecords();
    if (directory.records.size() > recordLimit) directory.records.resize(recordLimit);
  }

  const TiffReader* reader_;
  const Dictionary& before_;
  ExifWanted wanted_;
  const PixelFacts pixels_;
  ExifDirectories at_;
  bool holdsPixels_ = false;
  std::vector<std::pair<ExifDirectory, std::uint16_t>> supplied_;  // What nobody asked for.
  TiffPlan plan_;
};

}  // namespace

std::vector<std::byte> mergeExif(std::span<const std::byte> tiff, const Dictionary& properties,
                                 const PixelFacts& pixels) {
  std::optional<TiffReader> reader = TiffReader::open(tiff);
  if (reader && exifDirectories(*reader).image == 0) reader.reset();
  MetadataBudget budget;
  Dictionary before;
  readExif(tiff, before, budget);
  Merge merge(reader ? &*reader : nullptr, before, properties, pixels);
  std::optional<TiffPlan> plan = std::move(merge).plan();
  if (!plan) return {};
  std::vector<std::byte> inPlace;
  if (tiff.size() <= inPlaceLimit) {
    inPlace = layOutTiff(*plan, TiffPlacement::inPlace);
    if (inPlace.size() <= segmentLimit) return inPlace;
  }
  std::vector<std::byte> compact = layOutTiff(std::move(*plan), TiffPlacement::compact);
  return inPlace.empty() || compact.size() <= segmentLimit ? compact : inPlace;
}

}  // namespace FrameworkUtility::detail
