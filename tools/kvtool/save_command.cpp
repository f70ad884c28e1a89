#include <tools/kvtool/commands.h>
#include <tools/kvtool/console.h>
#include <tools/kvtool/number_pair.h>

#include <framework_utility/imageio/image_metadata.h>
#include <framework_utility/imageio/image_writer.h>
#include <framework_utility/imageio/type_utility.h>
#include <framework_utility/platform/foundation/path.h>

#include <array>
#include <chrono>
#include <cmath>

namespace kvtool {

using namespace FrameworkUtility;

namespace {

/// Takes a number of exactly `count` digits off the front of `text`.
std::optional<int> takeDigits(std::string_view& text, std::size_t count) {
  int number = 0;
  if (text.size() < count) return std::nullopt;
  for (const char digit : text.substr(0, count)) {
    if (digit < '0' || digit > '9') return std::nullopt;
    number = 10 * number + (digit - '0');
  }
  text.remove_prefix(count);
  return number;
}

/// Reads exactly "2024-05-06T07:08:09Z".
std::optional<Date> dateFromIso(std::string_view text) {
  std::array<int, 6> fields{};
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const std::optional<int> field = takeDigits(text, i == 0 ? 4 : 2);
    if (!field || !text.starts_with("--T::Z"[i])) return std::nullopt;
    text.remove_prefix(1);
    fields[i] = *field;
  }
  const auto [year, month, day, hour, minute, second] = fields;
  const std::chrono::year_month_day calendar{std::chrono::year(year),
                                             std::chrono::month(static_cast<unsigned>(month)),
                                             std::chrono::day(static_cast<unsigned>(day))};
  if (!text.empty() || !calendar.ok() || hour > 23 || minute > 59 || second > 59)
    return std::nullopt;
  return std::chrono::sys_days(calendar) + std::chrono::hours(hour) + std::chrono::minutes(minute) +
         std::chrono::seconds(second);
}

/// Reads "48.2082,16.3738".
std::optional<CLLocation> locationFromText(std::string_view text) {
  const auto degrees = numberPair(text);
  if (!degrees || std::abs(degrees->first) > 90 || std::abs(degrees->second) > 180)
    return std::nullopt;
  return CLLocation{.latitude = degrees->first,
                    .longitude = degrees->second,
                    .timestamp = Clock::current().now()};
}

std::optional<UTType> typeNamed(std::string_view name) {
  return name.find('.') == std::string_view::npos ? robustType(name)
                                                  : UTType::typeWithIdentifier(name);
}

/// PNG stays PNG, everything else becomes JPEG.
UTType typeFor(const CGImageSource& source) {
  return source.type() == UTTypePNG.identifier() ? UTTypePNG : UTTypeJPEG;
}

/// Null when every option could be read, else the one that could not.
const char* edit(KvImageMetadata& metadata, const SaveOptions& options) {
  if (options.orientation) metadata.setOrientation(*options.orientation);
  if (options.date) {
    const std::optional<Date> date = dateFromIso(*options.date);
    if (!date) return "--date is not like 2024-05-06T07:08:09Z";
    metadata.setDateOriginal(date);
    metadata.setDateDigitized(date);
  }
  metadata.setSoftware(options.software);
  if (options.location) {
    const std::optional<CLLocation> location = locationFromText(*options.location);
    if (!location) return "--location is not like 48.2082,16.3738";
    metadata.setLocation(location);
  }
  if (options.removeLivePhoto) metadata.removeLivePhotosMetadata();
  return nullptr;
}

}  // namespace

bool save(const SaveOptions& options) {
  const URL url = URL::fileURLWithPath(options.file);
  Error error;
  std::optional<KvImageMetadata> metadata = KvImageMetadata::withUrl(url, &error);
  if (!metadata) {
    printProblem(options.file, error);
    return false;
  }
  if (const char* problem = edit(*metadata, options)) {
    printProblem(options.file, problem);
    return false;
  }
  const std::optional<CGImageSource> source = CGImageSource::createWithURL(url);
  const std::optional<CGImage> image = source ? source->imageAtIndex(0) : std::nullopt;
  if (!image) {
    printProblem(options.file, "the picture cannot be decoded");
    return false;
  }
  const std::optional<UTType> type = options.type ? typeNamed(*options.type) : typeFor(*source);
  const std::optional<URL> written = writeToDiskWithFileName(
      UIImage(*image), paths::deletingPathExtension(paths::lastPathComponent(options.file)),
      options.session, {.metadata = &*metadata, .compressionQuality = options.quality, .uti = type},
      &error);
  if (!written) {
    printProblem(options.file, error);
    return false;
  }
  printLine(written->path().value_or(""));
  return true;
}

}  // namespace kvtool
