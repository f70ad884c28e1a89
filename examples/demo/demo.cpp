// demo FOLDER [PHOTO]: an app saves an edited photo. Shows what the library reads, changes, keeps
// and refuses, and leaves before, after and thumbnail in FOLDER.

#include <examples/demo/phone_photo.h>
#include <framework_utility/files/file_utility.h>
#include <framework_utility/imageio/data_writer.h>
#include <framework_utility/imageio/image_metadata.h>
#include <framework_utility/imageio/image_writer.h>
#include <framework_utility/imageio/session_manager.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/foundation/values/path.h>
#include <framework_utility/platform/imageio/metadata/metadata_blocks.h>
#include <framework_utility/platform/imageio/metadata/values/property_keys.h>
#include <framework_utility/platform/imageio/ui_image_coding.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <string>

using namespace FrameworkUtility;
using namespace std::chrono_literals;

namespace {

constexpr std::string_view session = "Demo-1";

[[noreturn]] void fail(const Error& error) {
  std::cerr << error.domain() << ' ' << error.code() << ": " << error.localizedDescription()
            << '\n';
  std::exit(EXIT_FAILURE);
}

template <class T>
T orFail(std::optional<T> result, const Error& error) {
  if (!result) fail(error);
  return *std::move(result);
}

void heading(std::string_view text) { std::cout << '\n' << text << '\n'; }

template <class T>
void fact(std::string_view name, const std::optional<T>& value) {
  std::cout << "  " << std::left << std::setw(22) << name;
  if (value) {
    std::cout << *value << '\n';
  } else {
    std::cout << "-\n";
  }
}

std::optional<std::string> text(const std::optional<Date>& date) {
  if (!date) return std::nullopt;
  const auto day = std::chrono::floor<std::chrono::days>(*date);
  const std::chrono::year_month_day ymd(day);
  const std::chrono::hh_mm_ss time(std::chrono::floor<std::chrono::seconds>(*date - day));
  std::ostringstream out;
  out << std::setfill('0') << static_cast<int>(ymd.year()) << '-' << std::setw(2)
      << static_cast<unsigned>(ymd.month()) << '-' << std::setw(2)
      << static_cast<unsigned>(ymd.day()) << ' ' << std::setw(2) << time.hours().count() << ':'
      << std::setw(2) << time.minutes().count() << ':' << std::setw(2) << time.seconds().count();
  return out.str();
}

std::optional<std::string> text(const std::optional<CLLocation>& place) {
  if (!place) return std::nullopt;
  std::ostringstream out;
  out << std::setprecision(8) << place->latitude << ", " << place->longitude;
  return out.str();
}

void showFacts(const KvImageMetadata& metadata) {
  std::ostringstream size;
  size << metadata.width().value_or(0) << " x " << metadata.height().value_or(0);
  fact("pixels as stored", std::optional(size.str()));
  fact("orientation", metadata.orientation());
  fact("camera", metadata.cameraModel());
  fact("software", metadata.software());
  fact("date", text(metadata.date()));
  fact("place", text(metadata.location()));
  fact("iso", metadata.iso());
  fact("f-number", metadata.fNumber());
  fact("focal length in mm", metadata.focalLength());
  fact("live-photo mark", metadata.livePhotoIdentifier());
}

/// The EXIF number of a picture that stands as `number` says, turned right by a quarter.
Number turnedRight(std::uint32_t number) {
  constexpr std::uint32_t next[] = {6, 6, 7, 8, 5, 2, 3, 4, 1};
  return next[number <= 8 ? number : 0];
}

void edit(KvImageMetadata& metadata) {
  metadata.setOrientation(turnedRight(metadata.exifOrientation()));
  const Date date = metadata.date().value_or(std::chrono::sys_days{2024y / 5 / 6} + 7h) + 24h;
  metadata.setDateOriginal(date);  // stored as local time
  metadata.setDateDigitized(date);
  metadata.setSoftware("Pelvar 7.1");
  metadata.setLocation(CLLocation{.latitude = 48.2082,
                                  .longitude = 16.3738,
                                  .altitude = 171,
                                  .horizontalAccuracy = 5,
                                  .timestamp = date});
  metadata.removeLivePhotosMetadata();
}

std::string text(const Key& key) {
  return key.number() ? key.number()->description() : std::string(*key.text());
}

/// Prints what differs between two dictionaries and counts what does not.
std::size_t compare(const Dictionary& before, const Dictionary& after, const std::string& path) {
  std::size_t same = 0;
  const auto line = [&](const Key& key, std::string_view was, std::string_view is) {
    std::cout << "  " << std::left << std::setw(34) << path + text(key) << was << " -> " << is
              << '\n';
  };
  for (const auto& [key, value] : before) {
    const Value* now = after.find(key);
    const Dictionary* inner = value.as<Dictionary>();
    if (now && *now == value) {
      same += inner ? inner->size() : 1;
    } else if (inner && now && now->as<Dictionary>()) {
      same += compare(*inner, *now->as<Dictionary>(), path + text(key) + " ");
    } else {
      line(key, value.description(), now ? now->description() : "gone");
    }
  }
  for (const auto& [key, value] : after) {
    if (!before.find(key)) {
      line(key, "none", value.as<Dictionary>() ? "added" : value.description());
    }
  }
  return same;
}

void showKeptBytes(std::string_view block, const Data& before, const Data& after) {
  if (before.empty()) return;
  const std::size_t shared = std::min(before.size(), after.size());
  std::size_t kept = 0;
  for (std::size_t i = 0; i < shared; ++i) kept += before.data()[i] == after.data()[i];
  std::cout << "  " << std::left << std::setw(6) << block << kept << " of " << shared
            << " bytes stand where they stood";
  // What is cut off showed the old picture.
  if (after.size() < before.size()) std::cout << ", " << before.size() - shared << " are cut off";
  std::cout << '\n';
}

void showChanges(const URL& before, const URL& after) {
  Error error;
  const auto was = orFail(KvImageMetadata::withUrl(before, &error), error);
  const auto is = orFail(KvImageMetadata::withUrl(after, &error), error);
  const std::size_t same = compare(*was.properties(), *is.properties(), "");
  std::cout << "  and " << same << " entries are what they were\n";

  const auto first = CGImageSource::createWithURL(before)->metadataBlocksAtIndex(0);
  const auto second = CGImageSource::createWithURL(after)->metadataBlocksAtIndex(0);
  if (!first || !second) return;
  showKeptBytes("EXIF", first->exif, second->exif);
  showKeptBytes("XMP", first->xmp, second->xmp);
  showKeptBytes("IPTC", first->imageResources, second->imageResources);
}

void showRefusals(const UIImage& picture) {
  const auto show = [](std::string_view call, bool refused, const Error& error) {
    std::cout << "  " << call << '\n'
              << "    " << (refused ? error.domain() : "was not refused") << ", code "
              << error.code() << "\n    \"" << error.localizedDescription() << "\"\n";
  };
  Error error;
  show("the metadata of a file that is not there",
       !KvImageMetadata::withUrl(URL::fileURLWithPath("/no/such/photo.jpg"), &error), error);
  show("a picture without a type", !writeToDiskWithFileName(picture, "photo", session, {}, &error),
       error);
  show("bytes for a session that leads out of the temporary directory",
       !writeToDisk(std::as_bytes(std::span("text")), UTTypePNG, "../elsewhere", &error), error);
}

void leave(const URL& file, const std::string& path) {
  FileManager& files = FileManager::defaultManager();
  Error error;
  files.removeItemAtPath(path, nullptr);
  if (!files.copyItemAtPath(*file.path(), path, &error)) fail(error);
  std::cout << "  " << path << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2 && argc != 3) {
    std::cerr << "usage: demo FOLDER [PHOTO]\n";
    return 2;
  }
  const std::string folder = argv[1];
  FileManager& files = FileManager::defaultManager();
  Error error;
  if (!files.createDirectoryAtPath(folder, IntermediateDirectories::create, &error)) fail(error);

