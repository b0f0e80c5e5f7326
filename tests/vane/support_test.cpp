// The text table, display texts, number reading, messages, paths and pauses.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "tests/support/transcript.h"
#include "vane/support/display_texts.h"
#include "vane/support/failure.h"
#include "vane/support/messages.h"
#include "vane/support/numbers.h"
#include "vane/support/paths.h"
#include "vane/support/scramble.h"
#include "vane/support/text_table.h"
#include "vane/support/timing.h"

namespace vane {
namespace {

using test::CTestHost;

std::int32_t NumberRaised(const std::function<void()>& body) {
  return CTestHost::ErrorOf(body).Number();
}

TEST(NumberFromText, ReadsTheLeadingNumberInEveryForm) {
  const struct {
    const char* text;
    double number;
  } rows[] = {{"5.03", 5.03},
              {"  -12.5 C", -12.5},
              {"+7", 7},
              {".5x", 0.5},
              {"-.25", -0.25},
              {"1.5E-3,2", 1.5e-3},
              {"2e", 2},
              {"3E+2V", 300},
              {"12 34", 12},
              {"1,5", 1},
              {"", 0},
              {"C 25", 0},
              {"-", 0},
              {".", 0},
              {"--5", 0},
              {"-  5.2", -5.2},
              {"- ", 0},
              {"+-5", 0},
              {"nan", 0},
              {"-inf", 0},
              {"\t5", 0},
              {"0x1A", 0},
              {"1e-999", 0},
              {"7.", 7},
              {"9007199254740993", 9007199254740992.0},
              {"4.9e-324", 5e-324}};
  for (const auto& row : rows) EXPECT_EQ(NumberFromText(row.text), row.number) << row.text;
  for (const char* zero : {"-0", "-0.000", "- 0", "-1e-400", "-4.9e-325", "-x", "-"}) {
    EXPECT_EQ(NumberFromText(zero), 0);
    EXPECT_FALSE(std::signbit(NumberFromText(zero))) << zero;
  }
  EXPECT_EQ(NumberFromText("0." + std::string(5000, '0') + "1"), 0);
  for (const std::string& huge : {std::string(5000, '9'), std::string("-1e400")}) {
    EXPECT_EQ(NumberRaised([&] { NumberFromText(huge); }), ERR_PLATFORM_OVERFLOW) << huge;
  }
}

TEST(WholeNumbers, RoundHalvesToTheEvenNeighbourAndNeverWrap) {
  const struct {
    double number;
    int whole;
  } rows[] = {{0.5, 0},   {1.5, 2},         {2.5, 2},           {-0.5, 0},
              {-1.5, -2}, {32767.4, 32767}, {-32768.5, -32768}, {2.49999, 2}};
  for (const auto& row : rows) EXPECT_EQ(ToInteger(row.number), row.whole) << row.number;
  EXPECT_EQ(ToLong(2147483647.4), 2147483647);
  for (const double beyond : {32767.5, -32769.0, 1e300, std::nan("")}) {
    EXPECT_EQ(NumberRaised([&] { ToInteger(beyond); }), ERR_PLATFORM_OVERFLOW) << beyond;
  }
  EXPECT_EQ(NumberRaised([] { ToLong(2147483647.5); }), ERR_PLATFORM_OVERFLOW);
  EXPECT_EQ(NumberRaised([] { PercentShare(0); }), ERR_PLATFORM_DIVISION);
}

TEST(SubstituteParams, FillsPlacesInOrderAndTrimsOnlyLists) {
  const struct {
    const char* text;
    const char* params;
    const char* filled;
  } rows[] = {{"a~b~c", "1", "a1bc"},
              {"a~b", " 1 | 2 ", "a1b"},
              {"~", " x ", " x "},
              {"~-~", "1 | 2 ", "1-2"},
              {"no place", "1|2", "no place"},
              {"~~", "~|x", "~x"},
              {"~ ~ ~", "a||c", "a  c"},
              {"~", "\t|", "\t"}};
  for (const auto& row : rows) EXPECT_EQ(SubstituteParams(row.text, row.params), row.filled);
}

TEST(TextTable, HasTextsUnderItsNumbersAlone) {
  EXPECT_EQ(ResourceText(101), "An error occurred while");
  EXPECT_EQ(ResourceText(304), "Send file(s) directly to default printer when double-clicked");
  for (const int id : {0, 100, 149, 305, -1}) {
    const auto missing = static_cast<std::int16_t>(id);
    EXPECT_EQ(NumberRaised([&] { ResourceText(missing); }), ERR_PLATFORM_CALL);
  }
}

template <class Enum>
std::string TextsOf(std::string (*text)(Enum), int first, int last) {
  std::string all;
  for (int code = first; code <= last; ++code) all += text(static_cast<Enum>(code)) + "|";
  return all;
}

TEST(DisplayTexts, NameEveryCodeAndNothingElse) {
  EXPECT_EQ(TextsOf(UnitsText, -2, 11),
            "<unknown>|<keep existing>|°C|°F|K|R|Ohms|KOhms|Ratio|Volts|mV|µV|W|<unknown>|");
  EXPECT_EQ(TextsOf(ConversionTypeText, -2, 21),
            "<unknown>|<keep existing>|ITS-90|IPTS-68|Callendar-Van Dusen|High-Temp. PRT|"
            "Polynomial|T(R)|R(T)|Polynomial|Table|Thermocouple Type|Ohms|Volts|IEC-751|YSI-400|"
            "W(T90)|Ratio|PT100|ITS-90 Subrange 5|Ohms|PT100|Thermocouple Type|<unknown>|");
  EXPECT_EQ(TextsOf(FilterTypeText, -1, 3), "<unknown>|None|Average|Exponential|<unknown>|");
  EXPECT_EQ(TextsOf(SampleActionText, -1, 3), "<unknown>|Run|Stop|Sample n|<unknown>|");
  EXPECT_EQ(TextsOf(OvenText, -1, 2), "<unknown>|On|Off|<unknown>|");
  EXPECT_EQ(TextsOf(ChannelModeText, -1, 5),
            "<unknown>|Alternate input 1/input 2|Input 1|Input 2|Scanner channel|"
            "Scanner sequence|<unknown>|");
  EXPECT_EQ(TextsOf(ScannerScanModeText, 0, 6),
            "<unknown>|Scanner channels only|Input 2 and scanner channels|"
            "Alternate input 2/scanner channels|Alternate scanner channel 1/scanner channels|"
            "User-defined scanner sequence|<unknown>|");
  EXPECT_EQ(TextsOf(RefResistorText, -1, 5),
            "<unknown>|External resistor|1 Ohm|10 Ohm|100 Ohm|10K Ohm|<unknown>|");
}

class Messages : public testing::Test {
 protected:
  // What the box of the pending error says.
  std::string BoxFor(const std::function<void()>& fail, const std::string& helpfile = {}) {
    host_.log.Clear();
    SetBusyCursor(true);
    try {
      fail();
      ShowError("attempting to read settings", "Corvane", helpfile, 7);
    } catch (...) {
      ShowError("attempting to read settings", "Corvane", helpfile, 7);
    }
    EXPECT_FALSE(BusyCursor());
    return host_.log.Text();
  }

