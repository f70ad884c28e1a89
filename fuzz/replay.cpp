// Stands in for libFuzzer in ordinary builds: gives the target every file of a corpus, and each
// file cut short and with bytes changed, the same in every run.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t cuts = 64;
constexpr std::size_t changes = 256;

void fuzzOne(const Bytes& bytes) { LLVMFuzzerTestOneInput(bytes.data(), bytes.size()); }

void runDamaged(const Bytes& whole, std::mt19937& random) {
  for (std::size_t i = 0; i < cuts; ++i) {
    fuzzOne(
        Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(whole.size() * i / cuts)));
  }
  for (std::size_t i = 0; i < changes && !whole.empty(); ++i) {
    Bytes damaged = whole;
    for (std::size_t count = 1 + random() % 4; count > 0; --count) {
      damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
    }
    fuzzOne(damaged);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  std::size_t files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
    std::ifstream in(entry.path(), std::ios::binary);
    const Bytes bytes{std::istreambuf_iterator<char>(in), {}};
    std::mt19937 random(1);
    fuzzOne(bytes);
    runDamaged(bytes, random);
    ++files;
  }
  std::cout << files << " files\n";
  return files > 0 ? 0 : 1;
}
