// The live view's engine: reads the channels in rounds, one exchange at a time between the events
// of the windows, and finds a line again that was lost.
//
// Lives on the user-interface thread. Where something else has the line it waits.
#pragma once

#include <QTimer>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "apps/thermoscribe-desktop/desktop_host.h"
#include "apps/thermoscribe-desktop/reading_store.h"
#include "vane/support/enums.h"

namespace vane::desktop {

class CMeasuring {
 public:
  enum class EState : std::int32_t { OFF, MEASURING, LOST };

  /// Both outlive it.
  CMeasuring(CDesktopHost& host, CReadingStore& store);

  /// Of the channels that are in use; at once, and then once a period.
  void Start(std::vector<std::int16_t> channels, std::chrono::milliseconds period);
  void Stop();

  EState State() const { return state_; }
  /// Why it is lost, and what comes next.
  const std::string& Trouble() const { return trouble_; }
  /// Of the readings; changes with the readout's.
  ET312BUnits Units() const { return units_; }
  /// Where the readings of a channel go now.
  SeriesId SeriesOf(std::int16_t channel) const {
    return {channel, static_cast<std::int16_t>(units_)};
  }
  /// Why a channel has no reading; empty for one that has.
  const std::string& TroubleOf(std::int16_t channel) const;

  /// Behind each round.
  void OnRound(std::function<void()> observer) { onround_ = std::move(observer); }
  /// Behind each change of `State` or `Trouble`.
  void OnState(std::function<void()> observer) { onstate_ = std::move(observer); }

 private:
  struct Taken {
    std::int16_t channel;
    TimePoint time;
    double value;
  };

  void Step();
  void BeginRound();
  void ReadNext();
  void EndRound();
  void Lose(const std::string& trouble);
  void Find();
  void Gap();
  void TakeUnits(ET312BUnits units);
  void SetState(EState state, const std::string& trouble);

  CDesktopHost& host_;
  CReadingStore& store_;
  QTimer timer_;
  EState state_ = EState::OFF;
  std::string trouble_;
  std::vector<std::int16_t> channels_;
  std::chrono::milliseconds period_{1000};
  std::chrono::steady_clock::time_point nextround_;
  std::size_t place_ = 0;  // of the channel that is read next; the end is the end of the round
  bool isinround_ = false;
  std::vector<Taken> taken_;  // in this round
  std::map<std::int16_t, std::string> troubles_;
  ET312BUnits units_ = ET312BUnits::UNITS_NONE;
  std::chrono::milliseconds pause_{0};  // before the next try to find the readout
  std::function<void()> onround_;
  std::function<void()> onstate_;
};

}  // namespace vane::desktop
