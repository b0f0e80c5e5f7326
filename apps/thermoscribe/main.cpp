// thermoscribe: the readout from the command line.

#include <exception>

#include "adapters/posix/process_start.h"
#include "apps/thermoscribe/notices.h"
#include "apps/thermoscribe/run.h"

int main(int argc, char** argv) {
  vane::PrepareProcess();
  try {
    return static_cast<int>(vane::thermoscribe::RunThermoscribe(argc, argv));
  } catch (const std::exception& error) {
    vane::thermoscribe::CNotices(false, false).Tell(error.what());
    return static_cast<int>(vane::thermoscribe::EExitCode::FAILED);
  }
}
