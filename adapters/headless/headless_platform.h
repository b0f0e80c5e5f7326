// The platform of a host without a person: messages are kept for the host, questions get the answer
// that it has fixed, and nothing ever waits for anybody.
//
// Lives on the user-interface thread.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "adapters/posix/machine_platform.h"

namespace vane {

struct HeadlessMessage {
  std::string text;
  std::int32_t flags;  ///< of `CPlatform::MessageBox`
};

class CHeadlessPlatform : public CMachinePlatform {
 public:
  /// `answer` is what every question gets.
  explicit CHeadlessPlatform(EBoxButton answer = EBoxButton::NO) : answer_(answer) {}

  /// What the library had to say, oldest first, and forgets it. A host that never takes its
  /// messages keeps them all.
  std::vector<HeadlessMessage> TakeMessages() { return std::exchange(messages_, {}); }

  EBoxButton MessageBox(const std::string& text, const std::string& title, std::int32_t flags,
                        const std::string& helpfile, std::int32_t helpcontext) override;
  void SetBusyCursor(bool) override {}

  /// Sleeps the whole time, unless a signal comes.
  void RunMessageQueue(std::uint32_t longestwait) override;

  /// There is no viewer.
  std::int32_t OpenHelp(const std::string&, std::int32_t, std::int32_t) override { return 0; }

 private:
  EBoxButton answer_;
  std::vector<HeadlessMessage> messages_;
};

}  // namespace vane
