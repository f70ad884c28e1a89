// Reading the metadata of a 12-megapixel JPEG, pixels untouched: from memory and from a file.
//
//   metadata_bench [PHOTO.jpg]
//
// Without PHOTO it is the demo's, with what a phone's camera writes.

#include <bench/paired.h>
#include <examples/demo/phone_photo.h>
#include <framework_utility/imageio/image_metadata.h>
#include <libexif/exif-data.h>

#include <exiv2/exiv2.hpp>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <vector>

using namespace FrameworkUtility;

namespace {

void check(bool right, const char* who) {
  if (right) return;
  std::fprintf(stderr, "%s did not read the photo\n", who);
  std::exit(1);
}

std::vector<std::byte> contentsOf(const char* path) {
  std::ifstream file(path, std::ios::binary);
  const std::string bytes(std::istreambuf_iterator<char>(file), {});
  const auto all = std::as_bytes(std::span(bytes));
  return {all.begin(), all.end()};
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

/// What no reader of a file's first 16 KiB can do without.
void readBeginning(const char* path) {
  static std::byte bytes[16 * 1024];
  struct stat status;
  const int file = open(path, O_RDONLY | O_CLOEXEC);
  check(fstat(file, &status) == 0 && pread(file, bytes, sizeof bytes, 0) > 0, "the system");
  close(file);
}

}  // namespace

int main(int count, char** arguments) {
  const Data photo(count > 1 ? contentsOf(arguments[1]) : demo::makePhonePhoto());
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
          const auto metadata = KvImageMetadata::withData(photo);
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
                  {"exiv2", [&] { readExiv2(*Exiv2::ImageFactory::open(path)); }},
                  {"its four system calls alone", [&] { readBeginning(path.c_str()); }}});

  std::remove(path.c_str());
}
