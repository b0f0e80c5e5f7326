// A command of the program as data: its names and help, its options, and what it does. The parser,
// the pages of help, the shells' completion and the manual's tests all work from it.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "apps/thermoscribe/exit_codes.h"

namespace vane::thermoscribe {

class CHost;

/// Bad usage, with a text for the user.
class CUsageError : public std::invalid_argument {
 public:
  using std::invalid_argument::invalid_argument;
};

/// What a shell can offer in the place of a value.
enum class EOffer : std::int32_t { NOTHING, WORDS, FILES, FOLDERS, PORTS, COMMANDS };

/// An option such as "--count", or an argument, which goes by its place.
struct Option {
  /// "--count", "-V,--version"; of an argument, a name without "-".
  std::string name;

  /// What stands for the value in the help, "N"; empty for a flag.
  std::string value;

  /// For the help; a line end where it goes on in the next line.
  std::string brief;

  /// Gets each value that is given; of a flag, the empty text. Raises `CUsageError`.
  std::function<void(const std::string& text)> take = {};

  bool isrequired = false;
  bool takesmany = false;        ///< of an argument: all that is left goes to it
  bool isvalueoptional = false;  ///< the value comes behind "=", or not at all

  /// Options that can't stand beside this one, and those without which it can't stand.
  std::vector<std::string> excludes = {};
  std::vector<std::string> needs = {};

  EOffer offer = EOffer::NOTHING;
  std::vector<std::string> words = {};  ///< for `EOffer::WORDS`

  bool IsArgument() const { return name.front() != '-'; }
  bool IsFlag() const { return value.empty(); }
  /// "--version" of "-V,--version".
  std::string LongName() const { return name.substr(name.rfind(',') + 1); }
};

/// Does the work of a command, on a host that is not connected yet. Failures that the user has not
/// been told of are raised.
using CommandBody = std::function<EExitCode(CHost& host)>;

/// The values that a command line gives live in the options' `take` and in `body`: parse into one
/// `Command` once.
struct Command {
  std::string name;
  std::string brief;
  std::string footer = {};  ///< what the help tells behind the options
  std::vector<Option> options = {};
  std::vector<Command> members =
      {};                    ///< of a group; then one of them has to follow, unless `body` is
  CommandBody body = {};     ///< null for a command that only holds others
  bool needsoption = false;  ///< without any of its own options it makes no sense
  /// Checks what the options say together. Raises `CUsageError`; may be null.
  std::function<void()> check = {};
};

/// The option that `target` learns of. It outlives the parsing, like all targets below.
Option Flag(std::string name, bool& target, std::string brief);
Option TextOption(std::string name, std::string value, std::string& target, std::string brief);
/// The path of a file or folder; the empty text is none.
Option PathOption(std::string name, std::string value, std::string& target, std::string brief,
                  EOffer offer = EOffer::FILES);
/// One of `words`, in letters of either case; `target` gets it as it stands in `words`.
Option WordOption(std::string name, std::string value, std::vector<std::string> words,
                  std::string& target, std::string brief);
Option ManyTexts(std::string name, std::string value, std::vector<std::string>& target,
                 std::string brief);

/// Reads a number of the option or setting `name`. Raises `CUsageError` for anything but a number
/// from `minimum` to `maximum`; infinities and what is not a number are none.
double NumberIn(std::string_view name, const std::string& text, double minimum, double maximum);
std::int64_t WholeNumberIn(std::string_view name, const std::string& text, std::int64_t minimum,
                           std::int64_t maximum);

template <class Whole>
Option WholeOption(std::string name, std::string value, Whole& target, std::int64_t minimum,
                   std::int64_t maximum, std::string brief) {
  Option option{std::move(name), std::move(value), std::move(brief), {}};
  option.take = [name = option.LongName(), &target, minimum, maximum](const std::string& text) {
    target = static_cast<Whole>(WholeNumberIn(name, text, minimum, maximum));
  };
  return option;
}

Option RealOption(std::string name, std::string value, std::optional<double>& target,
                  double minimum, double maximum, std::string brief);

/// "--dry-run".
Option DryRun(bool& target);

/// "a", "a and b", "a, b and c".
std::string Listed(const std::vector<std::string>& words, std::string_view last = "and");

}  // namespace vane::thermoscribe
