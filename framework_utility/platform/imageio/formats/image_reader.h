#pragma once

#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/imageio/formats/image_header.h>
#include <framework_utility/platform/imageio/formats/row_reader.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

namespace FrameworkUtility::detail {

/// An opened image file: its headers have been walked, and nothing more. What is asked for later
/// touches only the bytes that hold it, is bounded by the file's size, and does not throw, whatever
/// the bytes are.
///
/// Thread: any, several at once. What a reader remembers between calls it guards itself.
class ImageReader {
 public:
  ImageReader() = default;
  ImageReader(const ImageReader&) = delete;
  ImageReader& operator=(const ImageReader&) = delete;
  virtual ~ImageReader() = default;

  /// Of the headers.
  virtual CGImageSourceStatus status() const = 0;
  /// The identifier of the uniform type: one format may read several.
  virtual std::string_view type() const = 0;
  /// The number of images; 0 unless the status is complete.
  virtual std::size_t count() const = 0;
  /// What the format alone knows of the container, in the properties' shape.
  virtual Dictionary containerProperties() const { return {}; }

  // The rest is asked only of an index below `count()`.

  /// Never null. It may be the reader's own, and is good as long as the reader is there.
  virtual std::shared_ptr<const ImageHeader> headerAt(std::size_t index) const = 0;
  /// Never null; its state says when there are no rows.
  virtual std::unique_ptr<RowReader> rowsAt(std::size_t index, const RowRequest& request) const = 0;
  /// Depth, disparity or matte, of the type that a `kCGImageAuxiliaryDataType` names, in the
  /// platform's shape.
  virtual std::optional<Dictionary> auxiliaryDataInfoAt(std::size_t, std::string_view) const {
    return std::nullopt;
  }
};

}  // namespace FrameworkUtility::detail
