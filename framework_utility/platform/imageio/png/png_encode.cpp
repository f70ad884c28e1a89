#include <framework_utility/platform/imageio/png/png_encode.h>

#include <framework_utility/platform/graphics/pixel_buffer.h>
#include <framework_utility/platform/graphics/rgba_rows.h>
#include <framework_utility/platform/imageio/png/png_header.h>
#include <framework_utility/platform/imageio/png/png_text.h>
#include <framework_utility/platform/imageio/png/png_writer.h>
#include <framework_utility/platform/imageio/property_keys.h>
#include <framework_utility/platform/imageio/xmp/xmp_extension.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace FrameworkUtility::detail {

namespace {

/// A chunk's data in the making.
class ChunkData {
 public:
  ChunkData& byte(std::uint32_t value) {
    bytes_.push_back(static_cast<std::byte>(value));
    return *this;
  }
  ChunkData& word(std::uint32_t value) { return byte(value >> 8 & 255).byte(value & 255); }
  ChunkData& number(std::uint32_t value) { return word(value >> 16).word(value & 0xFFFF); }
  ChunkData& text(std::string_view text) { return append(std::as_bytes(std::span(text))); }
  ChunkData& append(std::span<const std::byte> bytes) {
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    return *this;
  }

  operator std::span<const std::byte>() const { return bytes_; }

 private:
  std::vector<std::byte> bytes_;
};

/// Absent for text with a character beyond U+00FF.
std::optional<std::string> latin1FromUtf8(std::string_view text) {
  std::string latin1;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    if (c < 0x80) {
      latin1 += text[i];
    } else if ((c == 0xC2 || c == 0xC3) && i + 1 < text.size() &&
               (static_cast<unsigned char>(text[i + 1]) & 0xC0) == 0x80) {
      latin1 += static_cast<char>((c & 3) << 6 | (static_cast<unsigned char>(text[++i]) & 0x3F));
    } else {
      return std::nullopt;
    }
  }
  return latin1;
}

bool writeText(PngWriter& writer, std::string_view keyword, std::string text) {
  std::erase(text, '\0');  // no text chunk can hold one
  if (const std::optional<std::string> latin1 = latin1FromUtf8(text)) {
    return writer.writeChunk("tEXt", ChunkData().text(keyword).byte(0).text(*latin1));
  }
  // Neither compressed nor of a certain language.
  return writer.writeChunk("iTXt",
                           ChunkData().text(keyword).byte(0).word(0).byte(0).byte(0).text(text));
}

bool writeTime(PngWriter& writer, const std::string& text) {
  std::array<unsigned, 6> t{};
  char rest = 0;
  if (std::sscanf(text.c_str(), "%4u:%2u:%2u %2u:%2u:%2u%c", &t[0], &t[1], &t[2], &t[3], &t[4],
                  &t[5], &rest) != 6 ||
      t[1] < 1 || t[1] > 12 || t[2] < 1 || t[2] > 31 || t[3] > 23 || t[4] > 59 || t[5] > 60) {
    return true;  // not a time: nothing to write
  }
  return writer.writeChunk(
      "tIME", ChunkData().word(t[0]).byte(t[1]).byte(t[2]).byte(t[3]).byte(t[4]).byte(t[5]));
}

std::optional<std::uint32_t> asResolution(double value) {
  if (!(value >= 1 && value <= 0x7FFFFFFF)) return std::nullopt;
  return static_cast<std::uint32_t>(std::round(value));
}

/// Dots a metre: what a file said, unless the dots an inch say something else.
std::optional<std::uint32_t> resolution(const Number* perMetre, const Number* perInch) {
  const auto stored = perMetre ? asResolution(perMetre->doubleValue()) : std::nullopt;
  if (!perInch || (stored && perInch->doubleValue() == pngDotsPerInch(*stored))) return stored;
  return asResolution(perInch->doubleValue() / 0.0254);
}

bool writeResolution(PngWriter& writer, const Dictionary& properties, const Dictionary& png) {
  const auto x = resolution(png.get<Number>("XPixelsPerMeter"), properties.get<Number>("DPIWidth"));
  const auto y =
      resolution(png.get<Number>("YPixelsPerMeter"), properties.get<Number>("DPIHeight"));
  if (!x || !y) return true;
  return writer.writeChunk("pHYs", ChunkData().number(*x).number(*y).byte(1));
}

/// What the components mean. A profile that every reader knows without it becomes a few bytes.
bool writeColorSpace(PngWriter& writer, const Data& profile, bool isGray) {
  const CGColorSpace plain =
      isGray ? CGColorSpace::createDeviceGray() : CGColorSpace::createDeviceRGB();
  if (profile.empty() || profile == plain.iccData()) {
    constexpr std::uint32_t gammaOf22 = 45455;
    const bool done = writer.writeChunk("gAMA", ChunkData().number(gammaOf22));
    return isGray ? done : done && writer.writeChunk("sRGB", ChunkData().byte(0));
  }
  const std::vector<std::byte> packed = deflated(profile);
  if (packed.empty()) return false;
  return writer.writeChunk("iCCP", ChunkData().text("ICC profile").byte(0).byte(0).append(packed));
}

