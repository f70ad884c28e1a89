#include <tools/kvtool/commands.h>
#include <tools/kvtool/console.h>
#include <tools/kvtool/facts.h>
#include <tools/kvtool/json.h>

#include <fmt/core.h>

#include <algorithm>

namespace kvtool {

using namespace FrameworkUtility;

namespace {

using Row = std::pair<std::string, std::string>;

/// A value as it reads in a table: no quotation marks around a text, bytes by their number.
std::string cell(const Value& value) {
  if (const auto* data = value.as<Data>()) return fmt::format("{} bytes", data->size());
  const std::string text = json(value);
  return value.as<std::string>() ? text.substr(1, text.size() - 2) : text;
}

std::string keyText(const Key& key) {
  const std::string text = jsonText(key.text() ? *key.text() : key.number()->description());
  return text.substr(1, text.size() - 2);
}

void addRows(std::vector<Row>& rows, const Dictionary& dictionary, const std::string& prefix) {
  for (const auto& [key, value] : dictionary) {
    const std::string name = prefix + keyText(key);
    if (const auto* nested = value.as<Dictionary>(); nested && prefix.empty())
      addRows(rows, *nested, name + " ");
    else
      rows.emplace_back(name, cell(value));
  }
}

void printTable(const std::vector<Row>& rows) {
  std::size_t width = 0;
  for (const auto& [name, text] : rows) width = std::max(width, name.size());
  for (const auto& [name, text] : rows) printLine(fmt::format("  {:<{}}  {}", name, width, text));
}

bool printMetadataOf(const std::string& file, bool asJson) {
  Error error;
  const std::optional<KvImageMetadata> metadata =
      KvImageMetadata::withUrl(URL::fileURLWithPath(file), &error);
  if (!metadata) {
    printProblem(file, error);
    return false;
  }
  const Dictionary properties = metadata->properties().value_or(Dictionary());
  const Dictionary known = facts(*metadata, file);
  if (asJson) {
    printLine(json(Dictionary{{"file", file}, {"properties", properties}, {"facts", known}}));
    return true;
  }
  std::vector<Row> factRows, propertyRows;
  addRows(factRows, known, "");
  addRows(propertyRows, properties, "");
  printLine(file);
  printTable(factRows);
  printLine("");
  printTable(propertyRows);
  printLine("");
  return true;
}

}  // namespace

bool printMetadata(const MetadataOptions& options) {
  bool all = true;
  for (const std::string& file : options.files) all = printMetadataOf(file, options.json) && all;
  return all;
}

}  // namespace kvtool
