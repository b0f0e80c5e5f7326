// Temperatures on the host, as a user asks for them: convert, table and verify.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/cli.h"
#include "tests/support/host_machine.h"

namespace vane {
namespace {

using testing::HasSubstr;
using testing::Not;

Outcome InShell(const std::string& script) {
  setenv("T", THERMOSCRIBE_PATH, 1);
  return CProcess("/bin/bash", {"-c", script}).Wait();
}

class CliPhysics : public Cli {
 protected:
  // A snapshot of the simulated readout, and one with `from` replaced in it.
  std::string Saved() {
    std::string path = folder_ / "bath.json";
    EXPECT_EQ(InShell("$T --simulate settings save " + path).exitcode, 0);
    return path;
  }
  std::string Changed(const std::string& path, const std::string& from, const std::string& to) {
    std::string text = test::FileText(path);
    const std::size_t place = text.find(from);
    EXPECT_NE(place, text.npos) << from;
    text.replace(place, from.size(), to);
    std::string changed = folder_ / "changed.json";
    std::ofstream(changed) << text;
    return changed;
  }

  test::CTemporaryFolder folder_;
};

TEST_F(CliPhysics, ConvertsInBothDirectionsAsTheTableHasIt) {
  const std::string file = Saved();
  const std::string record = "--record " + file + " --probe ";
  for (const int probe : {1, 2, 3, 6, 8, 9, 10, 11, 12, 13, 15}) {
    const std::string source = record + std::to_string(probe);
    const auto there = JsonLines(InShell("$T --json convert " + source + " 25 C").out);
    ASSERT_EQ(there.size(), 1U) << probe;
    char ohms[40];
    std::snprintf(ohms, sizeof ohms, "%.17g", there[0]["ohms"].Number());
    const auto back = JsonLines(InShell("$T --json convert " + source + " " + ohms + " Ohm").out);
    EXPECT_NEAR(back.at(0)["celsius"].Number(), 25, 1e-12) << probe;
    const auto rows =
        JsonLines(InShell("$T --json table " + source + " --from 24.9 --to 25.1 --step 0.1").out);
    ASSERT_EQ(rows.size(), 3U) << probe;
    EXPECT_EQ(rows[1]["temperature"].Number(), 25);
    EXPECT_EQ(rows[1]["ohms"].Number(), there[0]["ohms"].Number()) << probe;
    EXPECT_NEAR((rows[2]["ohms"].Number() - rows[0]["ohms"].Number()) / 0.2,
                rows[1]["slope"].Number(), 1e-4 * std::abs(rows[1]["slope"].Number()))
        << probe;
  }
  // A column, with what is no number and no resistance in it, and the record of one probe alone.
  const Outcome column = InShell("$T --simulate probe 3 --json > " + (folder_ / "p.json").string() +
                                 "; printf '26\\n\\n x \\n1e9\\n27' | $T --json convert --record " +
                                 (folder_ / "p.json").string() + " - Ohm");
  EXPECT_EQ(column.exitcode, 1);
  EXPECT_EQ(JsonLines(column.out).size(), 2U);
  EXPECT_THAT(column.err, HasSubstr("Line 3: \\\"x\\\" is no number."));
  EXPECT_THAT(InShell("$T convert " + record + "2 9 Ohm --uncertainty resistance=1e-5,a6=1e-6").out,
              HasSubstr("K of a6\n  Note        The ratio at the aluminium point was solved"));
  const auto ratio =
      JsonLines(InShell("$T --json convert " + record + "3 --reference 100.05 0.26 Ratio").out);
  EXPECT_NEAR(ratio.at(0)["ohms"].Number(), 26.013, 1e-12);
  EXPECT_EQ(ratio.at(0)["ratio"].Number(), 0.26);
  const std::pair<const char*, int> refused[] = {
      {"7 25 C", 1}, {"14 25 C", 1},      {"13 -- -200 C", 1}, {"3 25", 2},
      {"3 25 V", 2}, {"3 0.26 Ratio", 2}, {"3 x C", 2},        {"3 25 C --uncertainty b9=1", 2}};
  for (const auto& [arguments, code] : refused) {
    EXPECT_EQ(InShell("$T convert " + record + arguments).exitcode, code) << arguments;
  }
  const std::string page = folder_ / "t.html";
  EXPECT_EQ(InShell("$T table " + record + "6 --from 20 --to 40 --step 5 --html " + page).exitcode,
            0);
  EXPECT_THAT(test::FileText(page), HasSubstr("</sup> Extrapolated"));
  EXPECT_THAT(test::FileText(page), HasSubstr("RT-0077"));
}

TEST_F(CliPhysics, VerifyAgreesPutsTheUnitsBackAndFindsAWrongDigit) {
  StartSimulator("--bath 2=700,3=100,4=-200,5=300,6=10,8=-100 --protect units");
  const std::string passcode = folder_ / "passcode";
  std::ofstream(passcode) << "1234\n";
  const std::string with = " --passcode-file " + passcode;
  Ask("settings set Units=K" + with);
  const Outcome all = Ask("verify --json" + with);
  int agreeing = 0;
  for (const Answer& one : JsonLines(all.out)) {
    if (one["agrees"].Is<bool>()) agreeing += one["agrees"].Flag() ? 1 : 100;
  }
  EXPECT_EQ(agreeing, 10) << all.out << all.err;
  EXPECT_EQ(all.exitcode, 0);
  EXPECT_THAT(Ask("settings show --group sampling").out, HasSubstr("  K  "));

  // One digit of one coefficient, in the file that the certificate stands for.
  const std::string file = Saved();
  const struct {
    int channel;
    const char* from;
    const char* to;
  } digits[] = {{2, "-6.1893e-05", "-9.1893e-05"}, {3, "-0.00023978", "-0.00024978"},
                {4, "-7.7641e-06", "-8.7641e-06"}, {5, "25.5341208", "25.5351208"},
                {8, "-1.8346e-07", "-2.8346e-07"}, {10, "0.003851124", "0.003861124"},
                {11, "2.19829494", "2.18829494"},  {12, "0.000234125", "0.000235125"}};
  for (const auto& [channel, from, to] : digits) {
    const std::string record = " --record " + Changed(file, from, to);
    const std::string number = std::to_string(channel);
    EXPECT_EQ(Ask("verify --channel " + number + with + record).exitcode, 10) << from;
    EXPECT_EQ(Ask("verify --channel " + number + with + " --record " + file).exitcode, 0) << from;
  }
  // Also when the line fails in the middle, as long as it is there again.
  StartSimulator("--fault at=40:refuse");
  Ask("verify --channel 3");
  EXPECT_THAT(Ask("settings show --group sampling").out, HasSubstr("\u00B0C  "));

  const Outcome records = InShell("$T verify " + file);
  EXPECT_EQ(records.exitcode, 10);
  EXPECT_THAT(records.out, HasSubstr("SP-NEW"));
  EXPECT_THAT(records.out, Not(HasSubstr("CAP-1881")));
  const std::string changed = Changed(file, "1.4987", "0.14987");
  EXPECT_THAT(InShell("$T verify " + changed).out, HasSubstr("delta is 0.14987"));
  // Told, and written all the same.
  const Outcome restored = InShell("$T --simulate settings restore --yes " + changed);
  EXPECT_EQ(restored.exitcode, 0);
  EXPECT_THAT(restored.err, HasSubstr("Odd, probe 10: delta is 0.14987"));
}

}  // namespace
}  // namespace vane
