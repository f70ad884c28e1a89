// save_photo PHOTO: saves a picture again, turned, dated, placed and signed, for one editing
// session.

#include <framework_utility/imageio/image_metadata.h>
#include <framework_utility/imageio/image_writer.h>
#include <framework_utility/imageio/session_manager.h>
#include <framework_utility/platform/imageio/ui_image_coding.h>

#include <chrono>
#include <cstdlib>
#include <iostream>

using namespace FrameworkUtility;
using namespace std::chrono_literals;

namespace {

int fail(const Error& error) {
  std::cerr << error.domain() << ' ' << error.code() << ": " << error.localizedDescription()
            << '\n';
  return EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: save_photo PHOTO\n";
    return 2;
  }
  constexpr std::string_view session = "Editor-1";

  Error error;
  std::optional<KvImageMetadata> read =
      KvImageMetadata::withUrl(URL::fileURLWithPath(argv[1]), &error);
  if (!read) {
    if (error.is(KvImageMetadataError::fileDoesNotExist)) std::cerr << "Which photo?\n";
    return fail(error);
  }
  KvImageMetadata& metadata = *read;
  std::cout << metadata.cameraModel().value_or("an unknown camera") << ", "
            << metadata.sizeOriented().width << " pixels wide\n";
  if (metadata.orientation() == 6) std::cout << "taken upright\n";

  metadata.setImageOrientation(UIImageOrientation::down);
  metadata.setDateOriginal(std::chrono::sys_days{2024y / 5 / 17} + 9h + 30min);
  metadata.setSoftware("Pelvar 7.1");
  metadata.setLocation(CLLocation{.latitude = 48.2082, .longitude = 16.3738, .altitude = 171});
  metadata.removeLivePhotosMetadata();

  const std::optional<UIImage> picture = imageWithContentsOfFile(argv[1], &error);
  if (!picture) return fail(error);
  const std::optional<URL> written = writeToDiskWithFileName(
      *picture, "photo", session,
      {.metadata = &metadata, .compressionQuality = 0.9, .uti = UTTypeJPEG}, &error);
  if (!written) {
    if (error.is(CGImageWriteToDiskError::noFolder)) std::cerr << "No folder for the session.\n";
    return fail(error);
  }
  std::cout << "saved as " << *written << '\n';

  if (const std::optional<UIImage> thumbnail = thumbnailForImageAtURL(*written, {256, 256})) {
    std::cout << "thumbnail " << thumbnail->size().width << " pixels wide\n";
  }

  KvSessionManager::destroySessionForSessionIdentifierSuffix(session);
}
