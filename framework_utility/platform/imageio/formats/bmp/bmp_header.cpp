#include <framework_utility/platform/imageio/formats/bmp/bmp_header.h>

#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <framework_utility/platform/imageio/formats/dots_per_inch.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <initializer_list>
#include <iterator>
#include <utility>

namespace FrameworkUtility::detail {

namespace {

constexpr std::size_t fileHeaderSize = 14;

// The sizes of the headers behind that of the file, by which they are told apart.
constexpr std::uint32_t os2First = 12;
constexpr std::uint32_t os2Short = 16;  // only what the first has, with sides of 32 bits
constexpr std::uint32_t windows3 = 40;
constexpr std::uint32_t os2Second = 64;
constexpr std::uint32_t windows5 = 124;
constexpr std::uint32_t headerSizes[] = {os2First, os2Short,  windows3, 52,
                                         56,       os2Second, 108,      windows5};

constexpr std::size_t maximumProfileSize = std::size_t{32} << 20;

/// The values of the field that mean the same in all headers or, of the last two, in those of
/// Windows.
enum class Compression : std::uint32_t {
  none = 0,
  rle8 = 1,
  rle4 = 2,
  bitFields = 3,
  alphaBitFields = 6,
};

/// As much as the largest header takes; fields that the file's own does not have are not asked for.
Data beginningOf(const ByteSource& source) { return source.bytes(0, fileHeaderSize + windows5); }

ByteReader readerOf(std::span<const std::byte> beginning) {
  return ByteReader(beginning, std::endian::little);
}

std::uint32_t headerSizeOf(const ByteReader& file) { return file.at<std::uint32_t>(14); }

Compression compressionOf(const ByteReader& file) {
  return headerSizeOf(file) < windows3 ? Compression::none
                                       : Compression{file.at<std::uint32_t>(30)};
}

/// The header of Windows 3 has none of its own.
std::size_t masksBehindHeader(const ByteReader& file) {
  if (headerSizeOf(file) != windows3) return 0;
  const Compression compression = compressionOf(file);
  return compression == Compression::bitFields        ? 12
         : compression == Compression::alphaBitFields ? 16
                                                      : 0;
}

/// Whether there are no holes between the bits.
bool isOneField(std::uint32_t mask) {
  const std::uint32_t field = mask >> (mask == 0 ? 0 : std::countr_zero(mask));
  return (field & (field + 1)) == 0;
}

void readMasks(const ByteReader& file, BmpPixels& pixels) {
  const bool areGiven = compressionOf(file) != Compression::none;
  const bool hasAlpha = headerSizeOf(file) >= 56 || masksBehindHeader(file) == 16;
  if (!areGiven && pixels.bitsPerPixel == 16) {
    pixels.masks = {0x7C00, 0x03E0, 0x001F, 0};
  } else if (!areGiven) {
    pixels.masks = {0xFF0000, 0x00FF00, 0x0000FF, 0};
  } else {
    // They stand at the same place within a header and behind one.
    for (std::size_t i = 0; i < (hasAlpha ? 4 : 3); ++i) {
      // The header of a file with 16 bits may well name an alpha that lies beyond them.
      pixels.masks[i] =
          file.at<std::uint32_t>(54 + 4 * i) & (0xFFFF'FFFF >> (32 - pixels.bitsPerPixel));
    }
  }
}

BmpCoding codingOf(const ByteReader& file, const BmpPixels& pixels) {
  const unsigned bits = pixels.bitsPerPixel;
  const auto are = [&](BmpCoding coding, std::initializer_list<unsigned> depths) {
    return std::find(depths.begin(), depths.end(), bits) != depths.end() ? coding
                                                                         : BmpCoding::unsupported;
  };
  switch (compressionOf(file)) {
    case Compression::none:
      return are(BmpCoding::plain, {1, 2, 4, 8, 16, 24, 32});
    case Compression::rle8:
      return are(BmpCoding::runs, {8});
    case Compression::rle4:
      return are(BmpCoding::runs, {4});
    case Compression::bitFields:
    case Compression::alphaBitFields:
      if (headerSizeOf(file) == os2Second) return BmpCoding::unsupported;
      return are(BmpCoding::plain, {16, 24, 32});
  }
  return BmpCoding::unsupported;
}

}  // namespace

bool hasBmpSignature(std::span<const std::byte> beginning) {
  const ByteReader file = readerOf(beginning);
  return file.startsWith("BM") &&
         (!file.holds(fileHeaderSize, 4) ||
          std::count(std::begin(headerSizes), std::end(headerSizes), headerSizeOf(file)) > 0);
}

BmpPixels readBmpPixels(const ByteSource& source) {
  const Data beginning = beginningOf(source);
  const ByteReader file = readerOf(beginning);
  BmpPixels pixels;
  if (!hasBmpSignature(beginning)) return pixels;
  const std::uint32_t headerSize = headerSizeOf(file);
  pixels.paletteOffset = fileHeaderSize + headerSize + masksBehindHeader(file);
  pixels.status = CGImageSourceStatus::incomplete;
  if (headerSize == 0 || pixels.paletteOffset > source.size()) return pixels;

  const bool isFirst = headerSize == os2First;
  const std::int64_t width = isFirst ? file.at<std::uint16_t>(18) : file.at<std::int32_t>(18);
  const std::int64_t height = isFirst ? file.at<std::uint16_t>(20) : file.at<std::int32_t>(22);
  pixels.offset = file.at<std::uint32_t>(10);
  if (width <= 0 || height == 0 || pixels.offset < pixels.paletteOffset) {
    pixels.status = CGImageSourceStatus::invalidData;
    return pixels;
  }
  pixels.size = {static_cast<std::size_t>(width), static_cast<std::size_t>(std::abs(height))};
  pixels.isTopDown = height < 0;
  pixels.bitsPerPixel = file.at<std::uint16_t>(isFirst ? 24 : 28);
  pixels.coding = codingOf(file, pixels);
  if (pixels.isIndexed()) {
    const std::uint64_t most = std::uint64_t{1} << pixels.bitsPerPixel;
    const std::uint64_t used = headerSize < windows3 ? 0 : file.at<std::uint32_t>(46);
    pixels.colorSize = isFirst ? 3 : 4;
    pixels.paletteSize = static_cast<std::size_t>(
        std::min({used == 0 ? most : used, most,
                  (pixels.offset - pixels.paletteOffset) / pixels.colorSize}));
  } else if (pixels.coding == BmpCoding::plain) {
    readMasks(file, pixels);
    if (!std::all_of(pixels.masks.begin(), pixels.masks.end(), isOneField)) {
      pixels.coding = BmpCoding::unsupported;
    }
  }
  if (pixels.offset < source.size()) pixels.status = CGImageSourceStatus::complete;
  return pixels;
}

ImageHeader readBmpHeader(const ByteSource& source) {
  const BmpPixels pixels = readBmpPixels(source);
  ImageHeader header;
  header.status = pixels.status;
  if (header.status != CGImageSourceStatus::complete) return header;
  header.size = pixels.size;
  header.hasAlpha = pixels.masks[3] != 0;
  header.isIndexed = pixels.isIndexed();

  const Data beginning = beginningOf(source);
  const ByteReader file = readerOf(beginning);
  const std::uint32_t headerSize = headerSizeOf(file);
  if (headerSize >= windows3) {
    const auto x = file.at<std::int32_t>(38);
    const auto y = file.at<std::int32_t>(42);
    if (x > 0 && y > 0) {
      header.formatProperties.set(kCGImagePropertyDPIWidth,
                                  dotsPerInch(static_cast<std::uint32_t>(x)));
      header.formatProperties.set(kCGImagePropertyDPIHeight,
                                  dotsPerInch(static_cast<std::uint32_t>(y)));
    }
  }
  if (headerSize == windows5 && file.at<std::uint32_t>(70) == fourCharCode("MBED")) {
    const std::uint64_t offset = fileHeaderSize + std::uint64_t{file.at<std::uint32_t>(126)};
    const auto size = file.at<std::uint32_t>(130);
    Data profile = size <= maximumProfileSize ? source.bytes(offset, size) : Data();
    if (profile.size() == size) header.iccProfile = std::move(profile);
  }
  return header;
}

}  // namespace FrameworkUtility::detail
