#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/foundation/values/stop.h>

#include <memory>
#include <utility>

namespace FrameworkUtility {

namespace {

using SharedFailure = std::shared_ptr<const FileFailure>;

/// Whether the operation is to fail; fills `error` then.
bool fails(const FileFailure& failure, std::string_view operation, std::string_view path,
           Error* error) {
  std::optional<Error> given = failure(operation, path);
  if (!given) return false;
  if (error) *error = *std::move(given);
  return true;
}

class FailingFileReader final : public FileReader {
 public:
  FailingFileReader(std::unique_ptr<FileReader> inner, SharedFailure failure, std::string_view path)
      : inner_(std::move(inner)), failure_(std::move(failure)), path_(path) {}

  std::int64_t size() const override { return inner_->size(); }

  std::optional<std::size_t> readAt(std::int64_t offset, std::span<std::byte> bytes,
                                    Error* error) const override {
    if (fails(*failure_, "readAt", path_, error)) return std::nullopt;
    return inner_->readAt(offset, bytes, error);
  }

 private:
  std::unique_ptr<FileReader> inner_;
  SharedFailure failure_;  // the reader may outlive its manager
  std::string path_;
};

class FailingFileManager final : public FileManager {
 public:
  FailingFileManager(FileManager& inner, FileFailure failure)
      : inner_(inner), failure_(std::make_shared<const FileFailure>(std::move(failure))) {}

  std::optional<FileAttributes> attributesOfItemAtPath(std::string_view path,
                                                       Error* error) const override {
    if (fails(*failure_, "attributesOfItemAtPath", path, error)) return std::nullopt;
    return inner_.attributesOfItemAtPath(path, error);
  }

  std::optional<FileSystemAttributes> attributesOfFileSystemForPath(std::string_view path,
                                                                    Error* error) const override {
    if (fails(*failure_, "attributesOfFileSystemForPath", path, error)) return std::nullopt;
    return inner_.attributesOfFileSystemForPath(path, error);
  }

  std::optional<std::vector<std::string>> contentsOfDirectoryAtPath(std::string_view path,
                                                                    Error* error) const override {
    if (fails(*failure_, "contentsOfDirectoryAtPath", path, error)) return std::nullopt;
    return inner_.contentsOfDirectoryAtPath(path, error);
  }

  std::unique_ptr<FileReader> openFileAtPath(std::string_view path, Error* error) const override {
    if (fails(*failure_, "openFileAtPath", path, error)) return nullptr;
    std::unique_ptr<FileReader> reader = inner_.openFileAtPath(path, error);
    if (!reader) return nullptr;
    return std::make_unique<FailingFileReader>(std::move(reader), failure_, path);
  }

  bool writeAtomically(std::span<const std::byte> bytes, std::string_view path,
                       Error* error) override {
    return !fails(*failure_, "writeAtomically", path, error) &&
           inner_.writeAtomically(bytes, path, error);
  }

  bool createDirectoryAtPath(std::string_view path, IntermediateDirectories intermediates,
                             Error* error) override {
    return !fails(*failure_, "createDirectoryAtPath", path, error) &&
           inner_.createDirectoryAtPath(path, intermediates, error);
  }

  bool flushDirectoryAtPath(std::string_view path, Error* error) override {
    return !fails(*failure_, "flushDirectoryAtPath", path, error) &&
           inner_.flushDirectoryAtPath(path, error);
  }

  bool copyItemAtPath(std::string_view path, std::string_view toPath, Error* error) override {
    return !fails(*failure_, "copyItemAtPath", path, error) &&
           inner_.copyItemAtPath(path, toPath, error);
  }

  bool moveItemAtPath(std::string_view path, std::string_view toPath, Error* error) override {
    return !fails(*failure_, "moveItemAtPath", path, error) &&
           inner_.moveItemAtPath(path, toPath, error);
  }

  bool removeItemAtPath(std::string_view path, Error* error) override {
    return !fails(*failure_, "removeItemAtPath", path, error) &&
           inner_.removeItemAtPath(path, error);
  }

  bool removeEmptyDirectoryAtPath(std::string_view path, Error* error) override {
    return !fails(*failure_, "removeEmptyDirectoryAtPath", path, error) &&
           inner_.removeEmptyDirectoryAtPath(path, error);
  }

 private:
  FileManager& inner_;
  SharedFailure failure_;
};

}  // namespace

std::unique_ptr<FileManager> makeFailingFileManager(FileManager& inner, FileFailure fail) {
  if (!fail) stop("makeFailingFileManager: no function says what fails");
  return std::make_unique<FailingFileManager>(inner, std::move(fail));
}

}  // namespace FrameworkUtility
