#include <framework_utility/color/images/color_analysis.h>

#include <framework_utility/color/images/color_buckets.h>
#include <framework_utility/platform/foundation/app/application.h>
#include <framework_utility/platform/foundation/values/fail.h>
#include <framework_utility/platform/foundation/values/number.h>
#include <framework_utility/platform/graphics/drawn_rows.h>
#include <framework_utility/platform/imageio/image_source.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>
#include <framework_utility/platform/imageio/ui_image_coding.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace FrameworkUtility {

namespace {

using detail::ColorBucket;

/// Truncated; stops the process where that is no 64-bit integer.
std::int64_t whole(double value) { return Number(value).integerValue(); }

/// How large the picture is drawn, in the pixels of a bitmap as large as the image.
Size analysisSize(Size size, std::int64_t quality) {
  if (quality == 0) return size;
  const double scale = application().mainScreenScale;
  if (std::max(whole(size.width * scale), whole(size.height * scale)) > quality) return size;
  const auto longest = static_cast<double>(quality);
  if (size.width >= size.height) return {longest, longest / (size.width / size.height)};
  return {longest, longest};  // stretched, see the header
}

/// Components in 0...255.
using Components = std::array<int, 3>;

Components componentsOf(const ColorBucket& bucket) {
  const auto component = [](std::uint32_t tens) {
    return std::min(static_cast<int>(tens) * 10, 255);
  };
  return {component(bucket.red), component(bucket.green), component(bucket.blue)};
}

bool areNear(const Components& a, const Components& b) {
  constexpr double near = 63.75;  // a quarter of 255
  return std::abs(a[0] - b[0]) <= near && std::abs(a[1] - b[1]) <= near &&
         std::abs(a[2] - b[2]) <= near;
}

std::vector<KvColor> mainColors(std::vector<ColorBucket> buckets, std::int64_t count) {
  const auto isMoreFrequent = [](const ColorBucket& a, const ColorBucket& b) {
    return a.count > b.count;
  };
  std::stable_sort(buckets.begin(), buckets.end(), isMoreFrequent);
  std::vector<Components> selected;
  for (const ColorBucket& bucket : buckets) {
    const Components candidate = componentsOf(bucket);
    const auto isNear = [&](const Components& other) { return areNear(candidate, other); };
    if (std::any_of(selected.begin(), selected.end(), isNear)) continue;
    selected.push_back(candidate);
    // Never for 0 or less: then all are wanted.
    if (static_cast<std::int64_t>(selected.size()) == count) break;
  }
  std::vector<KvColor> colors;
  colors.reserve(selected.size());
  for (const auto& [red, green, blue] : selected) {
    colors.emplace_back(red / 255.0, green / 255.0, blue / 255.0);
  }
  return colors;
}

/// The file as it is, or reduced to the quality's pixels where it is larger.
std::optional<UIImage> imageForAnalysis(const URL& url, std::int64_t quality,
                                        const CGImageSourceLimits& limits, Error* error) {
  const auto source = CGImageSource::createWithURL(url, {.limits = limits}, error);
  const auto properties = source ? source->propertiesAtIndex(0, error) : std::nullopt;
  if (!properties) return std::nullopt;
  const auto side = [&](std::string_view key) {
    const auto* number = properties->get<Number>(key);
    return number ? number->doubleValue() : 0;
  };
  const auto longest = static_cast<double>(quality);
  if (quality == 0 ||
      std::max(side(kCGImagePropertyPixelWidth), side(kCGImagePropertyPixelHeight)) <= longest) {
    return imageWithImageSource(*source, error);
  }
  const auto reduced = source->thumbnailAtIndex(0,
                                                {.createThumbnailFromImageAlways = true,
                                                 .createThumbnailWithTransform = true,
                                                 .thumbnailMaxPixelSize = longest},
                                                error);
  if (!reduced) return std::nullopt;
  return UIImage(*reduced);
}

}  // namespace

template <>
std::optional<UIImageAnalyzeColorQuality> fromRawValue<UIImageAnalyzeColorQuality>(
    std::int64_t rawValue) {
  switch (const auto quality = static_cast<UIImageAnalyzeColorQuality>(rawValue)) {
    case UIImageAnalyzeColorQuality::full:
    case UIImageAnalyzeColorQuality::low:
    case UIImageAnalyzeColorQuality::medium:
    case UIImageAnalyzeColorQuality::high:
      return quality;
  }
  return std::nullopt;
}

std::optional<UIImageAnalyzeResult> analyzeImageWithQuality(const UIImage& image,
                                                            UIImageAnalyzeColorQuality quality,
                                                            std::int64_t count, Error* error) {
  if (!image.cgImage()) return detail::fail(error, UIImageAnalyzeError::noColors);
  const Size size = image.size();
  const std::int64_t width = whole(size.width);
  const std::int64_t height = whole(size.height);
  constexpr auto most = static_cast<std::int64_t>(detail::maximumPixelBytes / 4);
  (void)whole(size.width * size.height);
  if (width < 1 || height < 1 || width > most / height) {
    return detail::fail(error, UIImageAnalyzeError::badSize);
  }

  const Size area = analysisSize(size, static_cast<std::int64_t>(quality));
  const detail::PixelSize bitmap{static_cast<std::size_t>(width), static_cast<std::size_t>(height)};
  auto rows = detail::DrawnRows::create(*image.cgImage(), bitmap, area);
  if (!rows) {
    const auto& space = image.cgImage()->colorSpace();
    return detail::fail(error, space && space->model() == CGColorSpaceModel::rgb
                                   ? UIImageAnalyzeError::badSize
                                   : UIImageAnalyzeError::noColors);
  }
  detail::ColorBuckets buckets;
  const auto columnsToWalk = static_cast<std::size_t>(std::min(whole(area.width), width));
  const auto rowsToWalk = static_cast<std::size_t>(std::min(whole(area.height), height));
  for (std::size_t y = 0; y < rowsToWalk; ++y) {
    const auto [pixels, isOpaque] = rows->row(y);
    buckets.add(pixels, columnsToWalk, isOpaque);
  }
  // From the height, not from the number of pixels: small areas count too.
  const auto threshold = static_cast<std::int64_t>(std::round(area.height * 0.01));
  return UIImageAnalyzeResult{hasAlpha(image), mainColors(buckets.above(threshold), count)};
}

std::optional<UIImageAnalyzeResult> analyzeImageWithQuality(const URL& url,
                                                            UIImageAnalyzeColorQuality quality,
                                                            std::int64_t count,
                                                            const CGImageSourceLimits& limits,
                                                            Error* error) {
  const auto image = imageForAnalysis(url, static_cast<std::int64_t>(quality), limits, error);
  return image ? analyzeImageWithQuality(*image, quality, count, error) : std::nullopt;
}

std::optional<UIImageAnalyzeResult> analyzeImageAtUrl(const URL& url,
                                                      UIImageAnalyzeColorQuality quality,
                                                      std::int64_t count,
                                                      const CGImageSourceLimits& limits,
                                                      Error* error) {
  return analyzeImageWithQuality(url, quality, count, limits, error);
}

bool hasAlpha(const UIImage& image) {
  return image.cgImage() && image.cgImage()->colorSpace() &&
         detail::carriesAlpha(image.cgImage()->alphaInfo());
}

}  // namespace FrameworkUtility
