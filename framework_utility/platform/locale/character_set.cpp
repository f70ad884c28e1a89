#include <framework_utility/platform/locale/character_set.h>

namespace FrameworkUtility {

bool isWhitespace(char32_t character) {
  switch (character) {
    case 0x09:
    case 0x20:
    case 0xA0:
    case 0x1680:
    case 0x202F:
    case 0x205F:
    case 0x3000:
      return true;
    default:
      return character >= 0x2000 && character <= 0x200B;
  }
}

bool isNewline(char32_t character) {
  return (character >= 0x0A && character <= 0x0D) || character == 0x85 || character == 0x2028 ||
         character == 0x2029;
}

}  // namespace FrameworkUtility
