// The recorder over a readout and clocks that a test moves.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "recorder/engine.h"
#include "recorder/sample_clock.h"
#include "recorder/schema.h"
#include "recorder/store.h"

namespace vane::recorder {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class CTestClock final : public CClock {
 public:
  Moment Now() const override { return now; }
  std::string Boot() const override { return boot; }
  void Pass(std::int64_t ms) {
    now.utc += ms;
    now.monotonic += ms;
    now.awake += ms;
  }

  Moment now{1'790'000'000'000, 5'000'000, 5'000'000};
  std::string boot = "boot";
};

// Samples at each interval, all channels at once; each reading says what it is of.
class CTestReadout final : public CReadoutSource {
 private:
  // Half of the way there, and half back behind what `act` does at the readout.
  template <class Act>
  std::invoke_result_t<Act> Exchange(const Act& act) {
    const auto [before, behind] = fault ? fault() : std::pair<std::int64_t, std::int64_t>{0, 0};
    clock.Pass(cost / 2 + std::abs(before));
    auto answer = act();
    clock.Pass(cost - cost / 2 + std::abs(behind));
    if (before < 0 || behind < 0) throw CLineTrouble("no answer");
    return answer;
  }

 public:
  explicit CTestReadout(CTestClock& theclock) : clock(theclock) {}

  std::string Differs(const RecordingHead&) override {
    return Exchange([&] { return difference; });
  }
  MeasuringSetup ReadSetup() override {
    return Exchange([&] { return MeasuringSetup{interval, plan}; });
  }
  bool HasNew() override {
    return Exchange([&] { return Sample() > fetched; });
  }
  std::string ReadReading(std::int16_t channel) override {
    std::string answer = Exchange([&] {
      fetched = Sample();
      return text(channel, fetched);
    });
    if (refused.contains(channel)) throw CRefusal("out of range");
    return answer;
  }
  std::string ReadUnit() override {
    return Exchange([&] { return unit; });
  }
  std::size_t NumWatched() const override { return watched.size(); }
  std::string WatchedName(std::size_t idx) const override { return watched[idx].first; }
  std::string ReadWatched(std::size_t idx) override {
    return Exchange([&] { return watched[idx].second; });
  }

  std::int64_t Sample() const { return base + (clock.now.awake - begin) / interval; }

  CTestClock& clock;
  std::int64_t interval = 1000;
  std::int64_t begin = 4'999'321;
  std::int64_t base = 0;
  std::int64_t cost = 2;  // of an exchange, ms
  ScanPlan plan{.mode = ET312BChannelMode::CM_INPUT_1};
  std::string unit = "C";
  std::string difference;
  std::set<std::int16_t> refused;
  std::vector<std::pair<std::string, std::string>> watched;
  std::function<std::string(std::int16_t, std::int64_t)> text = [](std::int16_t channel,
                                                                   std::int64_t sample) {
    return std::to_string(channel) + "." + std::to_string(sample);
  };
  // What the exchange costs more, before and behind its taking effect; no answer: below 0.
  std::function<std::pair<std::int64_t, std::int64_t>()> fault;
  std::int64_t fetched = 0;
};

struct Seen final : CRecordingAudience {
  void OnReadings(const std::vector<Reading>& some) override {
    readings.insert(readings.end(), some.begin(), some.end());
  }
  void OnEvent(const Event& event) override { events.push_back(event); }

  std::vector<std::string> Kinds() const {
    std::vector<std::string> found;
    for (const Event& event : events) found.push_back(event.kind);
    return found;
  }
  std::vector<std::string> Texts(std::int16_t channel) const {
    std::vector<std::string> found;
    for (const Reading& reading : readings) {
      if (reading.channel == channel) found.push_back(reading.text);
    }
    return found;
  }

  std::vector<Reading> readings;
  std::vector<Event> events;
};

class Recorder : public testing::Test {
 protected:
  Recorder() {
    static int number = 0;
    // Each round waits for the disk, so that one that is none saves half a minute.
    const std::filesystem::path shared = "/dev/shm";
    folder_ =
        (std::filesystem::is_directory(shared) ? shared : std::filesystem::temp_directory_path()) /
        ("recorder_test." + std::to_string(getpid()) + "." + std::to_string(++number));
    std::filesystem::create_directories(folder_);
    file_ = folder_ / "bath.t312";
    head_ = {.identification = "T312B, 5.03", .settings = "{}", .probes = {{1, "SP-4107"}}};
    head_.channels = {{1, "Input 1", 1}};
  }
  ~Recorder() override { std::filesystem::remove_all(folder_); }

