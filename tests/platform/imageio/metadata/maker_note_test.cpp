#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <framework_utility/platform/imageio/metadata/exif/maker_note.h>
#include <tests/platform/imageio/metadata/exif_block.h>

#include <gtest/gtest.h>

namespace FrameworkUtility::testing {
namespace {

constexpr std::uint32_t noteDirectory = 14;

// A phone's note: what a block's first directory would be, behind another header.
ByteVector phoneNote() {
  using enum TiffType;
  detail::ByteWriter note;
  note.put("Apple iOS\0\0\1MM"sv);
  putDirectory(note, {{1, numbers(signedLong, 14)},
                      {2, opaque("exposure matrix")},
                      {8, numbers(signedRational, -1, 2, 1, 4, 3, 1)},
                      {10, numbers(signedLong, 4)},
                      {17, "0D7C1A2B-1111-2222-3333-444455556666"},
                      {25, numbers(TiffType{16}, 9, 9, 9, 9)},  // Unknown to TIFF.
                      {43, "A photo's own identifier"}});
  return note.takeBytes();
}

Dictionary phoneEntries() {
  return {{"1", 14},
          {"2", Data(bytesOf("exposure matrix"))},
          {"8", Value(Array{-0.5, 0.25, 3})},
          {"10", 4},
          {"17", "0D7C1A2B-1111-2222-3333-444455556666"},
          {"43", "A photo's own identifier"}};
}

std::optional<Dictionary> readMakerNote(std::span<const std::byte> note) {
  detail::MetadataBudget budget;
  return detail::readMakerNote(note, budget);
}

ByteVector mergeMakerNote(const ByteVector& note, const Dictionary& entries) {
  return detail::mergeMakerNote(note, readMakerNote(note).value_or(Dictionary()), entries);
}

std::map<int, StoredEntry> noteEntries(const ByteVector& note) {
  return entriesOf(TiffReader(note, std::endian::big), noteDirectory);
}

TEST(MakerNoteTest, ReadsThePhonesNoteAndNoOther) {
  const ByteVector whole = phoneNote();
  EXPECT_EQ(readMakerNote(whole), phoneEntries());
  for (std::size_t size = 0; size < noteDirectory + 2 + 7 * 12 + 4; ++size) {
    const ByteVector cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_FALSE(readMakerNote(cut)) << size;
  }
  // Another signature, no byte order, tags that do not ascend, or far too many.
  for (const auto& [at, value] :
       {std::pair{0U, 'N'}, {12U, 'I'}, {noteDirectory + 3, '\x9'}, {noteDirectory, '\x1'}}) {
    ByteVector other = whole;
    other[at] = std::byte(value);
    EXPECT_FALSE(readMakerNote(other)) << at;
  }
}

TEST(MakerNoteTest, AnAddedEntryMovesOnlyWhatStandsInItsWay) {
  Dictionary entries = phoneEntries();
  entries.set("20", 10);
  entries.set("21", "ABCDEF");
  const ByteVector merged = mergeMakerNote(phoneNote(), entries);
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
  constexpr std::pair note{0x8769, 0x927C};
  const ByteVector block = photograph(std::endian::little, detail::asText(phoneNote())).bytes();
  Dictionary properties = readExif(block);
  EXPECT_EQ(in(properties, "{MakerApple}"), phoneEntries());
  properties.subdictionary("{MakerApple}").remove("17");
  const ByteVector merged = detail::mergeExif(block, properties, {});
  EXPECT_EQ(readExif(merged), properties);
  auto before = entriesOf(block), after = entriesOf(merged);
  const StoredEntry was = before.at(note), is = after.at(note);
  EXPECT_EQ(is.offset, was.offset);
  before[note] = is;
  EXPECT_EQ(after, before);
  // The content identifier is gone, and of the note only its bytes are.
  auto expected = noteEntries(was.value);
  const StoredEntry removed = expected.at(17);
  expected.erase(17);
  EXPECT_EQ(noteEntries(is.value), expected);
  EXPECT_EQ(is.count, was.count);
  const auto rest = std::span(is.value).subspan(removed.offset, removed.count);
  EXPECT_TRUE(std::ranges::all_of(rest, [](std::byte byte) { return byte == std::byte{0}; }));

  // Only an entry that somebody sets replaces the note of another maker.
  const ByteVector foreign = photograph(std::endian::big, "Acme's own note").bytes();
  properties = readExif(foreign);
  EXPECT_EQ(entriesOf(detail::mergeExif(foreign, properties, {})).at(note).count, 15);
  properties.subdictionary("{MakerApple}").set("17", "an identifier");
  EXPECT_EQ(readExif(detail::mergeExif(foreign, properties, {})), properties);
}

}  // namespace
}  // namespace FrameworkUtility::testing
