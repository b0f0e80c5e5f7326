// thermoscribe-sim: the simulated readout as a program of its own.

#include <pthread.h>

#include <cerrno>
#include <csignal>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>

#include "adapters/posix/process_start.h"
#include "simulator/line_server.h"
#include "simulator/options.h"

namespace {

int Fail(const std::exception& error, int status) {
  std::cerr << "thermoscribe-sim: " << error.what() << std::endl;
  return status;
}

constexpr int kReaderGone = 141;  // as a shell has it of a program that such a pipe has ended

struct ReaderGone {};

// A text that nobody gets is a failure.
void Print(const std::string& text) {
  errno = 0;
  if (std::cout << text << std::flush) return;
  if (errno == EPIPE) throw ReaderGone();
  throw std::runtime_error("the output can't be written");
}

// What ends the program. Under nohup a hang-up doesn't: in a blocked set even an ignored signal
// would end the wait.
sigset_t EndingSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGQUIT}) sigaddset(&signals, signal);
  struct sigaction hangup {};
  sigaction(SIGHUP, nullptr, &hangup);
  if (hangup.sa_handler != SIG_IGN) sigaddset(&signals, SIGHUP);
  return signals;
}

}  // namespace

int main(int argc, char** argv) {
  vane::PrepareProcess();
  vane::simulator::Options options;
  try {
    options = vane::simulator::ParseOptions(argc, argv);
  } catch (const std::invalid_argument& error) {
    return Fail(error, 2);
  }

  try {
    if (!options.help.empty()) {
      Print(options.help);
      return 0;
    }
    // Blocked before the line's thread begins, so that the signals come to `sigwait` alone.
    const sigset_t signals = EndingSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    bool isfirst = true;
    vane::simulator::CSimulatedLine line(options, [&isfirst](const std::string& path) {
      if (isfirst) {
        Print(path + "\n");
      } else {
        std::cout << path << std::endl;  // its reader may have gone away
        std::cout.clear();
      }
      isfirst = false;
    });
    line.Start();
    int signal = 0;
    sigwait(&signals, &signal);
  } catch (const ReaderGone&) {
    return kReaderGone;
  } catch (const std::runtime_error& error) {
    return Fail(error, 1);
  }
  return 0;
}
