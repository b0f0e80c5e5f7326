// A command of the user's that is run when something happens that a person wants to know.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "recorder/record_types.h"

namespace vane::thermoscribe {

/// Whether a person wants to know of a kind of event, also where nobody looks: an alarm and its
/// end, a readout that is lost, back or silent, and a disk that is full or has room again.
bool ConcernsPeople(const std::string& kind);

class CAlarmCommand {
 public:
  /// `command` is a shell's; empty for none. `file` is the recording's.
  CAlarmCommand(std::string command, std::string file);

  /// Runs it for what concerns people. Waits for nothing: what takes long runs beside the
  /// recording. The event is in the environment: THERMOSCRIBE_EVENT, _TEXT, _TIME, _CHANNEL,
  /// _NUMBER and _FILE. Empty, or why it wasn't run.
  std::string Run(const recorder::Event& event);

 private:
  void Reap();

  const std::string command_;
  const std::string file_;
  std::vector<pid_t> running_;
};

}  // namespace vane::thermoscribe
