#include "recorder/engine.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "vane/components/library_error.h"
#include "vane/support/numbers.h"

namespace vane::recorder {
namespace {

constexpr std::int64_t kFirstPause = 250;  // ms, of the tries to find a readout that is lost
constexpr std::int64_t kLongestPause = 60'000;
constexpr std::int64_t kSilentPause = 500;
constexpr std::int64_t kSilence = 2000;       // beside two intervals
constexpr std::int64_t kLeastInterval = 100;  // whatever a readout says
constexpr std::int64_t kLeastPoll = 10;
constexpr std::int64_t kMostPoll = 20'000;
constexpr std::int64_t kPolls = 200;     // of an interval, to find its sample
constexpr std::int64_t kFinePolls = 20;  // of the time in which a sample is expected
constexpr std::int64_t kFullPause = 1000;
constexpr std::size_t kBacklog = 100'000;  // readings that wait for the disk
// Behind so many intervals without a look the samples are found anew.
constexpr std::int64_t kSureIntervals = 60;

double Seconds(std::int64_t ms) { return static_cast<double>(ms) / 1000; }

std::string SecondsText(std::int64_t ms) {
  char text[40];
  std::snprintf(text, sizeof text, "%.1f s", Seconds(ms));
  return text;
}

std::string SamplesText(std::int64_t samples) {
  return std::to_string(samples) + (samples == 1 ? " sample" : " samples");
}

std::int16_t DigitsBehindPoint(const std::string& text) {
  const std::size_t point = text.find('.');
  if (point == text.npos) return 0;
  std::size_t end = point + 1;
  while (end < text.size() && text[end] >= '0' && text[end] <= '9') ++end;
  return static_cast<std::int16_t>(end - point - 1);
}

}  // namespace

CEngine::CEngine(CReadoutSource& source, CStore* store, RecordingHead head, const CClock& clock,
                 RecordingPlan plan, CRecordingAudience& audience)
    : source_(source),
      store_(store),
      head_(std::move(head)),
      clock_(clock),
      plan_(std::move(plan)),
      audience_(audience) {
  for (const std::int16_t channel : plan_.channels) watched_.push_back({.channel = channel});
  if (store_ == nullptr) return;
  lookedup_ = store_->Watched();
  const LastSign& last = store_->Latest();
  if (last.sequence == 0) return;
  const auto away = static_cast<std::int64_t>(SecondsAway(last, clock_) * 1000);
  samples_.TakeOver(last.sample, clock_.Now().monotonic - std::max<std::int64_t>(away, 0));
}

std::int64_t CEngine::Step() {
  const Moment now = clock_.Now();
  LookAtClocks(now);
  if (fullat_ && now.monotonic >= flushat_) Flush(now);
  // A backlog that grows without end would take the machine down instead.
  if (waitingreadings_.size() >= kBacklog) return kFullPause;
  try {
    return StepOf(now);
  } catch (const CLineTrouble& trouble) {
    Lose(trouble.what(), clock_.Now());
  } catch (const CRefusal& refusal) {
    // Only readings may be refused for a reason of their own.
    Lose(refusal.what(), clock_.Now());
  }
  return std::max<std::int64_t>(tryat_ - clock_.Now().monotonic, 0);
}

std::int64_t CEngine::StepOf(const Moment& now) {
  switch (state_) {
    case EState::FINDING:
      return Find(now);
    case EState::WAITING:
      return baseline_ > 0 ? BaseLine(now) : Wait(now);
    case EState::READING:
      return Read(now);
    case EState::CHECKING:
      break;
  }
  return Check(now);
}

void CEngine::LookAtClocks(const Moment& now) {
  const CStepWatch::Found found = steps_.Look(now);
  if (found.step != 0) {
    Add({.time = now,
         .kind = kinds::kClock,
         .number = Seconds(found.step),
         .text = "The clock of the machine was set " +
                 std::string(found.step > 0 ? "forward" : "back") + " by " +
                 SecondsText(found.step > 0 ? found.step : -found.step) + "."});
  }
  if (found.asleep != 0) {
    Add({.time = now,
         .kind = kinds::kAsleep,
         .number = Seconds(found.asleep),
         .text = "The machine was suspended for " + SecondsText(found.asleep) + "."});
  }
  if (found.step == 0 && found.asleep == 0) return;
  Flush(now);
  // What the readout has said before may be hours old.
  if (found.asleep != 0 && state_ != EState::FINDING) {
    taken_.clear();
    state_ = EState::FINDING;
  }
}

std::int64_t CEngine::Find(const Moment& now) {
  if (now.monotonic < tryat_) return tryat_ - now.monotonic;
  // A single answer may be damaged so that nobody sees it; that must not end a recording.
  std::string why = source_.Differs(head_);
  if (!why.empty()) why = source_.Differs(head_);
  if (!why.empty()) throw COtherReadout(why);
  TakeSetup();
  TakeUnit(source_.ReadUnit(), now);
  CompareAllWatched(now);
  TellOfUnscanned(now);
  if (lostat_) {
    const std::int64_t away = clock_.Now().monotonic - *lostat_;
    Add({.time = clock_.Now(),
         .kind = kinds::kReconnected,
         .number = Seconds(away),
         .text = "The readout is there again after " + SecondsText(away) + "."});
    lostat_.reset();
    Flush(clock_.Now());
  }
  pause_ = 0;
  isfirst_ = true;
  Synchronize(true);
  return 0;
}

void CEngine::TakeSetup() {
  setup_ = source_.ReadSetup();
  setup_.interval = std::max(setup_.interval, kLeastInterval);
}

// False when it is another one than before, which is told.
bool CEngine::TakeUnit(const std::string& unit, const Moment& now) {
  unit_ = unit;
  const bool ischange = TakeWatched("Units", unit, now);
  if (ischange) Flush(now);
  return !ischange;
}

// What it says of a channel that it doesn't measure is new when it is another text, and else nobody
// knows.
void CEngine::TellOfUnscanned(const Moment& now) {
  std::string channels;
  for (const Watched& watched : watched_) {
    if (RoundOf(setup_.plan, watched.channel) > 0) continue;
    channels += (channels.empty() ? "" : ", ") + std::to_string(watched.channel);
  }
  if (channels == unscanned_) return;
  unscanned_ = channels;
  Add({.time = now,
       .kind = kinds::kUnscanned,
       .text = channels.empty()
                   ? "By its settings the readout measures all channels that are recorded."
                   : "By its settings the readout doesn't measure these channels: " + channels +
                         ". Of their readings only those that differ from the one before count."});
  Flush(now);
}

// The latest reading of each channel may be an old one. From here on a channel is new when its
// reading isn't that any more.
void CEngine::Synchronize(bool forgetstexts) {
  samples_.Restart(setup_.interval);
  baseline_ = forgetstexts ? watched_.size() : 1;
  isflagsure_ = false;
  taken_.clear();
  state_ = EState::WAITING;
}

std::int64_t CEngine::BaseLine(const Moment& now) {
  Watched& watched = watched_[baseline_ - 1];
  // Where only the readout's word for new ones is to be had, what the channel has said stays.
  const bool forgets = isfirst_;
  try {
    const std::string text = source_.ReadReading(watched.channel);
    if (forgets) watched.before = text;
  } catch (const CRefusal&) {
    if (forgets) watched.before.clear();
  }
  nonebefore_ = now.monotonic;
  isflagsure_ = true;
  exchange_ = clock_.Now().monotonic - now.monotonic;
  --baseline_;
  return 0;
}

// The finer the better the next sample's time is known then; but an interval of hours must not
// cost thousands of questions.
std::int64_t CEngine::PollPause() const {
  if (issilent_) return kSilentPause;
  if (!samples_.IsKnown()) return std::clamp(setup_.interval / kPolls, kLeastPoll, kMostPoll);
  const CSampleClock::Window window = NextWindow();
  return std::clamp((window.latest - window.earliest) / kFinePolls, kLeastPoll, kMostPoll);
}

std::int64_t CEngine::Wait(const Moment& now) {
  const std::int64_t time = now.monotonic;
  if (nextround_ && time < *nextround_) return *nextround_ - time;
  if (time < pollat_) return pollat_ - time;
  if (!samples_.IsKnown()) return Poll(now);
  const std::int64_t latest = samples_.WindowOf(samples_.Sample()).latest;
  if (time - latest > kSureIntervals * setup_.interval) {
    Synchronize(false);
    return 0;
  }
  if (!isflagsure_) return WaitBlindly(now);
  if (time >= NextWindow().earliest) return Poll(now);
  LookAtNextWatched(now);
  return std::max<std::int64_t>(NextWindow().earliest - clock_.Now().monotonic, 0);
}

CSampleClock::Window CEngine::NextWindow() const {
  return samples_.WindowOf(std::max(samples_.Sample(), current_) + 1);
}

// The latest reading was asked for about when a sample came: whether the readout's word is for one
// behind that isn't known. But its time is.
std::int64_t CEngine::WaitBlindly(const Moment& now) {
  const std::optional<std::int64_t> sample = samples_.At(now.monotonic);
  if (sample &&
      std::ranges::any_of(watched_, [&](const Watched& one) { return one.lookedat < *sample; })) {
    BeginRound(*sample);
    return 0;
  }
  const std::int64_t next = sample.value_or(samples_.Sample()) + 1;
  const std::int64_t latest = samples_.WindowOf(next).latest;
  return std::max<std::int64_t>(latest - now.monotonic, 1);
}

std::int64_t CEngine::Poll(const Moment& now) {
  const bool isnew = source_.HasNew();
  const std::int64_t end = clock_.Now().monotonic;
  exchange_ = end - now.monotonic;
  if (!isnew) {
    nonebefore_ = now.monotonic;
    if (samples_.IsKnown() && end > NextWindow().latest + 2 * setup_.interval + kSilence) {
      BeSilent(now);
    }
    pollat_ = end + PollPause();
    return pollat_ - end;
  }
  issilent_ = false;
  if (end - nonebefore_ < setup_.interval) {
    // It is the one behind that of the latest readings: the readout has said of all the time since
    // that there was none.
    const std::int64_t sample = samples_.IsKnown() ? std::max(samples_.Sample(), current_) + 1
                                                   : samples_.Reckon((nonebefore_ + end) / 2);
    samples_.See(sample, nonebefore_, end);
    BeginRound(sample);
  } else if (const auto sample = samples_.At(end)) {
    BeginRound(*sample);  // there may have been several
  } else {
    Synchronize(false);
  }
  return 0;
}

// It measures nothing now, or its settings are others.
void CEngine::BeSilent(const Moment& now) {
  issilent_ = true;
  const std::int64_t since = now.monotonic - NextWindow().latest + setup_.interval;
  Add({.time = now,
       .kind = kinds::kSilent,
       .number = Seconds(since),
       .text = "The readout has had no new reading for " + SecondsText(since) + "."});
  Flush(now);
  TakeSetup();
  isfirst_ = true;
  Synchronize(true);
}

void CEngine::BeginRound(std::int64_t sample) {
  if (isfirst_) {
    isfirst_ = false;
    for (Watched& watched : watched_) watched.lookedat = watched.newat = sample - 1;
  }
  current_ = sample;
  if (std::ranges::all_of(watched_,
                          [&](const Watched& one) { return one.lookedat >= roundfrom_; })) {
    roundfrom_ = sample;
  }
  state_ = EState::READING;
}

// Who waits longest comes first, so that on a slow line each has its turn.
CEngine::Watched* CEngine::NextDue() {
  const auto istaken = [&](const Watched& one) {
    return std::ranges::any_of(taken_, [&](const Taken& taken) { return taken.watched == &one; });
  };
  Watched* next = nullptr;
  for (Watched& watched : watched_) {
    if (watched.lookedat >= current_ || istaken(watched)) continue;
    if (next == nullptr || watched.lookedat < next->lookedat) next = &watched;
  }
  return next;
}

std::int64_t CEngine::Read(const Moment& now) {
  Watched* const watched = NextDue();
  if (watched == nullptr || samples_.At(now.monotonic) != current_) {
    state_ = taken_.empty() ? EState::WAITING : EState::CHECKING;
    return 0;
  }
  Taken taken{.watched = watched};
  try {
    taken.text = source_.ReadReading(watched->channel);
    taken.value = NumberFromText(taken.text);
  } catch (const CRefusal& refusal) {
    taken.refusal = refusal.what();
  } catch (const LibraryError&) {
    taken.refusal = "\"" + taken.text + "\" is no number that could be one.";
  }
  taken.time = clock_.Now();
  exchange_ = taken.time.monotonic - now.monotonic;
  if (samples_.At(taken.time.monotonic) == current_) {
    taken_.push_back(std::move(taken));
    nonebefore_ = now.monotonic;
    isflagsure_ = true;
  } else {
    isflagsure_ = false;
  }
  return 0;
}

// Somebody at the front panel may change the units at any moment: readings count when these were
// the same before and behind them, else they are taken again.
std::int64_t CEngine::Check(const Moment& now) {
  if (!TakeUnit(source_.ReadUnit(), now)) {
    taken_.clear();
    for (Watched& watched : watched_) watched.before.clear();
    state_ = EState::READING;
    return 0;
  }
  FileRound();
  return 0;
}

void CEngine::FileRound() {
  for (const Taken& taken : taken_) FileOne(taken, waitingreadings_);
  taken_.clear();
  const Moment now = clock_.Now();
  // The rest of the channels, if their sample is still there.
  state_ = NextDue() == nullptr ? EState::WAITING : EState::READING;
  const auto isdone = [&](const Watched& one) { return one.lookedat >= roundfrom_; };
  if (std::ranges::all_of(watched_, isdone)) {
    ++rounds_;
    // A round that comes late is not made up for.
    if (plan_.every) {
      nextround_ = std::max(nextround_.value_or(now.monotonic) + *plan_.every, now.monotonic);
    }
  }
  Flush(now);
}

void CEngine::FileOne(const Taken& taken, std::vector<Reading>& readings) {
  Watched& watched = *taken.watched;
  const std::int64_t missed = current_ - watched.lookedat - 1;
  if (missed > 0 && !plan_.every) {
    Add({.time = taken.time,
         .kind = kinds::kMissed,
         .channel = watched.channel,
         .number = static_cast<double>(missed),
         .text = SamplesText(missed) + " of channel " + std::to_string(watched.channel) +
                 " passed before it could be read."});
  }
  watched.lookedat = current_;
  if (!taken.refusal.empty()) {
    if (!watched.isrefused) {
      Add({.time = taken.time,
           .kind = kinds::kRefused,
           .channel = watched.channel,
           .text = "The readout gives no reading of channel " + std::to_string(watched.channel) +
                   ": " + taken.refusal});
    }
    watched.isrefused = true;
    return;
  }
  watched.isrefused = false;
  const std::int64_t round = RoundOf(setup_.plan, watched.channel);
  const bool isnew = round == 1 || (!watched.before.empty() && watched.before != taken.text) ||
                     (round > 0 && current_ - watched.newat >= round);
  watched.before = taken.text;
  if (!isnew) return;
  watched.newat = current_;
  const double value = taken.value;
  readings.push_back({.time = taken.time,
                      .sample = current_,
                      .channel = watched.channel,
                      .text = taken.text,
                      .value = value,
                      .unit = unit_,
                      .resolution = DigitsBehindPoint(taken.text)});
  const auto limits = plan_.limits.find(watched.channel);
  if (limits == plan_.limits.end()) return;
  const auto& [low, high] = limits->second;
  const bool isoutside = (low && value < *low) || (high && value > *high);
  if (isoutside == watched.isoutside) return;
  watched.isoutside = isoutside;
  Add({.time = taken.time,
       .kind = isoutside ? kinds::kAlarm : kinds::kNormal,
       .channel = watched.channel,
       .number = value,
       .text = "Channel " + std::to_string(watched.channel) + " is " +
               (isoutside ? (low && value < *low ? "below" : "above") : "within") +
               " its limits: " + taken.text + " " + unit_});
}

void CEngine::CompareAllWatched(const Moment& now) {
  for (std::size_t idx = 0; idx < source_.NumWatched(); ++idx) CompareWatched(idx, now);
}

void CEngine::LookAtNextWatched(const Moment& now) {
  const std::int64_t free = samples_.WindowOf(samples_.Sample() + 1).earliest - now.monotonic;
  if (lookedwatched_ == current_ || source_.NumWatched() == 0 || free < 3 * exchange_ + 50) return;
  lookedwatched_ = current_;
  nextwatched_ = (nextwatched_ + 1) % source_.NumWatched();
  if (!CompareWatched(nextwatched_, now)) return;
  const MeasuringSetup before = setup_;
  TakeSetup();
  TellOfUnscanned(now);
  if (setup_.interval != before.interval) Synchronize(false);
}

bool CEngine::CompareWatched(std::size_t idx, const Moment& now) {
  const bool ischange = TakeWatched(source_.WatchedName(idx), source_.ReadWatched(idx), now);
  if (ischange) Flush(now);
  return ischange;
}

// Whether it was something else before.
bool CEngine::TakeWatched(const std::string& name, const std::string& value, const Moment& now) {
  const auto known = lookedup_.find(name);
  if (known != lookedup_.end() && known->second == value) return false;
  const bool ischange = known != lookedup_.end();
  if (ischange) {
    Add({.time = now,
         .kind = kinds::kSettings,
         .text = name + ": " + known->second + " -> " + value});
  }
  lookedup_[name] = value;
  if (store_ != nullptr) unsavedwatched_[name] = value;
  return ischange;
}

void CEngine::Lose(const std::string& trouble, const Moment& now) {
  if (!lostat_) {
    lostat_ = now.monotonic;
    Add({.time = now, .kind = kinds::kLost, .text = trouble});
    Flush(now);
  }
  taken_.clear();
  state_ = EState::FINDING;
  pause_ = pause_ == 0 ? kFirstPause : std::min(pause_ * 2, kLongestPause);
  tryat_ = now.monotonic + pause_;
}

void CEngine::Add(Event event) {
  event.place = waitingreadings_.size();
  waitingevents_.push_back(std::move(event));
}

void CEngine::Tell(Event event) {
  Add(std::move(event));
  Flush(clock_.Now());
}

bool CEngine::Finish(const Event& event) {
  flushat_ = 0;
  Flush(clock_.Now());
  if (fullat_) return false;
  if (store_ == nullptr) return true;
  try {
    store_->End(event);
  } catch (const CDiskFull&) {
    return false;
  }
  audience_.OnEvent(event);
  return true;
}

void CEngine::Flush(const Moment& now) {
  std::vector<Event> events;
  if (store_ != nullptr) {
    if (fullat_ && now.monotonic < flushat_) return;
    events = waitingevents_;
    const std::int64_t waited = fullat_ ? now.monotonic - *fullat_ : 0;
    if (fullat_) {
      events.push_back(
          {.time = now,
           .kind = kinds::kRoom,
           .number = Seconds(waited),
           .text = "There is room on the disk again after " + SecondsText(waited) + ".",
           .place = waitingreadings_.size()});
    }
    try {
      store_->Append(waitingreadings_, events, unsavedwatched_);
      unsavedwatched_.clear();
    } catch (const CDiskFull& full) {
      flushat_ = now.monotonic + kFullPause;
      if (fullat_) return;
      fullat_ = now.monotonic;
      Event event{.time = now, .kind = kinds::kFull, .text = full.what()};
      audience_.OnEvent(event);
      Add(std::move(event));
      return;
    }
  }
  fullat_.reset();
  const std::vector<Reading> readings = std::exchange(waitingreadings_, {});
  if (store_ == nullptr) events = waitingevents_;
  waitingevents_.clear();
  for (const Event& event : events) {
    if (event.kind != kinds::kFull) audience_.OnEvent(event);
  }
  if (!readings.empty()) audience_.OnReadings(readings);
}

}  // namespace vane::recorder
