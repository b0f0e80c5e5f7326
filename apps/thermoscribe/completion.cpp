#include "apps/thermoscribe/completion.h"

#include <algorithm>
#include <utility>

#include "adapters/serial/serial_ports.h"
#include "apps/snapshots/value_rule.h"
#include "apps/thermoscribe/command_line.h"

namespace vane::thermoscribe {
namespace {

constexpr std::string_view kWords = "words\n";
constexpr std::string_view kFiles = "files\n";
constexpr std::string_view kFolders = "folders\n";

// What has been typed of a line, seen by the description.
class CTypedLine {
 public:
  explicit CTypedLine(const Command& program) : program_(program), path_({&program}) {}

  /// Takes the words before the cursor, in their order.
  void Take(const std::string& word);

  std::string Offers(const std::string& word) const;

 private:
  const Option* FindOption(const std::string& name) const;
  const Option* NextArgument() const;
  const Command* Asked() const;
  std::string OffersOf(const Option& option, const std::string& before,
                       const std::string& value) const;
  std::string Members(const Command& command, const std::string& word) const;
  std::string Options(const std::string& word) const;
  bool MayStand(const Option& option) const;

  const Command& program_;
  std::vector<const Command*> path_;    // from the program down to the chosen command
  std::vector<std::string> arguments_;  // of the chosen command
  std::vector<const Option*> given_;
  const Option* open_ = nullptr;  // its value comes next
  bool areoptions_ = true;        // no "--" yet
};

bool TakesNextWord(const Option& option) { return !option.IsFlag() && !option.isvalueoptional; }

std::string Line(const std::string& candidate, std::string meaning) {
  std::ranges::replace(meaning, '\n', ' ');
  return candidate + (meaning.empty() ? "" : "\t") + meaning + "\n";
}

bool StartsAlike(const std::string& candidate, const std::string& typed) {
  return Folded(candidate).starts_with(Folded(typed));
}

// The value of "NAME=VALUE" is offered once its name is there.
std::vector<std::string> WordsLike(const std::vector<std::string>& words,
                                   const std::string& typed) {
  std::vector<std::string> found;
  const std::size_t sign = typed.find('=');
  for (const std::string& word : words) {
    std::string candidate = word;
    if (sign == typed.npos) {
      candidate.resize(std::min(word.find('='), word.size() - 1) + 1);
      if (!StartsAlike(candidate, typed)) continue;
    } else {
      const std::size_t wordsign = word.find('=');
      if (wordsign + 1 == word.size()) continue;
      if (Folded(word.substr(0, wordsign)) != Folded(typed.substr(0, sign))) continue;
      if (!StartsAlike(word.substr(wordsign + 1), typed.substr(sign + 1))) continue;
    }
    if (found.empty() || found.back() != candidate) found.push_back(std::move(candidate));
  }
  return found;
}

const Command* FindMember(const Command& command, const std::string& name) {
  const auto member = std::ranges::find_if(
      command.members, [&](const Command& one) { return Folded(one.name) == Folded(name); });
  return member == command.members.end() ? nullptr : &*member;
}

const Option* CTypedLine::FindOption(const std::string& name) const {
  for (auto command = path_.rbegin(); command != path_.rend(); ++command) {
    for (const Option& option : (*command)->options) {
      const std::string shortname = option.name.substr(0, option.name.find(','));
      if (!option.IsArgument() && (option.LongName() == name || shortname == name)) return &option;
    }
  }
  return nullptr;
}

// Null when all are there.
const Option* CTypedLine::NextArgument() const {
  std::size_t count = 0;
  for (const Option& option : path_.back()->options) {
    if (!option.IsArgument()) continue;
    if (option.takesmany || count == arguments_.size()) return &option;
    ++count;
  }
  return nullptr;
}

// The command whose members can follow the arguments, which are commands themselves.
const Command* CTypedLine::Asked() const {
  const Command* command = &program_;
  for (const std::string& word : arguments_) {
    command = FindMember(*command, word);
    if (command == nullptr) break;
  }
  return command;
}

void CTypedLine::Take(const std::string& word) {
  if (open_ != nullptr) {
    open_ = nullptr;
  } else if (areoptions_ && word == "--") {
    areoptions_ = false;
  } else if (areoptions_ && word.starts_with("-")) {
    const std::size_t sign = word.find('=');
    const Option* const option = FindOption(word.substr(0, sign));
    if (option == nullptr) return;
    given_.push_back(option);
    if (sign == word.npos && TakesNextWord(*option)) open_ = option;
  } else if (const Command* const member = FindMember(*path_.back(), word)) {
    path_.push_back(member);
    arguments_.clear();
  } else {
    arguments_.push_back(word);
  }
}

bool CTypedLine::MayStand(const Option& option) const {
  return std::ranges::none_of(given_, [&](const Option* other) {
    const auto excludes = [](const Option& one, const Option& name) {
      return std::ranges::find(one.excludes, name.LongName()) != one.excludes.end();
    };
    return other == &option || excludes(option, *other) || excludes(*other, option);
  });
}

std::string CTypedLine::Options(const std::string& word) const {
  std::string text;
  const auto add = [&](const Option& option) {
    if (option.LongName().starts_with(word)) text += Line(option.LongName(), option.brief);
  };
  for (auto command = path_.rbegin(); command != path_.rend(); ++command) {
    for (const Option& option : (*command)->options) {
      if (!option.IsArgument() && MayStand(option)) add(option);
    }
  }
  add(HelpFlag());
  return text;
}

std::string CTypedLine::Members(const Command& command, const std::string& word) const {
  std::string text;
  for (const Command& member : command.members) {
    if (StartsAlike(member.name, word)) text += Line(member.name, member.brief);
  }
  return text;
}

// `before` stands in the same word in front of the value.
std::string CTypedLine::OffersOf(const Option& option, const std::string& before,
                                 const std::string& value) const {
  std::string text(kWords);
  switch (option.offer) {
    case EOffer::NOTHING:
      return text;
    case EOffer::WORDS:
      for (const std::string& word : WordsLike(option.words, value))
        text += Line(before + word, "");
      return text;
    case EOffer::FILES:
      return std::string(kFiles);
    case EOffer::FOLDERS:
      return std::string(kFolders);
    case EOffer::PORTS:
      for (const SerialPortRecord& port : ListSerialPorts()) {
        if (port.path.starts_with(value)) {
          text += Line(before + port.path, port.product.empty() ? port.driver : port.product);
        }
      }
      // Such as a link to a port.
      return text == kWords ? std::string(kFiles) : text;
    case EOffer::COMMANDS:
      if (const Command* const command = Asked()) text += Members(*command, value);
      return text;
  }
  return text;
}

std::string CTypedLine::Offers(const std::string& word) const {
  if (open_ != nullptr) return OffersOf(*open_, {}, word);
  if (areoptions_ && word.starts_with("-")) {
    const std::size_t sign = word.find('=');
    if (sign == word.npos) return std::string(kWords) + Options(word);
    const Option* const option = FindOption(word.substr(0, sign));
    if (option == nullptr) return std::string(kWords);
    return OffersOf(*option, word.substr(0, sign + 1), word.substr(sign + 1));
  }
  if (const Option* const argument = NextArgument()) return OffersOf(*argument, {}, word);
  if (!path_.back()->members.empty()) return std::string(kWords) + Members(*path_.back(), word);
  // Nothing but options can follow.
  return std::string(kWords) + Options(word);
}

}  // namespace

std::string CompletionText(const Command& program, std::span<const std::string> words) {
  if (words.empty()) return std::string(kWords);
  CTypedLine line(program);
  for (const std::string& word : words.first(words.size() - 1)) line.Take(word);
  return line.Offers(words.back());
}

}  // namespace vane::thermoscribe
