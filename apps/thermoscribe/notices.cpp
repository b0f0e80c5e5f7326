#include "apps/thermoscribe/notices.h"

#include "adapters/terminal/terminal_output.h"
#include "apps/thermoscribe/output.h"

namespace vane {
namespace {

constexpr int kStandardError = 2;

void WriteText(const std::string& text) {
  ClearOpenLine(kStandardError);
  WriteToTerminal(kStandardError, PrintableText("thermoscribe: " + text) + "\n");
}

void WriteJson(const char* kind, const Json& members) {
  ClearOpenLine(kStandardError);
  WriteToTerminal(kStandardError, JsonLine(kind, members) + "\n");
}

Json Known(const std::string& text) { return text.empty() ? Json() : Json(text); }
Json Known(std::int32_t number) { return number == 0 ? Json() : Json(number); }

}  // namespace

void CNotices::Tell(const std::string& text, std::int32_t number, const std::string& source) {
  text_ = text;
  if (number != 0) {
    number_ = number;
    source_ = source;
  }
  if (json_) {
    WriteJson("message", {{"number", Known(number)}, {"source", Known(source)}, {"text", text}});
  } else {
    WriteText(text);
  }
}

void CNotices::Note(const std::string& text) {
  if (quiet_) return;
  if (json_) {
    WriteJson("note", {{"text", text}});
  } else {
    WriteText(text);
  }
}

void CNotices::Close(EExitCode code, const std::string& hint, std::int32_t number) {
  if (code == EExitCode::DONE) return;
  if (!json_) {
    if (!hint.empty() && !quiet_) WriteText(hint);
    return;
  }
  WriteJson("error", {{"number", Known(number_ != 0 ? number_ : number)},
                      {"source", Known(source_)},
                      {"text", text_.empty() ? MeaningOf(code) : text_},
                      {"exitcode", static_cast<std::int32_t>(code)},
                      {"hint", Known(hint)}});
}

}  // namespace vane
