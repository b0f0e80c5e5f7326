// The options of the commands that read a recording.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "apps/snapshots/value.h"
#include "apps/thermoscribe/command.h"
#include "recorder/recording_reader.h"

namespace vane::thermoscribe {

struct RecordingOptions {
  std::string file;
  recorder::RecordingChoice choice;
};

/// The file and which part of it; they outlive the parsing.
std::vector<Option> RecordingChoiceOptions(RecordingOptions& options);

/// Opens the recording and does `work` with it. Troubles of the file are told.
EExitCode WithRecording(CHost& host, const RecordingOptions& options,
                        const std::function<EExitCode(recorder::CRecordingReader&)>& work);

/// The object `recording`.
Members RecordingMembers(const recorder::AboutRecording& about);

/// What was measured with what, as lines for people: a title and a text each.
std::vector<std::pair<std::string, std::string>> RecordingFacts(
    const recorder::AboutRecording& about, bool islocal);

Members EventMembers(const recorder::Event& event);

}  // namespace vane::thermoscribe
