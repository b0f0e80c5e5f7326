// The live view's engine: takes the readings of the channels off the line, one exchange at a time
// between the events of the windows, and finds a line again that was lost.
//
// The readout tells that there is a new reading, and not of which channel. Which are measured at
// all and how many samples a turn of them takes follows from its settings. So a channel's reading
// counts as new when it differs from the one before, or when that is so long ago that the channel
// must have been measured again; what the readout has kept from earlier is shown and not counted. A
// reading thus counts once: a deviation over copies would be too small.
//
// Lives on the user-interface thread. Where something else has the line it waits.
#pragma once

#include <QTimer>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "apps/thermoscribe-desktop/desktop_host.h"
#include "apps/thermoscribe-desktop/desktop_recording.h"
#include "apps/thermoscribe-desktop/reading_store.h"
#include "vane/support/enums.h"

namespace vane::desktop {

/// What a channel has said last.
struct LatestReading {
  std::string text = {};               ///< as the readout has sent it; empty: none in these units
  std::optional<double> celsius = {};  ///< computed here, of a reading that is no temperature
  bool isnew = false;                  ///< false: the readout has kept it from earlier
  std::string trouble = {};            ///< why there is none now; empty: it was read
};

class CMeasuring {
 public:
  enum class EState : std::int32_t { OFF, MEASURING, LOST };

  /// Between two questions whether there is a new reading.
  static constexpr std::chrono::milliseconds kPollPause{500};

  /// Both outlive it.
  CMeasuring(CDesktopHost& host, CReadingStore& store,
             std::chrono::milliseconds pollpause = kPollPause);

  /// From now on, with the readout that is connected. Shows what the readout has at once; then a
  /// round over the channels whenever it has a new reading, and no more often than once a period.
  void Start(std::vector<std::int16_t> channels, std::chrono::milliseconds period);
  void Stop();

  /// From now on `recording` takes the readings, and the view shows those; null: the view takes
  /// them itself again. It outlives its time here.
  void Record(CDesktopRecording* recording);
  bool IsRecording() const { return recording_ != nullptr; }
  /// When the recording has ended by itself; `why` is for the user.
  void OnRecordingEnded(std::function<void(const std::string& why)> observer) {
    onended_ = std::move(observer);
  }

  EState State() const { return state_; }
  /// Why it is lost.
  const std::string& Trouble() const { return trouble_; }
  /// While it is lost: looks for the readout now.
  void TryNow();

  /// Of the readings; changes with the readout's.
  ET312BUnits Units() const { return units_; }
  bool IsTemperature() const;
  /// Where the readings of a channel go now.
  SeriesId SeriesOf(std::int16_t channel) const {
    return {channel, static_cast<std::int16_t>(units_)};
  }
  const LatestReading& LatestOf(std::int16_t channel) const;
  /// Of any channel.
  bool HasReading() const;

  /// Behind each round.
  void OnRound(std::function<void()> observer) { onround_ = std::move(observer); }
  /// Behind each change of `State` or `Trouble`, or of the units.
  void OnState(std::function<void()> observer) { onstate_ = std::move(observer); }

 private:
  enum class EStep : std::int32_t { WAIT, READ, CHECK_UNITS };

  struct Watched {
    std::int16_t channel;
    LatestReading latest = {};
    std::int64_t sample = 0;  // at which it came or was taken for new
  };
  struct Taken {
    Watched* watched;
    TimePoint time;
    double value;
    std::string text;
  };

  void Step();
  void StepRecording();
  void ReadThermometers();
  void TakeRecorded(const std::vector<recorder::Reading>& readings);
  void Wait();
  void ReadNext();
  void CheckUnits();
  void BeginRound();
  void File(const Taken& reading);
  /// After how many samples a channel has been measured again for sure; 0: not by these settings.
  std::int64_t RoundOf(std::int16_t channel) const;
  void Lose(const std::string& trouble);
  void Find();
  void Gap();
  void SetState(EState state, const std::string& trouble);

  CDesktopHost& host_;
  CReadingStore& store_;
  const std::chrono::milliseconds pollpause_;
  QTimer timer_;
  EState state_ = EState::OFF;
  EStep step_ = EStep::WAIT;
  std::string trouble_;
  std::chrono::milliseconds period_{0};
  std::chrono::steady_clock::time_point nextround_;
  std::vector<Watched> watched_;
  std::size_t place_ = 0;     // in `watched_`, of the channel that is read next
  std::vector<Taken> taken_;  // in this round; their units aren't sure yet
  std::int64_t sample_ = 0;   // how many samples were seen
  bool hassample_ = false;    // this round is about one
  ET312BUnits units_ = ET312BUnits::UNITS_NONE;
  std::chrono::milliseconds pause_{0};  // before the next try to find the readout
  CDesktopRecording* recording_ = nullptr;
  std::function<void(const std::string&)> onended_;
  std::function<void()> onround_;
  std::function<void()> onstate_;
};

}  // namespace vane::desktop
