#include <tools/kvtool/console/console.h>
#include <tools/kvtool/console/json.h>
#include <tools/kvtool/files/picture_input.h>
#include <tools/kvtool/photos/commands.h>
#include <tools/kvtool/photos/facts.h>

#include <fmt/core.h>

#include <algorithm>
#include <memory>

namespace kvtool {

using namespace FrameworkUtility;

namespace {

using Row = std::pair<std::string, const Value*>;

/// A value as it reads in a table: no quotation marks around a text, bytes by their number.
void printCell(const Value& value) {
  if (const auto* data = value.as<Data>()) {
    print(fmt::format("{} bytes", data->size()));
  } else if (const auto* text = value.as<std::string>()) {
    writeEscaped(*text, print);
  } else {
    writeJson(value, print);
  }
}

std::string keyText(const Key& key) {
  const std::string text = jsonText(key.text() ? *key.text() : key.number()->description());
  return text.substr(1, text.size() - 2);
}

void addRows(std::vector<Row>& rows, const Dictionary& dictionary, const std::string& prefix) {
  for (const auto& [key, value] : dictionary) {
    const std::string name = prefix + keyText(key);
    if (const auto* nested = value.as<Dictionary>(); nested && prefix.empty()) {
      addRows(rows, *nested, name + " ");
    } else {
      rows.emplace_back(name, &value);
    }
  }
}

void printTable(const Dictionary& dictionary) {
  std::vector<Row> rows;
  addRows(rows, dictionary, "");
  std::size_t width = 0;
  for (const auto& [name, value] : rows) width = std::max(width, name.size());
  for (const auto& [name, value] : rows) {
    print(fmt::format("  {:<{}}  ", name, width));
    printCell(*value);
    printLine("");
  }
}

struct Options {
  std::vector<std::string> files;
  bool json = false;
};

bool printMetadataOf(const std::string& file, bool asJson) {
  const std::optional<PictureInput> input = PictureInput::open(file);
  if (!input) return false;
  Error error;
  const auto metadata = KvImageMetadata::withImageSource(input->source(), &error);
  if (!metadata) {
    printProblem(input->name(), error);
    return false;
  }
  static const Dictionary none;
  const Dictionary& properties = metadata->properties() ? *metadata->properties() : none;
  Dictionary known = facts(*metadata, input->path());
  if (asJson) {
    Dictionary all{{"file", file}};
    all.append("properties", properties);
    all.append("facts", std::move(known));
    writeJson(all, print);
    printLine("");
    return true;
  }
  printLine(input->name());
  printTable(known);
  printLine("");
  printTable(properties);
  printLine("");
  return true;
}

}  // namespace

Command metadataCommand() {
  const auto options = std::make_shared<Options>();
  return {
      .name = "metadata",
      .purpose = "Show what image files say of themselves",
      .arguments = {{"FILE", fileNames(options->files), "Image files; - is standard input", true},
                    {"-j,--json", flag(options->json), "One JSON object a line and file"}},
      .help =
          R"(Reads the files' metadata only, never their pixels. The facts come first, each only when it is
known; then all properties under the platform's names. With --json an object has the members
"file", "properties" and "facts"; bytes are {"base64": "..."}. A date is what the camera's clock
showed, with its offset from Greenwich where the file says it.

Examples:
  kvtool metadata photo.jpg
  kvtool metadata --json *.jpg | jq -r '[.file, .facts.model, .facts.date] | @tsv'
  kvtool metadata -j - <photo.jpg | jq '.properties["{GPS}"]')",
      .run = [options] {
        bool all = true;
        for (const std::string& file : options->files) {
          all = printMetadataOf(file, options->json) && all;
        }
        return all;
      }};
}

}  // namespace kvtool
