#pragma once

#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/imageio/metadata/exif/tiff_structure.h>
#include <framework_utility/platform/imageio/metadata/metadata_codec.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace FrameworkUtility::testing {

using detail::TiffReader;
using detail::TiffType;
using Bytes = std::vector<std::byte>;

inline Bytes bytesOf(std::string_view text) {
  const auto bytes = std::as_bytes(std::span(text));
  return {bytes.begin(), bytes.end()};
}

struct TestEntry {
  std::uint16_t tag;
  TiffType type;
  std::uint32_t count;
  Bytes value;
};

/// An EXIF block that a test makes, record by record: its directories one after the other, each
/// followed by its values.
struct TestBlock {
  std::endian order = std::endian::big;
  std::vector<TestEntry> image, exif, gps, interop;
  std::string thumbnail = {};  ///< With a directory of its own, unless it is empty.

  TestEntry text(std::uint16_t tag, std::string_view text) const {
    return raw(tag, TiffType::ascii, std::string(text) + '\0');
  }
  TestEntry raw(std::uint16_t tag, TiffType type, std::string_view bytes) const {
    return {tag, type, static_cast<std::uint32_t>(bytes.size()), bytesOf(bytes)};
  }
  /// Numbers of any type; of a rational one both terms.
  TestEntry numbers(std::uint16_t tag, TiffType type,
                    const std::vector<std::int64_t>& values) const {
    const std::uint32_t size = detail::tiffTypeSize(type);
    const std::uint32_t terms = size == 8 ? 2 : 1;
    TestEntry entry{tag, type, static_cast<std::uint32_t>(values.size()) / terms, {}};
    for (const std::int64_t value : values) {
      detail::appendTiffInteger(entry.value, static_cast<std::uint64_t>(value), size / terms,
                                order);
    }
    return entry;
  }

  Bytes bytes() const {
    Bytes block = bytesOf(order == std::endian::big ? "MM" : "II");
    detail::appendTiffInteger(block, 42, 2, order);
    detail::appendTiffInteger(block, 8, 4, order);
    std::vector<TestEntry> first = image;
    const auto lead = [&](std::vector<TestEntry>& from, std::uint16_t tag, std::size_t to) {
      from.push_back(numbers(tag, TiffType::unsignedLong, {static_cast<std::int64_t>(to)}));
    };
    // The offsets of the others depend on the size of the first one alone.
    std::size_t at = 8 + sizeOf(image) + 12U * !exif.empty() + 12U * !gps.empty();
    std::vector<TestEntry> second = exif;
    if (!exif.empty()) {
      lead(first, 0x8769, at);
      at += sizeOf(exif) + 12U * !interop.empty();
      if (!interop.empty()) lead(second, 0xA005, at);
      at += interop.empty() ? 0 : sizeOf(interop);
    }
    if (!gps.empty()) lead(first, 0x8825, at);
    at += gps.empty() ? 0 : sizeOf(gps);
    append(block, first, thumbnail.empty() ? 0 : at);
    for (const std::vector<TestEntry>* directory :
         std::initializer_list<const std::vector<TestEntry>*>{&second, &interop, &gps}) {
      if (!directory->empty()) append(block, *directory, 0);
    }
    if (thumbnail.empty()) return block;
    const auto size = static_cast<std::int64_t>(thumbnail.size());
    const auto begin = static_cast<std::int64_t>(at + 2 + 2 * 12 + 4);
    append(block,
           {numbers(0x0201, TiffType::unsignedLong, {begin}),
            numbers(0x0202, TiffType::unsignedLong, {size})},
           0);
    const Bytes pixels = bytesOf(thumbnail);
    block.insert(block.end(), pixels.begin(), pixels.end());
    return block;
  }

