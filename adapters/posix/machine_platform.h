// What every platform of this machine has in common: its clocks, the locale, its folders. What
// concerns a person is left to whoever derives from it.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "vane/components/platform.h"

namespace vane {

class CMachinePlatform : public CPlatform {
 public:
  /// From now on no pass of the message queue waits; the tick count runs ahead by what it would
  /// have. For a run whose pauses have nothing to wait for.
  void SkipWaits() { skipswaits_ = true; }

  std::uint32_t TickCount() override;
  std::chrono::local_seconds LocalTime() override;

  // Both follow the locale that the host has set with `setlocale`, LC_NUMERIC and LC_TIME; its
  // texts must be UTF-8.

  std::string DecimalSeparator() override;
  std::string LongTimeText(std::chrono::local_seconds moment) override;

  /// The folder of the running program, which the library is linked into.
  std::string FolderOfLibrary() override;
  std::string SystemFolder() override;
  /// `$TMPDIR`, or "/tmp".
  std::string TemporaryFolder() override;

 protected:
  /// How long a pass of the message queue that may take `longestwait` is to wait, as `poll` takes
  /// it.
  int WaitOf(std::uint32_t longestwait);

 private:
  bool skipswaits_ = false;
  std::uint32_t skipped_ = 0;  // ms
};

}  // namespace vane
