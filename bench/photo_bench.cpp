// The pixels of a 12-megapixel photo: a thumbnail, and writing it as JPEG.

#include <bench/paired.h>
#include <examples/demo/phone_photo.h>
#include <framework_utility/imageio/image_metadata.h>
#include <framework_utility/imageio/image_writer.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/imageio/image_destination.h>
#include <framework_utility/platform/imageio/image_source.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>
#include <vips/vips.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

// After <cstdio>, which it needs.
#include <jpeglib.h>

using namespace FrameworkUtility;

namespace {

constexpr int thumbnailSize = 512;

void check(bool right, const char* who) {
  if (right) return;
  std::fprintf(stderr, "%s failed\n", who);
  std::exit(1);
}

void ownThumbnail(const Data& photo) {
  const auto source = CGImageSource::createWithData(photo);
  const auto thumbnail = source->thumbnailAtIndex(
      0, {.createThumbnailFromImageAlways = true, .thumbnailMaxPixelSize = thumbnailSize});
  check(thumbnail && thumbnail->width() == thumbnailSize, "CGImageSource");
}

void vipsThumbnail(const std::vector<std::byte>& photo) {
  VipsImage* lazy = nullptr;
  check(vips_thumbnail_buffer(const_cast<std::byte*>(photo.data()), photo.size(), &lazy,
                              thumbnailSize, "no_rotate", TRUE, nullptr) == 0,
        "libvips");
  VipsImage* image = vips_image_copy_memory(lazy);
  check(vips_image_get_width(image) == thumbnailSize, "libvips");
  g_object_unref(image);
  g_object_unref(lazy);
}

/// What no thumbnail of this size can go below: the decoder alone, reduced to a quarter.
void bareDecode(const std::vector<std::byte>& photo) {
  jpeg_decompress_struct decoder{};
  jpeg_error_mgr errors;
  decoder.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&decoder);
  jpeg_mem_src(&decoder, reinterpret_cast<const unsigned char*>(photo.data()), photo.size());
  jpeg_read_header(&decoder, TRUE);
  decoder.scale_num = 1;
  decoder.scale_denom = 4;
  jpeg_start_decompress(&decoder);
  std::vector<unsigned char> row(std::size_t{decoder.output_width} * 3);
  unsigned char* rows[] = {row.data()};
  while (decoder.output_scanline < decoder.output_height) jpeg_read_scanlines(&decoder, rows, 1);
  jpeg_finish_decompress(&decoder);
  jpeg_destroy_decompress(&decoder);
}

void bareEncode(const CGImage& image) {
  jpeg_compress_struct encoder{};
  jpeg_error_mgr errors;
  encoder.err = jpeg_std_error(&errors);
  jpeg_create_compress(&encoder);
  unsigned char* out = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&encoder, &out, &size);
  encoder.image_width = static_cast<JDIMENSION>(image.width());
  encoder.image_height = static_cast<JDIMENSION>(image.height());
  encoder.input_components = 4;
  encoder.in_color_space = JCS_EXT_RGBX;
  jpeg_set_defaults(&encoder);  // 4:2:0
  jpeg_set_quality(&encoder, 85, TRUE);
  jpeg_start_compress(&encoder, TRUE);
  auto* pixels =
      const_cast<unsigned char*>(reinterpret_cast<const unsigned char*>(image.pixels().data()));
  while (encoder.next_scanline < encoder.image_height) {
    unsigned char* rows[] = {pixels + encoder.next_scanline * image.layout().bytesPerRow};
    jpeg_write_scanlines(&encoder, rows, 1);
  }
  jpeg_finish_compress(&encoder);
  jpeg_destroy_compress(&encoder);
  std::free(out);
}

void ownEncode(const CGImage& image) {
  const auto destination = CGImageDestination::createInMemory("public.jpeg", 1);
  destination->addImage(image, Dictionary{{kCGImageDestinationLossyCompressionQuality, 0.85}});
  check(destination->finalize(), "CGImageDestination");
}

}  // namespace

int main(int, char** argv) {
  check(vips_init(argv[0]) == 0, "vips_init");
  vips_concurrency_set(1);
  vips_cache_set_max(0);

  const std::vector<std::byte> photo = demo::makePhonePhoto();
  const Data data{std::span(photo)};
  // First of all, while no memory of an earlier call lies ready.
  const double own = static_cast<double>(bench::peakGrowth([&] { ownThumbnail(data); }));
  const double vips = static_cast<double>(bench::peakGrowth([&] { vipsThumbnail(photo); }));
  std::printf("memory that a thumbnail takes: CGImageSource %.1f MiB, libvips %.1f MiB\n",
              own / 1048576, vips / 1048576);

  const auto decoded = CGImageSource::createWithData(data)->imageAtIndex(0);
  check(decoded.has_value(), "decoding");

  bench::compare("a thumbnail of 512 pixels from a 12-megapixel JPEG in memory",
                 {{"CGImageSource", [&] { ownThumbnail(data); }},
                  {"libvips", [&] { vipsThumbnail(photo); }},
                  {"limit: libjpeg-turbo alone, a quarter", [&] { bareDecode(photo); }}},
                 21);
  bench::compare("12 megapixels RGBA to JPEG in memory, quality 85, 4:2:0",
                 {{"CGImageDestination", [&] { ownEncode(*decoded); }},
                  {"limit: libjpeg-turbo alone", [&] { bareEncode(*decoded); }}},
                 21);

  KvImageMetadata metadata = *KvImageMetadata::withData(data);
  const auto save = [&](const char* folder) {
    check(writeCGImageToPath(*decoded, std::string(folder) + "/framework-utility-bench",
                             {.metadata = &metadata})
              .has_value(),
          "saving");
  };
  bench::compare("the same with its metadata into a file, flushed",
                 {{"in memory (/dev/shm)", [&] { save("/dev/shm"); }},
                  {"on the disk (.)", [&] { save("."); }}},
                 11);
  std::remove("/dev/shm/framework-utility-bench.jpeg");
  std::remove("./framework-utility-bench.jpeg");
  vips_shutdown();
}
