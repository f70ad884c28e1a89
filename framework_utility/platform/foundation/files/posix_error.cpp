#include <framework_utility/platform/foundation/files/posix_error.h>

#include <framework_utility/platform/foundation/files/file_error.h>
#include <framework_utility/platform/foundation/values/path.h>
#include <framework_utility/platform/foundation/values/value.h>

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

Error fileError(const PosixFailure& failure, std::string_view path) {
  const Error cause(NSPOSIXErrorDomain, failure.number,
                    {{NSLocalizedDescriptionKey, std::generic_category().message(failure.number)}});
  return Error(NSCocoaErrorDomain, codeOf(failure),
               {{NSFilePathErrorKey, path}, {NSUnderlyingErrorKey, cause}});
}

bool fail(const PosixFailure& failure, std::string_view path, Error* error) {
  if (error) *error = fileError(failure, path);
  return false;
}

std::optional<std::string> systemPath(std::string_view path, FileAccess access, Error* error) {
  if (path.find('\0') != std::string_view::npos) {
    // The number that file systems answer to a name that they cannot spell.
    fail({EILSEQ, access}, path, error);
    return std::nullopt;
  }
  while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  return std::string(path);
}

bool isRemovable(std::string_view path) {
  const std::string name = paths::lastPathComponent(path);
  return name != "/" && name != "." && name != "..";
}

}  // namespace FrameworkUtility::detail
