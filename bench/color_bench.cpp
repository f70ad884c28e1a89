// The main colours of a 12-megapixel photo.

#include <bench/paired.h>
#include <examples/demo/phone_photo.h>
#include <framework_utility/color/images/color_analysis.h>
#include <framework_utility/platform/imageio/ui_image_coding.h>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <vector>

using namespace FrameworkUtility;

namespace {

constexpr int buckets = 27;  // a channel, as many as the analysis has

void check(bool right, const char* who) {
  if (right) return;
  std::fprintf(stderr, "%s failed\n", who);
  std::exit(1);
}

void ownAnalysis(const UIImage& image) {
  const auto found = analyzeImageWithQuality(image, UIImageAnalyzeColorQuality::full, 8);
  check(found && !found->colors.empty(), "analyzeImageWithQuality");
}

/// Buckets of equal width, and only counted: neither a threshold nor a selection.
void openCvHistogram(const cv::Mat& picture) {
  const int channels[] = {0, 1, 2};
  const int sizes[] = {buckets, buckets, buckets};
  const float range[] = {0, 256};
  const float* ranges[] = {range, range, range};
  cv::Mat histogram;
  cv::calcHist(&picture, 1, channels, cv::Mat(), histogram, 3, sizes, ranges);
  bench::keep(histogram.data);
}

/// Reading each byte once, which no analysis can go below.
void readAll(const Data& pixels) {
  std::uint64_t all = 0;
  for (std::size_t i = 0; i + sizeof all <= pixels.size(); i += sizeof all) {
    std::uint64_t word = 0;
    std::memcpy(&word, pixels.data() + i, sizeof word);
    all ^= word;
  }
  bench::keep(all);
}

}  // namespace

int main() {
  cv::setNumThreads(1);
  const std::vector<std::byte> file = demo::makePhonePhoto();
  const auto image = imageWithData(Data{std::span(file)});
  check(image && image->cgImage(), "decoding");
  const CGImage& photo = *image->cgImage();
  check(photo.layout().bitsPerPixel == 32, "decoding to four bytes a pixel");
  const cv::Mat picture(static_cast<int>(photo.height()), static_cast<int>(photo.width()), CV_8UC4,
                        const_cast<std::byte*>(photo.pixels().data()), photo.layout().bytesPerRow);
  bench::compare("main colours of 12 megapixels RGBA",
                 {{"analyzeImageWithQuality, drawn and selected", [&] { ownAnalysis(*image); }},
                  {"OpenCV, calcHist 27 x 27 x 27", [&] { openCvHistogram(picture); }},
                  {"limit: reading each byte", [&] { readAll(photo.pixels()); }}});
}
