#include "apps/thermoscribe/notices.h"

#include <utility>

#include "adapters/terminal/terminal_output.h"
#include "apps/thermoscribe/output.h"
#include "vane/support/texts.h"

namespace vane::thermoscribe {
namespace {

constexpr int kStandardError = 2;

std::string TextLine(const std::string& text) {
  return PrintableText("thermoscribe: " + text) + "\n";
}

Value KnownNumber(std::int32_t number) { return number == 0 ? Value() : Value(number); }

}  // namespace

void CNotices::Tell(const std::string& text, std::int32_t number, const std::string& source) {
  TellBox(TextLine(text), text, number, source);
}

void CNotices::TellBox(const std::string& box, const std::string& text, std::int32_t number,
                       const std::string& source) {
  text_ = text;
  if (number != 0) {
    number_ = number;
    source_ = source;
  }
  if (!json_) return Write(box);
  const Members members = {
      {"number", KnownNumber(number)}, {"source", Known(source)}, {"text", text}};
  Write(JsonLine("message", members) + "\n");
}

void CNotices::Note(const std::string& text) {
  if (quiet_) return;
  Write(json_ ? JsonLine("note", {{"text", text}}) + "\n" : TextLine(text));
}

void CNotices::Release() {
  isholding_ = false;
  Write(std::exchange(held_, {}));
}

void CNotices::Write(const std::string& lines) {
  if (issilent_ || lines.empty()) return;
  if (isholding_) {
    held_ += lines;
    return;
  }
  ClearOpenLine(kStandardError);
  WriteToTerminal(kStandardError, lines);
}

void CNotices::Close(EExitCode code, const std::string& hint, std::int32_t number) {
  Release();
  if (code == EExitCode::DONE) return;
  if (!json_) {
    // Nobody shall wonder why; only that settings differ has been seen.
    if (text_.empty() && code != EExitCode::DIFFERS) {
      Write(TextLine(MeaningOf(code) + std::string(".")));
    }
    if (!hint.empty() && !quiet_) Write(TextLine(hint));
    return;
  }
  Write(JsonLine("error", {{"number", KnownNumber(number_ != 0 ? number_ : number)},
                           {"source", Known(source_)},
                           {"text", text_.empty() ? std::string(MeaningOf(code)) : text_},
                           {"exitcode", static_cast<std::int32_t>(code)},
                           {"hint", Known(hint)}}) +
        "\n");
}

}  // namespace vane::thermoscribe
