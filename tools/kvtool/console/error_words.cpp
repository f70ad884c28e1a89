#include <tools/kvtool/console/error_words.h>

#include <framework_utility/platform/foundation/files/file_error.h>
#include <framework_utility/platform/foundation/values/value.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstddef>
#include <optional>
#include <system_error>

namespace kvtool {

using namespace FrameworkUtility;

namespace {

/// A sentence as it stands behind a colon; "HEIC" and "WebP" keep their capitals.
std::string clause(std::string sentence) {
  const auto isUpper = [](unsigned char letter) { return std::isupper(letter) != 0; };
  const auto wordEnd = std::find(sentence.begin(), sentence.end(), ' ');
  if (std::count_if(sentence.begin(), wordEnd, isUpper) == 1) {
    sentence[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(sentence[0])));
  }
  if (sentence.ends_with('.')) sentence.pop_back();
  return sentence;
}

/// Of a number of the system's.
std::string wordsOf(int number) {
  switch (number) {
    case ENOENT:
      return "there is no such file";
    case EACCES:
    case EPERM:
      return "permission denied";
    case ENOSPC:
      return "there is no space left on the disk";
    case EDQUOT:
      return "your share of the disk is used up";
    case EROFS:
      return "the disk is read-only";
    case EISDIR:
      return "that is a folder, not a file";
    case ENOTDIR:
      return "a part of the path is a file, not a folder";
    case ESPIPE:
      return "that is a pipe or a device, not a file; standard input is read by the name -";
    case ELOOP:
      return "the link leads in a circle";
    case ENAMETOOLONG:
      return "the name is too long";
    default:
      return clause(std::generic_category().message(number));
  }
}

}  // namespace

std::string plainWords(const Error& error) {
  constexpr std::size_t deepest = 16;  // apps nest causes as they like
  std::optional<Error> cause = error;
  std::string words = error.localizedDescription();
  for (std::size_t i = 0; cause && i < deepest; ++i) {
    // Of a file that cannot be made it is the folder that is missing.
    if (cause->domain() == NSCocoaErrorDomain && cause->code() == NSFileNoSuchFileError) {
      return "there is no such folder";
    }
    if (cause->domain() == NSPOSIXErrorDomain) return wordsOf(static_cast<int>(cause->code()));
    // What the platform says of itself is for people; what the library says is for its callers.
    if (cause->domain() == NSCocoaErrorDomain &&
        cause->userInfo().find(NSLocalizedDescriptionKey)) {
      words = cause->localizedDescription();
    }
    cause = cause->underlyingError();
  }
  return clause(words);
}

}  // namespace kvtool
