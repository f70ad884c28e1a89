#include <framework_utility/platform/imageio/metadata/exif/exif_values.h>

#include <framework_utility/platform/foundation/values/byte_writer.h>
#include <framework_utility/platform/imageio/metadata/exif/exif_text.h>
#include <framework_utility/platform/imageio/metadata/values/rational.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

namespace FrameworkUtility::detail {
namespace {

constexpr std::uint32_t elementLimit = 4096;

bool isText(const TiffEntry& entry) {
  return entry.type == TiffType::ascii || entry.type == TiffType::utf8 ||
         entry.type == TiffType::undefined || entry.type == TiffType::unsignedByte;
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// "0230" -> [2, 3], "0221" -> [2, 2, 1], "0100" -> [1, 0]: two digits make the first number, and
/// the last is left out when it is 0.
std::optional<Array> readVersion(const TiffEntry& entry) {
  if (entry.value.size() != 4) return std::nullopt;
  std::array<int, 4> digits;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    const char c = std::to_integer<char>(entry.value[i]);
    if (!isDigit(c)) return std::nullopt;
    digits[i] = c - '0';
  }
  Array numbers{10 * digits[0] + digits[1], digits[2]};
  if (digits[3] != 0) numbers.emplace_back(digits[3]);
  return numbers;
}

std::optional<TiffValue> version(const Array& numbers) {
  if (numbers.size() < 2 || numbers.size() > 3) return std::nullopt;
  std::array<std::int64_t, 3> parts{};
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const Number* number = numbers[i].as<Number>();
    const double value = number ? number->doubleValue() : -1;
    if (!(value >= 0 && value < (i == 0 ? 100 : 10)) || value != std::floor(value)) {
      return std::nullopt;
    }
    parts[i] = static_cast<std::int64_t>(value);
  }
  ByteWriter stored;
  for (const std::int64_t digit : {parts[0] / 10, parts[0] % 10, parts[1], parts[2]}) {
    stored.put<char>(static_cast<char>('0' + digit));
  }
  return TiffValue{TiffType::undefined, 4, stored.takeBytes()};
}

/// Element `index` as a fraction of non-negative terms, with the terms as stored.
std::optional<Rational> fraction(const TiffReader& reader, const TiffEntry& entry,
                                 std::uint32_t index) {
  constexpr std::int64_t limit = std::numeric_limits<std::uint32_t>::max();
  if (entry.type == TiffType::unsignedRational && index < entry.value.size() / 8) {
    const ByteReader terms(entry.value.subspan(std::size_t{8} * index), reader.order());
    return Rational{terms.at<std::uint32_t>(0), terms.at<std::uint32_t>(4)};
  }
  const std::optional<Number> number = reader.number(entry, index);
  if (!number || number->doubleValue() < 0) return std::nullopt;
  return nearestRational(number->doubleValue(), limit);
}

/// One division of whole numbers, which are exact for all that devices write, so that a coordinate
/// of nine decimals comes back as the same double. Minutes and seconds that are missing or unknown
/// (0/0) count as 0.
std::optional<Number> readDegrees(const TiffReader& reader, const TiffEntry& entry) {
  std::array<double, 3> numerators{};
  std::array<double, 3> denominators{1, 1, 1};
  for (std::uint32_t i = 0; i < 3; ++i) {
    const std::optional<Rational> part = fraction(reader, entry, i);
    if (part && part->denominator != 0) {
      numerators[i] = static_cast<double>(part->numerator);
      denominators[i] = static_cast<double>(part->denominator);
    } else if (i == 0) {
      return std::nullopt;
    }
  }
  const auto& [degrees, minutes, seconds] = numerators;
  const auto& [perDegree, perMinute, perSecond] = denominators;
  const double value = (degrees * 3600 * perMinute * perSecond +
                        minutes * 60 * perDegree * perSecond + seconds * perDegree * perMinute) /
                       (3600 * perDegree * perMinute * perSecond);
  if (value == std::floor(value) && value < 1e15) return Number(static_cast<std::int64_t>(value));
  return Number(value);
}

/// Of at most 32 bits a term.
void putRational(ByteWriter& bytes, const Rational& rational) {
  bytes.putNumber(static_cast<std::uint64_t>(rational.numerator), 4)
      .putNumber(static_cast<std::uint64_t>(rational.denominator), 4);
}

/// Seconds get seven decimals: 3e-11 degrees, which is micrometres.
std::optional<TiffValue> degrees(double value, std::endian order) {
  constexpr std::int64_t scale = 10'000'000;
  if (!(value >= 0 && value <= 360)) return std::nullopt;
  const auto total =
      static_cast<std::int64_t>(std::llround(static_cast<long double>(value) * 3600 * scale));
  Rational seconds{total % (60 * scale), scale};
  while (seconds.denominator > 1 && seconds.numerator % 10 == 0) {
    seconds.numerator /= 10;
    seconds.denominator /= 10;
  }
  ByteWriter stored(order);
  putRational(stored, {total / (3600 * scale), 1});
  putRational(stored, {total / (60 * scale) % 60, 1});
  putRational(stored, seconds);
  return TiffValue{TiffType::unsignedRational, 3, stored.takeBytes()};
}

void appendTwoDigits(std::string& text, std::int64_t number) {
  text.push_back(static_cast<char>('0' + number / 10));
  text.push_back(static_cast<char>('0' + number % 10));
}

std::optional<std::string> readTime(const TiffReader& reader, const TiffEntry& entry) {
  std::string text;
  for (std::uint32_t i = 0; i < 3; ++i) {
    const std::optional<Rational> part = fraction(reader, entry, i);
    if (!part || part->denominator == 0) return std::nullopt;
    const std::int64_t whole = part->numerator / part->denominator;
    std::int64_t rest = part->numerator % part->denominator;
    if (whole > 99 || (rest != 0 && i < 2)) return std::nullopt;
    if (i > 0) text.push_back(':');
    appendTwoDigits(text, whole);
    // Parts of a second only where the device knew them.
    for (int decimals = 0; rest != 0 && decimals < 9; ++decimals) {
      if (decimals == 0) text.push_back('.');
      text.push_back(static_cast<char>('0' + rest * 10 / part->denominator));
      rest = rest * 10 % part->denominator;
    }
  }
  return text;
}

/// "HH:MM:SS", with parts of a second if need be.
std::optional<TiffValue> time(std::string_view text, std::endian order) {
  constexpr std::size_t maximumDecimals = 7;
  if (text.size() < 8 || text.size() > 9 + maximumDecimals || text[2] != ':' || text[5] != ':') {
    return std::nullopt;
  }
  if (text.size() > 8 && (text[8] != '.' || text.size() == 9)) return std::nullopt;
  std::array<Rational, 3> parts{};
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (i == 2 || i == 5 || i == 8) continue;
    if (!isDigit(text[i])) return std::nullopt;
    Rational& part = parts[std::min<std::size_t>(i / 3, 2)];
    part.numerator = 10 * part.numerator + (text[i] - '0');
    if (i > 8) part.denominator *= 10;
  }
  const std::int64_t limits[] = {24, 60, 61};  // A leap second is a second.
  ByteWriter stored(order);
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (parts[i].numerator >= limits[i] * parts[i].denominator) return std::nullopt;
    putRational(stored, parts[i]);
  }
  return TiffValue{TiffType::unsignedRational, 3, stored.takeBytes()};
}

