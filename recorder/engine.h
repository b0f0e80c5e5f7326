// Takes every new reading of a readout once and files it, for weeks.
//
// The readout is asked whether there is a new sample; then each channel is asked for its reading,
// within the time in which these can't be of another sample, and the unit behind them. A reading
// whose answer may be of the sample before or behind is thrown away and asked for again. A channel
// is new when its text is another one, or when by the scan settings it must have been measured
// again. What is filed is on the disk before anybody sees it.
//
// The engine does nothing by itself: whoever owns it calls `Step`, waits as long as that says, and
// calls it again. One thread.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "recorder/clock.h"
#include "recorder/readout_source.h"
#include "recorder/record_types.h"
#include "recorder/sample_clock.h"
#include "recorder/store.h"

namespace vane::recorder {

struct Limits {
  std::optional<double> low;
  std::optional<double> high;
};

struct RecordingPlan {
  std::vector<std::int16_t> channels = {};
  /// From one round over the channels to the next, ms; without it each new sample is one.
  std::optional<std::int64_t> every = {};
  std::map<std::int16_t, Limits> limits = {};
};

/// Who watches a recording.
class CRecordingAudience {
 public:
  virtual ~CRecordingAudience() = default;

  /// New readings, which are in the file.
  virtual void OnReadings(const std::vector<Reading>& readings) = 0;
  /// An event, which is in the file; a full disk is told before there is room for it.
  virtual void OnEvent(const Event& event) = 0;
};

/// On the line is another readout than that of the recording.
class COtherReadout : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class CEngine {
 public:
  enum class EState : std::int32_t {
    FINDING,   ///< looks for the readout
    WAITING,   ///< for a sample
    READING,   ///< the channels
    CHECKING,  ///< whether the unit is still the same
  };

  /// `store`, which has been begun or continued, may be null: nothing is filed then. All outlive
  /// the engine.
  CEngine(CReadoutSource& source, CStore* store, RecordingHead head, const CClock& clock,
          RecordingPlan plan, CRecordingAudience& audience);

  /// Does what there is to do now; gives how long there is nothing more, ms. Raises
  /// `COtherReadout`, and `CStoreError` when the file can't be written for another reason than a
  /// full disk.
  std::int64_t Step();

  /// While the readout is lost: looks for it at the next step.
  void TryNow() { tryat_ = 0; }

  /// Files `event` and what still waits for the disk, as far as there is room.
  void Tell(Event event);

  /// Files `event` as the last one of a recording that is over. False when there is no room now:
  /// it may be tried again.
  bool Finish(const Event& event);

  EState State() const { return state_; }
  bool IsLost() const { return lostat_.has_value(); }
  bool IsDiskFull() const { return fullat_.has_value(); }
  /// How often the channels were gone over.
  std::int64_t Rounds() const { return rounds_; }
  const std::string& Unit() const { return unit_; }

 private:
  struct Watched {
    std::int16_t channel = 0;
    std::string before = {};    // what it has said last
    std::int64_t lookedat = 0;  // the sample for which it was asked last
    std::int64_t newat = 0;     // the sample at which it was new last
    bool isrefused = false;
    bool isoutside = false;  // of its limits
  };
  struct Taken {
    Watched* watched = nullptr;
    Moment time = {};
    std::string text = {};
    double value = 0;
    std::string refusal = {};
  };

  std::int64_t StepOf(const Moment& now);
  void LookAtClocks(const Moment& now);
  std::int64_t Find(const Moment& now);
  void Synchronize(bool forgetstexts);
  std::int64_t BaseLine(const Moment& now);
  std::int64_t Wait(const Moment& now);
  std::int64_t WaitBlindly(const Moment& now);
  std::int64_t Poll(const Moment& now);
  void BeSilent(const Moment& now);
  CSampleClock::Window NextWindow() const;
  void BeginRound(std::int64_t sample);
  std::int64_t Read(const Moment& now);
  std::int64_t Check(const Moment& now);
  void FileRound();
  void FileOne(const Taken& taken, std::vector<Reading>& readings);
  void TakeSetup();
  bool TakeUnit(const std::string& unit, const Moment& now);
  bool TakeWatched(const std::string& name, const std::string& value, const Moment& now);
  void TellOfUnscanned(const Moment& now);
  void CompareAllWatched(const Moment& now);
  void LookAtNextWatched(const Moment& now);
  bool CompareWatched(std::size_t idx, const Moment& now);
  void Lose(const std::string& trouble, const Moment& now);
  void Add(Event event);
  void Flush(const Moment& now);
  Watched* NextDue();
  std::int64_t PollPause() const;

  CReadoutSource& source_;
  CStore* store_;
  const RecordingHead head_;
  const CClock& clock_;
  const RecordingPlan plan_;
  CRecordingAudience& audience_;

  EState state_ = EState::FINDING;
  MeasuringSetup setup_;
  CSampleClock samples_;
  CStepWatch steps_;
  std::string unit_;
  std::vector<Watched> watched_;
  std::map<std::string, std::string> lookedup_;  // of what is looked at for changes
  std::map<std::string, std::string> unsavedwatched_;
  std::size_t nextwatched_ = 0;
  std::string unscanned_;  // of the channels, as it was told last

  std::size_t baseline_ = 0;        // how many channels have no base line yet
  bool isfirst_ = true;             // no sample was seen since the readout was found
  bool isflagsure_ = false;         // whether the readout's word for new ones can be relied on
  std::int64_t pollat_ = 0;         // not to be asked for a new one before
  std::int64_t nonebefore_ = 0;     // until then there was no new sample
  std::int64_t current_ = 0;        // the sample that is read
  std::int64_t roundfrom_ = 0;      // the one with which this round began
  std::vector<Taken> taken_;        // in this round; their unit isn't sure yet
  std::int64_t exchange_ = 0;       // how long the latest took
  std::int64_t lookedwatched_ = 0;  // the sample at which something was looked at
  std::optional<std::int64_t> nextround_;
  bool issilent_ = false;
  std::int64_t rounds_ = 0;

  std::optional<std::int64_t> lostat_;
  std::int64_t lostsample_ = 0;
  std::int64_t pause_ = 0;
  std::int64_t tryat_ = 0;

  std::vector<Reading> waitingreadings_;  // for the disk
  std::vector<Event> waitingevents_;
  std::optional<std::int64_t> fullat_;
  std::int64_t flushat_ = 0;
};

}  // namespace vane::recorder
