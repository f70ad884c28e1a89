#include <framework_utility/platform/foundation/property_lists/property_list_readers.h>

#include <framework_utility/platform/foundation/property_lists/base64.h>
#include <framework_utility/platform/foundation/values/equal_keys.h>

#include <expat.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace FrameworkUtility {
namespace {

constexpr std::string_view blanks = " \t\r\n";
/// The one key of a dictionary that stands for a `PropertyListUID`.
constexpr std::string_view uidKey = "CF$UID";

enum class Element {
  plist,
  array,
  dictionary,
  key,
  string,
  integer,
  real,
  date,
  data,
  yes,
  no,
};

constexpr std::array<std::pair<std::string_view, Element>, 11> elements{{
    {"plist", Element::plist},
    {"array", Element::array},
    {"dict", Element::dictionary},
    {"key", Element::key},
    {"string", Element::string},
    {"integer", Element::integer},
    {"real", Element::real},
    {"date", Element::date},
    {"data", Element::data},
    {"true", Element::yes},
    {"false", Element::no},
}};

std::optional<Element> elementNamed(std::string_view name) {
  const auto* const found = std::find_if(
      elements.begin(), elements.end(), [&](const auto& element) { return element.first == name; });
  return found == elements.end() ? std::nullopt : std::optional(found->second);
}

bool hasOnlyBlanks(std::string_view text) {
  return text.find_first_not_of(blanks) == std::string_view::npos;
}

std::string_view trimmed(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
  return text.substr(0, text.find_last_not_of(blanks) + 1);
}

/// `std::from_chars` of the whole text.
template <class T>
std::optional<T> parsed(std::string_view text, auto... format) {
  T number{};
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number, format...);
  return error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

/// Decimal or, after "0x", hexadecimal, with an optional sign.
std::optional<Value> integerFrom(std::string_view text) {
  text = trimmed(text);
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) text.remove_prefix(1);
  const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (isHexadecimal) text.remove_prefix(2);
  const auto magnitude = parsed<std::uint64_t>(text, isHexadecimal ? 16 : 10);
  constexpr std::uint64_t signBit = std::uint64_t{1} << 63;
  if (!magnitude || (isNegative && *magnitude > signBit)) return std::nullopt;
  if (isNegative) return Value(static_cast<std::int64_t>(0 - *magnitude));
  return *magnitude < signBit ? Value(static_cast<std::int64_t>(*magnitude)) : Value(*magnitude);
}

std::optional<Value> realFrom(std::string_view text) {
  text = trimmed(text);
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return std::nullopt;
  }
  const auto number = parsed<double>(text);
  return number ? std::optional<Value>(*number) : std::nullopt;
}

/// "2024-05-17T09:30:00Z".
std::optional<Value> dateFrom(std::string_view text) {
  using namespace std::chrono;
  text = trimmed(text);
  constexpr std::string_view form = "0000-00-00T00:00:00Z";
  if (text.size() != form.size()) return std::nullopt;
  for (std::size_t i = 0; i < form.size(); ++i) {
    const bool isDigit = '0' <= text[i] && text[i] <= '9';
    if (form[i] == '0' ? !isDigit : text[i] != form[i]) return std::nullopt;
  }
  const auto field = [&](std::size_t at, std::size_t size) {
    return *parsed<unsigned>(text.substr(at, size));
  };
  const year_month_day day{year{static_cast<int>(field(0, 4))}, month{field(5, 2)},
                           std::chrono::day{field(8, 2)}};
  const unsigned hour = field(11, 2), minute = field(14, 2), second = field(17, 2);
  if (!day.ok() || hour > 23 || minute > 59 || second > 59) return std::nullopt;
  return Value(Date(sys_days{day} + hours{hour} + minutes{minute} + seconds{second}));
}

std::optional<Value> dataFrom(std::string_view text) {
  auto bytes = detail::bytesFromBase64(text);
  return bytes ? std::optional<Value>(Data(*std::move(bytes))) : std::nullopt;
}

/// A dictionary that stands for an object's number in an archive is that number.
Value uidOrDictionary(Dictionary dictionary) {
  const auto* number = dictionary.size() == 1 ? dictionary.get<Number>(uidKey) : nullptr;
  if (!number || number->kind() == Number::Kind::real || number->doubleValue() < 0) {
    return dictionary;
  }
  return Value(std::make_shared<PropertyListUID>(number->unsignedIntegerValue()));
}

class Reader {
 public:
  Reader(std::span<const std::byte> data, std::size_t depth, detail::ExpansionBudget& budget)
      : data_(data),
        depth_(depth),
        budget_(budget),
        parser_(XML_ParserCreate(nullptr), XML_ParserFree) {}

  std::optional<Value> read() {
    if (!parser_) throw std::bad_alloc();
    XML_SetUserData(parser_.get(), this);
    XML_SetStartDoctypeDeclHandler(parser_.get(), [](void* self, const XML_Char*, const XML_Char*,
                                                     const XML_Char*, int hasDeclarations) {
      // Lists name their document type. What it could declare in place is entities that grow.
      if (hasDeclarations != 0) static_cast<Reader*>(self)->refuse();
    });
    XML_SetSkippedEntityHandler(parser_.get(), [](void* self, const XML_Char*, int) {
      static_cast<Reader*>(self)->refuse();
    });
    XML_SetElementHandler(
        parser_.get(),
        [](void* self, const XML_Char* name, const XML_Char**) {
          static_cast<Reader*>(self)->guarded([&](Reader& reader) { return reader.open(name); });
        },
        [](void* self, const XML_Char*) {
          static_cast<Reader*>(self)->guarded([](Reader& reader) { return reader.close(); });
        });
    XML_SetCharacterDataHandler(parser_.get(), [](void* self, const XML_Char* text, int length) {
      static_cast<Reader*>(self)->guarded([&](Reader& reader) {
        return reader.add({text, static_cast<std::size_t>(length)});
      });
    });
    const bool isWhole = parse();
    if (exception_) std::rethrow_exception(exception_);
    return isWhole ? std::move(top_) : std::nullopt;
  }

