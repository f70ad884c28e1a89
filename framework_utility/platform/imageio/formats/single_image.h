#pragma once

#include <framework_utility/platform/foundation/files/byte_source.h>
#include <framework_utility/platform/imageio/formats/image_reader.h>
#include <framework_utility/platform/imageio/formats/image_writer.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace FrameworkUtility::detail {

// What is the same for all formats whose files hold one image.

class SingleImageReader final : public ImageReader {
 public:
  using HeaderOf = ImageHeader(const ByteSource& source);
  using RowsOf = std::unique_ptr<RowReader>(const ByteSource& source, const RowRequest& request);

  /// `type` must outlive the reader.
  SingleImageReader(std::string_view type, const ByteSource& source, HeaderOf& headerOf,
                    RowsOf& rowsOf)
      : type_(type), source_(source), header_(headerOf(source)), rowsOf_(rowsOf) {}

  CGImageSourceStatus status() const override { return header_.status; }
  std::string_view type() const override { return type_; }
  std::size_t count() const override { return status() == CGImageSourceStatus::complete ? 1 : 0; }
  std::shared_ptr<const ImageHeader> headerAt(std::size_t) const override {
    return {std::shared_ptr<const ImageHeader>(), &header_};  // the reader's own
  }
  std::unique_ptr<RowReader> rowsAt(std::size_t, const RowRequest& request) const override {
    return rowsOf_(source_, request);
  }

 private:
  std::string_view type_;
  ByteSource source_;
  ImageHeader header_;
  RowsOf& rowsOf_;
};

class SingleImageWriter final : public ImageWriter {
 public:
  /// Appends the file to `out`, or says in `problem` what stands in the way.
  using Encode = bool(const CGImage& image, const EncodeRequest& request,
                      std::vector<std::byte>& out, std::string& problem);

  explicit SingleImageWriter(Encode& encode) : encode_(encode) {}

  bool addImage(const CGImage& image, const EncodeRequest& request) override {
    if (!file_.empty()) return cannotEncode("a file of this format holds one image", problem_);
    return encode_(image, request, file_, problem_);
  }
  bool finish(const Dictionary&, std::vector<std::byte>& out) override {
    out = std::move(file_);
    return true;
  }

 private:
  Encode& encode_;
  std::vector<std::byte> file_;
};

}  // namespace FrameworkUtility::detail