bool writeMetadata(PngWriter& writer, const EncodeRequest& request, const Dictionary& png) {
  const MetadataBlocks& blocks = request.blocks;
  if (!blocks.exif.empty() && !writer.writeChunk("eXIf", blocks.exif)) return false;
  const Data xmp =
      blocks.extendedXmp.empty() ? blocks.xmp : joinedXmp(blocks.xmp, blocks.extendedXmp);
  if (!xmp.empty() &&
      !writer.writeChunk(
          "iTXt", ChunkData().text(pngXmpKeyword).byte(0).word(0).byte(0).byte(0).append(xmp))) {
    return false;
  }
  if (!blocks.imageResources.empty()) {
    const std::string text = rawProfile("iptc", blocks.imageResources);
    if (!writer.writeChunk("zTXt", ChunkData()
                                       .text("Raw profile type iptc")
                                       .byte(0)
                                       .byte(0)
                                       .append(deflated(std::as_bytes(std::span(text)))))) {
      return false;
    }
  }
  for (const std::string_view keyword : pngTextKeywords) {
    const auto* text = png.get<std::string>(keyword);
    if (text && !writeText(writer, keyword, *text)) return false;
  }
  const auto* time = png.get<std::string>("ModificationTime");
  return !time || writeTime(writer, *time);
}

/// Red, green, blue, alpha to what the file holds of them; grey is red.
template <class Component>
void packRow(const Component* rgba, std::size_t pixels, std::size_t components, std::uint8_t* row) {
  const std::size_t colors = components < 3 ? 1 : 3;
  const auto put = [&row](Component value) {
    if constexpr (sizeof(Component) == 2) *row++ = static_cast<std::uint8_t>(value >> 8);
    *row++ = static_cast<std::uint8_t>(value);
  };
  for (std::size_t x = 0; x < pixels; ++x, rgba += 4) {
    for (std::size_t c = 0; c < colors; ++c) put(rgba[c]);
    if (components > colors) put(rgba[3]);
  }
}

template <class Component>
bool writeRows(PngWriter& writer, const CGImage& image, const RGBARows& rows,
               std::size_t components) {
  auto rgba = PixelBuffer::allocate(image.width(), 4 * sizeof(Component));
  auto row = PixelBuffer::allocate(image.width(), components * sizeof(Component));
  if (!rgba || !row) return false;
  auto* pixels = reinterpret_cast<Component*>(rgba->data());
  for (std::size_t y = 0; y < image.height(); ++y) {
    rows.read(y, pixels);
    packRow(pixels, image.width(), components, row->data());
    if (!writer.writeRow(row->data())) return false;
  }
  return true;
}

bool encode(const CGImage& image, const EncodeRequest& request, std::vector<std::byte>& out,
            Error* error) {
  const std::optional<RGBARows> rows = RGBARows::of(image, AlphaForm::straight);
  if (!rows) return cannotEncode("PNG cannot hold the colours of this image", error);
  if (image.width() > 0x7FFFFFFF || image.height() > 0x7FFFFFFF)
    return cannotEncode("a side of more than 2147483647 pixels does not fit into PNG", error);
  const std::optional<CGColorSpace>& space = image.colorSpace();
  const bool isGray = !space || space->model() == CGColorSpaceModel::monochrome;
  const bool isCmyk = space && space->model() == CGColorSpaceModel::cmyk;
  const std::size_t components = (isGray ? 1U : 3U) + (carriesAlpha(image.alphaInfo()) ? 1U : 0U);
  const bool isWide = image.layout().bitsPerComponent == 16;
  const auto* found = request.properties.get<Dictionary>(kCGImagePropertyPNGDictionary);
  const Dictionary png = found ? *found : Dictionary();

  PngWriter writer(out);
  // The inks' profile says nothing of the light that they became.
  const bool isWhole = writer.start({static_cast<std::uint32_t>(image.width()),
                                     static_cast<std::uint32_t>(image.height()), isWide ? 16 : 8,
                                     static_cast<int>(components)}) &&
                       writeColorSpace(writer, isCmyk ? Data() : request.iccProfile, isGray) &&
                       writeResolution(writer, request.properties, png) &&
                       writeMetadata(writer, request, png) &&
                       (isWide ? writeRows<std::uint16_t>(writer, image, *rows, components)
                               : writeRows<std::uint8_t>(writer, image, *rows, components)) &&
                       writer.finish();
  return isWhole || cannotEncode(writer.problem(), error);
}

}  // namespace

bool encodePng(const CGImage& image, const EncodeRequest& request, std::vector<std::byte>& out,
               Error* error) {
  try {
    return encode(image, request, out, error);
  } catch (const std::bad_alloc&) {
    return cannotEncode(pngMemoryIsShort, error);
  }
}

}  // namespace FrameworkUtility::detail
