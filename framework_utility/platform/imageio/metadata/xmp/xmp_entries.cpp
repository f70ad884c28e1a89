#include <framework_utility/platform/imageio/metadata/xmp/xmp_entries.h>

#include <framework_utility/platform/imageio/metadata/xmp/xmp_values.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <optional>
#include <span>
#include <string_view>

namespace FrameworkUtility::detail {
namespace {

using enum XmpForm;

std::optional<double> parseInteger(std::string_view text) {
  const std::optional<double> number = parseXmpRational(text);
  return number && *number == std::trunc(*number) && std::abs(*number) <= 0x1p53 ? number
                                                                                 : std::nullopt;
}

/// As EXIF's numbers are read: an integer when it is one.
Value valueOfNumber(double number) {
  if (number == std::trunc(number) && std::abs(number) <= 0x1p53) {
    return Value(static_cast<std::int64_t>(number));
  }
  return Value(number);
}

/// Absent unless every text is a number.
std::optional<Array> arrayOfNumbers(std::span<const std::string> texts,
                                    std::optional<double> (*parse)(std::string_view)) {
  Array array;
  for (const std::string& text : texts) {
    const std::optional<double> number = parse(text);
    if (!number) return std::nullopt;
    array.push_back(valueOfNumber(*number));
  }
  return array;
}

std::vector<std::string> splitAtBlanks(std::string_view text) {
  std::vector<std::string> words;
  for (std::size_t begin = 0; (begin = text.find_first_not_of(' ', begin)) != text.npos;) {
    const std::size_t end = std::min(text.find(' ', begin), text.size());
    words.emplace_back(text.substr(begin, end - begin));
    begin = end;
  }
  return words;
}

/// "12:30:15" as "123015".
std::string withoutColons(std::string text) {
  std::erase(text, ':');
  return text;
}

/// The other way, "20240501" and "123015+0200" as an XMP date; empty when they are no date.
std::string dateOfIptc(std::string_view day, std::string_view time) {
  if (day.size() != 8) return {};
  std::string text;
  text.append(day.substr(0, 4)).append("-").append(day.substr(4, 2)).append("-");
  text.append(day.substr(6));
  if (time.size() >= 6) {
    text.append("T").append(time.substr(0, 2)).append(":").append(time.substr(2, 2));
    text.append(":").append(time.substr(4));
  }
  const std::optional<XmpDate> date = parseXmpDate(text);
  return date ? xmpDate(*date) : std::string();
}

/// An integer or rational as XMP says it; absent for a number that has no such form.
std::optional<std::string> textOfNumber(const Number& number, XmpForm form) {
  const double value = number.doubleValue();
  if (form == rational || form == rationals) return xmpRational(value);
  if (value != std::trunc(value) || std::abs(value) > 0x1p53) return std::nullopt;
  return std::to_string(static_cast<std::int64_t>(value));
}

/// A look at the entries of one mapping.
class Entries {
 public:
  Entries(const XmpMapping& mapping, const Dictionary& dictionary)
      : mapping_(mapping), dictionary_(dictionary) {}

  const Value* value() const { return dictionary_.find(mapping_.key); }
  std::string_view text() const { return text(mapping_.key); }
  std::string_view secondText() const { return text(mapping_.secondKey); }
  const Number* number() const { return dictionary_.get<Number>(mapping_.key); }
  const Number* secondNumber() const { return dictionary_.get<Number>(mapping_.secondKey); }

 private:
  std::string_view text(std::string_view key) const {
    const auto* text = dictionary_.get<std::string>(key);
    return text ? std::string_view(*text) : std::string_view();
  }

