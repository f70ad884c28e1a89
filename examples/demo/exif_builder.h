#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace demo {

using Bytes = std::string;

/// Big-endian.
Bytes bigEndian(std::uint64_t value, int bytes);

/// One field of a directory, as TIFF 6.0 and EXIF write it.
struct Field {
  std::uint16_t tag = 0;
  std::uint16_t type = 0;
  std::uint32_t count = 0;
  Bytes value;
};

Field text(std::uint16_t tag, std::string_view value);
Field bytes(std::uint16_t tag, const std::vector<std::uint8_t>& values);
Field shorts(std::uint16_t tag, const std::vector<std::uint16_t>& values);
Field number(std::uint16_t tag, std::uint32_t value);
Field signedNumber(std::uint16_t tag, std::int32_t value);
Field undefined(std::uint16_t tag, std::string_view value);
using Fraction = std::pair<std::int64_t, std::int64_t>;
Field rationals(std::uint16_t tag, const std::vector<Fraction>& values);
Field signedRationals(std::uint16_t tag, const std::vector<Fraction>& values);

/// A directory that stands at `offset`, followed by its values. Fields are in ascending order.
Bytes directory(const std::vector<Field>& fields, std::uint32_t offset, std::uint32_t next = 0);

}  // namespace demo
