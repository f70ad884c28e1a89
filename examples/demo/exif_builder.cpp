#include <examples/demo/exif_builder.h>

namespace demo {
namespace {

enum Type : std::uint16_t {
  byteType = 1,
  asciiType = 2,
  shortType = 3,
  longType = 4,
  rationalType = 5,
  undefinedType = 7,
  signedLongType = 9,
  signedRationalType = 10,
};

Field field(std::uint16_t tag, Type type, std::size_t count, Bytes value) {
  return {tag, type, static_cast<std::uint32_t>(count), std::move(value)};
}

Bytes fractions(const std::vector<Fraction>& values) {
  Bytes out;
  for (const auto& [numerator, denominator] : values) {
    out += bigEndian(static_cast<std::uint64_t>(numerator), 4) +
           bigEndian(static_cast<std::uint64_t>(denominator), 4);
  }
  return out;
}

}  // namespace

Bytes bigEndian(std::uint64_t value, int bytes) {
  Bytes out;
  while (bytes-- > 0) out += static_cast<char>(value >> 8 * bytes & 0xFF);
  return out;
}

Field text(std::uint16_t tag, std::string_view value) {
  return field(tag, asciiType, value.size() + 1, Bytes(value) + '\0');
}

Field bytes(std::uint16_t tag, const std::vector<std::uint8_t>& values) {
  return field(tag, byteType, values.size(), Bytes(values.begin(), values.end()));
}

Field shorts(std::uint16_t tag, const std::vector<std::uint16_t>& values) {
  Bytes out;
  for (const std::uint16_t value : values) out += bigEndian(value, 2);
  return field(tag, shortType, values.size(), std::move(out));
}

Field number(std::uint16_t tag, std::uint32_t value) {
  return field(tag, longType, 1, bigEndian(value, 4));
}

Field signedNumber(std::uint16_t tag, std::int32_t value) {
  return field(tag, signedLongType, 1, bigEndian(static_cast<std::uint32_t>(value), 4));
}

Field undefined(std::uint16_t tag, std::string_view value) {
  return field(tag, undefinedType, value.size(), Bytes(value));
}

Field rationals(std::uint16_t tag, const std::vector<Fraction>& values) {
  return field(tag, rationalType, values.size(), fractions(values));
}

Field signedRationals(std::uint16_t tag, const std::vector<Fraction>& values) {
  return field(tag, signedRationalType, values.size(), fractions(values));
}

Bytes directory(const std::vector<Field>& fields, std::uint32_t offset, std::uint32_t next) {
  Bytes records = bigEndian(fields.size(), 2), values;
  const auto valuesBegin = static_cast<std::uint32_t>(offset + 2 + 12 * fields.size() + 4);
  for (const Field& each : fields) {
    records += bigEndian(each.tag, 2) + bigEndian(each.type, 2) + bigEndian(each.count, 4);
    if (each.value.size() <= 4) {
      records += each.value + Bytes(4 - each.value.size(), '\0');
    } else {
      records += bigEndian(valuesBegin + values.size(), 4);
      values += each.value + Bytes(each.value.size() % 2, '\0');
    }
  }
  return records + bigEndian(next, 4) + values;
}

}  // namespace demo
