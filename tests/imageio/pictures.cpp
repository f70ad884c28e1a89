#include <tests/imageio/pictures.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace FrameworkUtility::testing {

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
