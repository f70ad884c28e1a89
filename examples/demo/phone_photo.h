#pragma once

#include <cstddef>
#include <vector>

namespace demo {

/// A JPEG file of the scene, 4032 x 3024, with all that a phone's camera writes beside the pixels:
/// big-endian EXIF with a maker note that holds a private field too, position and embedded
/// thumbnail, an XMP packet and a Display P3 profile. Camera and place are invented. The same bytes
/// on every call.
std::vector<std::byte> makePhonePhoto();

}  // namespace demo
