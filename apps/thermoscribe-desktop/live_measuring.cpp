#include "apps/thermoscribe-desktop/live_measuring.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <string>
#include <utility>

#include "recorder/scan_plan.h"

namespace vane::desktop {
namespace {

using namespace std::chrono_literals;

constexpr auto kBusyPause = 50ms;
constexpr auto kFirstPause = 1000ms;
constexpr auto kLongestPause = 30'000ms;
constexpr auto kRecordingPause = 500ms;    // a recording looks at the clocks so often
constexpr auto kThermometerPause = 700ms;  // that a record of a probe may take

}  // namespace

CMeasuring::CMeasuring(CDesktopHost& host, CReadingStore& store,
                       std::chrono::milliseconds pollpause)
    : host_(host), store_(store), pollpause_(pollpause) {
  timer_.setSingleShot(true);
  timer_.setTimerType(Qt::PreciseTimer);
  QObject::connect(&timer_, &QTimer::timeout, [this] { Step(); });
}

void CMeasuring::Start(std::vector<std::int16_t> channels, std::chrono::milliseconds period) {
  Gap();
  watched_.clear();
  for (const std::int16_t channel : channels) watched_.push_back({channel});
  period_ = period;
  sample_ = 0;
  hassample_ = false;
  units_ = host_.Instrument().Units();
  nextround_ = std::chrono::steady_clock::now();
  BeginRound();
  SetState(EState::MEASURING, {});
  timer_.start(0);
}

void CMeasuring::Stop() {
  timer_.stop();
  Gap();
  SetState(EState::OFF, {});
}

const LatestReading& CMeasuring::LatestOf(std::int16_t channel) const {
  static const LatestReading kNone;
  const auto found = std::ranges::find(watched_, channel, &Watched::channel);
  return found == watched_.end() ? kNone : found->latest;
}

bool CMeasuring::HasReading() const {
  return std::ranges::any_of(watched_, [](const Watched& one) { return !one.latest.text.empty(); });
}

void CMeasuring::TryNow() {
  if (state_ != EState::LOST) return;
  if (recording_ != nullptr) recording_->TryNow();
  pause_ = kFirstPause / 2;
  timer_.start(0);
}

void CMeasuring::Step() {
  if (state_ == EState::OFF || !host_.IsConnected()) return;
  if (host_.IsBusy()) {
    // What has the line may change units and settings: this round is of no use.
    if (step_ != EStep::WAIT) BeginRound();
    timer_.start(kBusyPause);
    return;
  }
  if (recording_ != nullptr) return StepRecording();
  if (state_ == EState::LOST) return Find();
  switch (step_) {
    case EStep::WAIT:
      return Wait();
    case EStep::READ:
      return ReadNext();
    case EStep::CHECK_UNITS:
      return CheckUnits();
  }
}

void CMeasuring::Record(CDesktopRecording* recording) {
  recording_ = recording;
  BeginRound();
  hassample_ = false;
  if (state_ == EState::OFF) return;
  if (recording_ != nullptr) {
    recording_->OnTaken(
        [this](const std::vector<recorder::Reading>& readings) { TakeRecorded(readings); });
  }
  SetState(EState::MEASURING, {});
  timer_.start(0);
}

// What ends the recording doesn't end the view.
void CMeasuring::StepRecording() {
  std::int64_t wait = 0;
  const std::string trouble = host_.Exchange([&] { wait = recording_->Step(); });
  if (!trouble.empty()) {
    Record(nullptr);
    if (onended_) onended_(trouble);
    return;
  }
  if (units_ != host_.Instrument().Units()) {
    Gap();
    units_ = host_.Instrument().Units();
    for (Watched& watched : watched_) watched.latest = {};
    if (onstate_) onstate_();
  }
  if (recording_->IsLost()) {
    if (state_ != EState::LOST) Gap();
    SetState(EState::LOST, recording_->Trouble());
  } else {
    SetState(EState::MEASURING, {});
    if (wait > kThermometerPause.count()) ReadThermometers();
  }
  timer_.start(
      std::min(std::chrono::milliseconds(wait), std::chrono::milliseconds(kRecordingPause)));
}

// Of one channel, where there is time for it.
void CMeasuring::ReadThermometers() {
  for (const Watched& watched : watched_) {
    if (IsTemperature() || host_.KnowsThermometer(watched.channel)) continue;
    host_.Exchange([&] { host_.ReadThermometer(watched.channel); });
    return;
  }
}

void CMeasuring::TakeRecorded(const std::vector<recorder::Reading>& readings) {
  units_ = host_.Instrument().Units();
  for (const recorder::Reading& reading : readings) {
    const auto found = std::ranges::find(watched_, reading.channel, &Watched::channel);
    if (found == watched_.end()) continue;
    found->latest = {.text = reading.text, .isnew = true};
    if (!IsTemperature()) found->latest.celsius = host_.CelsiusOf(reading.channel, reading.value);
    store_.Add(SeriesOf(reading.channel), TimePoint(std::chrono::milliseconds(reading.time.utc)),
               reading.value, DecimalsOf(reading.text));
  }
  if (onround_) onround_();
}

void CMeasuring::BeginRound() {
  place_ = 0;
  taken_.clear();
  step_ = EStep::READ;
}

void CMeasuring::Wait() {
  const auto now = std::chrono::steady_clock::now();
  if (now < nextround_) {
    timer_.start(std::chrono::ceil<std::chrono::milliseconds>(nextround_ - now));
    return;
  }
  bool isnew = false;
  host_.Exchange([&] { isnew = host_.HasNewReading(); });
  if (host_.LastFailure().number != 0) return Lose(host_.LastFailure().description);
  if (!isnew || watched_.empty()) {
    timer_.start(pollpause_);
    return;
  }
  ++sample_;
  hassample_ = true;
  // A round that comes late is not made up for.
  nextround_ = std::max(nextround_ + period_, now);
  BeginRound();
  timer_.start(0);
}

void CMeasuring::ReadNext() {
  if (place_ < watched_.size()) {
    Watched& watched = watched_[place_];
    double value = 0;
    const std::string trouble =
        host_.Exchange([&] { value = host_.Instrument().QueryMeasurement(watched.channel); });
    const LineFailure& failure = host_.LastFailure();
    if (failure.number != 0 && !failure.refused) return Lose(failure.description);
    watched.latest.trouble = failure.number != 0 ? failure.description : trouble;
    if (watched.latest.trouble.empty()) {
      taken_.push_back({&watched, std::chrono::system_clock::now(), value, host_.ReadingText()});
    } else {
      store_.Gap(SeriesOf(watched.channel));
    }
    ++place_;
  }
  if (place_ >= watched_.size()) step_ = EStep::CHECK_UNITS;
  timer_.start(0);
}

// Somebody at the front panel may change the units at any moment: readings count when these were
// the same before and behind them, else they are taken again.
void CMeasuring::CheckUnits() {
  ET312BUnits now = ET312BUnits::UNITS_NONE;
  host_.Exchange([&] {
    if (host_.Instrument().QueryUnits()) now = host_.Instrument().Units();
  });
  if (host_.LastFailure().number != 0) return Lose(host_.LastFailure().description);
  if (now != units_) {
    Gap();
    units_ = now;
    for (Watched& watched : watched_) watched.latest = {};
    BeginRound();
    if (onstate_) onstate_();
    timer_.start(0);
    return;
  }
  // Behind a change of units or probes, once.
  for (const Watched& watched : watched_) {
    if (IsTemperature() || host_.KnowsThermometer(watched.channel)) continue;
    host_.Exchange([&] { host_.ReadThermometer(watched.channel); });
    if (host_.LastFailure().number != 0) return Lose(host_.LastFailure().description);
    if (host_.KnowsThermometer(watched.channel)) {
      timer_.start(0);  // the next one behind what the user wants meanwhile
      return;
    }
  }
  for (const Taken& reading : taken_) File(reading);
  taken_.clear();
  hassample_ = false;
  step_ = EStep::WAIT;
  if (onround_) onround_();
  timer_.start(pollpause_);
}

void CMeasuring::File(const Taken& reading) {
  Watched& watched = *reading.watched;
  const std::int64_t round = RoundOf(watched.channel);
  const std::string& before = watched.latest.text;
  // The first text of a channel may be an old one, unless this channel alone is measured.
  const bool isnew = hassample_ && (round == 1 || (!before.empty() && before != reading.text) ||
                                    (round > 0 && sample_ - watched.sample >= round));
  watched.latest.isnew = isnew;
  watched.latest.text = reading.text;
  watched.latest.celsius =
      IsTemperature() ? std::nullopt : host_.CelsiusOf(watched.channel, reading.value);
  if (!isnew) return;
  watched.sample = sample_;
  store_.Add(SeriesOf(watched.channel), reading.time, reading.value, DecimalsOf(reading.text));
}

bool CMeasuring::IsTemperature() const {
  return units_ == ET312BUnits::UNITS_DEGREESC || units_ == ET312BUnits::UNITS_DEGREESF ||
         units_ == ET312BUnits::UNITS_KELVIN;
}

std::int64_t CMeasuring::RoundOf(std::int16_t channel) const {
  const CVaneT312B& instrument = host_.Instrument();
  recorder::ScanPlan plan{.mode = instrument.ChannelMode(),
                          .scanmode = instrument.ScannerScanMode(),
                          .scanchannel = instrument.ScanChannel(),
                          .sequencechannels = instrument.ScanSeqChannels()};
  std::istringstream steps(instrument.ScanChannels());
  for (std::string step; std::getline(steps, step, ',');) {
    plan.steps.push_back(static_cast<std::int16_t>(std::atoi(step.c_str())));
  }
  return recorder::RoundOf(plan, channel);
}

void CMeasuring::Gap() {
  for (const Watched& watched : watched_) store_.Gap(SeriesOf(watched.channel));
}

void CMeasuring::Lose(const std::string& trouble) {
  Gap();
  BeginRound();
  pause_ = kFirstPause;
  SetState(EState::LOST, trouble);
  if (onround_) onround_();
  timer_.start(pause_);
}

// The line is open again with the first exchange that finds it. Who answers has to be who was there
// before: readings of another readout don't belong behind those of this one. Its settings may be
// others.
void CMeasuring::Find() {
  bool isfound = false;
  const std::string trouble = host_.Exchange([&] { isfound = host_.FindSameReadout(); });
  if (isfound) {
    nextround_ = std::chrono::steady_clock::now();
    hassample_ = false;
    BeginRound();
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
