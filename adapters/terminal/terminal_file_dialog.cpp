#include "adapters/terminal/terminal_file_dialog.h"

#include "adapters/terminal/terminal_input.h"
#include "adapters/terminal/terminal_output.h"
#include "vane/components/library_error.h"
#include "vane/support/texts.h"

namespace vane {
namespace {

namespace fs = std::filesystem;

constexpr std::int32_t kOverwritePrompt = 0x2;
constexpr std::int32_t kPathMustExist = 0x800;

bool Exists(const fs::path& path) {
  std::error_code none;
  return fs::exists(path, none);
}

bool IsFolder(const fs::path& path) {
  std::error_code none;
  return fs::is_directory(path, none);
}

std::string Quoted(const fs::path& path) { return "'" + path.string() + "'"; }

}  // namespace

CTerminalFileDialog::CTerminalFileDialog(CInterrupts& interrupts, int input, int output)
    : interrupts_(interrupts), input_(input), output_(output) {}

void CTerminalFileDialog::ShowSave() {
  ClearOpenLine(output_);
  Say(title_ + "\n");
  if (!CanAsk(input_, output_)) Cancel("there is no terminal to ask on.");
  const fs::path suggestion = PathOf(filename_);
  for (;;) {
    const std::string answer = Ask("File [" + suggestion.string() + "]: ");
    const fs::path path = answer.empty() ? suggestion : PathOf(answer);
    if (!IsAccepted(path)) continue;
    filename_ = path.string();
    return;
  }
}

std::string CTerminalFileDialog::Ask(const std::string& question) {
  Say(question);
  std::string line;
  switch (ReadLine(interrupts_, input_, line)) {
    case ELineEnd::INTERRUPTED:
      Say("\n");
      Cancel("interrupted.");
    case ELineEnd::END_OF_INPUT:
      Say("\n");
      Cancel("the input has ended.");
    case ELineEnd::OVERLONG:
    case ELineEnd::LINE:
      break;
  }
  return Trimmed(line);
}

fs::path CTerminalFileDialog::PathOf(const std::string& answer) const {
  fs::path path = fs::path(initdir_) / answer;
  if (IsFolder(path)) path /= fs::path(filename_).filename();
  if (!extension_.empty() && !path.has_extension()) path.replace_extension(extension_);
  return path;
}

// Says why not.
bool CTerminalFileDialog::IsAccepted(const fs::path& path) {
  const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
  if ((flags_ & kPathMustExist) && !IsFolder(folder)) {
    Say("There is no folder " + Quoted(folder) + ".\n");
    return false;
  }
  if (IsFolder(path)) {
    Say(Quoted(path) + " is a folder.\n");
    return false;
  }
  if (!(flags_ & kOverwritePrompt) || !Exists(path)) return true;
  const std::string answer = AnswerWord(Ask(Quoted(path) + " exists. Replace it (y/n)? "));
  return answer == "y" || answer == "yes";
}

void CTerminalFileDialog::Say(const std::string& text) const {
  WriteToTerminal(output_, PrintableText(text));
}

void CTerminalFileDialog::Cancel(const std::string& why) const {
  Say("No file: " + why + "\n");
  throw LibraryError(ERR_PLATFORM_CALL, {}, "No file was chosen: " + why);
}

}  // namespace vane
