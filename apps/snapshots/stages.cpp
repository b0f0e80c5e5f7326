#include "apps/snapshots/stages.h"

#include <cstddef>

#include "apps/snapshots/value.h"

namespace vane::thermoscribe {
namespace {

constexpr const char* kAborted = "Aborted.";

// Adds a sentence on some stages, where there are any.
void AddPart(std::string& account, const char* title, const std::vector<std::string>& stages) {
  std::string names;
  for (const std::string& name : stages) Append(names, ", ", name);
  if (!names.empty()) Append(account, " ", title + names + ".");
}

EEnd Write(const Stage& stage, CAudience& audience) {
  try {
    if (!stage.write()) return EEnd::STOPPED;
  } catch (...) {
    audience.SayError("writing " + stage.name);
    return EEnd::RAISED;
  }
  return !stage.isone && audience.IsInterrupted() ? EEnd::STOPPED : EEnd::DONE;
}

}  // namespace

std::string WriteAccount::Text(bool isaborted) const {
  if (!IsBegun()) return NothingWrittenText(isaborted);
  std::string text = isaborted ? kAborted : "";
  AddPart(text, "Written: ", written);
  AddPart(text, "Written in part at most: ", partly);
  AddPart(text, "Not written: ", unwritten);
  return text;
}

WriteAccount WriteStages(const std::vector<Stage>& stages, CAudience& audience) {
  WriteAccount account;
  for (const Stage& stage : stages) {
    if (account.end == EEnd::DONE && audience.IsInterrupted()) account.end = EEnd::STOPPED;
    if (account.end != EEnd::DONE) {
      account.unwritten.push_back(stage.name);
      continue;
    }
    account.end = Write(stage, audience);
    (account.end == EEnd::DONE ? account.written : account.partly).push_back(stage.name);
  }
  return account;
}

std::string NothingWrittenText(bool isaborted) {
  std::string text = isaborted ? kAborted : "";
  Append(text, " ", "Nothing was written.");
  return text;
}

}  // namespace vane::thermoscribe
