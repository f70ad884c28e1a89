#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace FrameworkUtility::testing {

/// At most 16 bytes.
inline std::string bigEndian(std::uint64_t number, int size) {
  std::string bytes;
  for (int i = size - 1; i >= 0; --i) bytes += static_cast<char>(i > 7 ? 0 : number >> (8 * i));
  return bytes;
}

/// A binary property list from the bytes of its objects.
struct BinaryList {
  std::vector<std::string> objects;
  int referenceSize = 1;
  std::uint64_t top = 0;

  std::string bytes() const {
    std::string all = "bplist00", offsets;
    for (const std::string& object : objects) {
      offsets += bigEndian(all.size(), 4);
      all += object;
    }
    const std::size_t table = all.size();
    return all + offsets + std::string(6, '\0') + '\4' + static_cast<char>(referenceSize) +
           bigEndian(objects.size(), 8) + bigEndian(top, 8) + bigEndian(table, 8);
  }
};

}  // namespace FrameworkUtility::testing
