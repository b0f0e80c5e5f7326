// Every setting that can be written, on the simulated readout: one instrument object writes it, a
// fresh one reads it back.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "adapters/headless/headless_factory.h"
#include "adapters/headless/headless_platform.h"
#include "apps/snapshots/instrument_properties.h"
#include "apps/thermoscribe/output.h"
#include "apps/thermoscribe/probe_input.h"
#include "simulator/line_server.h"
#include "vane/channels/coefficients.h"

namespace vane::thermoscribe {
namespace {

class Sweep : public testing::Test {
 protected:
  Sweep() {
    platform_.SkipWaits();
    readout_.Start();
    line_->devices[EVanePortNumber::PORT_1] = readout_.Path();
  }

  // An object that knows nothing but the readout's channels and settings.
  std::unique_ptr<CVaneT312B> Fresh() const {
    auto instrument = std::make_unique<CVaneT312B>(components_);
    instrument->SetRegistry(std::make_shared<CEmptyRegistry>());
    instrument->InitializeCommunications();
    EXPECT_TRUE(instrument->QueryChannelInfo() && instrument->QueryInfo());
    return instrument;
  }

  CHeadlessPlatform platform_;
  std::shared_ptr<LineSettings> line_ = std::make_shared<LineSettings>();
  CHeadlessFactory factory_{line_};
  const Components components_{platform_, factory_};
  CInstalledComponents installed_{components_};
  simulator::CSimulatedLine readout_{simulator::ParseOptions("")};
};

constexpr std::size_t kPasses = 6;  // as many as the longest list of words has members

// The lowest, the highest and an odd one between; or each word in turn.
Value SettingValue(const PropertyRow& row, std::size_t pass) {
  if (const auto words = WordsOf(*row.rule); !words.empty()) return words[pass % words.size()];
  if (row.issequence) {
    std::string longest = "12";
    for (int step = 2; step <= 100; ++step) longest += "," + std::to_string(2 + step % 11);
    return std::vector<std::string>{"2", longest, "12,2,7"}[pass % 3];
  }
  const auto& limits = std::get<NumberRule>(*row.rule);
  const double odd = limits.minimum + (limits.maximum - limits.minimum) / 3;
  const double values[] = {limits.minimum, limits.maximum,
                           limits.whole ? std::floor(odd) : std::round(odd * 100) / 100};
  return limits.whole ? Value(static_cast<std::int32_t>(values[pass % 3]))
                      : Value(values[pass % 3]);
}

TEST(Output, AZeroHasNoSignInAnyForm) {
  const Members members = {{"a", -0.0}, {"b", Members{{"c", List{-0.0, -1.5}}}}};
  EXPECT_EQ(JsonLine("x", members), R"({"version":1,"kind":"x","a":0.0,"b":{"c":[0.0,-1.5]}})");
  EXPECT_EQ(TextOf(-0.0), "0");
}

TEST_F(Sweep, EverySettingComesBackAsItWasWritten) {
  for (std::size_t pass = 0; pass < kPasses; ++pass) {
    auto writer = Fresh();
    for (const PropertyRow& row : InstrumentProperties()) {
      if (row.set != nullptr) row.set(*writer, SettingValue(row, pass));
    }
    ASSERT_TRUE(writer->UpdateInfo());
    writer.reset();  // the port is one object's at a time
    const auto reader = Fresh();
    for (const PropertyRow& row : InstrumentProperties()) {
      if (row.set == nullptr) continue;
      EXPECT_EQ(row.get(*reader), SettingValue(row, pass)) << row.name << " in pass " << pass;
    }
  }
}

std::string WordOf(const char* member, std::size_t place) {
  const auto row = std::ranges::find(ProbeMembers(), member, &ProbeMemberRow::name);
  const std::vector<std::string> words = WordsOf(row->rule);
  return std::string(member) + "=" + words[place % words.size()];
}

// One probe has each type, in each scale or subrange.
ProbeValues RecordOf(std::size_t probe, std::size_t pass) {
  const char* const current[] = {"current=0.0001", "current=21", "current=1.2345"};
  const char* const offset[] = {"offset3wire=0", "offset3wire=1e6", "offset3wire=0.000125"};
  const char* const serial[] = {"serial=A", "serial=Z-123456", "serial=0-9"};
  const std::size_t type = probe < 7 ? 0 : probe == 15 ? 1 : probe - 6;
  std::vector<std::string> texts = {serial[pass], WordOf("reference", probe + pass), current[pass],
                                    offset[pass], WordOf("conversion", type)};
  if (type == 0) {
    const auto range = [](bool isnone, std::size_t number) {
      return isnone ? "none" : std::to_string(number);
    };
    texts.push_back("lowrange=" + range(probe % 6 == 0, probe % 6));
    texts.push_back("highrange=" + range(probe == 0, probe + 5));
  }
  if (type == 1) texts.push_back(probe == 15 ? "scale=90" : "scale=68");
  ProbeAssignments assignments;
  for (const std::string& text : texts) AddProbeAssignment(assignments, text, false);
  return assignments.values;
}

TEST_F(Sweep, EveryChannelAndProbeComesBackAsItWasWritten) {
  constexpr double kCoefficients[] = {-0.5, 12345.25, 0.03125};
  for (std::size_t pass = 0; pass < 3; ++pass) {
    auto writer = Fresh();
    std::vector<ProbeValues> records;
    for (std::size_t probe = 0; probe < 16; ++probe) {
      const auto number = static_cast<std::int16_t>(probe + 1);
      // The last four probes are of no channel.
      const bool assigned = probe < 12;
      const auto place = static_cast<std::int16_t>(assigned ? (probe + pass * 5) % 12 + 1 : 1);
      CVaneT312BPRTTHRMChannel& channel = *writer->GetChannelReference(place);
      StoreProbeValues(channel, RecordOf(probe, pass));
      double value = kCoefficients[pass];
      for (const Coefficient& coefficient : CoefficientsOf(channel)) coefficient.set(value++);
      records.push_back(ProbeRecord(channel));
      if (assigned) channel.SetProbeIndex(number);
      ASSERT_TRUE(assigned ? channel.UpdateInfo() : channel.UpdateProbeInfo(number));
    }
    writer.reset();  // the port is one object's at a time
    const auto reader = Fresh();
    for (std::size_t probe = 0; probe < 16; ++probe) {
      const auto number = static_cast<std::int16_t>(probe + 1);
      CVaneT312BPRTTHRMChannel& channel = *reader->GetChannelReference(
          static_cast<std::int16_t>(probe < 12 ? (probe + pass * 5) % 12 + 1 : 1));
      ASSERT_TRUE(probe < 12 ? channel.QueryInfo() : channel.QueryProbeInfo(number));
      EXPECT_EQ(probe < 12 ? channel.ProbeIndex() : number, number);
      EXPECT_EQ(ProbeRecord(channel), records[probe]);
    }
  }
}

}  // namespace
}  // namespace vane::thermoscribe
