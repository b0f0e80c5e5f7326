// The command table and the form of a line, and the page that shows them to people.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include "protocol/command_table.h"
#include "protocol/framing.h"

namespace vane::protocol {
namespace {

TEST(CommandTable, EveryCommandReadsBackAsItself) {
  const CommandParams fields{"1.5 ?*#{x}", "3", "16", "7", "2", "e"};
  for (const CommandRow& row : CommandTable()) {
    std::string problem;
    const auto command = BuildCommand(row, fields, problem);
    ASSERT_TRUE(command) << row.symbol << ": " << problem;
    const auto parsed = ParseCommand(*command);
    ASSERT_TRUE(parsed) << *command;
    EXPECT_EQ(parsed->row->id, row.id) << *command;
    EXPECT_EQ(*BuildCommand(*parsed->row, parsed->fields, problem), *command);
    EXPECT_EQ(FindCommand(row.id), &row);
  }
  for (const int id : {-1, 1, 291}) EXPECT_EQ(FindCommand(ECommand{id}), nullptr);
}

TEST(CommandTable, RefusesFieldsThatCannotTravel) {
  const auto problem = [](ECommand id, const CommandParams& fields) {
    std::string text;
    return BuildCommand(*FindCommand(id), fields, text) ? std::string() : text;
  };
  EXPECT_EQ(problem(ECommand::READ_MEASUREMENT, {}),
            "The field Channel of READ_MEASUREMENT is empty.");
  EXPECT_EQ(problem(ECommand::WRITE_UNITS, {}), "");
  EXPECT_EQ(problem(ECommand::WRITE_FILTER_TYPE, {}), "");
  CommandParams fields;
  for (const char* text : {"1\r\n#", "\x7F", "caf\xC3\xA9"}) {
    fields.value = text;
    EXPECT_EQ(problem(ECommand::WRITE_UNITS, fields),
              "The field value of WRITE_UNITS holds a character that can't be sent.");
  }
  for (const char* text : {"1 2", "1:A", "1?", "1*"}) {
    fields.Channel = text;
    EXPECT_NE(problem(ECommand::READ_MEASUREMENT, fields), "") << text;
  }
}

TEST(CommandTable, UnderstandsEitherCaseAndNothingElse) {
  const auto parsed = ParseCommand("probe 3:its90:Low 2:C 5 1.5E-04");
  ASSERT_TRUE(parsed);
  EXPECT_EQ(parsed->row->id, ECommand::WRITE_ITS90_LOW_C);
  EXPECT_EQ(parsed->fields, (CommandParams{"1.5E-04", "", "3", "2", "5", ""}));
  for (const char* text : {"", "ID", "ID? ", "UNITS", "PROBE :SERIAL?", "MEASURE ?", "INIT now"}) {
    EXPECT_FALSE(ParseCommand(text)) << text;
  }
}

// Answers, and of these commands the ids that take them: one command of each form.
TEST(ReplyForm, IsAsWideAsTheRuleThatReadsTheAnswer) {
  constexpr std::int32_t kIds[] = {5,   12,  15,  24,  34,  41,  43,  60,  86,  108,
                                   110, 122, 130, 138, 168, 205, 207, 225, 262, 276};
  const std::pair<std::string, std::string> cases[] = {
      {"", "110 262 276"},
      {" ", "276"},
      {"T312B, 5.03", "276"},
      {"THERMOSCRIBE T312B REV C,", "276"},
      {"ERROR", "122 276"},
      {"0", "12 15 34 41 110 122 276"},
      {" 1 ", "12 15 34 41 108 110 122 276"},
      {"2", "12 34 41 43 108 110 122 276"},
      {"-3", "12 34 122 276"},
      {"2.5", "12 34 122 276"},
      {"2.0", "12 34 41 43 108 110 122 276"},
      {"32766", "12 34 41 43 108 122 276"},
      {"1E5", "12 122 276"},
      {"90", "12 34 41 43 108 110 122 225 276"},
      {" - .25e-03 uV/K", "12 34 122 276"},
      {"+5. \xF4", "12 34 41 43 108 110 122 276"},
      {"1.7E308", "12 122 276"},
      {"1e400", "122 276"},
      {"1e-400", "12 34 41 110 122 276"},
      {"12.3.4", "122 276"},
      {"1,5", "276"},
      {"12 34", "122 276"},
      {"2C", "122 276"},
      {"1D-5", "122 276"},
      {"--2", "122 276"},
      {"+ inf", "122 276"},
      {"0x10", "122 276"},
      {"ON", "5 86 122 276"},
      {"off", "86 122 276"},
      {"EXP", "24 122 276"},
      {"exponential", "122 276"},
      {"NONE", "24 122 205 207 225 276"},
      {"SAMPLE N", "60 122 276"},
      {"R", "60 122 168 276"},
      {"RATIO", "122 130 168 276"},
      {"OHM", "122 168 276"},
      {"KOHM", "122 276"},
      {"10 KOHM", "12 34 41 43 108 110 122 138 276"},
      {"100 ohm", "12 34 41 43 108 110 122 138 276"},
      {"10K OHM", "122 276"},
      {"R(\xF4)", "122 130 276"},
      {"r(ohm", "122 276"},
      {"THRM-R(T)", "122 130 276"},
      {"4 (", "122 205 276"},
      {"5 (234.3156 K, or so)", "205 276"},
      {"11 (", "122 205 207 276"},
      {"10 (", "122 207 276"},
      {"12 (", "122 276"},
      {"21 (", "122 276"},
      {"6 (", "122 207 276"},
      {"4(", "122 276"},
      {"a\tb", "276"},
  };
  for (const auto& [reply, expected] : cases) {
    std::string fitting;
    for (const std::int32_t id : kIds) {
      if (!FitsForm(FindCommand(ECommand{id})->form, reply)) continue;
      fitting += (fitting.empty() ? "" : " ") + std::to_string(id);
    }
    EXPECT_EQ(fitting, expected) << '"' << reply << '"';
  }
}

TEST(Framing, ChecksEveryCharacterOfALine) {
  EXPECT_EQ(CheckValue("123456789"), 0x29B1);  // the published check value of this CRC
  const std::string line = FrameLine(0x1A2F, "=10 *#");
  const auto parsed = ParseLine(line);
  ASSERT_TRUE(parsed);
  EXPECT_EQ(parsed->tag, 0x1A2F);
  EXPECT_EQ(parsed->body, "=10 *#");
  for (std::size_t i = 0; i < line.size(); ++i) {
    for (int bit = 0; bit < 8; ++bit) {
      std::string damaged = line;
      damaged[i] = static_cast<char>(damaged[i] ^ (1 << bit));
      const auto read = ParseLine(damaged);
      // Hexadecimal digits may change their case: that damages nothing.
      EXPECT_TRUE(!read || (read->tag == 0x1A2F && read->body == "=10 *#")) << damaged;
    }
    EXPECT_FALSE(ParseLine(line.substr(0, i))) << i;
    EXPECT_FALSE(ParseLine(line.substr(i + 1))) << i;
  }
  // Another character in the place of the blank, under a check value that is right.
  std::string glued = "#1A2F==10";
  char check[8];
  std::snprintf(check, sizeof check, "*%04X", CheckValue(glued));
  EXPECT_FALSE(ParseLine(glued += check)) << glued;
}

TEST(Framing, AnswersAreValuesOrRefusals) {
  EXPECT_EQ(ParseAnswer(ValueBody(" a b "))->text, " a b ");
  EXPECT_EQ(ParseAnswer(ValueBody(""))->text, "");
  const std::string body = RefusalBody(12, "out of range");
  const auto refusal = ParseAnswer(body);
  ASSERT_TRUE(refusal && refusal->refused);
  EXPECT_EQ(refusal->number, 12);
  EXPECT_EQ(refusal->text, "out of range");
  for (const char* text : {"", "10", "!", "!x y", "!12", "!12x y", "!99999999999 x"}) {
    EXPECT_FALSE(ParseAnswer(text)) << text;
  }
}

TEST(ProtocolPage, ShowsTheTableAsItIs) {
  std::string table = "| Id | Symbol | Text | Answer |\n|---|---|---|---|\n";
  for (const CommandRow& row : CommandTable()) {
    table += "| " + std::to_string(static_cast<std::int32_t>(row.id)) + " | `" +
             std::string(row.symbol) + "` | `" + std::string(row.text) + "` | " +
             FormText(row.form) + " |\n";
  }
  std::ifstream file(VANE_SOURCE_DIR "/docs/protocol.md");
  std::stringstream page;
  page << file.rdbuf();
  EXPECT_NE(page.str().find(table), std::string::npos) << "docs/protocol.md must hold this table:\n"
                                                       << table;
}

}  // namespace
}  // namespace vane::protocol
