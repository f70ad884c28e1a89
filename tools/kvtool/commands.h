#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kvtool {

// Each command runs to its end, reports what fails on standard error, and says whether all of it
// worked.

struct MetadataOptions {
  std::vector<std::string> files;
  bool json = false;
};
[[nodiscard]] bool printMetadata(const MetadataOptions& options);

struct SaveOptions {
  std::string file;
  std::optional<int> orientation;   ///< 1 to 8.
  std::optional<std::string> date;  ///< "2024-05-06T07:08:09Z".
  std::optional<std::string> software;
  std::optional<std::string> location;  ///< "48.2082,16.3738".
  bool removeLivePhoto = false;
  std::optional<double> quality;    ///< In 0...1.
  std::optional<std::string> type;  ///< An extension or a type's identifier.
  std::string session = "kvtool";
};
[[nodiscard]] bool save(const SaveOptions& options);

struct ThumbnailOptions {
  std::string file;
  int size = 0;  ///< The longer side, in pixels.
  std::string out;
};
[[nodiscard]] bool writeThumbnail(const ThumbnailOptions& options);

struct CoverOptions {
  std::pair<double, double> area;     ///< Width and height of what must be covered, at (0, 0).
  std::pair<double, double> content;  ///< Width and height whose proportions count.
  std::pair<double, double> center;   ///< What the content is turned about.
  double angle = 0;                   ///< In radians.
  bool json = false;
  std::string svg;  ///< A file to draw both into; empty for none.
};
[[nodiscard]] bool printCover(const CoverOptions& options);

struct PaletteOptions {
  std::string file;
  int count = 5;                   ///< At most; 0 for all.
  std::string quality = "medium";  ///< Or low, high, full.
  bool json = false;
  std::string png;  ///< A file to draw the photo and its colours into; empty for none.
};
[[nodiscard]] bool printPalette(const PaletteOptions& options);

struct GradientOptions {
  std::string kind;                 ///< linear, radial, conical, hue, lightness or selective.
  std::vector<std::string> colors;  ///< Each "#RRGGBB"; at least one for the first three kinds.
  std::pair<int, int> size;         ///< Width and height in pixels.
  bool isVertical = false;
  std::string out;
};
[[nodiscard]] bool writeGradient(const GradientOptions& options);

}  // namespace kvtool
