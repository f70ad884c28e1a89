#include <framework_utility/platform/imageio/formats/image_source_status.h>

namespace FrameworkUtility {

std::string_view description(CGImageSourceStatus status) {
  switch (status) {
    case CGImageSourceStatus::complete:
      return "statusComplete";
    case CGImageSourceStatus::incomplete:
      return "statusIncomplete";
    case CGImageSourceStatus::readingHeader:
      return "statusReadingHeader";
    case CGImageSourceStatus::unknownType:
      return "statusUnknownType";
    case CGImageSourceStatus::invalidData:
      return "statusInvalidData";
    case CGImageSourceStatus::unexpectedEOF:
      return "statusUnexpectedEOF";
  }
  return "statusUnknown";
}

}  // namespace FrameworkUtility
