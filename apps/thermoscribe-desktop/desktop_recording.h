// A recording that goes on beside the live view: the recorder's engine on the desktop's line.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "apps/recording/line_source.h"
#include "apps/thermoscribe-desktop/desktop_host.h"
#include "recorder/engine.h"
#include "recorder/store.h"

namespace vane::thermoscribe {
struct Snapshot;
}

namespace vane::desktop {

class CDesktopRecording final : public recorder::CRecordingAudience {
 public:
  /// Opens the file at `path`, which may hold a recording that goes on then. Raises
  /// `recorder::CStoreError` with a text for the user. `host`, which is connected, outlives it.
  CDesktopRecording(CDesktopHost& host, std::string path);

  /// Whether it needs `channels` and what the readout keeps, to begin with.
  bool IsNew() const { return store_.IsNew(); }

  /// Begins or goes on; of an old one neither is looked at. Within an exchange of the host's.
  /// Raises what the line and the file raise, and `recorder::COtherReadout`.
  void Start(std::vector<std::int16_t> channels, const thermoscribe::Snapshot& snapshot);

  /// Within an exchange: does what there is to do, and gives how long there is nothing more, ms.
  /// Raises what ends the recording.
  std::int64_t Step() { return engine_->Step(); }
  void TryNow() { engine_->TryNow(); }

  /// Ends it in order. False while the disk has no room for the last of it.
  bool Finish(const std::string& text);

  bool IsLost() const { return engine_->IsLost(); }
  bool IsDiskFull() const { return engine_->IsDiskFull(); }
  /// What was lost and why, while it is.
  const std::string& Trouble() const { return trouble_; }
  const std::string& Path() const { return path_; }
  std::int64_t Count() const { return store_.Latest().sequence; }

  /// New readings, which are on the disk.
  void OnTaken(std::function<void(const std::vector<recorder::Reading>&)> observer) {
    ontaken_ = std::move(observer);
  }
  void OnHappened(std::function<void(const std::string& text)> observer) {
    onhappened_ = std::move(observer);
  }

  void OnReadings(const std::vector<recorder::Reading>& readings) override;
  void OnEvent(const recorder::Event& event) override;

 private:
  CDesktopHost& host_;
  const std::string path_;
  const recorder::CMachineClock clock_;
  recorder::CStore store_;
  std::optional<thermoscribe::CLineSource> source_;
  std::optional<recorder::CEngine> engine_;
  std::string trouble_;
  std::function<void(const std::vector<recorder::Reading>&)> ontaken_;
  std::function<void(const std::string&)> onhappened_;
};

}  // namespace vane::desktop
