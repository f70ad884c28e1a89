#include <framework_utility/platform/imageio/metadata/exif/maker_note.h>
#include <tests/platform/imageio/metadata/exif_block.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace FrameworkUtility::testing {
namespace {

using enum TiffType;

constexpr std::uint32_t noteDirectory = 14;

// A phone's note: what a block's first directory would be, behind another header.
Bytes phoneNote() {
  TestBlock block;
  block.image = {block.numbers(1, signedLong, {14}),
                 block.raw(2, undefined, "exposure matrix"),
                 block.numbers(8, signedRational, {-1, 2, 1, 4, 3, 1}),
                 block.numbers(10, signedLong, {4}),
                 block.text(17, "0D7C1A2B-1111-2222-3333-444455556666"),
                 {25, TiffType{16}, 1, Bytes(4, std::byte{9})},  // 64 bits, which TIFF has not.
                 block.text(43, "A photo's own identifier")};
  Bytes note = bytesOf(std::string_view("Apple iOS\0\0\1MM", noteDirectory));
  const Bytes whole = block.bytes();
  note.insert(note.end(), whole.begin() + 8, whole.end());
  // The values stand six bytes further from the start than in the block.
  for (std::uint32_t i = 0; i < block.image.size(); ++i) {
    if (block.image[i].value.size() > 4) {
      note[noteDirectory + 2 + 12 * i + 11] =
          static_cast<std::byte>(std::to_integer<int>(note[noteDirectory + 2 + 12 * i + 11]) + 6);
    }
  }
  return note;
}

std::optional<Dictionary> readMakerNote(const Bytes& note) {
  detail::MetadataBudget budget;
  return detail::readMakerNote(note, budget);
}

Bytes mergeMakerNote(const Bytes& note, const Dictionary& entries) {
  return detail::mergeMakerNote(note, readMakerNote(note).value_or(Dictionary()), entries);
}

Dictionary phoneEntries() {
  return {{"1", 14},
          {"2", Data(bytesOf("exposure matrix"))},
          {"8", Value(Array{-0.5, 0.25, 3})},
          {"10", 4},
          {"17", "0D7C1A2B-1111-2222-3333-444455556666"},
          {"43", "A photo's own identifier"}};
}

std::map<int, StoredEntry> noteEntries(const Bytes& note) {
  std::map<int, StoredEntry> entries;
  const TiffReader reader(note, std::endian::big);
  for (std::uint32_t i = 0; i < reader.entryCount(noteDirectory); ++i) {
    const detail::TiffEntry entry = reader.entry(noteDirectory, i);
    entries[entry.tag] = {entry.type,
                          entry.count,
                          entry.value.size() > 4 ? entry.offset : 0,
                          {entry.value.begin(), entry.value.end()}};
  }
  return entries;
}

TEST(MakerNoteTest, ReadsThePhonesNoteAndNoOther) {
  EXPECT_EQ(readMakerNote(phoneNote()), phoneEntries());
  EXPECT_FALSE(readMakerNote(bytesOf("Nikon\0\2\0\0\0MM")));
  EXPECT_FALSE(readMakerNote({}));
}

TEST(MakerNoteTest, ADamagedNoteIsNotRead) {
  const Bytes whole = phoneNote();
  for (std::size_t size = 0; size < noteDirectory + 2 + 7 * 12 + 4; ++size) {
    EXPECT_FALSE(
        readMakerNote(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size))));
  }
  Bytes unsorted = whole;
  unsorted[noteDirectory + 3] = std::byte{9};
  EXPECT_FALSE(readMakerNote(unsorted));
}

TEST(MakerNoteTest, RemovingTheContentIdentifierTouchesNothingElse) {
  const Bytes note = phoneNote();
  Dictionary entries = phoneEntries();
  entries.remove("17");
  const Bytes merged = mergeMakerNote(note, entries);
  EXPECT_EQ(readMakerNote(merged), entries);
  EXPECT_EQ(merged.size(), note.size());
  auto expected = noteEntries(note);
  const StoredEntry removed = expected.at(17);
  expected.erase(17);
  EXPECT_EQ(noteEntries(merged), expected);
  for (std::uint32_t i = 0; i < removed.count; ++i) {
    ASSERT_EQ(merged[removed.offset + i], std::byte{0});
  }
}

TEST(MakerNoteTest, AnAddedEntryMovesOnlyWhatStandsInItsWay) {
  Dictionary entries = phoneEntries();
  entries.set("20", 10);
  entries.set("21", "ABCDEF");
  const Bytes merged = mergeMakerNote(phoneNote(), entries);
  EXPECT_EQ(readMakerNote(merged), entries);
  const auto before = noteEntries(phoneNote()), after = noteEntries(merged);
  for (const int tag : {17, 25, 43}) EXPECT_EQ(after.at(tag), before.at(tag)) << tag;
}

TEST(MakerNoteTest, ANewNoteHoldsEveryKindOfValue) {
  const Dictionary entries{{"1", 5},
                           {"8", Value(Array{-0.5, 1, 0})},
                           {"17", "an identifier"},
                           {"3", Dictionary{{"value", 12}, {"timescale", 1000000000}}},
                           {"33", 1.25},
                           {"45", Data(bytesOf("bytes"))}};
  Dictionary given = entries;
  given.set(17, "a number for a key");
  given.set("017", "no decimal number");
  given.set("70000", "no tag");
  EXPECT_EQ(readMakerNote(mergeMakerNote({}, given)), entries);
  EXPECT_TRUE(mergeMakerNote({}, {}).empty());
}

TEST(MakerNoteTest, LivesInsideAnExifBlock) {
  const Bytes note = phoneNote();
  const std::string text(reinterpret_cast<const char*>(note.data()), note.size());
  const Bytes block = photograph(std::endian::little, text).bytes();
  Dictionary properties = readExif(block);
  EXPECT_EQ(in(properties, "{MakerApple}"), phoneEntries());
  properties.subdictionary("{MakerApple}").remove("17");
  const Bytes merged = detail::mergeExif(block, properties, {});
  EXPECT_EQ(readExif(merged), properties);
  auto before = entriesOf(block), after = entriesOf(merged);
  EXPECT_EQ(after.at({0x8769, 0x927C}).offset, before.at({0x8769, 0x927C}).offset);
  before.erase({0x8769, 0x927C});
  after.erase({0x8769, 0x927C});
  EXPECT_EQ(after, before);

  // Only an entry that somebody sets replaces the note of another maker.
  const Bytes foreign = photograph(std::endian::big, "Acme's own note").bytes();
  properties = readExif(foreign);
  EXPECT_EQ(entriesOf(detail::mergeExif(foreign, properties, {})).at({0x8769, 0x927C}).value,
            bytesOf("Acme's own note"));
  properties.subdictionary("{MakerApple}").set("17", "an identifier");
  EXPECT_EQ(readExif(detail::mergeExif(foreign, properties, {})), properties);
}

}  // namespace
}  // namespace FrameworkUtility::testing
