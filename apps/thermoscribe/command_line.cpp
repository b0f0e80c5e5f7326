// The only place that knows the argument parser. It cuts the line into options and their texts;
// what these may be and what goes together is said by the description and checked here, in one
// voice.

#include "apps/thermoscribe/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <memory>

#include "apps/snapshots/value_rule.h"

namespace vane::thermoscribe {
namespace {

constexpr const char* kHelp = "help";
constexpr const char* kBareFlag = "true";  // what the parser makes of a flag without a text

class CHelpFormatter final : public CLI::Formatter {
 public:
  CHelpFormatter() {
    column_width(24);
    label("SUBCOMMAND", "COMMAND");
    label("Positionals", "Arguments");
  }

  std::string make_option_name(const CLI::Option* option, bool isargument) const override {
    return isargument ? option->get_option_text() : option->get_name(false, true);
  }
  // What conflicts with an option is told when it happens; on a page of help it hides the options.
  std::string make_option_opts(const CLI::Option* option) const override {
    const std::string& value = option->get_option_text();
    if (option->get_positional() || value.empty()) return {};
    return value.front() == '[' ? value : " " + value;
  }
  std::string make_option_usage(const CLI::Option* option) const override {
    return option->get_option_text();
  }
};

class CParser {
 public:
  explicit CParser(const Command& program);

  ParsedLine Parse(int argc, char** argv, std::string& name);

 private:
  struct Node {
    const Command* command;
    CLI::App* app;
    std::vector<CLI::Option*> options;  // in the order of the command's
  };

  void Add(const Command& command, CLI::App& app);
  std::vector<std::string> Arguments(int argc, char** argv) const;
  void Cut(int argc, char** argv);
  const Node& NodeOf(const CLI::App* app) const;
  std::vector<const Node*> ChosenPath() const;
  std::string PageOf(const Node& help) const;
  static void CheckOptions(const Node& node, std::map<std::string, std::size_t>& counts);
  static void TakeValues(const Node& node);

