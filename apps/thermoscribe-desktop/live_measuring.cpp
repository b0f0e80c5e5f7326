#include "apps/thermoscribe-desktop/live_measuring.h"

#include <algorithm>
#include <utility>

#include "vane/components/library_error.h"

namespace vane::desktop {
namespace {

using namespace std::chrono_literals;

constexpr auto kBusyPause = 50ms;
constexpr auto kFirstPause = 1000ms;
constexpr auto kLongestPause = 30'000ms;

}  // namespace

CMeasuring::CMeasuring(CDesktopHost& host, CReadingStore& store) : host_(host), store_(store) {
  timer_.setSingleShot(true);
  timer_.setTimerType(Qt::PreciseTimer);
  QObject::connect(&timer_, &QTimer::timeout, [this] { Step(); });
}

void CMeasuring::Start(std::vector<std::int16_t> channels, std::chrono::milliseconds period) {
  channels_ = std::move(channels);
  period_ = period;
  isinround_ = false;
  nextround_ = std::chrono::steady_clock::now();
  SetState(EState::MEASURING, {});
  timer_.start(0);
}

void CMeasuring::Stop() {
  timer_.stop();
  Gap();
  SetState(EState::OFF, {});
}

const std::string& CMeasuring::TroubleOf(std::int16_t channel) const {
  static const std::string kNone;
  const auto found = troubles_.find(channel);
  return found == troubles_.end() ? kNone : found->second;
}

void CMeasuring::Step() {
  if (state_ == EState::OFF || !host_.IsConnected()) return;
  if (host_.IsBusy()) {
    timer_.start(kBusyPause);
    return;
  }
  if (state_ == EState::LOST) return Find();
  if (!isinround_) {
    BeginRound();
  } else if (place_ < channels_.size()) {
    ReadNext();
  } else {
    EndRound();
  }
}

void CMeasuring::BeginRound() {
  const auto now = std::chrono::steady_clock::now();
  if (now < nextround_) {
    timer_.start(std::chrono::ceil<std::chrono::milliseconds>(nextround_ - now));
    return;
  }
  // A round that comes late is not made up for.
  nextround_ = std::max(nextround_ + period_, now);
  isinround_ = true;
  place_ = 0;
  taken_.clear();
  troubles_.clear();
  host_.Exchange([&] {
    host_.Instrument().QueryUnits();
    TakeUnits(host_.Instrument().Units());
  });
  if (host_.LastFailure().number != 0) return Lose(host_.LastFailure().description);
  timer_.start(0);
}

void CMeasuring::ReadNext() {
  const std::int16_t channel = channels_[place_++];
  double value = 0;
  const std::string trouble =
      host_.Exchange([&] { value = host_.Instrument().QueryMeasurement(channel); });
  const LineFailure& failure = host_.LastFailure();
  if (failure.number != 0 && !failure.refused) return Lose(failure.description);
  if (trouble.empty()) {
    taken_.push_back({channel, std::chrono::system_clock::now(), value});
  } else {
    troubles_[channel] = failure.number != 0 ? failure.description : trouble;
    store_.Gap(SeriesOf(channel));
  }
  timer_.start(0);
}

// Somebody at the front panel may change the units at any moment: readings count when these were
// the same before and behind them.
void CMeasuring::EndRound() {
  isinround_ = false;
  ET312BUnits behind = units_;
  host_.Exchange([&] {
    host_.Instrument().QueryUnits();
    behind = host_.Instrument().Units();
  });
  if (host_.LastFailure().number != 0) return Lose(host_.LastFailure().description);
  if (behind == units_) {
    for (const Taken& reading : taken_)
      store_.Add(SeriesOf(reading.channel), reading.time, reading.value);
  } else {
    TakeUnits(behind);
  }
  if (onround_) onround_();
  timer_.start(0);
}

void CMeasuring::TakeUnits(ET312BUnits units) {
  if (units_ == units) return;
  Gap();
  units_ = units;
  if (onstate_) onstate_();
}

void CMeasuring::Gap() {
  for (const std::int16_t channel : channels_) store_.Gap(SeriesOf(channel));
}

void CMeasuring::Lose(const std::string& trouble) {
  Gap();
  isinround_ = false;
  pause_ = kFirstPause;
  SetState(EState::LOST, trouble);
  if (onround_) onround_();
  timer_.start(pause_);
}

void CMeasuring::Find() {
  bool issame = false;
  const std::string trouble = host_.Exchange([&] { issame = host_.IsSameReadout(); });
  if (issame) {
    nextround_ = std::chrono::steady_clock::now();
    SetState(EState::MEASURING, {});
    timer_.start(0);
    return;
  }
  pause_ = std::min(pause_ * 2, std::chrono::milliseconds(kLongestPause));
  std::string text = host_.LastFailure().description;
  if (text.empty()) text = trouble;
  if (text.empty()) {
    text = "On the line is \"" + host_.Instrument().Identification() +
           "\", which is another readout than before.";
  }
  SetState(EState::LOST, text);
  timer_.start(pause_);
}

void CMeasuring::SetState(EState state, const std::string& trouble) {
  if (state == state_ && trouble == trouble_) return;
  state_ = state;
  trouble_ = trouble;
  if (onstate_) onstate_();
}

}  // namespace vane::desktop