  void Open() {
    store_ = std::make_unique<CStore>(file_);
    const SessionHead session{"test", "host", "port", clock_.boot};
    if (store_->IsNew()) {
      store_->Begin(head_, session, clock_.now);
    } else {
      store_->Continue(session, clock_.now);
    }
    engine_ =
        std::make_unique<CEngine>(readout_, store_.get(), head_, clock_, recordingplan_, seen_);
  }
  void Close() {
    engine_.reset();
    store_.reset();
  }
  void Run(std::int64_t ms) {
    for (const std::int64_t end = clock_.now.monotonic + ms; clock_.now.monotonic < end;) {
      clock_.Pass(std::clamp<std::int64_t>(engine_->Step(), 0, 500));
    }
  }

  std::int64_t Number(const std::string& sql) {
    CDatabase database(file_, CDatabase::EAccess::READ);
    return database.Number(sql);
  }
  // Of the file_: sequence numbers without a hole, no sample of a channel twice, each in its order.
  void ExpectWhole(std::size_t shown) {
    CDatabase database(file_, CDatabase::EAccess::READ);
    CStatement all(database,
                   "SELECT sequence, channel, sample, text FROM reading ORDER BY sequence");
    std::int64_t sequence = 0;
    std::map<std::int64_t, std::int64_t> latest;
    std::map<std::int64_t, std::int64_t> filed;
    std::map<std::int64_t, std::int64_t> trueof;  // one for all channels of a sample
    while (all.Next()) {
      EXPECT_EQ(all.Whole(0), ++sequence);
      const std::string text = all.Text(3);
      const std::int64_t channel = all.Whole(1);
      const std::int64_t sample = std::stoll(text.substr(text.find('.') + 1));
      EXPECT_EQ(std::stoll(text), channel);
      EXPECT_GT(sample, latest.contains(channel) ? latest[channel] : -1) << text;
      EXPECT_GT(all.Whole(2), filed.contains(channel) ? filed[channel] : -1) << text;
      EXPECT_EQ(trueof.emplace(all.Whole(2), sample).first->second, sample) << text;
      latest[channel] = sample;
      filed[channel] = all.Whole(2);
    }
    EXPECT_EQ(static_cast<std::size_t>(sequence), shown);
  }

