#pragma once

namespace FrameworkUtility {

// The toolkit's sets of characters, the same in every locale. Thread: any.

/// Blanks of all widths and the tab, the zero-width blank U+200B included.
/// Selector: whitespaceCharacterSet
bool isWhitespace(char32_t character);
/// U+000A to U+000D, U+0085, U+2028 and U+2029.
/// Selector: newlineCharacterSet
bool isNewline(char32_t character);

}  // namespace FrameworkUtility
