// The line that `thermoscribe` takes: the user's defaults, and the port where nobody names one.

#include "apps/thermoscribe/command.h"
#include "apps/thermoscribe/port_choice.h"
#include "tests/support/cli.h"

namespace vane::thermoscribe {
namespace {

using testing::HasSubstr;

class Defaults : public Cli {
 protected:
  void SetUp() override {
    Cli::SetUp();
    file_ = folder_ / "config/VaneT312B/registry.toml";
    std::filesystem::create_directories(file_.parent_path());
  }
  void TearDown() override {
    for (const char* name : kVariables) unsetenv(name);
    Cli::TearDown();
  }

  // Both with "NAME=VALUE" in each word.
  void SetEnvironment(const std::string& words) {
    for (const char* name : kVariables) unsetenv(name);
    for (const std::string& word : Words(words)) {
      const std::size_t sign = word.find('=');
      setenv(("THERMOSCRIBE_" + word.substr(0, sign)).c_str(), word.substr(sign + 1).c_str(), 1);
    }
  }
  void SetFile(const std::string& words) const {
    std::ofstream stream(file_);
    stream << "[values.thermoscribe]\n";
    for (const std::string& word : Words(words)) stream << word << "\n";
  }

  static constexpr const char* kVariables[] = {"THERMOSCRIBE_PORT", "THERMOSCRIBE_BAUD",
                                               "THERMOSCRIBE_TIMEOUT"};
  std::filesystem::path file_;
};

TEST_F(Defaults, TheNearestOfFourPlacesIsTaken) {
  const struct {
    std::string file;
    std::string environment;
    std::string options;
    std::string expected;  // of port, baud and time-out: value and source
  } cases[] = {
      {"", "", "", R"([null,"built-in",9600,"built-in",1.0,"built-in"])"},
      {"port='/dev/f' baud=300 timeout=2.5", "", "", R"(["/dev/f","file",300,"file",2.5,"file"])"},
      {"port='/dev/f' baud='300' timeout='2'", "PORT=/dev/e TIMEOUT=", "",
       R"(["/dev/e","environment",300,"file",2.0,"file"])"},
      {"baud=300 timeout=true", "PORT=/dev/e BAUD=600 TIMEOUT=3", "--port /dev/o --baud 1200",
       R"(["/dev/o","option",1200,"option",3.0,"environment"])"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file + c.environment);
    SetFile(c.file);
    SetEnvironment(c.environment);
    const Outcome outcome = Run(Words("config --json " + c.options));
    EXPECT_EQ(outcome.exitcode, 0) << outcome.err;
    const Answer config = ParsedJson(outcome.out);
    EXPECT_EQ(config["file"], file_.string());
    thermoscribe::List told;
    for (const Answer row : config["defaults"].Elements()) {
      told.push_back(row["value"]);
      told.push_back(row["source"]);
    }
    EXPECT_EQ(thermoscribe::JsonText(told), c.expected);
  }
}

TEST_F(Defaults, AValueThatCannotBeIsBadUsageThatNamesItsPlace) {
  const std::string infile = " in " + file_.string();
  const struct {
    std::string file;
    std::string environment;
    std::string message;
    bool portonly = false;  // a simulated readout has none
  } cases[] = {
      {"port=''", "", "port" + infile + " can't be empty.", true},
      {"port=[]", "", "port" + infile + " is neither a text nor a number.", true},
      {"port", "", "It may name the port", true},
      {"baud=9601", "", "baud" + infile + " can't be \"9601\". It is 300, 600"},
      {"timeout='1s'", "", "timeout" + infile + " can't be \"1s\". It is a number, 0.01 to 3600"},
      {"", "BAUD=x", "THERMOSCRIBE_BAUD can't be \"x\". It is 300"},
      {"", "TIMEOUT=0", "THERMOSCRIBE_TIMEOUT can't be \"0\". It is a number"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.message);
    SetFile(c.file);
    SetEnvironment(c.environment);
    for (const std::string command : {"identify", "config", "settings show --simulate"}) {
      const bool isfine = c.portonly && command.ends_with("--simulate");
      const Outcome outcome = Run(Words(command));
      EXPECT_EQ(outcome.exitcode, isfine ? 0 : 2) << command;
      EXPECT_EQ(outcome.err.find(c.message) == std::string::npos, isfine) << outcome.err;
    }
    EXPECT_EQ(Run({"ports"}).exitcode, 0);
  }
}

TEST_F(Defaults, SetAndUnsetChangeTheFileThatTheNextRunReads) {
  StartSimulator();
  EXPECT_EQ(Run(Words("config set TIMEOUT=0.5 port=" + Port())).exitcode, 0);
  EXPECT_THAT(Run({"identify"}).out, HasSubstr("T312B, 5.03"));
  EXPECT_EQ(Run(Words("identify --port /dev/null/x")).exitcode, 3);
  const std::string before = FileText("config/VaneT312B/registry.toml");
  for (const std::string words : {"set", "set baud=9600 baud=300", "set port=/dev/x baud=1",
                                  "set port=", "set x=1", "unset port x", "unset port port"}) {
    EXPECT_EQ(Run(Words("config " + words)).exitcode, 2) << words;
  }
  EXPECT_EQ(FileText("config/VaneT312B/registry.toml"), before);
  EXPECT_THAT(Run(Words("config unset Port")).out, HasSubstr("timeout  0.5 s"));
  EXPECT_THAT(Run({"config"}).out, HasSubstr("port     the lone USB adapter  built-in\n"));
}

TEST(PortChoice, TakesALoneUsbAdapterAndNothingElseUnasked) {
  const SerialPortRecord board = {"/dev/ttyS0", "serial", "", "", "", ""};
  const SerialPortRecord first = {"/dev/ttyUSB0", "ftdi_sio", "Corvane", "", "A7", "0403:6001"};
  const SerialPortRecord second = {"/dev/ttyACM0", "cdc_acm", "", "", "", "2341:0043"};
  const struct {
    std::vector<SerialPortRecord> ports;
    std::string port;  // empty: refused
    std::vector<std::string> told;
  } cases[] = {
      {{first}, "/dev/ttyUSB0", {}},
      {{board, second}, "/dev/ttyACM0", {}},
      {{board}, "", {"no USB adapter", "/dev/ttyS0"}},
      {{}, "", {"no USB adapter", "no serial ports"}},
      {{board, first, second}, "", {"2 USB adapters", "/dev/ttyUSB0", "A7", "/dev/ttyACM0"}},
  };
  for (const auto& c : cases) {
    std::string port;
    std::string message;
    try {
      port = LoneAdapter(c.ports);
    } catch (const CUsageError& error) {
      message = error.what();
    }
    EXPECT_EQ(port, c.port);
    EXPECT_EQ(message.empty(), !c.port.empty());
    for (const std::string& text : c.told) EXPECT_THAT(message, HasSubstr(text));
  }
}

}  // namespace
}  // namespace vane::thermoscribe