  std::filesystem::path folder_;
  std::filesystem::path file_;
  CTestClock clock_;
  CTestReadout readout_{clock_};
  RecordingHead head_;
  RecordingPlan recordingplan_{.channels = {1}};
  Seen seen_;
  std::unique_ptr<CStore> store_;
  std::unique_ptr<CEngine> engine_;
};

// 14 exchanges of 45 ms are what a line of 9600 bit/s carries in two thirds of a second.
TEST_F(Recorder, TwelveChannelsAtTheFastestPaceOnASlowLineMissNothing) {
  readout_.cost = 45;
  readout_.plan.mode = ET312BChannelMode::CM_SCANNER_SEQUENCE;
  recordingplan_.channels = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  readout_.plan.steps = recordingplan_.channels;
  Open();
  Run(600'000);
  EXPECT_THAT(seen_.Kinds(), IsEmpty());
  for (const std::int16_t channel : recordingplan_.channels) {
    const std::vector<std::string> texts = seen_.Texts(channel);
    ASSERT_GE(texts.size(), 597U);
    for (std::size_t i = 0; i < texts.size(); ++i) {
      const std::int64_t first = std::stoll(texts[0].substr(texts[0].find('.') + 1));
      ASSERT_EQ(texts[i], readout_.text(channel, first + static_cast<std::int64_t>(i)));
    }
  }
  ExpectWhole(seen_.readings.size());
}

// Whatever the line does and whenever the program dies, a reading is filed once under its sample.
TEST_F(Recorder, FaultsAndKillsDoubleNothingAndMisfileNothing) {
  for (unsigned seed = 1; seed <= 100; ++seed) {
    std::mt19937 chance(seed);
    const auto in = [&](std::int64_t low, std::int64_t high) {
      return std::uniform_int_distribution<std::int64_t>(low, high)(chance);
    };
    file_ = folder_ / std::to_string(seed);
    seen_ = {};
    clock_.now.monotonic += 1;
    readout_.interval = in(1, 3) * 1000;
    readout_.base = readout_.fetched = 0;
    readout_.cost = in(1, 60);
    recordingplan_.channels = {1, 3, 4};
    bool isoff = false;
    readout_.fault = [&]() -> std::pair<std::int64_t, std::int64_t> {
      if (std::exchange(isoff, false)) return {-300, 0};
      const std::int64_t die = in(1, 1000);
      if (die <= 8) return {in(100, 2500), 0};
      if (die <= 16) return {0, in(100, 2500)};
      if (die <= 20) return {0, -in(200, 2000)};
      return {0, 0};
    };
    for (int life = 0; life < 8; ++life) {
      Open();
      const std::int64_t end = clock_.now.monotonic + in(3, 60) * 1000;
      while (clock_.now.monotonic < end) {
        clock_.Pass(std::clamp<std::int64_t>(engine_->Step(), 0, 500));
        // A readout that was off counts its samples anew; here it must not say the same again.
        if (in(1, 3000) == 1) {
          readout_.base = readout_.Sample() + 5;
          readout_.begin = clock_.now.awake - in(0, readout_.interval - 1);
          readout_.fetched = readout_.base;
          isoff = true;
        }
      }
      Close();
      if (in(0, 2) == 0) clock_.Pass(in(1, 100'000));
      if (in(0, 5) == 0) {  // started anew, with a clock that counts from 0
        clock_.boot += "+";
        const std::int64_t back = clock_.now.monotonic - in(10'000, 90'000);
        clock_.now.monotonic -= back;
        clock_.now.awake -= back;
        readout_.begin -= back;
      }
    }
    EXPECT_GT(seen_.readings.size(), 50U) << seed;
    ExpectWhole(seen_.readings.size());
    if (HasFailure()) FAIL() << "seed " << seed;
  }
}

TEST_F(Recorder, WhatPassedUnseenIsAnEventWithItsNumber) {
  Open();
  Run(5'500);
  ASSERT_EQ(seen_.events.size(), 0U);
  const std::size_t before = seen_.readings.size();
  clock_.Pass(10'000);  // the host had other things to do
  Run(3'000);
  ASSERT_THAT(seen_.Kinds(), ElementsAre("missed"));
  const auto step = [&](std::size_t i) {
    return seen_.readings[i].sample - seen_.readings[i - 1].sample;
  };
  EXPECT_EQ(step(before), *seen_.events[0].number + 1);
  EXPECT_EQ(*seen_.events[0].number, 9);
  EXPECT_EQ(step(before + 1), 1);
  EXPECT_EQ(Number("SELECT behind FROM event WHERE kind = 'missed'"),
            static_cast<std::int64_t>(before));
}

// An answer that takes longer than its sample lasts is of one or the other: that one is given up,
// and the next one is still taken.
TEST_F(Recorder, AnAnswerAcrossASampleCostsThatSampleAlone) {
  for (const auto& slow : {std::pair<std::int64_t, std::int64_t>{1200, 0}, {0, 1200}, {985, 0}}) {
    file_ = folder_ / std::to_string(slow.first);
    seen_ = {};
    Open();
    Run(5'400);
    int exchanges = 0;
    readout_.fault = [&] {
      const bool isreading = ++exchanges > 1 && engine_->State() == CEngine::EState::READING;
      return isreading ? std::exchange(readout_.fault, nullptr),
             slow      : std::pair<std::int64_t, std::int64_t>{0, 0};
    };
    Run(5'000);
    EXPECT_THAT(seen_.Kinds(), ElementsAre("missed"));
    EXPECT_EQ(*seen_.events.at(0).number, 1);
    ExpectWhole(seen_.readings.size());
    Close();
  }
}

TEST_F(Recorder, ALostReadoutIsFoundAgainWithGrowingPausesAndAnotherOneEndsIt) {
  Open();
  Run(3'000);
  std::vector<std::int64_t> tries;
  bool isgone = true;
  readout_.fault = [&]() -> std::pair<std::int64_t, std::int64_t> {
    if (!isgone) return {0, 0};
    tries.push_back(clock_.now.monotonic);
    return {-1, 0};
  };
  Run(400'000);
  ASSERT_GE(tries.size(), 10U);
  for (std::size_t i = 2; i < tries.size(); ++i) {
    const std::int64_t pause = tries[i] - tries[i - 1];
    EXPECT_GE(pause + 5, std::min<std::int64_t>(2 * (tries[i - 1] - tries[i - 2]) - 10, 60'000));
    EXPECT_LE(pause, 60'010);
  }
  isgone = false;
  Run(63'000);
  EXPECT_THAT(seen_.Kinds(), ElementsAre("lost", "reconnected"));
  EXPECT_NEAR(*seen_.events[1].number, static_cast<double>(clock_.now.monotonic - tries[0]) / 1000,
              63);
  readout_.difference = "another one";
  isgone = true;
  Run(500);
  isgone = false;
  EXPECT_THROW(Run(2'000), COtherReadout);
}

TEST_F(Recorder, SettingsUnitsRefusalsLimitsAndSilenceAreEvents) {
  recordingplan_.limits = {{1, {.low = {}, .high = 1.5}}};
  readout_.text = [](std::int16_t, std::int64_t sample) {
    return std::to_string(sample % 4 < 2 ? 1 : 2) + ".0" + std::to_string(sample);
  };
  readout_.watched = {{"Interval", "1"}, {"Filter", "NONE"}};
  Open();
  Run(3'000);
  EXPECT_THAT(seen_.Kinds(), ElementsAre("alarm"));
  Run(4'000);
  EXPECT_THAT(seen_.Kinds(), ElementsAre("alarm", "normal", "alarm"));
  seen_.events.clear();
  recordingplan_.limits.clear();
  Close();
  readout_.watched[1].second = "AVERAGE";  // while nobody looked
  Open();
  Run(1'500);
  ASSERT_THAT(seen_.Kinds(), ElementsAre("settings"));
  EXPECT_EQ(seen_.events[0].text, "Filter: NONE -> AVERAGE");
  seen_.events.clear();
  readout_.unit = "K";
  readout_.watched[0].second = "3";  // and so it is from now on
  readout_.begin = clock_.now.awake - 3000 * (readout_.Sample() - readout_.base);
  readout_.interval = 3000;
  Run(20'000);
  EXPECT_THAT(seen_.Kinds(), Contains("settings").Times(2));
  EXPECT_THAT(seen_.Kinds(), testing::Not(Contains("lost")));
  EXPECT_EQ(seen_.readings.back().unit, "K");
  seen_.events.clear();
  readout_.refused = {1};
  Run(20'000);
  EXPECT_THAT(seen_.Kinds(), ElementsAre("refused"));
  readout_.refused.clear();
  seen_.events.clear();
  readout_.interval = 1'000'000'000;
  readout_.begin = clock_.now.awake;
  readout_.fetched = readout_.base = 0;
  Run(60'000);
  EXPECT_THAT(seen_.Kinds(), ElementsAre("silent"));
}

// What a readout may say, too: numbers that are none, no interval, one of hours.
TEST_F(Recorder, OddAnswersEndNothingAndLongIntervalsCostLittle) {
  readout_.text = [](std::int16_t, std::int64_t sample) {
    return sample == 3 ? std::string("1e400") : "20." + std::to_string(sample);
  };
  Open();
  Run(6'000);
  EXPECT_THAT(seen_.Kinds(), ElementsAre("refused"));
  EXPECT_THAT(seen_.Texts(1), Contains("20.4"));
  Close();
  readout_.text = [](std::int16_t, std::int64_t sample) { return "20." + std::to_string(sample); };
  readout_.interval = 3'600'000;
  readout_.begin = clock_.now.awake - 1'000'000;
  readout_.fetched = readout_.base = 0;
  int exchanges = 0;
  readout_.fault = [&]() -> std::pair<std::int64_t, std::int64_t> {
    ++exchanges;
    return {0, 0};
  };
  seen_ = {};
  Open();
  Run(36'000'000);
  EXPECT_GE(seen_.Texts(1).size(), 9U);
  EXPECT_THAT(seen_.Kinds(), IsEmpty());
  EXPECT_LT(exchanges, 500);
  Close();
  readout_.interval = 1;
  exchanges = 0;
  Open();
  readout_.fault = [&]() -> std::pair<std::int64_t, std::int64_t> {
    ++exchanges;
    return {0, 0};
  };
  Run(60'000);
  EXPECT_LT(exchanges, 10'000);
}

// By which samples a channel must have been measured again, an equal reading is a new one.
TEST_F(Recorder, EqualReadingsCountByTheScanSettings) {
  using enum ET312BChannelMode;
  using enum ET312BScannerScanMode;
  const std::vector<std::tuple<ScanPlan, std::int16_t, std::int64_t>> rows = {
      {{.mode = CM_ALTERNATE}, 1, 2},
      {{.mode = CM_ALTERNATE}, 3, 0},
      {{.mode = CM_INPUT_1}, 1, 1},
      {{.mode = CM_INPUT_1}, 2, 0},
      {{.mode = CM_INPUT_2}, 2, 1},
      {{.mode = CM_SCANNER_CHANNEL, .scanchannel = 4}, 6, 1},
      {{.mode = CM_SCANNER_CHANNEL, .scanchannel = 4}, 5, 0},
      {{.mode = CM_SCANNER_SEQUENCE, .steps = {3, 12, 3}}, 3, 3},
      {{.mode = CM_SCANNER_SEQUENCE, .steps = {3, 12, 3}}, 4, 0},
      {{.mode = CM_SCANNER_SEQUENCE, .scanmode = SSM_ALT_INPUT_2_SCAN, .sequencechannels = 3},
       5,
       6},
      {{.mode = CM_SCANNER_SEQUENCE, .scanmode = SSM_ALT_INPUT_2_SCAN, .sequencechannels = 3},
       2,
       6},
      {{.mode = CM_SCANNER_SEQUENCE, .scanmode = SSM_ALT_INPUT_2_SCAN, .sequencechannels = 3},
       6,
       0},
      {{.mode = ET312BChannelMode{99}}, 1, 0}};
  for (const auto& [plan, channel, round] : rows) {
    EXPECT_EQ(RoundOf(plan, channel), round);
    file_ = folder_ / ("equal" + std::to_string(&plan - &std::get<0>(rows[0])));
    seen_ = {};
    readout_.plan = plan;
    readout_.text = [](std::int16_t, std::int64_t) { return std::string("20.00"); };
    recordingplan_.channels = {channel};
    Open();
    Run(20'300);
    const std::int64_t expected = round == 0 ? 0 : 20 / round;
    EXPECT_THAT(seen_.Kinds(), Contains("unscanned").Times(round == 0 ? 1 : 0));
    EXPECT_NEAR(static_cast<double>(seen_.readings.size()), static_cast<double>(expected), 1);
    Close();
  }
}

TEST_F(Recorder, RoundsInAFixedPaceAreNotMadeUpFor) {
  recordingplan_.every = 60'000;
  recordingplan_.channels = {1, 2};
  readout_.plan.mode = ET312BChannelMode::CM_ALTERNATE;
  Open();
  Run(600'000);
  EXPECT_THAT(seen_.Kinds(), IsEmpty());
  ASSERT_EQ(engine_->Rounds(), 10);
  ASSERT_EQ(seen_.readings.size(), 20U);
  for (std::size_t i = 2; i < 20; ++i) {
    const std::int64_t apart =
        seen_.readings[i].time.monotonic - seen_.readings[i - 2].time.monotonic;
    EXPECT_NEAR(static_cast<double>(apart), 60'000, 1100);
  }
  clock_.Pass(600'000);
  Run(1'000);
  EXPECT_LE(engine_->Rounds(), 11);
}

// A day in which somebody sets the clock_, time servers steer it, summer time begins and the
// machine sleeps: what was measured stays in its order, with its intervals.
TEST_F(Recorder, TheWallClockMaySayWhatItWants) {
  readout_.interval = 5000;
  Open();
  Run(3'600'000);
  clock_.now.utc += 3'600'000;
  Run(3'600'000);
  clock_.now.utc -= 7'200'000;
  Run(3'600'000);
  clock_.now.utc -= 1000;  // a leap second, as a clock without one takes it
  Run(3'600'000);
  for (int i = 0; i < 3600; ++i) {  // steered: half a thousandth
    Run(1000);
    clock_.now.utc += i % 2;
  }
  const std::size_t before = seen_.readings.size();
  EXPECT_THAT(seen_.Kinds(), ElementsAre("clock", "clock", "clock"));
  EXPECT_EQ(*seen_.events[0].number, 3600);
  EXPECT_EQ(*seen_.events[1].number, -7200);
  EXPECT_EQ(*seen_.events[2].number, -1);
  clock_.now.utc += 28'800'000;
  clock_.now.monotonic += 28'800'000;  // asleep
  Run(60'000);
  EXPECT_EQ(seen_.events.back().kind, "asleep");
  EXPECT_EQ(*seen_.events.back().number, 28'800);
  for (std::size_t i = 1; i < before; ++i) {
    const std::int64_t apart =
        seen_.readings[i].time.monotonic - seen_.readings[i - 1].time.monotonic;
    ASSERT_NEAR(static_cast<double>(apart), 5000, 15);
    ASSERT_EQ(seen_.readings[i].sample, seen_.readings[i - 1].sample + 1);
  }
  EXPECT_GT(seen_.readings.size(), before + 8);
  ExpectWhole(seen_.readings.size());
}

TEST_F(Recorder, TimesAreReadAsTheyAreWritten) {
  setenv("TZ", "Europe/Berlin", 1);
  tzset();
  // The hour that comes twice when summer time ends.
  const std::int64_t first = *TimeOfText("2026-10-25T02:30:00.125+02:00");
  const std::int64_t second = *TimeOfText("2026-10-25T02:30:00.125+01:00");
  EXPECT_EQ(second - first, 3'600'000);
  for (const std::int64_t moment : {first, second, std::int64_t{-1}, std::int64_t{0}}) {
    EXPECT_EQ(TimeOfText(TimeText(moment)), moment);
    EXPECT_EQ(TimeOfText(TimeText(moment, true)), moment);
  }
  EXPECT_EQ(TimeText(first, true), "2026-10-25T02:30:00.125+02:00");
  EXPECT_EQ(TimeText(first), "2026-10-25T00:30:00.125Z");
  EXPECT_EQ(TimeOfText("2026-03-01"), TimeOfText("2026-02-28T23:00Z"));
  for (const char* text : {"", "soon", "2026-13-01", "2026-02-01T25:00", "2026-02-01T10",
                           "2026-02-01T10:00:61", "2026-02-01T10:00z", "2026-02-01T10:00Zx"}) {
    EXPECT_EQ(TimeOfText(text), std::nullopt) << text;
  }
  unsetenv("TZ");
  tzset();
}

TEST_F(Recorder, FilesThatAreNoneNewerOrInUseAreRefused) {
  const auto trouble = [this] {
    try {
      const CStore opened(file_);
    } catch (const CStoreError& error) {
      return std::string(error.what());
    }
    return std::string("none");
  };
  Open();
  EXPECT_THAT(trouble(), HasSubstr("another recorder"));
  Run(3'000);
  Close();
  EXPECT_EQ(trouble(), "none");
  {
    CDatabase database(file_, CDatabase::EAccess::WRITE);
    database.Run("PRAGMA user_version = 99");
  }
  EXPECT_THAT(trouble(), HasSubstr("version 99"));
  std::filesystem::remove(file_);
  std::ofstream(file_) << "Something else that is long enough to look at, and no database.";
  EXPECT_THAT(trouble(), HasSubstr("no recording"));
  std::filesystem::remove(file_);
  {
    CDatabase database(file_, CDatabase::EAccess::MAKE);
    database.Run("CREATE TABLE somebodys (x)");
  }
  EXPECT_THAT(trouble(), HasSubstr("no recording"));
  file_ = folder_ / "no" / "folder";
  EXPECT_THAT(trouble(), HasSubstr("No such file"));
}

}  // namespace
}  // namespace vane::recorder
