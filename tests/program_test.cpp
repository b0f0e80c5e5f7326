// The description of the command line, and the manual page that tells of it.

#include "apps/thermoscribe/program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include "apps/thermoscribe/command_line.h"
#include "apps/thermoscribe/line_options.h"

namespace vane::thermoscribe {
namespace {

using testing::HasSubstr;

// A manual page without its macros, and its sections on commands by the words of their titles.
class CManual {
 public:
  explicit CManual(const std::string& path) {
    std::ifstream stream(path);
    std::string section;
    for (std::string line; std::getline(stream, line);) {
      text_ += line + "\n";
      const std::string words = Words(line);
      if (line.starts_with(".Ss ")) section = words + " ";
      if (line.starts_with(".Sh ")) section.clear();
      sections_[section] += words + "\n";
    }
  }

  const std::string& Text() const { return text_; }
  const std::set<std::string>& Options() const { return options_; }

  // The title may go on behind `title`. Without one, what is in no such section.
  std::string Section(const std::string& title) const {
    std::string found;
    if (title.empty()) return sections_.at("");
    for (const auto& [words, text] : sections_) {
      if (words.starts_with(title + " ") && (found.empty() || text.size() < found.size())) {
        found = text;
      }
    }
    return found;
  }

 private:
  std::string Words(const std::string& line) {
    static const std::set<std::string> kMacros = {".Ss", ".It", ".Op", ".Nm", ".Fl", ".Ar", ".Cm",
                                                  "Op",  "Ar",  "Cm",  "Ns",  "|",   ","};
    std::istringstream stream(line);
    std::string words;
    bool isoption = false;
    for (std::string word; stream >> word;) {
      if (word == "Fl" || word == ".Fl") {
        isoption = true;
      } else if (word == "Ar" || word == "Cm" || word == "Ns" || word == "=") {
        isoption = false;
      } else if (isoption && word.find_first_of(".,:|") != 0) {
        options_.insert("-" + word);
        words += (words.empty() ? "-" : " -") + word;
        continue;
      }
      if (word == "Fl" || kMacros.contains(word)) continue;
      words += (words.empty() ? "" : " ") + word;
    }
    return words;
  }

  std::string text_;
  std::map<std::string, std::string> sections_;
  std::set<std::string> options_;
};

void CheckCommand(const CManual& manual, const Command& command, const std::string& before,
                  std::set<std::string>& options) {
  std::string title = before + command.name;
  const bool isprogram = before.empty();
  const std::string section = isprogram ? std::string() : manual.Section(title);
  EXPECT_TRUE(!command.body || !section.empty()) << title;
  for (const Option& option : command.options) {
    if (option.IsArgument()) {
      title += " " + option.value;
      const std::size_t begin = option.value.find_first_not_of('[');
      const std::size_t end = option.value.find_first_of(".]", begin);
      EXPECT_THAT(section, HasSubstr(option.value.substr(begin, end - begin))) << title;
      continue;
    }
    std::istringstream names(option.name);
    for (std::string name; std::getline(names, name, ',');) {
      options.insert(name);
      // What several commands take is told once.
      const bool iscommon = isprogram || name == "--dry-run";
      EXPECT_THAT(iscommon ? manual.Section({}) : section, HasSubstr(name)) << title;
    }
  }
  for (const Command& member : command.members) CheckCommand(manual, member, title + " ", options);
}

TEST(Manual, TellsOfEveryCommandOptionVariableAndExitCodeAndOfNoOther) {
  const CManual manual(VANE_SOURCE_DIR "/docs/thermoscribe.1");
  HostOptions host;
  std::set<std::string> options = {"-h", "--help"};
  CheckCommand(manual, Program(host), {}, options);
  EXPECT_THAT(manual.Options(), testing::ContainerEq(options));
  for (const ExitCodeRow& row : ExitCodes()) {
    EXPECT_THAT(manual.Text(),
                HasSubstr("\n.It " + std::to_string(static_cast<int>(row.code)) + "\n"));
  }
  for (const LineOptionRow& row : LineOptions())
    EXPECT_THAT(manual.Text(), HasSubstr(row.variable));
}

}  // namespace
}  // namespace vane::thermoscribe
