#include <tests/imageio/pictures.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <span>
#include <stdexcept>

namespace FrameworkUtility::testing {
namespace {

void appendBigEndian(std::vector<std::byte>& out, std::uint32_t value, int bytes) {
  for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8) {
    out.push_back(static_cast<std::byte>(value >> shift & 0xFF));
  }
}

void append(std::vector<std::byte>& out, std::string_view text) {
  const auto bytes = std::as_bytes(std::span(text));
  out.insert(out.end(), bytes.begin(), bytes.end());
}

/// One directory with two texts, each with its NUL: Software (0x0131) and a private tag.
std::vector<std::byte> tiffBlock(const std::string& software, const std::string& unknown) {
  std::vector<std::byte> block;
  append(block, "MM");
  appendBigEndian(block, 42, 2);
  appendBigEndian(block, 8, 4);
  constexpr std::uint32_t entries = 2;
  std::uint32_t offset = 8 + 2 + 12 * entries + 4;
  appendBigEndian(block, entries, 2);
  for (const auto& [tag, text] : {std::pair{0x0131u, software}, {0xC6FEu, unknown}}) {
    const auto length = static_cast<std::uint32_t>(text.size() + 1);
    appendBigEndian(block, tag, 2);
    appendBigEndian(block, 2, 2);  // ASCII
    appendBigEndian(block, length, 4);
    appendBigEndian(block, offset, 4);
    offset += length + length % 2;
  }
  appendBigEndian(block, 0, 4);
  for (const std::string& text : {software, unknown}) {
    append(block, text);
    appendBigEndian(block, 0, text.size() % 2 == 0 ? 2 : 1);
  }
  return block;
}

}  // namespace

CGImage redAndBlue(std::size_t width, std::size_t height) {
  std::vector<std::byte> pixels;
  pixels.reserve(width * height * 4);
  for (std::size_t i = 0; i < width * height; ++i) {
    const bool left = i % width < width / 2;
    for (const int component : {left ? 255 : 0, 0, left ? 0 : 255, 255}) {
      pixels.push_back(static_cast<std::byte>(component));
    }
  }
  return CGImage::create({.width = width,
                          .height = height,
                          .bytesPerRow = width * 4,
                          .alphaInfo = CGImageAlphaInfo::noneSkipLast},
                         CGColorSpace::createDeviceRGB(), Data(std::move(pixels)))
      .value();
}

Data encoded(const CGImage& image, std::string_view typeIdentifier, const Dictionary& properties) {
  const auto destination = CGImageDestination::createInMemory(typeIdentifier, 1);
  if (!destination) throw std::invalid_argument("nothing writes " + std::string(typeIdentifier));
  destination->addImage(image, properties);
  if (!destination->finalize()) throw std::invalid_argument("the picture cannot be encoded");
  return destination->data().value();
}

Data jpegWithPrivateTag(std::string_view software, std::string_view unknown) {
  const Data plain = encoded(redAndBlue(16, 16), "public.jpeg");
  std::vector<std::byte> segment;
  append(segment, std::string_view("Exif\0\0", 6));
  const std::vector<std::byte> block = tiffBlock(std::string(software), std::string(unknown));
  segment.insert(segment.end(), block.begin(), block.end());

  std::vector<std::byte> file(plain.begin(), plain.begin() + 2);  // start of image
  appendBigEndian(file, 0xFFE1, 2);
  appendBigEndian(file, static_cast<std::uint32_t>(segment.size() + 2), 2);
  file.insert(file.end(), segment.begin(), segment.end());
  file.insert(file.end(), plain.begin() + 2, plain.end());
  return Data(std::move(file));
}

bool contains(const Data& data, std::string_view text) {
  const auto bytes = std::as_bytes(std::span(text));
  return std::search(data.begin(), data.end(), bytes.begin(), bytes.end()) != data.end();
}

void writeFile(const std::string& path, const Data& data) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(data.data()), static_cast<std::streamsize>(data.size()));
}

Data readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string text(std::istreambuf_iterator<char>(file), {});
  return Data(std::as_bytes(std::span(text)));
}

std::vector<std::string> namesIn(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace FrameworkUtility::testing