template <class T>
bool putInteger(ByteWriter& bytes, double value) {
  using Limits = std::numeric_limits<T>;
  if (!(value >= Limits::min() && value <= Limits::max()) || value != std::floor(value)) {
    return false;
  }
  bytes.put<T>(static_cast<T>(value));
  return true;
}

bool putFraction(ByteWriter& bytes, double value, std::int64_t limit) {
  const std::optional<Rational> rational = nearestRational(value, limit);
  if (rational) putRational(bytes, *rational);
  return rational.has_value();
}

bool putNumber(ByteWriter& bytes, double value, TiffType type) {
  switch (type) {
    case TiffType::unsignedByte:
    case TiffType::undefined:
      return putInteger<std::uint8_t>(bytes, value);
    case TiffType::signedByte:
      return putInteger<std::int8_t>(bytes, value);
    case TiffType::unsignedShort:
      return putInteger<std::uint16_t>(bytes, value);
    case TiffType::signedShort:
      return putInteger<std::int16_t>(bytes, value);
    case TiffType::unsignedLong:
      return putInteger<std::uint32_t>(bytes, value);
    case TiffType::signedLong:
      return putInteger<std::int32_t>(bytes, value);
    case TiffType::unsignedRational:
      return value >= 0 && putFraction(bytes, value, std::numeric_limits<std::uint32_t>::max());
    case TiffType::signedRational:
      return putFraction(bytes, value, std::numeric_limits<std::int32_t>::max());
    case TiffType::singleFloat:
      // Its 24 bits give 5.6 back as something else, so only what it holds exactly.
      if (!(std::abs(value) <= std::numeric_limits<float>::max()) ||
          static_cast<double>(static_cast<float>(value)) != value) {
        return false;
      }
      bytes.put<float>(static_cast<float>(value));
      return true;
    case TiffType::doubleFloat:
      if (!std::isfinite(value)) return false;
      bytes.put<double>(value);
      return true;
    case TiffType::ascii:
    case TiffType::directory:
    case TiffType::utf8:
      break;
  }
  return false;
}

