#include <framework_utility/platform/foundation/archives/archive_contents.h>

#include <framework_utility/platform/foundation/archives/keyed_archive_format.h>
#include <framework_utility/platform/foundation/property_lists/property_list.h>

#include <utility>

namespace FrameworkUtility::detail {

namespace {

std::nullopt_t failed(std::string_view reason, std::string& problem) {
  problem = reason;
  return std::nullopt;
}

}  // namespace

std::optional<ArchiveContents> archiveContents(std::span<const std::byte> data,
                                               const ArchiveLimits& limits, std::string& problem) {
  if (data.empty()) {
    return failed("data is empty; did you forget to send -finishEncoding to the NSKeyedArchiver?",
                  problem);
  }
  if (data.size() > limits.bytes) return failed("the archive is too large", problem);
  std::optional<Value> list = propertyListWithData(
      data, {.expansion = limits.expansion, .values = valuesOf(limits.objects)});
  const auto* parts = list ? list->as<Dictionary>() : nullptr;
  const auto* archiver = parts ? parts->get<std::string>(archiverKey) : nullptr;
  const auto* version = parts ? parts->get<Number>(versionKey) : nullptr;
  const auto* objects = parts ? parts->get<Array>(objectsKey) : nullptr;
  const auto* top = parts ? parts->get<Dictionary>(topKey) : nullptr;
  if (!archiver || *archiver != archiverName || !version || !(*version == archiveVersion) ||
      !objects || !top || objects->size() > limits.objects) {
    return failed("incomprehensible archive", problem);
  }
  return ArchiveContents{*std::move(list), *objects, top};
}

const CodingClass* codingClassOfRecord(const Dictionary& record) {
  if (const auto* name = record.get<std::string>(classNameKey)) {
    if (const CodingClass* own = codingClassNamed(*name)) return own;
  }
  for (const std::string_view others : {classHintsKey, classesKey}) {
    const auto* names = record.get<Array>(others);
    if (!names) continue;
    for (const Value& other : *names) {
      const auto* text = other.as<std::string>();
      const CodingClass* found = text ? codingClassNamed(*text) : nullptr;
      if (found) return found;
    }
  }
  return nullptr;
}

}  // namespace FrameworkUtility::detail