  CTestHost host_;
};

TEST_F(Messages, ErrorBoxTellsActionNumberDescriptionAndSource) {
  const std::string head = "busy on\nbusy off\nbox ";
  const std::string sentence = "Corvane: An error occurred while attempting to read settings./";
  EXPECT_EQ(BoxFor([] {
              throw LibraryError(ERR_INVALID_CHANNEL, "CVaneT312B - SelectedChannel",
                                 ResourceText(171));
            }),
            head + "16 " + sentence +
                "/Error: -2147220503 - Invalid channel index/(CVaneT312B - SelectedChannel)\n");
  EXPECT_EQ(BoxFor([] { throw LibraryError(7, "", "gone", "own.hlp", 42); }),
            head + "16400 " + sentence + "/Error: 7 - gone help=own.hlp#42\n");
  EXPECT_EQ(BoxFor([] { throw LibraryError(7, "x", "gone", "own.hlp", 42); }, "given.hlp"),
            head + "16400 " + sentence + "/Error: 7 - gone/(x) help=given.hlp#7\n");
  EXPECT_EQ(BoxFor([] {}), head + "16 " + sentence + "\n");
}

TEST_F(Messages, ForeignExceptionsGetThePlatformsNumbers) {
  const struct {
    std::function<void()> fail;
    std::int32_t number;
  } rows[] = {
      {[] { throw std::overflow_error("x"); }, 6}, {[] { throw std::out_of_range("x"); }, 9},
      {[] { throw std::bad_cast(); }, 13},         {[] { throw std::invalid_argument("x"); }, 13},
      {[] { throw std::runtime_error("x"); }, 5},  {[] { throw 1; }, 5},
  };
  for (const auto& row : rows) {
    const LibraryError error =
        CTestHost::ErrorOf([&] { Labelled("CClass", "Operation", row.fail); });
    EXPECT_EQ(error.Number(), row.number);
    EXPECT_EQ(error.Source(), "CClass - Operation");
  }
}

TEST_F(Messages, ReRaisingKeepsNumberAndTextAndReplacesHelpOnlyWhenGiven) {
  const auto again = [](auto... help) {
    return CTestHost::ErrorOf([&] {
      try {
        throw LibraryError(7, "deep", "gone", "own.hlp", 42);
      } catch (...) {
        RaiseAgain("C - d", help...);
      }
    });
  };
  const LibraryError kept = again();
  EXPECT_EQ(kept.Source() + kept.Description() + kept.HelpFile(), "C - dgoneown.hlp");
  EXPECT_EQ(kept.Number() + kept.HelpContext(), 7 + 42);
  const LibraryError given = again(HelpFields{"new.hlp", 3});
  EXPECT_EQ(given.Source() + given.Description() + given.HelpFile(), "C - dgonenew.hlp");
  EXPECT_EQ(given.Number() + given.HelpContext(), 7 + 3);
}

TEST_F(Messages, MessageBoxHasHelpOnlyWithAFile) {
  ShowMessage("text", "Title", "", 5);
  ShowMessage("text", "Title", "a.hlp", 5);
  EXPECT_EQ(host_.log.Only({"box"}), "box 64 Title: text\nbox 16448 Title: text help=a.hlp#5\n");
}

TEST_F(Messages, HelpRaisesTheBusyCursorAndTakesItAwayOnEveryRoad) {
  ShowHelpTopic(12);
  SetLibraryHelpFile("");
  EXPECT_EQ(CTestHost::ErrorOf([] { ShowHelpTopic(12); }).Source(), "HelpOpenTopic()");
  EXPECT_EQ(host_.log.Text(),
            "busy on\nhelp VaneT312B.hlp 1 12\nbusy off\nbusy on\nhelp  1 12\nbusy off\n");
}

TEST(Paths, JoinAndSplitWithOneSeparator) {
  EXPECT_EQ(BuildFullPath("", "a"), "a");
  for (const char* folder : {"/tmp", "/tmp/"}) {
    for (const char* name : {"a", "/a"}) EXPECT_EQ(BuildFullPath(folder, name), "/tmp/a");
  }
  const struct {
    const char* path;
    const char* folder;
    const char* file;
  } rows[] = {{"/a/b/c.txt", "/a/b/", "c.txt"},
              {"c.txt", "", "c.txt"},
              {"/a/b/", "/a/b/", "b"},
              {"/", "/", ""}};
  for (const auto& row : rows) {
    EXPECT_EQ(GetFolderFromPath(row.path), row.folder) << row.path;
    EXPECT_EQ(GetFileFromPath(row.path), row.file) << row.path;
  }
}

TEST(Scramble, GivesTheTextBackWhenAppliedTwice) {
  const std::string text = "\x01\xFF z";
  EXPECT_NE(ScrambleText(text), text);
  EXPECT_EQ(ScrambleText(ScrambleText(text)), text);
}

TEST(Pause, RunsTheQueueAtLeastOnceAndNeverEndsEarlyUnlessToldTo) {
  CTestHost host;
  PauseMs(-5);
  host.platform.passlength = 400;
  host.platform.ticks = std::numeric_limits<std::uint32_t>::max() - 500;  // wraps in the pause
  PauseMs(1000);
  EXPECT_EQ(host.log.Text(), "queue 0\nqueue 1000\nqueue 600\nqueue 200\n");
  int passes = 0;
  PauseMs(10000, [&] { return ++passes == 3; });
  EXPECT_EQ(passes, 3);
  EXPECT_EQ(host.log.Lines().size(), 7u);
}

}  // namespace
}  // namespace vane
