#include <tools/kvtool/console/command_line.h>

#include <tools/kvtool/console/console.h>

// The only place that includes it: it compiles slowly.
#include <fmt/core.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <stdexcept>
#include <string_view>

namespace kvtool {
namespace {

constexpr int usageError = 2;

struct BadCommandLine : std::runtime_error {
  using runtime_error::runtime_error;
};

/// How many letters must be put in, left out or exchanged to make one of the other.
std::size_t distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0]++;
    for (std::size_t k = 0; k < b.size(); ++k) {
      const std::size_t exchanged = diagonal + (a[i] == b[k] ? 0 : 1);
      diagonal = row[k + 1];
      row[k + 1] = std::min({exchanged, diagonal + 1, row[k] + 1});
    }
  }
  return row.back();
}

/// "; did you mean "save"?" for the name that is nearest to `text`, if one is near.
std::string suggestion(const std::string& text, const std::vector<std::string>& names) {
  constexpr std::size_t longest = 64;
  if (text.size() > longest) return "";
  std::size_t best = 1 + text.size() / 3;
  std::string found;
  for (const std::string& name : names) {
    const std::size_t steps = distance(text, name);
    if (steps > best || (steps == best && !found.empty())) continue;
    best = steps;
    found = fmt::format("; did you mean {}?", name);
  }
  return found;
}

void add(CLI::App& app, const Argument& argument) {
  const auto read = [&argument](const std::string& text) {
    if (argument.reader.read(text)) return;
    const std::size_t last = argument.names.rfind(',') + 1;  // 0 for a single name
    throw BadCommandLine(fmt::format("{} is {}, not \"{}\"", argument.names.substr(last),
                                     argument.reader.expected, text));
  };
  if (argument.reader.shape.empty()) {
    app.add_flag_callback(
        argument.names, [read] { read(""); }, argument.help);
    return;
  }
  CLI::Option* option = nullptr;
  if (argument.reader.takesMany) {
    option = app.add_option_function<std::vector<std::string>>(
        argument.names,
        [read](const std::vector<std::string>& texts) {
          std::for_each(texts.begin(), texts.end(), read);
        },
        argument.help);
  } else {
    option = app.add_option_function<std::string>(argument.names, read, argument.help);
  }
  option->type_name(argument.reader.takesMany ? "" : argument.reader.shape);
  option->required(argument.isRequired);
  if (!argument.standard.empty()) option->default_str(argument.standard);
}

std::vector<std::string> optionNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : app.get_options()) names.push_back(option->get_name());
  return names;
}

/// The library's own texts are long and name types that nobody asked for.
std::string inPlainWords(const CLI::ParseError& problem, const CLI::App& app) {
  const std::string text = problem.what();
  // Where there is neither a command nor a known option, the library misses the command first.
  const bool isExtra = dynamic_cast<const CLI::ExtrasError*>(&problem) != nullptr;
  if (isExtra || (app.get_parent() == nullptr && !app.remaining().empty())) {
    const std::string extra = app.remaining().empty() ? "" : app.remaining().front();
    if (extra.starts_with('-') && extra.size() > 1) {
      const std::string name = extra.substr(0, extra.find('='));
      return fmt::format("there is no option {}{}", name, suggestion(name, optionNames(app)));
    }
    return fmt::format("\"{}\" is one argument too many", extra);
  }
  if (dynamic_cast<const CLI::RequiredError*>(&problem)) {
    return text.substr(0, text.rfind(" is required")) + " is missing";
  }
  if (dynamic_cast<const CLI::ConversionError*>(
          &problem)) {  // of a flag: what has a value is a text
    return text.substr(text.find('-'), text.find(" =") - text.find('-')) + " takes no value";
  }
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&problem)) {
    if (text.ends_with(" missing")) return text.substr(0, text.find(':')) + " needs a value";
    if (const std::size_t to = text.find("arguments to "); to != text.npos) {
      return text.substr(to + 13, text.find(',') - to - 13) + " is given twice";
    }
    if (const std::size_t most = text.find(": At Most"); most != text.npos) {
      return text.substr(0, most) + " is given twice";
    }
  }
  return text;
}

const Command& commandNamed(std::span<const Command> commands, const std::string& name) {
  return *std::find_if(commands.begin(), commands.end(),
                       [&](const Command& command) { return command.name == name; });
}

}  // namespace

int runCommandLine(const ToolText& text, std::span<const Command> commands, int argc, char** argv) {
  CLI::App tool{text.purpose, text.name};
  tool.footer(text.help);
  tool.set_version_flag("-V,--version", text.name + " " + text.version, "Print the version");
  tool.set_help_flag("-h,--help", "Print this help, or a command's");
  tool.require_subcommand(1);
  std::vector<std::string> names;
  for (const Command& command : commands) {
    CLI::App* app = tool.add_subcommand(command.name, command.purpose);
    app->footer(command.help);
    app->set_help_flag("-h,--help", "Print this help");
    for (const Argument& argument : command.arguments) add(*app, argument);
    names.push_back(command.name);
  }

  const auto refuse = [&](const std::string& problem) {
    const auto chosen = tool.get_subcommands();
    const std::string where = chosen.empty() ? "" : " " + chosen.front()->get_name();
    printProblem(fmt::format("{} (see {}{} --help)", problem, text.name, where));
    return usageError;
  };
  const std::string first = argc > 1 ? argv[1] : "";
  if (first.empty()) return refuse("no command is given");
  if (first[0] != '-' && std::find(names.begin(), names.end(), first) == names.end()) {
    return refuse(fmt::format("there is no command {}{}", first, suggestion(first, names)));
  }

  const Command* command = nullptr;
  try {
    tool.parse(argc, argv);
    command = &commandNamed(commands, tool.get_subcommands().front()->get_name());
    const std::string problem = command->check ? command->check() : "";
    if (!problem.empty()) return refuse(problem);
  } catch (const BadCommandLine& problem) {
    return refuse(problem.what());
  } catch (const CLI::Success& answer) {  // help or the version
    tool.exit(answer);
    return flushOutput() ? EXIT_SUCCESS : EXIT_FAILURE;
  } catch (const CLI::ParseError& problem) {
    const auto chosen = tool.get_subcommands();
    return refuse(inPlainWords(problem, chosen.empty() ? tool : *chosen.front()));
  }
  const bool worked = command->run();
  return flushOutput() && worked ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace kvtool
