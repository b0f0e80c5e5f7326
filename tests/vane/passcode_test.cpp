// The groups behind the passcode, and the check of a typed one.
#include <gtest/gtest.h>

#include "tests/support/transcript.h"

namespace vane {
namespace {

using test::CTestHost;
using test::kLineError;

class Passcode : public testing::Test {
 protected:
  Passcode() {
    host_.ConnectWith(false);
    host_.script.replies["read -1 text=PC?"] = host_.script.replies["read -1"] = "Secret";
  }

  bool Validate(std::vector<std::string> typed) {
    host_.typed = std::move(typed);
    host_.log.Clear();
    return it_.ValidatePasscode(&window_);
  }

  CTestHost host_;
  CVaneT312B& it_ = *host_.instrument;
  test::CTestWindow window_;
};

constexpr char kWrong[] = "busy off\nbox 64 Corvane: The passcode entered is incorrect.\n";

TEST_F(Passcode, IsAskedForAfreshForEachAttempt) {
  it_.SetHelpFile("mine.hlp");
  EXPECT_TRUE(Validate({"secret", "Secret"}));
  EXPECT_EQ(host_.log.Text(),
            std::string("dialog help mine.hlp\nprompt window\nread -1 text=PC?\n") + kWrong +
                "prompt window\nread -1 text=PC?\nrelease dialog\n");
  EXPECT_EQ(it_.ConvPasscodeState(), ET312BPasscodeState::PS_DISABLED);
}

TEST_F(Passcode, MustBeTheInstrumentsToTheLastBlank) {
  EXPECT_TRUE(Validate({"Secret"}));
  for (const char* typed : {"secret", "Secret ", "", " Secret"}) {
    EXPECT_FALSE(Validate({typed})) << typed;
    EXPECT_EQ(host_.log.Count("prompt window"), 2u);
  }
  host_.script.replies["read -1 text=PC?"] = "Secret ";
  EXPECT_FALSE(Validate({"Secret"}));
  EXPECT_FALSE(Validate({}));
  EXPECT_EQ(host_.log.Only({"read", "box"}), "");
}

TEST_F(Passcode, ThatCannotBeReadIsAnErrorOfTheLine) {
  host_.script.silent.insert("read -1 text=PC?");
  it_.SetHCIDCommError(6);
  const LibraryError error = CTestHost::ErrorOf([&] { Validate({"x"}); });
  EXPECT_EQ(error.Source(), "CVaneT312B - ValidatePasscode");
  EXPECT_EQ(error.Number(), kLineError);
  EXPECT_EQ(error.HelpFile() + std::to_string(error.HelpContext()), "VaneT312B.hlp6");
  EXPECT_EQ(host_.log.Lines().back(), "release dialog");
}

TEST_F(Passcode, LeavesTheFieldsOfTheExchangeBeforeItAlone) {
  host_.script.replies["read 12"] = "1";
  it_.QueryMeasurement(2);
  EXPECT_TRUE(Validate({"Secret"}));
  EXPECT_EQ(host_.log.Only({"read"}), "read -1 Channel=2 text=PC?\n");
}

}  // namespace
}  // namespace vane
