#include <framework_utility/platform/imageio/metadata/exif/maker_note.h>

#include <framework_utility/platform/foundation/property_lists/property_list.h>
#include <framework_utility/platform/foundation/property_lists/property_list_readers.h>
#include <framework_utility/platform/imageio/metadata/exif/exif_text.h>
#include <framework_utility/platform/imageio/metadata/exif/exif_values.h>
#include <framework_utility/platform/imageio/metadata/exif/tiff_layout.h>
#include <framework_utility/platform/imageio/metadata/exif/tiff_structure.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>
#include <utility>

namespace FrameworkUtility::detail {
namespace {

constexpr std::string_view signature("Apple iOS\0", 10);
constexpr std::uint32_t orderOffset = 12;  // Behind signature and version.
constexpr std::uint32_t directoryOffset = 14;
constexpr std::uint32_t entryLimit = 256;  // Phones write about fifty.

bool isAscending(const TiffReader& note, std::uint32_t count) {
  for (std::uint32_t i = 1; i < count; ++i) {
    if (note.tag(directoryOffset, i) <= note.tag(directoryOffset, i - 1)) return false;
  }
  return true;
}

/// Absent unless the note is whole: what it means is not public, so a damaged one is not touched.
std::optional<TiffReader> openNote(std::span<const std::byte> note) {
  if (note.size() < directoryOffset + tiffDirectorySize(0)) return std::nullopt;
  const std::optional<std::endian> order = tiffOrder(note.subspan(orderOffset));
  if (!order || !asText(note).starts_with(signature)) return std::nullopt;
  const TiffReader reader(note, *order);
  const std::uint32_t count = reader.block().at<std::uint16_t>(directoryOffset);
  if (count > entryLimit || directoryOffset + tiffDirectorySize(count) > note.size() ||
      !isAscending(reader, count)) {
    return std::nullopt;
  }
  return reader;
}

/// Puts the entry's value under its tag's number as text, if it has one. False when the budget does
/// not hold it.
bool appendEntry(Dictionary& entries, const TiffReader& note, const TiffEntry& entry,
                 MetadataBudget& budget) {
  if (entry.isDamaged()) return true;
  const auto append = [&](auto&& held) {
    if (!held) return false;
    entries.append(std::to_string(entry.tag), *std::forward<decltype(held)>(held));
    return true;
  };
  const bool isText = entry.type == TiffType::ascii || entry.type == TiffType::utf8;
  if (isText || entry.type == TiffType::undefined) {
    if (!budget.spend(2, entry.value.size())) return false;
  } else if (!budget.spend(2 + tiffNumberCount(entry), 0)) {
    return false;
  }
  if (isText) {
    append(std::optional(readExifText(entry.value)));
  } else if (entry.type == TiffType::undefined) {
    constexpr PropertyListLimits limits;
    ExpansionBudget own(entry.value.size(), limits.expansion, limits.values, &budget.memory());
    if (append(readPropertyList(entry.value, limits.depth, own))) return true;
    if (own.isWholeSpent()) return false;
    append(std::optional(Data(entry.value)));
  } else if (entry.count == 1) {
    append(note.number(entry));
  } else {
    append(readTiffNumbers(note, entry));
  }
  return true;
}

std::optional<TiffValue> noteNumbers(std::span<const Value> numbers,
                                     std::optional<TiffType> storedType, std::endian order) {
  if (storedType == TiffType::undefined) storedType.reset();  // Those are bytes, no numbers.
  for (const TiffType type : {storedType.value_or(TiffType::signedLong), TiffType::signedLong,
                              TiffType::signedRational}) {
    if (std::optional<TiffValue> stored = tiffNumbers(numbers, type, order)) return stored;
  }
  return std::nullopt;
}

std::optional<TiffValue> noteValue(const Value& value, std::optional<TiffType> storedType,
                                   std::endian order) {
  const auto withBytes = [](TiffType type, std::vector<std::byte> bytes) {
    return TiffValue{type, static_cast<std::uint32_t>(bytes.size()), std::move(bytes)};
  };
  if (const std::string* text = value.as<std::string>()) {
    return withBytes(TiffType::ascii, exifText(*text));
  }
  if (const Data* data = value.as<Data>()) {
    return withBytes(TiffType::undefined, {data->begin(), data->end()});
  }
  if (value.as<Dictionary>()) {
    const std::optional<Data> list = dataWithPropertyList(value);
    if (!list) return std::nullopt;
    return withBytes(TiffType::undefined, {list->begin(), list->end()});
  }
  if (const Array* array = value.as<Array>()) return noteNumbers(*array, storedType, order);
  return noteNumbers(std::span(&value, 1), storedType, order);
}

/// "17" -> 17; absent for what is no such key.
std::optional<std::uint16_t> tagOf(const Key& key) {
  const std::optional<std::string_view> text = key.text();
  if (!text) return std::nullopt;
  std::uint16_t tag = 0;
  const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), tag);
  if (error != std::errc() || std::to_string(tag) != *text) return std::nullopt;
  return tag;
}