  std::string photo = argc == 3 ? argv[2] : paths::appendingPathComponent(folder, "scene.jpg");
  if (argc == 2) {
    std::cout << "Without a photo: a scene drawn here, as a phone's camera would write it.\n";
    if (!files.writeAtomically(demo::makePhonePhoto(), photo, &error)) fail(error);
  }
  const URL before = URL::fileURLWithPath(photo);

  heading("The photo " + photo);
  KvImageMetadata metadata = orFail(KvImageMetadata::withUrl(before, &error), error);
  showFacts(metadata);
  const UIImage picture = orFail(imageWithContentsOfFile(photo, &error), error);

  heading("Turned, moved by a day, signed, placed, no longer live, and saved into a session");
  edit(metadata);
  const URL jpeg =
      orFail(writeToDiskWithFileName(picture, "photo", session,
                                     {.metadata = &metadata, .uti = UTTypeJPEG}, &error),
             error);
  const URL png = orFail(writeToDiskWithFileName(picture, "photo", session,
                                                 {.metadata = &metadata, .uti = UTTypePNG}, &error),
                         error);
  std::cout << "  " << *jpeg.path() << "\n  " << *png.path() << '\n';

  heading("What the JPEG says now");
  showChanges(before, jpeg);
  heading("What the PNG says now");
  showChanges(before, png);

  heading("What is refused");
  showRefusals(picture);

  heading("Left to be looked at");
  leave(before, paths::appendingPathComponent(folder, "before." + before.pathExtension()));
  leave(jpeg, paths::appendingPathComponent(folder, "after.jpeg"));
  leave(png, paths::appendingPathComponent(folder, "after.png"));
  const UIImage thumbnail = orFail(thumbnailForImageAtURL(jpeg, {512, 512}, {}, &error), error);
  std::cout << "  "
            << orFail(writeToPath(thumbnail, paths::appendingPathComponent(folder, "thumbnail"),
                                  {.uti = UTTypePNG}, &error),
                      error)
            << '\n';

  KvSessionManager::destroySessionForSessionIdentifierSuffix(session);
  std::cout << "\nThe session is destroyed: " << *jpeg.path()
            << (fileExistsAtUrl(files, jpeg) ? " is still there.\n" : " is gone.\n");
}
