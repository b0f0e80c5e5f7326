// thermoscribe-sim: the simulated readout as a program of its own.

#include <pthread.h>

#include <csignal>
#include <exception>
#include <iostream>
#include <stdexcept>

#include "simulator/line_server.h"
#include "simulator/options.h"

namespace {

int Fail(const std::exception& error, int status) {
  std::cerr << "thermoscribe-sim: " << error.what() << std::endl;
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  vane::simulator::Options options;
  try {
    options = vane::simulator::ParseOptions(argc, argv);
  } catch (const std::invalid_argument& error) {
    return Fail(error, 2);
  }
  if (!options.help.empty()) {
    std::cout << options.help;
    return 0;
  }

  // Blocked before the line's thread begins, so that the signals come to `sigwait` alone.
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  std::signal(SIGPIPE, SIG_IGN);  // a reader of the paths may go away

  try {
    vane::simulator::CSimulatedLine line(
        options, [](const std::string& path) { std::cout << path << std::endl; });
    line.Start();
    int signal = 0;
    sigwait(&signals, &signal);
  } catch (const std::runtime_error& error) {
    return Fail(error, 1);
  }
  return 0;
}
