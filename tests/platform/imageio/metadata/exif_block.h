#pragma once

#include <framework_utility/platform/foundation/values/byte_writer.h>
#include <framework_utility/platform/imageio/metadata/exif/exif.h>
#include <framework_utility/platform/imageio/metadata/exif/exif_directories.h>
#include <framework_utility/platform/imageio/metadata/exif/tiff_structure.h>
#include <tests/support/files.h>

#include <algorithm>
#include <concepts>
#include <map>

namespace FrameworkUtility::testing {

using namespace std::string_literals;
using namespace std::string_view_literals;
using detail::TiffReader;
using detail::TiffType;
using ByteVector = std::vector<std::byte>;

/// Puts a big-endian number over what stands at `at`.
inline void store(ByteVector& block, std::size_t at, std::uint64_t number, std::size_t size) {
  const ByteVector bytes = detail::ByteWriter().putNumber(number, size).takeBytes();
  std::copy(bytes.begin(), bytes.end(), block.begin() + static_cast<std::ptrdiff_t>(at));
}

/// A record's value: a text, stored with its NUL, or numbers, of rational ones both terms.
struct TestValue {
  TestValue(const char* text) : TestValue(std::string(text)) {}
  TestValue(const std::string& text) : terms(text.begin(), text.end()) { terms.push_back(0); }
  TestValue(TiffType aType, std::vector<std::int64_t> numbers)
      : type(aType), terms(std::move(numbers)) {}

  std::size_t termsPerNumber() const {
    return type == TiffType::unsignedRational || type == TiffType::signedRational ? 2 : 1;
  }
  ByteVector bytes(std::endian order) const {
    detail::ByteWriter all(order);
    const std::size_t size =
        std::max(std::size_t{1}, detail::tiffTypeSize(type) / termsPerNumber());
    for (const std::int64_t term : terms) all.putNumber(static_cast<std::uint64_t>(term), size);
    return all.takeBytes();
  }

  TiffType type = TiffType::ascii;
  std::vector<std::int64_t> terms;
};
inline TestValue numbers(TiffType type, std::integral auto... terms) {
  return {type, {static_cast<std::int64_t>(terms)...}};
}
inline TestValue shorts(auto... terms) { return numbers(TiffType::unsignedShort, terms...); }
inline TestValue longs(auto... terms) { return numbers(TiffType::unsignedLong, terms...); }
inline TestValue rationals(auto... terms) { return numbers(TiffType::unsignedRational, terms...); }
inline TestValue opaque(std::string_view bytes) {
  return {TiffType::undefined, {bytes.begin(), bytes.end()}};
}

struct TestEntry {
  std::uint16_t tag;
  TestValue value;
};

/// A directory, with its values behind it.
inline void putDirectory(detail::ByteWriter& block, std::vector<TestEntry> directory,
                         std::size_t next = 0) {
  std::stable_sort(directory.begin(), directory.end(),
                   [](const TestEntry& a, const TestEntry& b) { return a.tag < b.tag; });
  const std::size_t begin = block.size() + 2 + 12 * directory.size() + 4;
  detail::ByteWriter values;
  block.putNumber(directory.size(), 2);
  for (const auto& [tag, value] : directory) {
    const ByteVector bytes = value.bytes(block.order());
    block.putNumber(tag, 2).putNumber(static_cast<std::uint16_t>(value.type), 2);
    block.putNumber(value.terms.size() / value.termsPerNumber(), 4);
    if (bytes.size() <= 4) {
      block.put(bytes).putNumber(0, 4 - bytes.size());
    } else {
      block.putNumber(begin + values.size(), 4);
      values.put(bytes).putNumber(0, bytes.size() % 2);
    }
  }
  block.putNumber(next, 4).put(values);
}

/// An EXIF block that a test makes, record by record: its directories one after the other.
struct TestBlock {
  std::endian order = std::endian::big;
  std::vector<TestEntry> image = {}, exif = {}, gps = {}, interop = {};
  std::string thumbnail = {};  ///< With a directory of its own, unless it is empty.

  ByteVector bytes() const {
    detail::ByteWriter block(order);
    block.put(order == std::endian::big ? "MM" : "II").putNumber(42, 2).putNumber(8, 4);
    std::vector<TestEntry> first = image, second = exif;
    const bool hasSecond = !exif.empty() || !interop.empty();
    std::size_t at = 8 + sizeOf(image) + 12U * (hasSecond + !gps.empty());
    const auto place = [&](auto& parent, std::uint16_t tag, const auto& child) {
      if (child.empty()) return;
      parent.push_back({tag, longs(at)});
      at += sizeOf(child);
    };
    place(first, 0x8825, gps);
    place(second, 0xA005, interop);
    place(first, 0x8769, second);
    putDirectory(block, first, thumbnail.empty() ? 0 : at);
    for (const auto& directory : {gps, interop, second}) {
      if (!directory.empty()) putDirectory(block, directory);
    }
    if (!thumbnail.empty()) {
      const std::size_t begin = at + 2 + 2 * 12 + 4;
      putDirectory(block, {{0x0201, longs(begin)}, {0x0202, longs(thumbnail.size())}});
      block.put(thumbnail);
    }
    return block.takeBytes();
  }

