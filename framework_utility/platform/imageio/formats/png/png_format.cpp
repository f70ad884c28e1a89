#include <framework_utility/platform/imageio/formats/png/png_format.h>

#include <framework_utility/platform/foundation/app/uniform_type.h>
#include <framework_utility/platform/imageio/formats/png/png_chunks.h>
#include <framework_utility/platform/imageio/formats/png/png_encode.h>
#include <framework_utility/platform/imageio/formats/png/png_header.h>
#include <framework_utility/platform/imageio/formats/png/png_rows.h>
#include <framework_utility/platform/imageio/formats/single_image.h>

namespace FrameworkUtility::detail {

namespace {

constinit const UTType types[] = {UTType{"public.png"}};

std::unique_ptr<ImageReader> open(const ByteSource& source) {
  return std::make_unique<SingleImageReader>(UTTypePNG.identifier(), source, readPngHeader,
                                             pngRows);
}

std::unique_ptr<ImageWriter> create(std::string_view, std::size_t) {
  return std::make_unique<SingleImageWriter>(encodePng);
}

}  // namespace

constinit const ImageFormat pngFormat{types, hasPngSignature, open, create};

}  // namespace FrameworkUtility::detail
