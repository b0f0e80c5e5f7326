// thermoscribe config: the user's defaults for the line, and where each comes from.

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "adapters/files/config_registry.h"
#include "apps/thermoscribe/assignments.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/line_options.h"
#include "apps/thermoscribe/program_commands.h"

namespace vane::thermoscribe {
namespace {

constexpr std::size_t kNameColumns = 9;

const char* SourceWord(EValueSource source) {
  switch (source) {
    case EValueSource::BUILT_IN:
      return "built-in";
    case EValueSource::FILE:
      return "file";
    case EValueSource::ENVIRONMENT:
      return "environment";
    case EValueSource::COMMAND_LINE:
      return "option";
  }
  return "";
}

std::string ValueText(const LineOptionRow& row, const Value& value) {
  if (value.IsNone()) return "the lone USB adapter";
  return TextOf(value, row.unit);
}

// A value that can't be is told, and the others are shown.
EExitCode ShowConfig(CHost& host, HostOptions options) {
  const CConfigRegistry registry({});
  EExitCode code = EExitCode::DONE;
  List defaults;
  std::vector<std::pair<std::string, std::string>> texts;
  for (const LineOptionRow& row : LineOptions()) {
    try {
      const EValueSource source = TakeDefault(row, options, registry);
      const Value value = row.value(options);
      defaults.emplace_back(Members{{"name", row.name},
                                    {"value", value},
                                    {"source", SourceWord(source)},
                                    {"variable", row.variable}});
      texts.emplace_back(ValueText(row, value),
                         source == EValueSource::ENVIRONMENT ? row.variable : SourceWord(source));
    } catch (const CUsageError& error) {
      host.Say(error.what());
      code = EExitCode::USAGE;
      defaults.emplace_back(
          Members{{"name", row.name}, {"value", {}}, {"source", {}}, {"variable", row.variable}});
      texts.emplace_back(TextOf({}), "");
    }
  }
  const std::string file = registry.Path().string();
  std::string text;
  AddLine(text, "File", kNameColumns, file);
  const std::size_t width =
      std::ranges::max(texts, {}, [](const auto& one) { return one.first.size(); }).first.size();
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const auto& [value, source] = texts[i];
    AddLine(text, LineOptions()[i].name, kNameColumns,
            source.empty() ? value : Padded(value, width + 2) + source);
  }
  host.Output().Record("config", {{"file", file}, {"defaults", defaults}}, text);
  return code;
}

const LineOptionRow& RowOf(const std::string& name) {
  if (const LineOptionRow* const row = FindLineOption(name)) return *row;
  std::vector<std::string> names;
  for (const LineOptionRow& row : LineOptions()) names.emplace_back(row.name);
  throw CUsageError("\"" + name + "\" is no default. The defaults are " + Listed(names) + ".");
}

// What is to be changed, each entry once.
struct Entries {
  std::vector<std::pair<const LineOptionRow*, std::string>> texts;

  void Add(const LineOptionRow& row, const std::string& text) {
    if (std::ranges::any_of(texts, [&](const auto& one) { return one.first == &row; })) {
      throw CUsageError(std::string(row.name) + " is given twice.");
    }
    texts.emplace_back(&row, text);
  }
};

Command SetCommand(const HostOptions& options) {
  const auto entries = std::make_shared<Entries>();
  Option assignments{"assignments", "NAME=VALUE...", "a default and its value", {}};
  assignments.take = [entries](const std::string& text) {
    const auto [name, value] = AssignmentIn(text);
    const LineOptionRow& row = RowOf(name);
    HostOptions checked;
    row.take(checked, row.name, value);
    entries->Add(row, value);
  };
  assignments.isrequired = true;
  assignments.takesmany = true;
  assignments.offer = EOffer::WORDS;
  for (const LineOptionRow& row : LineOptions()) {
    std::ranges::copy(AssignmentWords(row.name, WordRule{row.words}),
                      std::back_inserter(assignments.words));
  }
  return {
      .name = "set",
      .brief = "Keep defaults in the file",
      .footer =
          R"(Puts the values into the file, which is made if there is none, and shows all defaults. A value
that can't be is refused before anything is written.

Example:
  thermoscribe config set port=/dev/ttyUSB0 baud=19200)",
      .options = {std::move(assignments)},
      .body = [entries, &options](CHost& host) {
        CConfigRegistry registry({});
        for (const auto& [row, text] : entries->texts) {
          registry.WriteText(row->name, text, kProgramSubkey);
        }
        return ShowConfig(host, options);
      }};
}

Command UnsetCommand(const HostOptions& options) {
  const auto entries = std::make_shared<Entries>();
  Option names{"names", "NAME...", "a default", {}};
  names.take = [entries](const std::string& name) { entries->Add(RowOf(name), {}); };
  names.isrequired = true;
  names.takesmany = true;
  names.offer = EOffer::WORDS;
  for (const LineOptionRow& row : LineOptions()) names.words.emplace_back(row.name);
  return {
      .name = "unset",
      .brief = "Take defaults out of the file",
      .footer = R"(Takes the entries out of the file, where there are such, and shows all defaults.

Example:
  thermoscribe config unset port)",
      .options = {std::move(names)},
      .body = [entries, &options](CHost& host) {
        CConfigRegistry registry({});
        for (const auto& [row, text] : entries->texts) {
          registry.Remove(row->name, kProgramSubkey);
        }
        return ShowConfig(host, options);
      }};
}

}  // namespace

Command ConfigCommand(const HostOptions& options) {
  return {
      .name = "config",
      .brief = "Show the defaults of the line, and keep them in a file",
      .footer =
          R"(Shows the configuration file and the defaults of --port, --baud and --timeout, each with where
it comes from. An option on the command line comes first; then the environment,
THERMOSCRIBE_PORT, THERMOSCRIBE_BAUD and THERMOSCRIBE_TIMEOUT; then the entries port, baud
and timeout of the file's table [values.thermoscribe]; then what is built in. Needs no
readout.

Examples:
  thermoscribe config
  thermoscribe config set port=/dev/ttyUSB0)",
      .members = {SetCommand(options), UnsetCommand(options)},
      .body = [&options](CHost& host) { return ShowConfig(host, options); }};
}

}  // namespace vane::thermoscribe