  CLI::App app_;
  std::vector<Node> nodes_;
};

CParser::CParser(const Command& program) : app_(program.brief, program.name) {
  app_.formatter(std::make_shared<CHelpFormatter>());
  app_.fallthrough();
  app_.set_help_flag(HelpFlag().name, HelpFlag().brief);
  Add(program, app_);
}

void CParser::Add(const Command& command, CLI::App& app) {
  Node node{&command, &app, {}};
  for (const Option& option : command.options) {
    CLI::Option* const added = option.IsFlag() || option.isvalueoptional
                                   ? app.add_flag(option.name)
                                   : app.add_option(option.name);
    added->description(option.brief);
    if (option.isvalueoptional) {
      added->option_text("[=" + option.value + "]");
    } else if (!option.IsFlag()) {
      added->option_text(option.value)->take_all();
      if (option.takesmany) {
        added->expected(1, CLI::detail::expected_max_vector_size)->allow_extra_args();
      } else {
        added->expected(1)->allow_extra_args(false);
      }
    }
    node.options.push_back(added);
  }
  app.footer(command.footer);
  app.require_subcommand(0, 1);
  nodes_.push_back(std::move(node));
  for (const Command& member : command.members) {
    CLI::App* const added = app.add_subcommand(member.name, member.brief);
    added->ignore_case()->group("Commands");
    Add(member, *added);
  }
}

// The parser takes the next word for the value of "--name="; here that is the empty text, and to
// be judged like any other.
std::vector<std::string> CParser::Arguments(int argc, char** argv) const {
  std::vector<std::string> words;
  bool areoptions = true;
  for (int i = 1; i < argc; ++i) {
    std::string word = argv[i];
    areoptions = areoptions && word != "--";
    const bool isempty = areoptions && word.starts_with("--") && word.find('=') + 1 == word.size();
    if (isempty) word.pop_back();
    words.push_back(word);
    const bool isoptional = std::ranges::any_of(
        nodes_.front().command->options,
        [&](const Option& option) { return option.isvalueoptional && option.LongName() == word; });
    if (isempty && !isoptional) words.emplace_back();
  }
  // It wants the last one first.
  std::ranges::reverse(words);
  return words;
}

// Only what can't be cut into options at all is an error of the parser's own.
void CParser::Cut(int argc, char** argv) {
  try {
    app_.parse(Arguments(argc, argv));
  } catch (const CLI::ArgumentMismatch& error) {
    const std::string text = error.what();
    const std::string name = text.substr(0, text.find(':'));
    throw CUsageError(name + " takes one value, and it stands behind it.");
  } catch (const CLI::ExtrasError&) {
    const std::vector<std::string> rest = app_.remaining(true);
    const std::string word = rest.empty() ? std::string() : rest.front();
    const Node& last = *ChosenPath().back();
    const bool iscommand = !word.starts_with('-') && !last.command->members.empty();
    throw CUsageError("\"" + word + "\" is no " + (iscommand ? "command" : "option or argument") +
                      (&last == &nodes_.front() && iscommand ? "." : " here."));
  } catch (const CLI::CallForHelp&) {
    throw;
  } catch (const CLI::ParseError& error) {
    throw CUsageError(error.what());
  }
}

const CParser::Node& CParser::NodeOf(const CLI::App* app) const {
  return *std::ranges::find(nodes_, app, &Node::app);
}

std::vector<const CParser::Node*> CParser::ChosenPath() const {
  std::vector<const Node*> path = {&nodes_.front()};
  for (const CLI::App* app = &app_; !app->get_subcommands().empty();) {
    app = app->get_subcommands().front();
    path.push_back(&NodeOf(app));
  }
  return path;
}

// "help settings set": the page of that command; "help": that of the program.
std::string CParser::PageOf(const Node& help) const {
  const Node* node = &nodes_.front();
  std::string before;
  for (const std::string& word : help.options.front()->results()) {
    const auto& members = node->command->members;
    const auto member = std::ranges::find_if(
        members, [&](const Command& one) { return Folded(one.name) == Folded(word); });
    if (member == members.end()) throw CUsageError("\"" + word + "\" is no command.");
    before += (before.empty() ? "" : " ") + node->command->name;
    node = &*std::ranges::find(nodes_, &*member, &Node::command);
  }
  // The program's own `help` would tell of the command that was given, which is this one.
  const std::string name = (before.empty() ? "" : before + " ") + node->command->name;
  return node->app->get_formatter()->make_help(node->app, name, CLI::AppFormatMode::Normal);
}

// `counts` has the options of the commands before, which can exclude each other with its own.
void CParser::CheckOptions(const Node& node, std::map<std::string, std::size_t>& counts) {
  const Command& command = *node.command;
  bool isanygiven = false;
  for (std::size_t i = 0; i < command.options.size(); ++i) {
    const std::size_t count = node.options[i]->count();
    counts[command.options[i].LongName()] = count;
    isanygiven = isanygiven || (count > 0 && command.options[i].LongName() != "--dry-run");
  }
  for (std::size_t i = 0; i < command.options.size(); ++i) {
    const Option& option = command.options[i];
    const std::string name = option.IsArgument() ? option.value : option.LongName();
    const std::size_t count = counts[option.LongName()];
    if (count == 0 && option.isrequired) {
      throw CUsageError(name + " is missing: " + option.brief + ".");
    }
    if (count == 0) continue;
    if (count > 1 && !option.takesmany && !option.IsFlag()) {
      throw CUsageError(name + " is given " + std::to_string(count) + " times.");
    }
    for (const std::string& other : option.excludes) {
      if (counts[other] > 0) throw CUsageError(name + " and " + other + " exclude each other.");
    }
    for (const std::string& other : option.needs) {
      if (counts[other] == 0) throw CUsageError(name + " needs " + other + " beside it.");
    }
  }
  if (command.needsoption && !isanygiven) {
    std::vector<std::string> names;
    for (const Option& option : command.options) {
      if (option.LongName() != "--dry-run") names.push_back(option.LongName());
    }
    throw CUsageError("Nothing is asked for: give at least one of " + Listed(names) + ".");
  }
}

void CParser::TakeValues(const Node& node) {
  const Command& command = *node.command;
  for (std::size_t i = 0; i < command.options.size(); ++i) {
    const Option& option = command.options[i];
    for (const std::string& text : node.options[i]->results()) {
      const bool isbare = option.IsFlag() || (option.isvalueoptional && text == kBareFlag);
      if (option.IsFlag() && text != kBareFlag) {
        throw CUsageError(option.LongName() + " takes no value.");
      }
      if (option.take) option.take(isbare ? std::string() : text);
    }
  }
  if (command.check) command.check();
}

ParsedLine CParser::Parse(int argc, char** argv, std::string& name) {
  const auto nameof = [this] {
    std::string text;
    for (const Node* node : ChosenPath()) {
      if (node != &nodes_.front()) text += (text.empty() ? "" : " ") + node->command->name;
    }
    return text;
  };
  try {
    Cut(argc, argv);
  } catch (const CLI::CallForHelp&) {
    return {app_.help(), nullptr};
  } catch (...) {
    name = nameof();
    throw;
  }
  name = nameof();
  const std::vector<const Node*> path = ChosenPath();
  const Node& chosen = *path.back();
  if (chosen.command->name == kHelp) return {PageOf(chosen), nullptr};
  std::map<std::string, std::size_t> counts;
  for (const Node* node : path) CheckOptions(*node, counts);
  for (const Node* node : path) TakeValues(*node);
  return {{}, chosen.command->body};
}

}  // namespace

Option HelpFlag() { return {"-h,--help", {}, "print this help and exit", {}}; }

ParsedLine ParseCommandLine(const Command& program, int argc, char** argv, std::string& command) {
  return CParser(program).Parse(argc, argv, command);
}

}  // namespace vane::thermoscribe
