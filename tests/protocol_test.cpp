// The command table and the form of a line, and the page that shows them to people.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "protocol/command_table.h"
#include "protocol/framing.h"

namespace vane::protocol {
namespace {

TEST(CommandTable, EveryCommandReadsBackAsItself) {
  const Fields fields{"1.5 ?*#{x}", "3", "16", "7", "2", "e"};
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
}

TEST(CommandTable, EveryReadWithAWriteHasTheNextId) {
  for (const CommandRow& row : CommandTable()) {
    if (row.IsRead() || row.id == 0 || row.id == 10 || row.id == 11 || row.id >= 288) continue;
    const CommandRow* read = FindCommand(row.id - 1);
    ASSERT_NE(read, nullptr) << row.id;
    EXPECT_EQ(read->symbol.substr(5), row.symbol.substr(6));
  }
  EXPECT_EQ(FindCommand(1), nullptr);
  EXPECT_EQ(FindCommand(-1), nullptr);
  EXPECT_EQ(FindCommand(291), nullptr);
}

TEST(CommandTable, RefusesFieldsThatCannotTravel) {
  const auto problem = [](std::int32_t id, const Fields& fields) {
    std::string text;
    return BuildCommand(*FindCommand(id), fields, text) ? std::string() : text;
  };
  EXPECT_EQ(problem(12, {}), "The field Channel of READ_MEASUREMENT is empty.");
  EXPECT_EQ(problem(169, {}), "");
  EXPECT_EQ(problem(25, {}), "");
  Fields fields;
  for (const char* text : {"1\r\n#", "\x7F", "caf\xC3\xA9"}) {
    fields.value = text;
    EXPECT_EQ(problem(169, fields),
              "The field value of WRITE_UNITS holds a character that can't be sent.");
  }
  for (const char* text : {"1 2", "1:A", "1?", "1*"}) {
    fields.Channel = text;
    EXPECT_NE(problem(12, fields), "") << text;
  }
}

TEST(CommandTable, UnderstandsEitherCaseAndNothingElse) {
  const auto parsed = ParseCommand("probe 3:its90:Low 2:C 5 1.5E-04");
  ASSERT_TRUE(parsed);
  EXPECT_EQ(parsed->row->id, 216);
  EXPECT_EQ(parsed->fields, (Fields{"1.5E-04", "", "3", "2", "5", ""}));
  for (const char* text : {"", "ID", "ID? ", "UNITS", "PROBE :SERIAL?", "MEASURE ?", "INIT now"}) {
    EXPECT_FALSE(ParseCommand(text)) << text;
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
}

TEST(Framing, AnswersAreValuesOrRefusals) {
  EXPECT_EQ(ParseAnswer(ValueBody(" a b "))->text, " a b ");
  EXPECT_EQ(ParseAnswer(ValueBody(""))->text, "");
  const std::string body = RefusalBody(12, "out of range");
  const auto refusal = ParseAnswer(body);
  ASSERT_TRUE(refusal && refusal->refused);
  EXPECT_EQ(refusal->number, 12);
  EXPECT_EQ(refusal->text, "out of range");
  for (const char* text : {"", "10", "!", "!x y", "!12", "!99999999999 x"}) {
    EXPECT_FALSE(ParseAnswer(text)) << text;
  }
}

TEST(ProtocolPage, ShowsTheTableAsItIs) {
  std::string table = "| Id | Symbol | Text |\n|---|---|---|\n";
  for (const CommandRow& row : CommandTable()) {
    table += "| " + std::to_string(row.id) + " | `" + std::string(row.symbol) + "` | `" +
             std::string(row.text) + "` |\n";
  }
  std::ifstream file(VANE_SOURCE_DIR "/docs/protocol.md");
  std::stringstream page;
  page << file.rdbuf();
  EXPECT_NE(page.str().find(table), std::string::npos) << "docs/protocol.md must hold this table:\n"
                                                       << table;
}

}  // namespace
}  // namespace vane::protocol
