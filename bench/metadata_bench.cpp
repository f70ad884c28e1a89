// Reading the metadata of a 12-megapixel JPEG, pixels untouched: from memory and from a file.

#include <bench/paired.h>
#include <examples/demo/phone_photo.h>
#include <framework_utility/imageio/image_metadata.h>
#include <libexif/exif-data.h>

#include <exiv2/exiv2.hpp>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

using namespace FrameworkUtility;

namespace {

void check(bool right, const char* who) {
  if (right) return;
  std::fprintf(stderr, "%s did not read the orientation\n", who);
  std::exit(1);
}

void readExif(ExifData* data) {
  ExifEntry* entry = exif_data_get_entry(data, EXIF_TAG_ORIENTATION);
  check(entry && exif_get_short(entry->data, exif_data_get_byte_order(data)) > 0, "libexif");
  exif_data_unref(data);
}

void readExiv2(Exiv2::Image& image) {
  image.readMetadata();
  check(
      image.exifData().findKey(Exiv2::ExifKey("Exif.Image.Orientation")) != image.exifData().end(),
      "exiv2");
}

}  // namespace

int main() {
  const std::vector<std::byte> photo = demo::makePhonePhoto();
  const Data data{std::span(photo)};
  const auto* bytes = reinterpret_cast<const unsigned char*>(photo.data());
  const std::string path = "/dev/shm/framework-utility-bench.jpg";
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(photo.size()));
  const URL url = URL::fileURLWithPath(path);

  Exiv2::XmpParser::initialize();
  Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);

  bench::compare(
      "all metadata of a 12-megapixel JPEG, from memory",
      {{"KvImageMetadata",
        [&] {
          const auto metadata = KvImageMetadata::withData(data);
          check(metadata && metadata->orientation(), "KvImageMetadata");
        }},
       {"libexif (EXIF only)",
        [&] { readExif(exif_data_new_from_data(bytes, static_cast<unsigned>(photo.size()))); }},
       {"exiv2",
        [&] { readExiv2(*Exiv2::ImageFactory::open(bytes, static_cast<long>(photo.size()))); }}});

  bench::compare("the same from a file",
                 {{"KvImageMetadata",
                   [&] {
                     const auto metadata = KvImageMetadata::withUrl(url);
                     check(metadata && metadata->orientation(), "KvImageMetadata");
                   }},
                  {"libexif (EXIF only)", [&] { readExif(exif_data_new_from_file(path.c_str())); }},
                  {"exiv2", [&] { readExiv2(*Exiv2::ImageFactory::open(path)); }}});

  std::remove(path.c_str());
}
