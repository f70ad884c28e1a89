#include <framework_utility/platform/imageio/formats/png/png_encode.h>

#include <framework_utility/platform/foundation/app/uniform_type.h>
#include <framework_utility/platform/foundation/values/byte_writer.h>
#include <framework_utility/platform/foundation/values/utf8.h>
#include <framework_utility/platform/graphics/pixel_buffer.h>
#include <framework_utility/platform/graphics/rgba_rows.h>
#include <framework_utility/platform/imageio/formats/dots_per_inch.h>
#include <framework_utility/platform/imageio/formats/png/png_header.h>
#include <framework_utility/platform/imageio/formats/png/png_text.h>
#include <framework_utility/platform/imageio/formats/png/png_writer.h>
#include <framework_utility/platform/imageio/metadata/exif/exif.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>
#include <framework_utility/platform/imageio/metadata/xmp/xmp_extension.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <map>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace FrameworkUtility::detail {

namespace {

/// The beginning of a chunk of text: the NUL behind the keyword, and that it is compressed in the
/// one way that there is.
ByteWriter packedText(std::string_view keyword) {
  return ByteWriter().put(keyword).putNumber(0, 2);
}
/// Of an iTXt chunk: neither compressed nor of a certain language.
ByteWriter internationalText(std::string_view keyword) {
  return ByteWriter().put(keyword).putNumber(0, 5);
}

bool isOfPng(const EncodeRequest& request) {
  return request.blocks.format == UTTypePNG.identifier();
}

std::span<const FormatPart> partsOf(const EncodeRequest& request) {
  return isOfPng(request) ? std::span(request.blocks.formatParts) : std::span<const FormatPart>();
}

bool writeText(PngWriter& writer, std::string_view keyword, std::string text) {
  std::erase(text, '\0');  // no text chunk can hold one
  if (const std::optional<std::string> latin1 = utf8::toLatin1(text)) {
    return writer.writeChunk("tEXt", ByteWriter().put(keyword).putNumber(0, 1).put(*latin1));
  }
  return writer.writeChunk("iTXt", internationalText(keyword).put(text));
}

bool writeTime(PngWriter& writer, const std::string& text) {
  std::array<unsigned, 6> t{};
  char rest = 0;
  if (std::sscanf(text.c_str(), "%4u:%2u:%2u %2u:%2u:%2u%c", &t[0], &t[1], &t[2], &t[3], &t[4],
                  &t[5], &rest) != 6 ||
      t[1] < 1 || t[1] > 12 || t[2] < 1 || t[2] > 31 || t[3] > 23 || t[4] > 59 || t[5] > 60) {
    return true;  // not a time: nothing to write
  }
  ByteWriter data;
  data.putNumber(t[0], 2);
  for (std::size_t i = 1; i < t.size(); ++i) data.putNumber(t[i], 1);
  return writer.writeChunk("tIME", data);
}

std::optional<std::uint32_t> asResolution(double value) {
  if (!(value >= 1 && value <= 0x7FFFFFFF)) return std::nullopt;
  return static_cast<std::uint32_t>(std::round(value));
}

/// Dots a metre of `png`, what a PNG said of itself, unless the dots an inch are neither these nor
/// those of "{TIFF}". A PNG that did not say any says none because of "{TIFF}".
std::optional<std::uint32_t> resolution(const EncodeRequest& request, const Dictionary& png,
                                        std::string_view metreKey, std::string_view inchKey,
                                        std::string_view tiffKey) {
  const Number* perMetre = png.get<Number>(metreKey);
  const Number* perInch = request.properties.get<Number>(inchKey);
  const auto stored = perMetre ? asResolution(perMetre->doubleValue()) : std::nullopt;
  if (!perInch) return stored;
  const double dots = perInch->doubleValue();
  const bool isTiffs = dots == tiffDotsPerInch(request.properties, tiffKey);
  if (stored ? isTiffs || dots == dotsPerInch(*stored) : isTiffs && isOfPng(request)) return stored;
  return asResolution(dots / 0.0254);
}

bool writeResolution(PngWriter& writer, const EncodeRequest& request, const Dictionary& png) {
  const auto x = resolution(request, png, kCGImagePropertyPNGXPixelsPerMeter,
                            kCGImagePropertyDPIWidth, kCGImagePropertyTIFFXResolution);
  const auto y = resolution(request, png, kCGImagePropertyPNGYPixelsPerMeter,
                            kCGImagePropertyDPIHeight, kCGImagePropertyTIFFYResolution);
  if (x && y) {
    return writer.writeChunk(
        "pHYs", ByteWriter().put<std::uint32_t>(*x).put<std::uint32_t>(*y).put<std::uint8_t>(1));
  }
  for (const FormatPart& part : partsOf(request)) {
    if (part.kind == pngType("pHYs")) return writer.writeChunk("pHYs", part.contents);
  }
  return true;
}

/// sRGB as a PNG's chunks say it. Of one that said less about its pixels, without a profile, no
/// more is said.
bool writeStandardColors(PngWriter& writer, const EncodeRequest& request, const Dictionary& png,
                         bool isGray) {
  const bool isAsBefore = isOfPng(request) && !request.properties.find(kCGImagePropertyProfileName);
  const auto isSaid = [&](std::string_view key) { return !isAsBefore || png.find(key); };
  constexpr std::uint32_t gammaOf22 = 45455;
  if (isSaid(kCGImagePropertyPNGGamma) &&
      !writer.writeChunk("gAMA", ByteWriter().put<std::uint32_t>(gammaOf22))) {
    return false;
  }

  constexpr std::array<std::uint32_t, 8> primaries = {31270, 32900, 64000, 33000,
                                                      30000, 60000, 15000, 6000};
  if (const auto* said = png.get<Array>(kCGImagePropertyPNGChromaticities); said && isAsBefore) {
    const bool isThese =
        std::equal(said->begin(), said->end(), primaries.begin(), primaries.end(),
                   [](const Value& value, std::uint32_t exact) {
                     const Number* number = value.as<Number>();
                     return number && std::abs(number->doubleValue() * 100'000 - exact) < 100;
                   });
    ByteWriter data;
    for (const std::uint32_t number : primaries) data.put<std::uint32_t>(number);
    if (isThese && !writer.writeChunk("cHRM", data)) return false;
  }

  const Number* intent = png.get<Number>(kCGImagePropertyPNGsRGBIntent);
  const double number = intent ? intent->doubleValue() : 0;
  const auto known = number >= 0 && number <= 3 ? static_cast<std::uint32_t>(number) : 0;
  return isGray || !isSaid(kCGImagePropertyPNGsRGBIntent) ||
         writer.writeChunk("sRGB", ByteWriter().putNumber(known, 1));
}

/// What the components mean. A profile that every reader knows without it becomes a few bytes.
bool writeColorSpace(PngWriter& writer, const Data& profile, bool isGray,
                     const EncodeRequest& request, const Dictionary& png) {
  const CGColorSpace plain =
      isGray ? CGColorSpace::createDeviceGray() : CGColorSpace::createDeviceRGB();
  if (profile.empty() || profile == plain.iccData()) {
    return writeStandardColors(writer, request, png, isGray);
  }
  const std::vector<std::byte> packed = deflated(profile);
  if (packed.empty()) return false;
  return writer.writeChunk("iCCP", packedText("ICC profile").put(packed));
}

/// The parts as they were, the texts among them that nobody changed, and the changed and new texts.
/// Of several with one keyword the first counts, and the others follow it.
bool writeParts(PngWriter& writer, const EncodeRequest& request, const Dictionary& png) {
  std::map<std::string_view, bool> isKept;  // of each keyword, once it has been met
  const auto isProperty = [](std::string_view keyword) {
    return std::find(pngTextKeywords.begin(), pngTextKeywords.end(), keyword) !=
           pngTextKeywords.end();
  };
  InflationBudget budget;
  MetadataBudget texts;
  for (const FormatPart& part : partsOf(request)) {
    if (part.kind == pngType("pHYs")) continue;  // has been asked for its resolution
    const std::string_view keyword = isPngText(part.kind) ? pngKeyword(part.contents) : "";
    if (isProperty(keyword) && !isKept.contains(keyword)) {
      const std::optional<PngText> text = pngText(part.kind, part.contents, budget);
      if (!text && !budget.isExceeded) continue;
      const auto* wanted = png.get<std::string>(keyword);
      // One that was left out when the file was read is no less there.
      const bool isRead = text && text->isWithin(texts);
      isKept[keyword] = isRead ? wanted && *wanted == text->utf8() : !wanted;
    }
    if (isProperty(keyword) && !isKept[keyword]) continue;
    if (!writer.writeChunk(part.kind, part.contents)) return false;
  }
  for (const std::string_view keyword : pngTextKeywords) {
    const auto* text = png.get<std::string>(keyword);
    if (text && !isKept[keyword] && !writeText(writer, keyword, *text)) return false;
  }
  return true;
}

bool writeMetadata(PngWriter& writer, const EncodeRequest& request, const Dictionary& png) {
  const MetadataBlocks& blocks = request.blocks;
  if (!blocks.exif.empty() && !writer.writeChunk("eXIf", blocks.exif)) return false;
  const Data xmp =
      blocks.extendedXmp.empty() ? blocks.xmp : joinedXmp(blocks.xmp, blocks.extendedXmp);
  if (!xmp.empty() && !writer.writeChunk("iTXt", internationalText(pngXmpKeyword).put(xmp))) {
    return false;
  }
  if (!blocks.imageResources.empty()) {
    const std::string text = rawProfile("iptc", blocks.imageResources);
    if (!writer.writeChunk(
            "zTXt",
            packedText("Raw profile type iptc").put(deflated(std::as_bytes(std::span(text)))))) {
      return false;
    }
  }
  if (!writeParts(writer, request, png)) return false;
  const auto* time = png.get<std::string>(kCGImagePropertyPNGModificationTime);
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
            std::string& problem) {
  const std::optional<RGBARows> rows = RGBARows::of(image, AlphaForm::straight);
  if (!rows) return cannotEncode("PNG cannot hold the colours of this image", problem);
  if (image.width() > 0x7FFFFFFF || image.height() > 0x7FFFFFFF) {
    return cannotEncode("a side of more than 2147483647 pixels does not fit into PNG", problem);
  }
  const std::optional<CGColorSpace>& space = image.colorSpace();
  const bool isGray = !space || space->model() == CGColorSpaceModel::monochrome;
  const bool isCmyk = space && space->model() == CGColorSpaceModel::cmyk;
  const std::size_t components = (isGray ? 1U : 3U) + (carriesAlpha(image.alphaInfo()) ? 1U : 0U);
  const bool isWide = image.layout().bitsPerComponent == 16;
  const auto* found = request.properties.get<Dictionary>(kCGImagePropertyPNGDictionary);
  const Dictionary png = found ? *found : Dictionary();

  PngWriter writer(out);
  // The inks' profile says nothing of the light that they became.
  const bool isWhole =
      writer.start({static_cast<std::uint32_t>(image.width()),
                    static_cast<std::uint32_t>(image.height()), isWide ? 16 : 8,
                    static_cast<int>(components)}) &&
      writeColorSpace(writer, isCmyk ? Data() : request.iccProfile, isGray, request, png) &&
      writeResolution(writer, request, png) && writeMetadata(writer, request, png) &&
      (isWide ? writeRows<std::uint16_t>(writer, image, *rows, components)
              : writeRows<std::uint8_t>(writer, image, *rows, components)) &&
      writer.finish();
  return isWhole || cannotEncode(writer.problem(), problem);
}

}  // namespace

bool encodePng(const CGImage& image, const EncodeRequest& request, std::vector<std::byte>& out,
               std::string& problem) {
  try {
    return encode(image, request, out, problem);
  } catch (const std::bad_alloc&) {
    return cannotEncode(pngMemoryIsShort, problem);
  }
}

}  // namespace FrameworkUtility::detail