/// Version 1 in big-endian order, as phones write it.
constexpr std::string_view newHeader("Apple iOS\0\0\1MM", directoryOffset);

}  // namespace

bool isMakerNote(std::span<const std::byte> note) { return openNote(note).has_value(); }

std::optional<Dictionary> readMakerNote(std::span<const std::byte> note, MetadataBudget& budget) {
  const std::optional<TiffReader> reader = openNote(note);
  if (!reader) return std::nullopt;
  Dictionary entries;
  const std::uint32_t count = reader->entryCount(directoryOffset);
  entries.reserve(count);
  for (std::uint32_t i = 0; i < count; ++i) {
    const TiffEntry entry = reader->entry(directoryOffset, i);
    if (!appendEntry(entries, *reader, entry, budget)) {
      budget.leaveOut(kCGImagePropertyMakerAppleDictionary);
    }
  }
  return entries;
}

std::vector<std::byte> mergeMakerNote(std::span<const std::byte> note, const Dictionary& before,
                                      const Dictionary& entries) {
  const std::optional<TiffReader> reader = openNote(note);
  const auto header = reader ? note.first(directoryOffset) : std::as_bytes(std::span(newHeader));
  TiffPlan plan;
  plan.header.assign(header.begin(), header.end());
  plan.hasFixedDirectory = true;
  TiffDirectory directory;
  std::vector<std::uint16_t> known;
  if (reader) {
    const std::uint32_t count = reader->entryCount(directoryOffset);
    plan.source = note;
    plan.order = reader->order();
    directory.place = {directoryOffset, directoryOffset + tiffDirectorySize(count)};
    directory.next = reader->nextDirectory(directoryOffset);
    for (std::uint32_t i = 0; i < count; ++i) {
      const TiffEntry entry = reader->entry(directoryOffset, i);
      known.push_back(entry.tag);
      if (entry.isDamaged()) continue;
      const std::string key = std::to_string(entry.tag);
      const Value* const stored = before.find(key);
      const Value* const wanted = entries.find(key);
      if (wanted && stored ? *stored == *wanted : !wanted && !stored) {
        directory.keep(entry);
      } else if (std::optional<TiffValue> value =
                     wanted ? noteValue(*wanted, entry.type, plan.order) : std::nullopt) {
        directory.replace(entry, std::move(*value));
      } else {
        plan.drop(entry);
      }
    }
  }
  for (const auto& [key, wanted] : entries) {
    const std::optional<std::uint16_t> tag = tagOf(key);
    if (!tag || std::binary_search(known.begin(), known.end(), *tag)) continue;
    if (std::optional<TiffValue> value = noteValue(wanted, std::nullopt, plan.order)) {
      directory.add(*tag, std::move(*value));
    }
  }
  if (directory.records.empty() || directory.records.size() > entryLimit) return {};
  directory.sortRecords();
  plan.directories.push_back(std::move(directory));
  return layOutTiff(std::move(plan), TiffPlacement::inPlace);
}

}  // namespace FrameworkUtility::detail
