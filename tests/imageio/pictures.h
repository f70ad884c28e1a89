#pragma once

#include <framework_utility/platform/imageio/image_destination.h>

namespace FrameworkUtility::testing {

/// An opaque picture whose left half is red and whose right half is blue.
CGImage redAndBlue(std::size_t width, std::size_t height);

/// The picture as a file of this type.
Data encoded(const CGImage& image, std::string_view typeIdentifier,
             const Dictionary& properties = {});

void writeFile(const std::string& path, const Data& data);
/// Empty when there is no file.
Data readFile(const std::string& path);
/// The names in a folder, sorted.
std::vector<std::string> namesIn(const std::string& folder);

}  // namespace FrameworkUtility::testing
