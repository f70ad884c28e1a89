#include <framework_utility/platform/imageio/formats/bmp/bmp_format.h>

#include <framework_utility/platform/foundation/app/uniform_type.h>
#include <framework_utility/platform/imageio/formats/bmp/bmp_header.h>
#include <framework_utility/platform/imageio/formats/bmp/bmp_rows.h>
#include <framework_utility/platform/imageio/formats/single_image.h>

namespace FrameworkUtility::detail {

namespace {

constinit const UTType types[] = {UTType{"com.microsoft.bmp"}};

std::unique_ptr<ImageReader> open(const ByteSource& source) {
  return std::make_unique<SingleImageReader>(types[0].identifier(), source, readBmpHeader, bmpRows);
}

std::unique_ptr<ImageWriter> create(std::string_view, std::size_t) { return nullptr; }

}  // namespace

constinit const ImageFormat bmpFormat{types, hasBmpSignature, open, create};

}  // namespace FrameworkUtility::detail