std::optional<TiffValue> exifNumbers(const ExifTag& tag, std::span<const Value> values,
                                     std::optional<TiffType> storedType, std::endian order) {
  if (storedType) {
    if (std::optional<TiffValue> stored = tiffNumbers(values, *storedType, order)) return stored;
  }
  return tiffNumbers(values, tag.type, order);
}

}  // namespace

std::uint32_t tiffNumberCount(const TiffEntry& entry) {
  return entry.count > elementLimit ? 0 : entry.count;
}

std::optional<Array> readTiffNumbers(const TiffReader& reader, const TiffEntry& entry) {
  if (tiffNumberCount(entry) == 0) return std::nullopt;
  Array numbers;
  numbers.reserve(entry.count);
  for (std::uint32_t i = 0; i < entry.count; ++i) {
    const std::optional<Number> number = reader.number(entry, i);
    if (!number) return std::nullopt;
    numbers.emplace_back(*number);
  }
  return numbers;
}

std::optional<TiffValue> tiffNumbers(std::span<const Value> values, TiffType type,
                                     std::endian order) {
  if (values.empty() || values.size() > elementLimit) return std::nullopt;
  ByteWriter stored(order);
  for (const Value& value : values) {
    const Number* number = value.as<Number>();
    if (!number || !putNumber(stored, number->doubleValue(), type)) return std::nullopt;
  }
  return TiffValue{type, static_cast<std::uint32_t>(values.size()), stored.takeBytes()};
}

const Value* appendExifValue(Dictionary& values, const ExifTag& tag, const TiffReader& reader,
                             const TiffEntry& entry) {
  if (entry.value.empty()) return nullptr;
  const auto append = [&](auto&& held) -> const Value* {
    if (!held) return nullptr;
    return &values.append(Key::withConstant(tag.key), *std::forward<decltype(held)>(held));
  };
  if (tag.shape == ExifShape::text ||
      (entry.type == TiffType::ascii && tag.shape != ExifShape::comment &&
       tag.shape != ExifShape::version)) {
    return isText(entry) ? append(std::optional(readExifText(entry.value))) : nullptr;
  }
  switch (tag.shape) {
    case ExifShape::text:
      break;
    case ExifShape::number:
    case ExifShape::layout:
      return append(reader.number(entry));
    case ExifShape::array:
      return append(readTiffNumbers(reader, entry));
    case ExifShape::version:
      return append(readVersion(entry));
    case ExifShape::comment:
      if (isText(entry)) return append(readExifComment(entry.value, reader.order()));
      break;
    case ExifShape::degrees:
      return append(readDegrees(reader, entry));
    case ExifShape::time:
      return append(readTime(reader, entry));
  }
  return nullptr;
}

std::optional<TiffValue> exifValue(const ExifTag& tag, const Value& value,
                                   std::optional<TiffType> storedType, std::endian order) {
  const Number* number = value.as<Number>();
  const std::string* text = value.as<std::string>();
  const Array* array = value.as<Array>();
  const auto withBytes = [](TiffType type, std::vector<std::byte> bytes) {
    return TiffValue{type, static_cast<std::uint32_t>(bytes.size()), std::move(bytes)};
  };
  switch (tag.shape) {
    case ExifShape::text:
      if (text) return withBytes(TiffType::ascii, exifText(*text));
      break;
    case ExifShape::number:
      if (number) return exifNumbers(tag, std::span(&value, 1), storedType, order);
      break;
    case ExifShape::array:
      if (array && (tag.count == 0 || array->size() == tag.count)) {
        return exifNumbers(tag, *array, storedType, order);
      }
      break;
    case ExifShape::version:
      if (array) return version(*array);
      break;
    case ExifShape::comment:
      if (text) return withBytes(TiffType::undefined, exifComment(*text, order));
      break;
    case ExifShape::degrees:
      if (number) return degrees(number->doubleValue(), order);
      break;
    case ExifShape::time:
      if (text) return time(*text, order);
      break;
    case ExifShape::layout:
      break;
  }
  return std::nullopt;
}

}  // namespace FrameworkUtility::detail
