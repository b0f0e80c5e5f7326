// The platform of a program with windows: message boxes, the busy cursor, the event loop in a
// pause, the help viewer.
//
// One object per process, on the user-interface thread, within the life of the `QApplication`.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "adapters/posix/machine_platform.h"

namespace vane {

/// A box that the user has seen.
struct ShownBox {
  std::string text;  ///< with LF as the line end
  std::string title;
  std::int32_t flags = 0;  ///< of `CPlatform::MessageBox`
};

class CQtPlatform : public CMachinePlatform {
 public:
  /// `help` shows the topic of a context, or the contents for 0, and is false when it can't.
  explicit CQtPlatform(std::function<bool(std::int32_t context)> help) : help_(std::move(help)) {}

  /// Hears of each box before it comes up, so that one that is closed too soon is not lost. Must
  /// not raise.
  void OnBox(std::function<void(const ShownBox& box)> observer) { observer_ = std::move(observer); }

  /// Above the window that is active. Its text can be copied; Help leaves it open.
  EBoxButton MessageBox(const std::string& text, const std::string& title, std::int32_t flags,
                        const std::string& helpfile, std::int32_t helpcontext) override;

  void SetBusyCursor(bool on) override;

  /// Handles all that waits, what the user does included.
  void RunMessageQueue(std::uint32_t longestwait) override;

  /// 1 when the viewer was asked to show the topic.
  std::int32_t OpenHelp(const std::string& helpfile, std::int32_t command,
                        std::int32_t data) override;

 private:
  const std::function<bool(std::int32_t context)> help_;
  std::function<void(const ShownBox& box)> observer_;
  bool isbusy_ = false;
};

}  // namespace vane