 private:
  static std::size_t even(std::size_t size) { return size + size % 2; }
  static std::size_t sizeOf(const std::vector<TestEntry>& directory) {
    std::size_t size = 2 + 12 * directory.size() + 4;
    for (const TestEntry& entry : directory) {
      if (entry.value.size() > 4) size += even(entry.value.size());
    }
    return size;
  }
  void append(Bytes& block, std::vector<TestEntry> directory, std::size_t next) const {
    std::stable_sort(directory.begin(), directory.end(),
                     [](const TestEntry& a, const TestEntry& b) { return a.tag < b.tag; });
    std::size_t at = block.size() + 2 + 12 * directory.size() + 4;
    Bytes values;
    detail::appendTiffInteger(block, directory.size(), 2, order);
    for (const TestEntry& entry : directory) {
      detail::appendTiffInteger(block, entry.tag, 2, order);
      detail::appendTiffInteger(block, static_cast<std::uint16_t>(entry.type), 2, order);
      detail::appendTiffInteger(block, entry.count, 4, order);
      if (entry.value.size() > 4) {
        detail::appendTiffInteger(block, at + values.size(), 4, order);
        values.insert(values.end(), entry.value.begin(), entry.value.end());
        values.resize(even(values.size()));
      } else {
        block.insert(block.end(), entry.value.begin(), entry.value.end());
        block.resize(block.size() + 4 - entry.value.size());
      }
    }
    detail::appendTiffInteger(block, next, 4, order);
    block.insert(block.end(), values.begin(), values.end());
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
  Bytes value;
  bool operator==(const StoredEntry&) const = default;
};

/// Every record of the directories that EXIF names, by directory's pointer tag (0 for the first)
/// and tag.
inline std::map<std::pair<int, int>, StoredEntry> entriesOf(const Bytes& block) {
  std::map<std::pair<int, int>, StoredEntry> entries;
  const auto reader = TiffReader::open(block);
  if (!reader) return entries;
  const auto collect = [&](auto self, int directory, std::uint32_t offset) -> void {
    for (std::uint32_t i = 0; i < reader->entryCount(offset); ++i) {
      const detail::TiffEntry entry = reader->entry(offset, i);
      if (entry.tag == 0x8769 || entry.tag == 0x8825 || entry.tag == 0xA005) {
        self(self, entry.tag, reader->unsignedInteger(entry).value_or(0));
      } else {
        entries[{directory, entry.tag}] = {entry.type,
                                           entry.count,
                                           entry.value.size() > 4 ? entry.offset : 0,
                                           {entry.value.begin(), entry.value.end()}};
      }
    }
  };
  collect(collect, 0, reader->firstDirectory());
  return entries;
}

inline const Dictionary& in(const Dictionary& properties, std::string_view key) {
  static const Dictionary none;
  const Dictionary* dictionary = properties.get<Dictionary>(key);
  return dictionary ? *dictionary : none;
}

/// A phone's photograph: a record of every shape, private ones, a maker's note, a thumbnail.
inline TestBlock photograph(std::endian order, std::string_view makerNote = {}) {
  using enum TiffType;
  TestBlock b{.order = order, .image = {}, .exif = {}, .gps = {}, .interop = {}};
  b.image = {b.text(0x10F, "Acme"),
             b.text(0x110, "Pocket 1"),
             b.numbers(0x112, unsignedShort, {6}),
             b.numbers(0x11A, unsignedRational, {72, 1}),
             b.numbers(0x11B, unsignedRational, {72, 1}),
             b.numbers(0x128, unsignedShort, {2}),
             b.text(0x131, "17.4.1"),
             b.text(0x132, "2024:05:06 07:08:09"),
             b.numbers(0x213, unsignedShort, {1}),
             b.raw(0x9C9B, unsignedByte, "T\0i\0"),
             b.numbers(0xBEEF, signedLong, {-5})};
  b.exif = {b.numbers(0x829A, unsignedRational, {1, 120}),
            b.numbers(0x829D, unsignedRational, {9, 5}),
            b.numbers(0x8827, unsignedShort, {64}),
            b.raw(0x9000, undefined, "0232"),
            b.text(0x9003, "2024:05:06 07:08:09"),
            b.raw(0x9101, undefined, std::string_view("\1\2\3\0", 4)),
            b.numbers(0x9204, signedRational, {-1, 3}),
            b.raw(0x9286, undefined, std::string_view("ASCII\0\0\0Hello", 13)),
            b.text(0x9290, "123"),
            b.numbers(0xA001, unsignedShort, {65535}),
            b.numbers(0xA002, unsignedShort, {4032}),
            b.numbers(0xA003, unsignedShort, {3024}),
            b.raw(0xA301, undefined, "\1"),
            b.numbers(0xA432, unsignedRational, {13, 5, 13, 5, 9, 5, 9, 5}),
            b.text(0xA434, "Lens 1"),
            b.raw(0xC7A1, undefined, "private")};
  if (!makerNote.empty()) b.exif.push_back(b.raw(0x927C, undefined, makerNote));
  b.gps = {b.raw(0, unsignedByte, std::string_view("\2\3\0\0", 4)),
           b.text(1, "N"),
           b.numbers(2, unsignedRational, {48, 1, 51, 1, 2999, 100}),
           b.text(3, "W"),
           b.numbers(4, unsignedRational, {2, 1, 21, 1, 0, 1}),
           b.numbers(5, unsignedByte, {1}),
           b.numbers(6, unsignedRational, {71, 2}),
           b.numbers(7, unsignedRational, {1, 1, 2, 1, 350, 100}),
           b.text(0x1D, "2024:05:06")};
  b.interop = {b.text(1, "R98"), b.raw(2, undefined, "0100")};
  b.thumbnail = std::string("\xFF\xD8\xFF\xFE\0\x1A the old picture, small \xFF\xD9", 32);
  return b;
}

}  // namespace FrameworkUtility::testing
