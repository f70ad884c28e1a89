#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <framework_utility/platform/foundation/values/byte_writer.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace FrameworkUtility {
namespace {

using detail::ByteReader;
using detail::ByteWriter;

constexpr std::endian orders[] = {std::endian::big, std::endian::little};

TEST(BytesTest, WhatIsWrittenReadsBackAtItsPlaceAndInSequence) {
  for (const std::endian order : orders) {
    ByteWriter writer(order);
    writer.put("8BIM").put<std::uint8_t>(200).put<std::int16_t>(-2).put<std::uint32_t>(0x89ABCDEF);
    writer.put<float>(-0.5F).put<double>(1e300).put<std::uint64_t>(0x0123456789ABCDEF);
    writer.putNumber(0xABCDEF, 3).putNumber(1, 16);
    const std::vector<std::byte> bytes = writer.takeBytes();
    EXPECT_EQ(writer.size(), 0U);
    ASSERT_EQ(bytes.size(), 4U + 1 + 2 + 4 + 4 + 8 + 8 + 3 + 16);

    ByteReader reader(bytes, order);
    EXPECT_TRUE(reader.startsWith("8BIM"));
    EXPECT_EQ(reader.at<std::int16_t>(5), -2);
    EXPECT_EQ(reader.at<std::uint32_t>(7), reader.number(7, 4));
    EXPECT_EQ(reader.number(31, 3), 0xABCDEFU);
    EXPECT_EQ(detail::asText(reader.take(4)), "8BIM");
    EXPECT_EQ(reader.take<std::uint8_t>(), 200);
    EXPECT_EQ(reader.take<std::int16_t>(), -2);
    EXPECT_EQ(reader.take<std::uint32_t>(), 0x89ABCDEF);
    EXPECT_EQ(reader.take<float>(), -0.5F);
    EXPECT_EQ(reader.take<double>(), 1e300);
    EXPECT_EQ(reader.take<std::uint64_t>(), 0x0123456789ABCDEFU);
    EXPECT_EQ(reader.takeNumber(3), 0xABCDEFU);
    reader.take(order == std::endian::big ? 8 : 0);
    EXPECT_EQ(reader.takeNumber(8), 1U);
    EXPECT_FALSE(reader.isCut());
  }
  EXPECT_EQ(ByteReader(ByteWriter().put("mluc")).at<std::uint32_t>(0),
            detail::fourCharCode("mluc"));
}

TEST(BytesTest, NothingIsReadPastTheEndWhateverTheOffset) {
  constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
  const std::vector<std::byte> bytes(12, std::byte{0xFF});
  for (const std::endian order : orders) {
    const ByteReader reader(bytes, order);
    for (const std::uint64_t offset : {most, most - 3, 0ul, 4ul, 9ul, 12ul, 13ul}) {
      for (const std::uint64_t count : {most, most - 8, 1ul, 4ul, 8ul}) {
        SCOPED_TRACE(std::to_string(offset) + ", " + std::to_string(count));
        const bool isInside = offset <= 12 && count <= 12 - offset;
        EXPECT_EQ(reader.holds(offset, count), isInside);
        EXPECT_EQ(reader.part(offset, count).size(), isInside ? count : 0);
        EXPECT_EQ(reader.partInside(offset, count).size(),
                  offset > 12 ? 0 : std::min(count, 12 - offset));
        EXPECT_EQ(reader.at<std::uint32_t>(offset), offset <= 8 ? 0xFFFFFFFF : 0);
        EXPECT_EQ(reader.at<std::uint64_t>(offset), offset <= 4 ? most : 0);
        if (count > 8) continue;
        EXPECT_EQ(reader.number(offset, count), isInside ? most >> (64 - 8 * count) : 0);
      }
    }
  }
}

TEST(BytesTest, TheFirstThatIsNotThereTakesAllThatIsLeft) {
  const std::vector<std::byte> bytes(7, std::byte{1});
  ByteReader reader(bytes);
  EXPECT_EQ(reader.take<std::uint16_t>(), 0x0101);
  EXPECT_EQ(reader.take(5).size(), 5U);
  EXPECT_TRUE(reader.take(0).empty());
  EXPECT_FALSE(reader.isCut());

  reader = ByteReader(bytes);
  EXPECT_EQ(reader.take<std::uint64_t>(), 0U);
  EXPECT_TRUE(reader.isCut());
  EXPECT_EQ(reader.take<std::uint8_t>(), 0);
  EXPECT_EQ(reader.takeNumber(1), 0U);
  EXPECT_TRUE(reader.take(1).empty());
}

}  // namespace
}  // namespace FrameworkUtility
