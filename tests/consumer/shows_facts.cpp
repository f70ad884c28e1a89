// shows_facts FOLDER: an app that writes a picture into FOLDER, reads its facts back and archives
// them.

#include <framework_utility/imageio/image_metadata.h>
#include <framework_utility/imageio/image_writer.h>
#include <framework_utility/platform/foundation/archives/keyed_archiver.h>
#include <framework_utility/platform/foundation/archives/keyed_unarchiver.h>

#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

using namespace FrameworkUtility;

int main(int argc, char** argv) {
  if (argc != 2) return EXIT_FAILURE;
  const CGImageLayout layout{.width = 8, .height = 6, .bytesPerRow = 32};
  const Data pixels(std::vector<std::byte>(32 * 6, std::byte{0xff}));
  KvImageMetadata metadata;
  metadata.setSoftware("Consumer 1");

  Error error;
  const std::optional<std::string> path =
      writeCGImageToPath(CGImage::create(layout, CGColorSpace::createDeviceRGB(), pixels),
                         std::string(argv[1]) + "/white", {.metadata = &metadata}, &error);
  if (!path) {
    std::cerr << error << '\n';
    return EXIT_FAILURE;
  }
  const auto read = KvImageMetadata::withUrl(URL::fileURLWithPath(*path), &error);
  if (!read || read->size() != Size{8, 6} || read->software() != "Consumer 1") return EXIT_FAILURE;

  const auto data =
      NSKeyedArchiver::archivedDataWithRootObject(boxed(*read), SecureCoding::required, &error);
  if (!data) return EXIT_FAILURE;
  const auto root = NSKeyedUnarchiver::unarchivedObjectOfClasses(
      KvImageMetadata::unarchivedObjectOfClasses(), *data, &error);
  const auto* archived = root ? unboxed<KvImageMetadata>(*root) : nullptr;
  return archived && archived->properties() == read->properties() ? EXIT_SUCCESS : EXIT_FAILURE;
}