 private:
  static std::size_t sizeOf(const std::vector<TestEntry>& directory) {
    detail::ByteWriter alone;
    putDirectory(alone, directory);
    return alone.size();
  }
};

inline Dictionary readExif(std::span<const std::byte> block) {
  Dictionary properties;
  detail::MetadataBudget budget;
  detail::readExif(block, properties, budget);
  return properties;
}

/// A record as it stands in a block, and where its value stands.
struct StoredEntry {
  TiffType type;
  std::uint32_t count;
  std::uint32_t offset;
  ByteVector value;
  bool operator==(const StoredEntry&) const = default;
};

/// The records of one directory by their tags.
inline std::map<int, StoredEntry> entriesOf(const TiffReader& reader, std::uint32_t directory) {
  std::map<int, StoredEntry> entries;
  for (std::uint32_t i = 0; i < reader.entryCount(directory); ++i) {
    const detail::TiffEntry entry = reader.entry(directory, i);
    entries[entry.tag] = {entry.type,
                          entry.count,
                          entry.value.size() > 4 ? entry.offset : 0,
                          {entry.value.begin(), entry.value.end()}};
  }
  return entries;
}

/// Every record of the directories that EXIF names, by directory's pointer tag (0 for the first)
/// and tag, less those that only lead to a directory.
inline std::map<std::pair<int, int>, StoredEntry> entriesOf(const ByteVector& block) {
  std::map<std::pair<int, int>, StoredEntry> entries;
  const auto reader = TiffReader::open(block);
  if (!reader) return entries;
  const detail::ExifDirectories at = detail::exifDirectories(*reader);
  for (const auto& [pointer, directory] :
       {std::pair{0, at.image}, {0x8769, at.exif}, {0x8825, at.gps}, {0xA005, at.interop}}) {
    if (directory == 0) continue;
    for (auto& [tag, entry] : entriesOf(*reader, directory)) entries[{pointer, tag}] = entry;
  }
  for (const auto& pointer : {std::pair{0, 0x8769}, {0, 0x8825}, {0x8769, 0xA005}}) {
    entries.erase(pointer);
  }
  return entries;
}

inline const Dictionary& in(const Dictionary& properties, std::string_view key) {
  static const Dictionary none;
  const Dictionary* dictionary = properties.get<Dictionary>(key);
  return dictionary ? *dictionary : none;
}

/// A phone's photograph: a record of every shape, private ones, a maker's note, a thumbnail.
inline TestBlock photograph(std::endian order, std::string_view makerNote = {}) {
  TestBlock b{.order = order};
  b.image = {{0x10F, "Acme"},           {0x112, shorts(6)}, {0x11A, rationals(72, 1)},
             {0x11B, rationals(72, 1)}, {0x128, shorts(2)}, {0x131, "17.4.1"},
             {0x213, shorts(1)},        {0xBEEF, longs(5)}};
  b.exif = {{0x829D, rationals(9, 5)},
            {0x8827, shorts(64)},
            {0x9000, opaque("0232")},
            {0x9204, numbers(TiffType::signedRational, -1, 3)},
            {0x9286, opaque("ASCII\0\0\0Hello"sv)},
            {0xA002, shorts(4032)},
            {0xA003, shorts(3024)},
            {0xA432, rationals(13, 5, 13, 5, 9, 5, 9, 5)},
            {0xC7A1, opaque("private")}};
  if (!makerNote.empty()) b.exif.push_back({0x927C, opaque(makerNote)});
  b.gps = {{1, "N"},
           {2, rationals(48, 1, 51, 1, 2999, 100)},
           {5, numbers(TiffType::unsignedByte, 1)},
           {6, rationals(71, 2)},
           {7, rationals(1, 1, 2, 1, 350, 100)},
           {29, "2024:05:06"}};
  b.interop = {{1, "R98"}, {2, opaque("0100")}};
  b.thumbnail = "\xFF\xD8\xFF\xFE\0\x1A the old picture, small \xFF\xD9"s;
  return b;
}

}  // namespace FrameworkUtility::testing
