#include <framework_utility/platform/imageio/formats/png/png_text.h>

#include <framework_utility/platform/foundation/values/utf8.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

#include <zlib.h>

namespace FrameworkUtility::detail {

namespace {

/// What follows the next NUL; absent without one.
std::optional<std::span<const std::byte>> behindNul(std::span<const std::byte> bytes) {
  const auto nul = std::find(bytes.begin(), bytes.end(), std::byte{0});
  if (nul == bytes.end()) return std::nullopt;
  return bytes.subspan(static_cast<std::size_t>(nul - bytes.begin()) + 1);
}

struct Inflation {
  z_stream stream{};
  bool isReady = false;

  Inflation() { isReady = inflateInit(&stream) == Z_OK; }
  Inflation(const Inflation&) = delete;
  Inflation& operator=(const Inflation&) = delete;
  ~Inflation() {
    if (isReady) inflateEnd(&stream);
  }
};

std::optional<std::vector<std::byte>> inflate(std::span<const std::byte> bytes,
                                              InflationBudget& budget) {
  Inflation inflation;
  if (!inflation.isReady || bytes.size() > 0x7FFFFFFF) return std::nullopt;
  z_stream& stream = inflation.stream;
  stream.next_in = const_cast<Bytef*>(reinterpret_cast<const Bytef*>(bytes.data()));
  stream.avail_in = static_cast<uInt>(bytes.size());
  std::vector<std::byte> result;
  std::array<std::byte, 16384> piece;
  for (;;) {
    stream.next_out = reinterpret_cast<Bytef*>(piece.data());
    stream.avail_out = static_cast<uInt>(piece.size());
    const int status = ::inflate(&stream, Z_NO_FLUSH);
    const std::size_t count = piece.size() - stream.avail_out;
    if (count > budget.bytes) {
      budget.bytes = 0;
      budget.isExceeded = true;
      return std::nullopt;
    }
    budget.bytes -= count;
    result.insert(result.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(count));
    if (status == Z_STREAM_END) return result;
    if (status != Z_OK || count == 0) return std::nullopt;
  }
}

/// The text of an iTXt chunk from behind its keyword: whether it is compressed, how, its language
/// and the keyword in that language.
std::optional<PngText> internationalText(const Data& chunk, std::span<const std::byte> bytes,
                                         InflationBudget& budget) {
  if (bytes.size() < 2) return std::nullopt;
  const bool isCompressed = bytes[0] != std::byte{0};
  const auto translated = behindNul(bytes.subspan(2));
  const auto body = translated ? behindNul(*translated) : std::nullopt;
  if (!body) return std::nullopt;
  if (!isCompressed) return PngText{suffix(chunk, chunk.size() - body->size())};
  auto text = bytes[1] == std::byte{0} ? inflated(*body, budget) : std::nullopt;
  return text ? std::optional(PngText{Data(std::move(*text))}) : std::nullopt;
}

/// -1 for what is no hexadecimal digit.
int digitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

std::optional<std::vector<std::byte>> inflated(std::span<const std::byte> stream,
                                               InflationBudget& budget) {
  try {
    return inflate(stream, budget);
  } catch (const std::bad_alloc&) {
    return std::nullopt;
  }
}

std::vector<std::byte> deflated(std::span<const std::byte> bytes) {
  try {
    uLongf size = compressBound(static_cast<uLong>(bytes.size()));
    std::vector<std::byte> result(size);
    if (compress(reinterpret_cast<Bytef*>(result.data()), &size,
                 reinterpret_cast<const Bytef*>(bytes.data()),
                 static_cast<uLong>(bytes.size())) != Z_OK) {
      return {};
    }
    result.resize(size);
    return result;
  } catch (const std::bad_alloc&) {
    return {};
  }
}

std::string_view pngKeyword(std::span<const std::byte> chunk) {
  constexpr std::size_t longest = 79;
  const std::string_view text = asText(chunk.first(std::min(chunk.size(), longest + 1)));
  const std::size_t end = text.find('\0');
  return end == std::string_view::npos ? std::string_view() : text.substr(0, end);
}

std::string PngText::utf8() const {
  return isLatin1 ? utf8::fromLatin1(asText(bytes)) : std::string(asText(bytes));
}

std::optional<PngText> pngText(std::uint32_t type, const Data& chunk, InflationBudget& budget) {
  const auto body = behindNul(chunk);
  if (!body) return std::nullopt;
  switch (type) {
    case pngType("tEXt"):
      return PngText{suffix(chunk, chunk.size() - body->size()), true};
    case pngType("zTXt"): {
      if (body->empty() || body->front() != std::byte{0}) return std::nullopt;
      auto text = inflated(body->subspan(1), budget);
      return text ? std::optional(PngText{Data(std::move(*text)), true}) : std::nullopt;
    }
    case pngType("iTXt"):
      return internationalText(chunk, *body, budget);
    default:
      return std::nullopt;
  }
}

Data suffix(const Data& whole, std::size_t begin) {
  return Data::withBytesNoCopy(std::span<const std::byte>(whole).subspan(begin),
                               std::make_shared<const Data>(whole));
}

std::optional<Data> pngProfile(std::span<const std::byte> chunk, InflationBudget& budget) {
  const auto body = behindNul(chunk);
  if (!body || body->empty() || body->front() != std::byte{0}) return std::nullopt;
  auto profile = inflated(body->subspan(1), budget);
  return profile ? std::optional(Data(std::move(*profile))) : std::nullopt;
}

std::optional<std::vector<std::byte>> bytesOfRawProfile(std::string_view text) {
  constexpr std::string_view blank = " \n\r\t";
  text.remove_prefix(std::min(text.find_first_not_of('\n'), text.size()));
  text.remove_prefix(std::min(text.find('\n'), text.size()));  // the name, which the keyword has
  text.remove_prefix(std::min(text.find_first_not_of(blank), text.size()));
  std::size_t count = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
  if (error != std::errc() || count > text.size() / 2) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  std::vector<std::byte> bytes;
  bytes.reserve(count);
  int high = -1;
  for (std::size_t i = 0; i < text.size() && bytes.size() < count; ++i) {
    if (blank.find(text[i]) != std::string_view::npos) continue;
    const int low = digitValue(text[i]);
    if (low < 0) return std::nullopt;
    if (high >= 0) bytes.push_back(static_cast<std::byte>(high << 4 | low));
    high = high >= 0 ? -1 : low;
  }
  if (bytes.size() < count) return std::nullopt;
  return bytes;
}

std::string rawProfile(std::string_view name, std::span<const std::byte> bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  constexpr std::size_t bytesPerLine = 36;
  const std::string count = std::to_string(bytes.size());
  std::string text;
  text.reserve(name.size() + count.size() + 16 + 2 * bytes.size() + bytes.size() / bytesPerLine);
  text += '\n';
  text += name;
  text += '\n';
  text.append(count.size() < 8 ? 8 - count.size() : 0, ' ');
  text += count;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i % bytesPerLine == 0) text += '\n';
    text += digits[std::to_integer<std::size_t>(bytes[i] >> 4)];
    text += digits[std::to_integer<std::size_t>(bytes[i] & std::byte{15})];
  }
  text += '\n';
  return text;
}

}  // namespace FrameworkUtility::detail
