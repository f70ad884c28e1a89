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

/// A binary property list from the bytes of its objects, the first of them its top.
struct BinaryList {
  std::vector<std::string> objects;
  int referenceSize = 1;
  int offsetSize = 4;

  std::string bytes() const {
    std::string all = "bplist00", offsets;
    for (const std::string& object : objects) {
      offsets += bigEndian(all.size(), offsetSize);
      all += object;
    }
    const std::size_t table = all.size();
    return all + offsets + std::string(6, '\0') + static_cast<char>(offsetSize) +
           static_cast<char>(referenceSize) + bigEndian(objects.size(), 8) + bigEndian(0, 8) +
           bigEndian(table, 8);
  }
};

}  // namespace FrameworkUtility::testing
