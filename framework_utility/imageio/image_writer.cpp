#include <framework_utility/imageio/image_writer.h>

#include <framework_utility/errors/fail.h>
#include <framework_utility/imageio/contained_path.h>
#include <framework_utility/imageio/image_metadata.h>
#include <framework_utility/imageio/made_folders.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/foundation/values/random.h>
#include <framework_utility/platform/imageio/image_destination.h>

#include <memory>

namespace FrameworkUtility {

using detail::fail;
using detail::MadeFolders;

namespace {

UTType writtenType(const std::optional<UTType>& wanted) {
  if (!wanted) return UTTypeJPEG;
  return wanted->conformsToType(UTTypeHEIC) && !canCreateHeic() ? UTTypeJPEG : *wanted;
}

/// Absent when there is no path to change, or the type has no extension.
std::optional<URL> withExtensionOf(const UTType& type, const URL& url) {
  const std::optional<std::string> extension = type.preferredFilenameExtension();
  if (!url.isFileURL() || !url.path() || !extension) return std::nullopt;
  return url.deletingPathExtension().appendingPathExtension(*extension);
}

/// Removes what is at `url` and makes its folder. A failure shows when the file is made.
void makeWay(const URL& url, MadeFolders& made) {
  FileManager& files = FileManager::defaultManager();
  files.removeItemAtPath(url.path().value_or(""), nullptr);
  const std::string folder = url.deletingLastPathComponent().path().value_or("");
  if (!files.fileExistsAtPath(folder)) made.make(folder);
}

/// `made` has the folders that were made for this file before.
std::optional<URL> write(const std::optional<CGImage>& image, const URL& url,
                         const ImageWriteOptions& options, MadeFolders& made, Error* error) {
  if (!image) return fail(error, CGImageWriteToDiskError::imageIsNil);
  const UTType type = writtenType(options.uti);
  std::optional<URL> target = withExtensionOf(type, url);
  if (!target) return fail(error, CGImageWriteToDiskError::noExtension);
  makeWay(*target, made);

  const std::unique_ptr<CGImageDestination> destination =
      CGImageDestination::createWithURL(*target, type.identifier(), 1);
  if (!destination) {
    const ErrorCode& code = CGImageWriteToDiskError::noDestination;
    return fail(error, code, std::string(code.message) + std::string(type.identifier()));
  }
  // The quality stays in the caller's metadata, so that the next save takes it too. Having an
  // entry, even new metadata is not empty, so that the image is added.
  KvImageMetadata none;
  KvImageMetadata& metadata = options.metadata ? *options.metadata : none;
  metadata.addImage(image, destination.get(),
                    options.compressionQuality.value_or(jpegCompressionQualityDefault));
  Error cause;
  if (destination->finalize(&cause)) {
    if (made.keep(&cause)) return target;
    FileManager::defaultManager().removeItemAtPath(target->path().value_or(""), nullptr);
  }
  return fail(error, CGImageWriteToDiskError::finalizeFailed, made.failure().value_or(cause));
}

}  // namespace

std::optional<URL> writeCGImageToURL(const std::optional<CGImage>& image, const URL& url,
                                     const ImageWriteOptions& options, Error* error) {
  MadeFolders made;
  return write(image, url, options, made, error);
}

std::optional<std::string> writeCGImageToPath(const std::optional<CGImage>& image,
                                              std::string_view path,
                                              const ImageWriteOptions& options, Error* error) {
  if (!image) return fail(error, CGImageWriteToDiskError::imageIsNil);
  if (path.empty()) return fail(error, CGImageWriteToDiskError::noPath);
  const std::optional<URL> written =
      writeCGImageToURL(image, URL::fileURLWithPath(path), options, error);
  if (!written) return std::nullopt;
  std::optional<std::string> writtenPath = written->path();
  if (!writtenPath) return fail(error, CGImageWriteToDiskError::noPath);
  return writtenPath;
}

std::optional<URL> writeCGImageFileName(const std::optional<CGImage>& image,
                                        std::optional<std::string_view> fileName,
                                        std::string_view sessionIdentifier,
                                        const ImageWriteOptions& options, Error* error) {
  if (!options.uti) return fail(error, CGImageWriteToDiskError::noTypeForFileName);
  const std::string name = fileName ? std::string(*fileName) : newUUIDString();
  // A name that climbs out of the new folder has no valid path, as an identifier that leads out of
  // the temporary directory has none.
  if (!detail::staysInFolder(name)) return fail(error, CGImageWriteToDiskError::noFolder);
  MadeFolders made;
  const std::optional<std::string> folder = detail::newFolderOfSession(sessionIdentifier, made);
  if (!folder) return fail(error, CGImageWriteToDiskError::noFolder);
  return write(image, URL::fileURLWithPath(*folder + "/" + name), options, made, error);
}

std::optional<URL> writeToURL(const UIImage& image, const URL& url,
                              const ImageWriteOptions& options, Error* error) {
  return writeCGImageToURL(image.cgImage(), url, options, error);
}

std::optional<std::string> writeToPath(const UIImage& image, std::string_view path,
                                       const ImageWriteOptions& options, Error* error) {
  return writeCGImageToPath(image.cgImage(), path, options, error);
}

std::optional<URL> writeToDiskWithFileName(const UIImage& image,
                                           std::optional<std::string_view> fileName,
                                           std::string_view sessionIdentifier,
                                           const ImageWriteOptions& options, Error* error) {
  return writeCGImageFileName(image.cgImage(), fileName, sessionIdentifier, options, error);
}

std::optional<std::string> writeJpegToPath(const UIImage& image, std::string_view path,
                                           std::optional<double> compressionQuality, Error* error) {
  return writeToPath(image, path, {.compressionQuality = compressionQuality, .uti = UTTypeJPEG},
                     error);
}

std::optional<URL> writeJpegToUrl(const UIImage& image, const URL& url,
                                  std::optional<double> compressionQuality, Error* error) {
  return writeToURL(image, url, {.compressionQuality = compressionQuality, .uti = UTTypeJPEG},
                    error);
}

}  // namespace FrameworkUtility
