// What `thermoscribe` writes, as a user sees it: one process writes, the next one reads.

#include <chrono>
#include <thread>

#include "tests/support/cli.h"

namespace vane {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using thermoscribe::Members;

Answer File(const std::string& path) {
  std::ifstream stream(path);
  return ParsedJson({std::istreambuf_iterator<char>(stream), {}});
}

TEST_F(Cli, WhatOneProcessWritesTheNextOneShows) {
  StartSimulator();
  EXPECT_EQ(Ask("settings set units=k Interval=5").exitcode, 0);
  EXPECT_EQ(Ask("scan set --sequence 2,3,12").exitcode, 0);
  const Answer settings = ParsedJson(Ask("settings show --json").out);
  EXPECT_EQ(settings["Units"], "K");
  EXPECT_EQ(settings["Interval"], 5);
  EXPECT_EQ(settings["ScanChannels"], "2,3,12");
  EXPECT_EQ(Ask("clock set --time 2026-11-24T15:07:09").exitcode, 0);
  EXPECT_THAT(Trace(), HasSubstr("11-24-2026"));
  EXPECT_THAT(Trace(), HasSubstr("15:07:09"));

  const Answer untouched = ParsedJson(Ask("probe 5 --json").out);
  EXPECT_THAT(Ask("channel 3 set probe=5").out, HasSubstr("probe: 3 -> 5"));
  EXPECT_EQ(Trace().find("PROBE 5:CONVERSION "), std::string::npos);
  Answer channel = ParsedJson(Ask("channel 3 --json").out);
  for (const auto& [name, value] : untouched.Items()) {
    EXPECT_EQ(name == "kind" ? value : channel[name], value) << name;
  }
}

TEST_F(Cli, WritesAProbeOfEachConversion) {
  const struct {
    Arguments words;
    Members expected;  // empty: refused
    Members coefficients;
  } cases[] = {
      {{"conversion=its-90", "lowrange=5", "highrange=NONE", "rtpw=25.25", "B5=-1e-5"},
       {{"conversion", "ITS-90"}, {"lowrange", 5}, {"highrange", {}}},
       {{"RTPW", 25.25}, {"a5", 0.0}, {"b5", -1e-5}}},
      {{"c1=1"}, {}, {}},
      {{"conversion=IPTS-68", "scale=90", "c4=1e-15", "serial=ab-1"},
       {{"scale", 90}, {"serial", "AB-1"}},
       {{"R0", 100.0}, {"alpha", 0.00392597}, {"delta", 1.496334}, {"a4", 0.0}, {"c4", 1e-15}}},
      {{"conversion=IPTS-68", "lowrange=1"}, {}, {}},
      {{"conversion=Callendar-Van Dusen", "beta=0.5", "reference=10k ohm"},
       {{"conversion", "Callendar-Van Dusen"}, {"reference", "10K Ohm"}},
       {{"R0", 100.0}, {"alpha", 0.00385}, {"delta", 1.507}, {"beta", 0.5}}},
      {{"conversion=T(R)", "b3=8.76741e-8"},
       {{"conversion", "T(R)"}},
       {{"B0", 0.0}, {"B1", 0.0}, {"B2", 0.0}, {"B3", 8.76741e-8}}},
      {{"conversion=R(T)", "A0=-5.0563"},
       {{"conversion", "R(T)"}},
       {{"A0", -5.0563}, {"A1", 0.0}, {"A2", 0.0}, {"A3", 0.0}}},
      {{"conversion=W(T90)", "current=21", "offset3wire=0.000001"},
       {{"conversion", "W(T90)"}, {"current", 21.0}, {"offset3wire", 1e-6}},
       {{"RTPW", 25.5}}},
      {{"c0=1"}, {}, {}},
      {{"conversion=Polynomial", "c10=2"},
       {{"conversion", "Polynomial"}},
       {{"c0", 0.0},
        {"c1", 0.0},
        {"c2", 0.0},
        {"c3", 0.0},
        {"c4", 0.0},
        {"c5", 0.0},
        {"c6", 0.0},
        {"c7", 0.0},
        {"c8", 0.0},
        {"c9", 0.0},
        {"c10", 2.0}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.words.back());
    StartSimulator();  // its probe 7 is of ITS-90, without a subrange
    std::filesystem::remove(TraceFile());
    Arguments arguments = OnPort("probe 7 set", Port());
    arguments.insert(arguments.end(), c.words.begin(), c.words.end());
    const Outcome outcome = Run(arguments);
    if (c.expected.empty()) {
      EXPECT_EQ(outcome.exitcode, 2);
      EXPECT_EQ(Trace().find("SERIAL "), std::string::npos);
      continue;
    }
    EXPECT_EQ(outcome.exitcode, 0) << outcome.err;
    const Answer record = ParsedJson(Ask("probe 7 --json").out);
    for (const auto& [name, value] : c.expected) EXPECT_EQ(record[name], value) << name;
    EXPECT_EQ(record["coefficients"], Answer(c.coefficients));
  }
  for (const std::string words :
       {"current=22", "offset3wire=-1", "serial=123456789", "serial=a_b", "lowrange=6",
        "highrange=5", "scale=91", "reference=1", "R0=nan", "a12=1", "probe=3", "current"}) {
    std::filesystem::remove(TraceFile());
    EXPECT_EQ(Ask("probe 7 set " + words).exitcode, 2) << words;
    EXPECT_THAT(Trace(), IsEmpty());
  }
  EXPECT_THAT(Ask("probe 7 set current=22").err, HasSubstr("0.0001 to 21"));
  // Its A1 is no former value of a1.
  EXPECT_THAT(Ask("probe 13 set conversion=ITS-90 lowrange=1").out, HasSubstr("a1: - -> 0\n"));
}

TEST_F(Cli, ARestoredReadoutIsTheSavedOne) {
  const std::string a = folder_ / "a.json";
  const std::string b = folder_ / "b.json";
  StartSimulator("--seed 1");
  ASSERT_EQ(Ask("settings save " + a).exitcode, 0);
  EXPECT_EQ(Ask("settings diff " + a).exitcode, 0);

  StartSimulator("--seed 9 --protect conversion --passcode K9zQ");
  Tell("UNITS K");
  Tell("PROBE 1:CURRENT 1.5");
  Tell("PROBE 16:CONVERSION W");
  Tell("CHANNEL 1:PROBE 6");
  std::ofstream(folder_ / "passcode") << "K9zQ";
  const std::string restore =
      "settings restore " + a + " --passcode-file " + (folder_ / "passcode").string();
  const Outcome unasked = Ask(restore);
  EXPECT_EQ(unasked.exitcode, 2);
  EXPECT_THAT(unasked.out, HasSubstr("probe 16.conversion"));
  EXPECT_THAT(unasked.err, HasSubstr("--yes"));
  EXPECT_EQ(Ask("settings diff " + a).exitcode, 10);

  const Outcome whole = Ask(restore + " --yes");
  EXPECT_EQ(whole.exitcode, 0) << whole.err;
  ASSERT_EQ(Ask("settings save " + b).exitcode, 0);
  EXPECT_THAT(Run(Words("settings diff " + a + " " + b + " --json")).out, IsEmpty());
  Answer first = File(a);
  Answer second = File(b);
  EXPECT_FALSE(first["readout"]["ProtectConversion"].Flag());
  for (Answer* const file : {&first, &second}) {
    file->Put("/taken", {});
    file->Put("/readout", {});
  }
  EXPECT_EQ(first, second);
}

TEST_F(Cli, ARestoreThatStopsHalfWayTellsWhatIsWrittenAndASecondOneCompletesIt) {
  const std::string a = folder_ / "a.json";
  StartSimulator();
  ASSERT_EQ(Ask("settings save " + a).exitcode, 0);
  const auto change = [this] {
    Tell("PROBE 14:CURRENT 1.5");
    Tell("PROBE 16:CURRENT 1.5");
  };
  StartSimulator();
  change();
  std::filesystem::remove(TraceFile());
  ASSERT_EQ(Ask("settings restore " + a + " --dry-run").exitcode, 0);
  const std::string reads = Trace();
  int exchanges = 2;  // those of the changes
  for (std::size_t at = 0; (at = reads.find(" > #", at)) != std::string::npos; ++at) ++exchanges;

  // Each probe takes four writes; the line hangs up under the second one of the second probe.
  StartSimulator("--fault at=" + std::to_string(exchanges + 6) + ":hangup=0.2");
  change();
  const Outcome stopped = Ask("settings restore --yes " + a);
  EXPECT_EQ(stopped.exitcode, 8) << stopped.err;
  EXPECT_THAT(stopped.err, HasSubstr("Written: probe 14. Written in part at most: probe 16. "
                                     "Restore again"));
  std::this_thread::sleep_for(std::chrono::milliseconds(400));
  EXPECT_EQ(ParsedJson(Ask("probe 14 --json").out)["current"], 1.0);
  EXPECT_EQ(ParsedJson(Ask("probe 16 --json").out)["current"], 1.5);
  EXPECT_EQ(Ask("settings restore --yes " + a).exitcode, 0);
  EXPECT_EQ(Ask("settings diff " + a).exitcode, 0);

  // Without the scanner the rest can be restored.
  StartSimulator("--no-scanner");
  EXPECT_THAT(Ask("scan set --channel 3").err, HasSubstr("--channel can't be 3: no scanner"));
  Tell("PROBE 14:CURRENT 1.5");
  const Outcome rest = Ask("settings restore --yes " + a);
  EXPECT_EQ(rest.exitcode, 1);
  EXPECT_THAT(rest.err, HasSubstr("no scanner is attached"));
  EXPECT_EQ(ParsedJson(Ask("probe 14 --json").out)["current"], 1.0);
}

TEST_F(Cli, ADamagedFileIsRefusedAtItsPlaceBeforeAnythingIsSent) {
  const std::string a = folder_ / "a.json";
  ASSERT_EQ(Run(Words("settings save --simulate " + a)).exitcode, 0);
  const Answer whole = File(a);
  const struct {
    std::string pointer;
    Answer value;
    std::string place;
  } cases[] = {
      {"/version", 2, "version"},
      {"/readout/Model", "T999", "readout.Model"},
      {"/settings/Interval", 1, "settings.Interval"},
      {"/settings/Units", "k", "settings.Units"},
      {"/settings/ScanChannels", "2,13", "settings.ScanChannels"},
      {"/channels/3/probe", 17, "channels[3].probe"},
      {"/probes/4/current", "1", "probe 5: current"},
      {"/probes/4/coefficients/RTPW", {}, "coefficients.RTPW"},
      {"/probes/4/coefficients/R0", 1, "probe 5: R0"},
      {"/probes/4/lowrange", 1, "probe 5: a3 is no coefficient of ITS-90"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.pointer);
    Answer damaged = whole;
    damaged.Put(c.pointer, c.value);
    std::ofstream(a) << thermoscribe::JsonText(damaged);
    const Outcome outcome = Run(Words("settings restore --yes --port /dev/null " + a));
    EXPECT_EQ(outcome.exitcode, 1);
    EXPECT_THAT(outcome.err, HasSubstr(c.place));
    EXPECT_THAT(outcome.out, IsEmpty());
  }
  std::string twice = thermoscribe::JsonText(whole);
  twice.insert(twice.find("\"Units\""), R"("Units":"K",)");
  std::ofstream(a) << twice;
  EXPECT_THAT(Run(Words("settings diff " + a + " " + a)).err, HasSubstr("Units: given twice"));
}

}  // namespace
}  // namespace vane