  const XmpMapping& mapping_;
  const Dictionary& dictionary_;
};

/// The texts of an array, or of the single value that stands for one. Empty if one cannot be said.
std::vector<std::string> textsOfList(const Value& value, XmpForm form) {
  std::vector<std::string> texts;
  const auto append = [&](const Value& element) {
    const auto* text = element.as<std::string>();
    const auto* number = element.as<Number>();
    if (text && form == list) {
      texts.push_back(*text);
    } else if (number && form != list) {
      if (std::optional<std::string> said = textOfNumber(*number, form)) {
        texts.push_back(*std::move(said));
      }
    }
  };
  const Array* array = value.as<Array>();
  if (!array) {
    append(value);
    return texts;
  }
  for (const Value& element : *array) append(element);
  if (texts.size() != array->size()) texts.clear();
  return texts;
}

/// The one text of a property that is no list; absent when the entries cannot be said.
std::optional<std::string> textOfEntries(XmpForm form, const Entries& entries) {
  const Number* number = entries.number();
  std::string text;
  switch (form) {
    case dateTime:
      if (const auto date = parseXmpDate(entries.text())) text = xmpDate(*date);
      break;
    case iptcDate:
      text = dateOfIptc(entries.text(), entries.secondText());
      break;
    case gpsDate: {
      // A time stamp that came from a location is a whole date, which wins.
      auto date = parseXmpDate(entries.text());
      if (!date) {
        date = parseXmpDate(std::string(entries.secondText()).append(" ").append(entries.text()));
      }
      if (!date) break;
      date->offset = std::chrono::minutes(0);
      text = xmpDate(*date);
      break;
    }
    case coordinate:
      if (number && entries.secondText().size() == 1) {
        return xmpCoordinate({number->doubleValue(), entries.secondText().front()});
      }
      break;
    case altitude:
      // XMP's rational has no sign here and the reference may be missing: left to EXIF.
      if (number && number->doubleValue() >= 0) return textOfNumber(*number, rational);
      break;
    case altitudeRef: {
      const Number* height = entries.secondNumber();
      if (number && !(height && height->doubleValue() < 0)) return textOfNumber(*number, integer);
      break;
    }
    case integer:
    case rational:
      if (number) return textOfNumber(*number, form);
      break;
    default:
      text = entries.text();
  }
  return text.empty() ? std::nullopt : std::optional(std::move(text));
}

}  // namespace

Dictionary xmpEntries(const XmpMapping& mapping, std::vector<std::string> texts) {
  Dictionary entries;
  if (mapping.key.empty() || texts.empty() || texts.front().empty()) return entries;
  std::string& first = texts.front();
  const auto setNumber = [&](std::optional<double> number) {
    if (number) entries.set(mapping.key, valueOfNumber(*number));
  };
  const auto setArray = [&](std::optional<Array> array) {
    if (array) entries.set(mapping.key, Value(*std::move(array)));
  };
  switch (mapping.form) {
    case text:
    case languages:
      entries.set(mapping.key, std::move(first));
      break;
    case list:
      setArray(Array(std::make_move_iterator(texts.begin()), std::make_move_iterator(texts.end())));
      break;
    case integer:
    case altitudeRef:
    case pixelWidth:
    case pixelHeight:
      setNumber(parseInteger(first));
      break;
    case rational:
    case altitude:
      setNumber(parseXmpRational(first));
      break;
    case integers:
      setArray(arrayOfNumbers(texts, parseInteger));
      break;
    case rationals:
      setArray(arrayOfNumbers(texts, parseXmpRational));
      break;
    case lensInfo:
      setArray(arrayOfNumbers(splitAtBlanks(first), parseXmpRational));
      break;
    case coordinate:
      if (const auto position = parseXmpCoordinate(first)) {
        entries.set(mapping.key, position->degrees);
        entries.set(mapping.secondKey, std::string(1, position->hemisphere));
      }
      break;
    case dateTime:
      if (const auto date = parseXmpDate(first); date && date->time) {
        entries.set(mapping.key, exifDay(*date) + ' ' + exifTime(*date));
      }
      break;
    case iptcDate:
      if (const auto date = parseXmpDate(first)) {
        entries.set(mapping.key, withoutColons(exifDay(*date)));
        if (date->time) entries.set(mapping.secondKey, withoutColons(exifTime(*date)));
      }
      break;
    case gpsDate:
      if (auto date = parseXmpDate(first); date && date->time) {
        date = inUniversalTime(*date);
        entries.set(mapping.key, exifTime(*date));
        entries.set(mapping.secondKey, exifDay(*date));
      }
      break;
    case extensionName:
    case obsolete:
      break;
  }
  return entries;
}

std::vector<std::string> xmpTexts(const XmpMapping& mapping, const Dictionary& dictionary) {
  const Entries entries(mapping, dictionary);
  const Value* value = entries.value();
  if (!value) return {};
  std::vector<std::string> texts;
  switch (mapping.form) {
    case list:
    case integers:
    case rationals:
      return textsOfList(*value, mapping.form);
    case lensInfo: {
      const std::vector<std::string> numbers = textsOfList(*value, rationals);
      std::string joined;
      for (const std::string& number : numbers) joined += (joined.empty() ? "" : " ") + number;
      if (!joined.empty()) texts.push_back(std::move(joined));
      return texts;
    }
    default:
      if (std::optional<std::string> said = textOfEntries(mapping.form, entries)) {
        texts.push_back(*std::move(said));
      }
      return texts;
  }
}

}  // namespace FrameworkUtility::detail
