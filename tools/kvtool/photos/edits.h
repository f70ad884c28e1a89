#pragma once

#include <tools/kvtool/console/photo_date.h>
#include <tools/kvtool/console/readers.h>

#include <framework_utility/imageio/image_metadata.h>

#include <optional>
#include <string>

namespace kvtool {

struct Place {
  double latitude = 0, longitude = 0;             ///< Degrees; south and west negative.
  std::optional<double> altitude = std::nullopt;  ///< Metres; below the sea negative.
};

/// What a save changes in the metadata.
struct Edits {
  std::optional<int> orientation = std::nullopt;  ///< 1 to 8.
  std::optional<PhotoDate> date = std::nullopt;   ///< When it was taken and digitised.
  std::optional<std::string> software = std::nullopt;
  std::optional<Place> place = std::nullopt;
  bool removesLivePhoto = false;
};

Reader photoDate(std::optional<PhotoDate>& target, std::string shape);
Reader place(std::optional<Place>& target, std::string shape);

/// The properties with the edits: an entry that is not asked for changes only where it would
/// contradict one that is.
FrameworkUtility::Dictionary edited(FrameworkUtility::KvImageMetadata metadata, const Edits& edits);

}  // namespace kvtool
