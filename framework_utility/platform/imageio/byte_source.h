#pragma once

#include <framework_utility/platform/foundation/data.h>
#include <framework_utility/platform/foundation/files.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace FrameworkUtility::detail {

/// The bytes of a file or of memory, read where they are needed. A cheap value; copies share the
/// open file. Thread: any.
class ByteSource {
 public:
  explicit ByteSource(Data data);
  /// Reads the beginning of the file, which holds all that most callers want. Absent when the file
  /// cannot be opened or read, or is none.
  static std::optional<ByteSource> open(const FileManager& files, std::string_view path);

  std::uint64_t size() const { return size_; }
  /// The bytes from `offset` on, fewer than `count` at the end or where reading fails. Bytes in
  /// memory and those of the beginning are shared, not copied.
  Data bytes(std::uint64_t offset, std::size_t count) const;

 private:
  ByteSource(Data beginning, std::shared_ptr<const FileReader> file, std::uint64_t size);

  std::shared_ptr<const Data> beginning_;  // in memory, the whole
  std::shared_ptr<const FileReader> file_;
  std::uint64_t size_;
};

}  // namespace FrameworkUtility::detail
