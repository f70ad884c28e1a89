#include <framework_utility/platform/foundation/files/posix_error.h>

#include <framework_utility/platform/foundation/files/file_error.h>
#include <framework_utility/platform/foundation/values/path.h>

#include <cerrno>
#include <cstdint>
#include <system_error>

namespace FrameworkUtility::detail {

namespace {

std::int64_t codeOf(const PosixFailure& failure) {
  const bool reading = failure.access == FileAccess::reading;
  switch (failure.number) {
    case ENOENT:
      return reading ? NSFileReadNoSuchFileError : NSFileNoSuchFileError;
    case EPERM:
    case EACCES:
      return reading ? NSFileReadNoPermissionError : NSFileWriteNoPermissionError;
    case ENAMETOOLONG:
    case EILSEQ:
      return reading ? NSFileReadInvalidFileNameError : NSFileWriteInvalidFileNameError;
    case EEXIST:
      return reading ? NSFileReadUnknownError : NSFileWriteFileExistsError;
    case ENOSPC:
    case EDQUOT:
      return reading ? NSFileReadUnknownError : NSFileWriteOutOfSpaceError;
    case EROFS:
      return reading ? NSFileReadUnknownError : NSFileWriteVolumeReadOnlyError;
    default:
      return reading ? NSFileReadUnknownError : NSFileWriteUnknownError;
  }
}

}  // namespace

Failure fail(Error* error, const PosixFailure& failure, std::string_view path) {
  if (!error) return {};
  const Error cause = platformError({NSPOSIXErrorDomain, failure.number, {}},
                                    std::generic_category().message(failure.number));
  return fail(error, {NSCocoaErrorDomain, codeOf(failure), {}}, {},
              {{NSFilePathErrorKey, path}, {NSUnderlyingErrorKey, cause}});
}

std::optional<std::string> systemPath(std::string_view path, FileAccess access, Error* error) {
  if (path.find('\0') != std::string_view::npos) {
    // The number that file systems answer to a name that they cannot spell.
    return fail(error, {EILSEQ, access}, path);
  }
  while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  return std::string(path);
}

bool isRemovable(std::string_view path) {
  const std::string name = paths::lastPathComponent(path);
  return name != "/" && name != "." && name != "..";
}

}  // namespace FrameworkUtility::detail
