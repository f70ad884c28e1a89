#include <framework_utility/errors/error_factory.h>

#include <framework_utility/platform/foundation/app/application.h>
#include <framework_utility/platform/foundation/files/file_error.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/foundation/values/path.h>
#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/locale/byte_count_formatter.h>

#include <utility>

namespace FrameworkUtility {
namespace {

bool isDiskSpaceCode(std::int64_t code) { return code >= 5000 && code < 6000; }

}  // namespace

Error errorWithDomain(std::optional<std::string_view> domain, std::int64_t code,
                      std::optional<std::string_view> description,
                      const std::optional<Error>& underlyingError) {
  Dictionary userInfo;
  if (underlyingError) userInfo.set(Key::withConstant(NSUnderlyingErrorKey), *underlyingError);
  if (isDiskSpaceCode(code)) {
    userInfo.set(Key::withConstant(NSLocalizedDescriptionKey), diskSpaceReport(description));
  } else if (description) {
    userInfo.set(Key::withConstant(NSLocalizedDescriptionKey), *description);
  }
  return Error(domain.value_or(defaultErrorDomain), code, std::move(userInfo));
}

Error errorWithCode(const ErrorCode& code, std::optional<std::string_view> description,
                    const std::optional<Error>& underlyingError) {
  return errorWithDomain(code.domain, code.code, description.value_or(code.message),
                         underlyingError);
}

std::string diskSpaceReport(std::optional<std::string_view> lead,
                            std::optional<std::string_view> path) {
  const FileSystemAttributes volume =
      FileManager::defaultManager()
          .attributesOfFileSystemForPath(path.value_or(application().homeDirectory), nullptr)
          .value_or(FileSystemAttributes{});
  const ByteCountFormatter formatter;
  std::string report;
  if (lead) report.append(*lead).append(" ");
  return report.append("(disk space used ")
      .append(formatter.stringFromByteCount(volume.totalSize - volume.freeSize))
      .append(", free ")
      .append(formatter.stringFromByteCount(volume.freeSize))
      .append(", total ")
      .append(formatter.stringFromByteCount(volume.totalSize))
      .append(")");
}

Error withDiskSpaceReport(const Error& cause) {
  if (cause.domain() != NSCocoaErrorDomain || cause.code() != NSFileWriteOutOfSpaceError) {
    return cause;
  }
  Dictionary userInfo = cause.userInfo();
  const std::string* file = userInfo.get<std::string>(NSFilePathErrorKey);
  // The file itself is hardly there. A bare name stands in the working directory.
  const std::string beside = file ? paths::deletingLastPathComponent(*file) : std::string();
  const std::string_view folder = beside.empty() ? std::string_view(".") : beside;
  // The system's own words, "No space left on device" or that a quota is used up.
  const std::string lead = cause.underlyingError().value_or(cause).localizedDescription();
  userInfo.set(Key::withConstant(NSLocalizedDescriptionKey), diskSpaceReport(lead, folder));
  return Error(cause.domain(), cause.code(), std::move(userInfo));
}

}  // namespace FrameworkUtility