 private:
  /// An element that is open, and what it has so far.
  struct Open {
    Element element;
    std::variant<std::string, Array, Dictionary> contents;
    std::optional<std::string> key;  // of a dictionary's next value
  };

  bool parse() {
    constexpr std::size_t largestPiece = std::size_t{1} << 20;  // the parser counts in int
    std::span<const std::byte> rest = data_;
    do {
      const std::span piece = rest.first(std::min(rest.size(), largestPiece));
      rest = rest.subspan(piece.size());
      if (XML_Parse(parser_.get(), reinterpret_cast<const char*>(piece.data()),
                    static_cast<int>(piece.size()), rest.empty()) != XML_STATUS_OK) {
        return false;
      }
    } while (!rest.empty());
    return !isRefused_;
  }

  /// No exception may pass through the parser's frames.
  void guarded(auto handler) {
    if (isRefused_) return;
    try {
      if (!handler(*this)) refuse();
    } catch (...) {
      exception_ = std::current_exception();
      refuse();
    }
  }

  void refuse() {
    isRefused_ = true;
    XML_StopParser(parser_.get(), XML_FALSE);
  }

  // Each says whether the list is still sound.

  bool open(std::string_view name) {
    const std::optional<Element> element = elementNamed(name);
    if (!element || !isExpected(*element) || open_.size() > depth_) return false;
    if (*element != Element::plist && !budget_.spendValues(1)) return false;
    Open& opened = open_.emplace_back(Open{*element, {}, {}});
    if (*element == Element::array) opened.contents = Array();
    if (*element == Element::dictionary) opened.contents = Dictionary();
    return true;
  }

  bool isExpected(Element element) const {
    if (open_.empty()) return element == Element::plist;
    switch (open_.back().element) {
      case Element::plist:
        return element != Element::plist && element != Element::key && !top_;
      case Element::array:
        return element != Element::plist && element != Element::key;
      case Element::dictionary:
        return element != Element::plist &&
               (element == Element::key) == !open_.back().key.has_value();
      default:
        return false;
    }
  }

  bool add(std::string_view text) {
    auto* own = std::get_if<std::string>(&open_.back().contents);
    if (!own || open_.back().element == Element::plist) return hasOnlyBlanks(text);
    if (!budget_.spendBytes(text.size())) return false;
    *own += text;
    return true;
  }

  bool close() {
    Open closed = std::move(open_.back());
    open_.pop_back();
    if (closed.element == Element::plist) return top_.has_value();
    if (closed.element == Element::key) {
      open_.back().key = std::get<std::string>(std::move(closed.contents));
      return true;
    }
    std::optional<Value> value = valueOf(std::move(closed));
    return value && place(*std::move(value));
  }

  static std::optional<Value> valueOf(Open closed) {
    if (auto* array = std::get_if<Array>(&closed.contents)) return Value(std::move(*array));
    if (auto* dictionary = std::get_if<Dictionary>(&closed.contents)) {
      if (closed.key || detail::hasEqualKeys(*dictionary)) return std::nullopt;
      return uidOrDictionary(std::move(*dictionary));
    }
    std::string& text = std::get<std::string>(closed.contents);
    switch (closed.element) {
      case Element::string:
        return Value(std::move(text));
      case Element::integer:
        return integerFrom(text);
      case Element::real:
        return realFrom(text);
      case Element::date:
        return dateFrom(text);
      case Element::data:
        return dataFrom(text);
      default:
        if (!hasOnlyBlanks(text)) return std::nullopt;
        return Value(closed.element == Element::yes);
    }
  }

  bool place(Value value) {
    Open& parent = open_.back();
    if (auto* array = std::get_if<Array>(&parent.contents)) {
      array->push_back(std::move(value));
    } else if (auto* dictionary = std::get_if<Dictionary>(&parent.contents)) {
      dictionary->append(*std::move(parent.key), std::move(value));
      parent.key.reset();
    } else {
      top_ = std::move(value);
    }
    return true;
  }

  std::span<const std::byte> data_;
  std::size_t depth_;
  detail::ExpansionBudget& budget_;
  std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)> parser_;
  std::vector<Open> open_;
  std::optional<Value> top_;
  std::exception_ptr exception_;
  bool isRefused_ = false;
};

/// Whether an XML document can begin so. Making a parser costs system calls, which bytes that are
/// no list at all, as most of a maker note's, are spared.
bool canBeXML(std::span<const std::byte> data) {
  const auto first = std::find_if(data.begin(), data.end(), [](std::byte byte) {
    return byte != std::byte{' '} && byte != std::byte{'\t'} && byte != std::byte{'\n'} &&
           byte != std::byte{'\r'};
  });
  if (first == data.end()) return false;
  switch (std::to_integer<unsigned char>(*first)) {
    case '<':
    case 0xEF:  // the mark of UTF-8
    case 0xFE:  // those of UTF-16
    case 0xFF:
    case 0:  // UTF-16 without one
      return true;
    default:
      return false;
  }
}

}  // namespace

std::optional<Value> detail::readXMLPropertyList(std::span<const std::byte> data, std::size_t depth,
                                                 ExpansionBudget& budget) {
  return canBeXML(data) ? Reader(data, depth, budget).read() : std::nullopt;
}

}  // namespace FrameworkUtility
