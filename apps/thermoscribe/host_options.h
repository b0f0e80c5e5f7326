// The options that every command takes.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "vane/components/communications.h"

namespace vane::simulator {
struct Options;
}

namespace vane::thermoscribe {

/// What a test that runs the program in its own process puts in the place of time and chance.
struct RunSeams {
  bool skipswaits = false;       ///< pauses take no time
  std::function<void()> moment;  ///< called at each line of the traffic and in each pause
};

struct HostOptions {
  std::string port;                                     ///< device path; empty: not chosen yet
  std::shared_ptr<const simulator::Options> simulated;  ///< null: a real line
  EVaneBaudRate baud = EVaneBaudRate::BR_9600;
  std::chrono::milliseconds timeout{1000};
  std::vector<std::string> given;  ///< names of the line's options that the command line gave
  std::string tracefile;           ///< empty: no trace
  std::string passcodefile;        ///< path or number of a descriptor; empty: ask on the terminal
  bool json = false;
  bool progress = false;
  bool quiet = false;  ///< answers and errors only
  RunSeams seams;
  bool version = false;  ///< print the version, do nothing
};

}  // namespace vane::thermoscribe
