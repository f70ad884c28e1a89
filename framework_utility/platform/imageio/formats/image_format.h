#pragma once

#include <framework_utility/platform/foundation/app/uniform_type.h>
#include <framework_utility/platform/foundation/files/byte_source.h>
#include <framework_utility/platform/imageio/formats/image_reader.h>
#include <framework_utility/platform/imageio/formats/image_writer.h>

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

namespace FrameworkUtility::detail {

/// One file format: a row of the registry. A format is a folder, and nothing outside it knows more
/// of it than this. No function throws, whatever the bytes are.
struct ImageFormat {
  /// What it reads and, where `create` says so, writes.
  std::span<const UTType> types;
  /// Whether a file that begins with these bytes is of this format. They are the file's first 1,024
  /// or, of a shorter one, all: some formats begin with a list of names.
  bool (*sniff)(std::span<const std::byte> beginning);
  /// Walks the headers. Never null. The reader keeps the source.
  std::unique_ptr<ImageReader> (*open)(const ByteSource& source);
  /// For a file of `count` images, at least one. Null for a type that is only read. That the format
  /// cannot hold as many shows when they are added.
  std::unique_ptr<ImageWriter> (*create)(std::string_view type, std::size_t count);
};

}  // namespace FrameworkUtility::detail
