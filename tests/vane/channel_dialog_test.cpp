// The dialog of one channel, worked as a user works it.
#include <gmock/gmock.h>

#include "tests/support/form_text.h"
#include "tests/support/transcript.h"
#include "vane/support/number_text.h"

namespace vane {
namespace {

using test::CTestHost;
using test::FormText;
using test::kLineError;
using enum ET312BPasscodeState;

constexpr char kForm[] = "frmT312BPRTTHRMChannel";
constexpr char kQuestion[] =
    "Do you wish to write the changes that have been made to this channel?";

class ChannelDialog : public testing::Test {
 protected:
  ChannelDialog() {
    it_.SetProtectConversion(false);
    host_.platform.asksforms = true;
    host_.script.replies.insert({{"read 112", "4"},
                                 {"read 136", "2"},
                                 {"read 122", "AB-12"},
                                 {"read 122 Probe=7", "CD-7"},
                                 {"read 138", "100 OHM"},
                                 {"read 140", "1.0"},
                                 {"read 140 Probe=7", "1.5"},
                                 {"read 142", "0.25"},
                                 {"read 130", "RATIO"},
                                 {"read -1", "1234"}});
    host_.forms.OnChanged([this](ui::CControl& control, ui::EAspect aspect) {
      if (control.Kind() != ui::EKind::FORM || aspect != ui::EAspect::ENABLED) return;
      host_.log.Add(control.Enabled() ? "window on" : "window off");
    });
  }
  ~ChannelDialog() override { EXPECT_EQ(host_.forms.Faults(), ""); }

  using Acts = std::function<void(ui::CUser& user)>;

  // Opens scanner channel 1 for `acts`, which leave the window by Cancel when they haven't yet.
  bool Edit(const Acts& acts) {
    host_.forms.Expect(kForm, [&](ui::CUser& user) {
      host_.log.Add("opened");
      acts(user);
      if (user.Form().Shown()) user.CloseBox();
    });
    host_.log.Clear();
    return channel_.Edit();
  }

  static ui::CButton& Button(ui::CUser& user, const char* name) {
    return user.Find<ui::CButton>(name);
  }
  static bool Apply(ui::CUser& user) { return user.Click(Button(user, "cmdApply")); }
  static bool Press(ui::CUser& user, int index) {
    return user.Click(Button(user, ("cmdOKCancelHelp(" + std::to_string(index) + ")").c_str()));
  }
  static bool Enter(ui::CUser& user, const char* name, const std::string& text) {
    return user.Focus(user.Find<ui::CTextField>(name)) && user.SelectAll() && user.Paste(text) &&
           user.Tab();
  }
  static bool PickText(ui::CUser& user, const char* name, const std::string& text) {
    auto& list = user.Find<ui::CDropDown>(name);
    for (std::int32_t i = 0; i < list.ListCount(); ++i) {
      if (list.ItemText(i) == text) return user.Pick(list, i);
    }
    return false;
  }

  CTestHost host_;
  CVaneT312B& it_ = *host_.instrument;
  CVaneT312BPRTTHRMChannel& channel_ = FirstScannerChannel();

 private:
  CVaneT312BPRTTHRMChannel& FirstScannerChannel() {
    host_.ConnectWith(true);
    return *host_.instrument->GetChannelReference(3);
  }
};

constexpr char kOpenFields[] =
    "cboProbeSelection=Probe 4\ntabSettings=0\ntxtProbeSerial=AB-12\ncboReference=100 Ohm\n"
    "txtCurrent=1.0000\ntxt3WireOffset=0.250000\ncboConversionType=Ratio\n"
    "cmdConversionSettings\n";

TEST_F(ChannelDialog, ReadsTheChannelAndWritesWhatTheUserChanged) {
  EXPECT_TRUE(Edit([&](ui::CUser& user) {
    EXPECT_EQ(user.Form().Caption(), "Scanner Channel 1 Settings");
    EXPECT_EQ(user.Find<ui::CFrame>("framChannelSettings").Caption(),
              "Scanner Channel 1 Settings:");
    EXPECT_EQ(user.Find<ui::CLabel>("lbl3WireOffset").Caption(), "3W offset:");
    EXPECT_EQ(FormText(user.Form()), std::string(kOpenFields) +
                                         "cmdApply\ncmdOKCancelHelp(0)\ncmdOKCancelHelp(1)\n"
                                         "cmdOKCancelHelp(2)\n");
    EXPECT_EQ(host_.log.Only({"window", "read", "opened"}),
              "window off\nread 112 Channel=1\nread 122 Probe=4\nread 138 Probe=4\n"
              "read 140 Probe=4\nread 142 Probe=4\nread 130 Probe=4\nwindow on\nopened\n");
    host_.log.Clear();
    host_.forms.ExpectBox("There are no changes to apply.");
    EXPECT_TRUE(Apply(user));
    EXPECT_EQ(host_.log.Only({"write"}), "");

    EXPECT_TRUE(user.Focus(user.Find<ui::CTextField>("txtProbeSerial")));
    EXPECT_FALSE(user.Type("x_y123456789"));
    EXPECT_EQ(user.Find<ui::CTextField>("txtProbeSerial").Text(), "xy123456");
    EXPECT_TRUE(PickText(user, "cboReference", "10 Ohm"));
    EXPECT_TRUE(Enter(user, "txtCurrent", "30"));
    EXPECT_EQ(user.Find<ui::CTextField>("txtCurrent").Text(), "21.0000");
    host_.forms.ExpectBox(kQuestion, EBoxButton::NO);
    EXPECT_TRUE(Apply(user));
    EXPECT_TRUE(channel_.Changed());
    EXPECT_EQ(host_.log.Only({"write"}), "");
    host_.forms.ExpectBox(kQuestion, EBoxButton::YES);
    EXPECT_TRUE(Apply(user));
    EXPECT_FALSE(channel_.Changed());
    EXPECT_EQ(host_.log.Only({"write", "window", "opened"}),
              "write 113 Probe=4 Channel=1\nwrite 123 Probe=4 value=xy123456\n"
              "write 139 Probe=4 value=10\nwrite 141 Probe=4 value=21.0000\n"
              "write 143 Probe=4 value=0.250000\nwrite 131 Probe=4 value=R\n");
    EXPECT_EQ(it_.ConvPasscodeState(), PS_ENABLED);
    // What was read back or written is no change; OK closes without a question.
    EXPECT_TRUE(Press(user, 0));
  }));
  EXPECT_EQ(it_.ConvPasscodeState(), PS_DISABLED);
}

TEST_F(ChannelDialog, LeavesByEveryRoad) {
  const auto change = [&](ui::CUser& user) { EXPECT_TRUE(Enter(user, "txtCurrent", "2")); };
  EXPECT_TRUE(Edit([&](ui::CUser& user) { EXPECT_TRUE(Press(user, 0)); }));
  EXPECT_FALSE(Edit([&](ui::CUser& user) {
    change(user);
    EXPECT_TRUE(user.Escape());
  }));
  EXPECT_EQ(channel_.ProbeCurrent(), 1.0);
  // A refused write leaves the object with what was gathered; No closes all the same.
  EXPECT_TRUE(Edit([&](ui::CUser& user) {
    change(user);
    host_.forms.ExpectBox(kQuestion, EBoxButton::NO);
    EXPECT_TRUE(Press(user, 0));
  }));
  EXPECT_EQ(channel_.ProbeCurrent(), 2.0);
  EXPECT_TRUE(channel_.Changed());
  EXPECT_TRUE(Edit([&](ui::CUser& user) {
    change(user);
    host_.forms.ExpectBox(kQuestion, EBoxButton::YES);
    EXPECT_TRUE(Press(user, 0));
  }));
  EXPECT_TRUE(channel_.Changed());
  // An applied change stays applied when Cancel follows.
  EXPECT_FALSE(Edit([&](ui::CUser& user) {
    change(user);
    host_.forms.ExpectBox(kQuestion, EBoxButton::YES);
    EXPECT_TRUE(Apply(user) && Press(user, 1));
  }));
  EXPECT_EQ(host_.log.Count("write 141 Probe=4 value=2.0000"), 1u);

  it_.SetReadAfterApply(true);
  EXPECT_FALSE(Edit([&](ui::CUser& user) {
    change(user);
    host_.forms.ExpectBox(kQuestion, EBoxButton::YES);
    EXPECT_TRUE(Apply(user));
    EXPECT_EQ(host_.log.Count("read 140 Probe=4"), 2u);
    EXPECT_EQ(user.Find<ui::CTextField>("txtCurrent").Text(), "1.0000");
    EXPECT_TRUE(Press(user, 2));
  }));
  EXPECT_EQ(host_.log.Only({"help"}), "help VaneT312B.hlp 1 0\n");
  EXPECT_EQ(ui::CForm::Active(), nullptr);
  EXPECT_THAT(host_.registry->placements, testing::EndsWith("restore frmT312BPRTTHRMChannel 0 1\n"
                                                            "save frmT312BPRTTHRMChannel 0 1\n"));
}

TEST_F(ChannelDialog, StandsBehindTheProtectionOfConversions) {
  it_.SetProtectConversion(true);
  constexpr char kShut[] =
      "lblProbeSelection off\ncboProbeSelection=Probe 4 off\ntabSettings=0\nlblProbeSerial off\n"
      "txtProbeSerial=AB-12 off\nlblReference off\ncboReference=100 Ohm off\nlblCurrent off\n"
      "txtCurrent=1.0000 off\nlbl3WireOffset off\ntxt3WireOffset=0.250000 off\n"
      "lblConversionType off\ncboConversionType=Ratio off\ncmdConversionSettings\n"
      "lblPasscodeProtected\ncmdEditProtected\n";
  EXPECT_FALSE(Edit([&](ui::CUser& user) {
    EXPECT_THAT(FormText(user.Form()), testing::StartsWith(kShut));
    EXPECT_FALSE(Enter(user, "txtCurrent", "2"));
    host_.forms.ExpectBox("The passcode entered is incorrect.");
    host_.typed = {"4321"};
    EXPECT_TRUE(user.PressAccessKey('e'));
    EXPECT_THAT(FormText(user.Form()), testing::StartsWith(kShut));
    host_.typed = {"1234"};
    EXPECT_TRUE(user.PressAccessKey('e'));
    EXPECT_THAT(FormText(user.Form()),
                testing::StartsWith(std::string(kOpenFields) + "cmdEditProtected off\n"));
    // Apply shuts it behind the write, and before what it reads back.
    EXPECT_TRUE(Enter(user, "txtCurrent", "2"));
    host_.forms.ExpectBox(kQuestion, EBoxButton::YES);
    EXPECT_TRUE(Apply(user));
    EXPECT_EQ(host_.log.Count("write 131 Probe=4 value=R"), 1u);
    EXPECT_EQ(it_.ConvPasscodeState(), PS_DISABLED);
    EXPECT_THAT(FormText(user.Form(), {"cmdEdit", "Passcode", "txtCurrent"}),
                "txtCurrent=2.0000 off\nlblPasscodeProtected\ncmdEditProtected\n");
    // A lost line at the passcode is one box, and the gate stays shut.
    host_.script.silent.insert("read -1");
    host_.typed = {"1234"};
    host_.forms.ExpectBox("An error occurred while carrying out the command.");
    EXPECT_FALSE(user.PressAccessKey('e'));
    EXPECT_EQ(it_.ConvPasscodeState(), PS_DISABLED);
  }));
  it_.SetConvPasscodeState(PS_ENABLED);
  EXPECT_TRUE(Edit([&](ui::CUser& user) {
    EXPECT_THAT(FormText(user.Form()), testing::StartsWith(kOpenFields));
    EXPECT_TRUE(Press(user, 0));
  }));
  EXPECT_EQ(it_.ConvPasscodeState(), PS_DISABLED);
}

TEST_F(ChannelDialog, AChosenProbeIsReadAtOnceAndGatheredLater) {
  EXPECT_FALSE(Edit([&](ui::CUser& user) {
    host_.log.Clear();
    EXPECT_TRUE(PickText(user, "cboProbeSelection", "Probe 7"));
    EXPECT_EQ(host_.log.Only({"window", "read"}),
              "window off\nread 122 Probe=7\nread 138 Probe=7\nread 140 Probe=7\n"
              "read 142 Probe=7\nread 130 Probe=7\nwindow on\n");
    EXPECT_EQ(user.Find<ui::CTextField>("txtProbeSerial").Text(), "CD-7");
    EXPECT_EQ(channel_.ProbeIndex(), 4);
    EXPECT_TRUE(channel_.Changed());
    host_.forms.ExpectBox(kQuestion, EBoxButton::NO);
    EXPECT_TRUE(Apply(user));
    EXPECT_EQ(channel_.ProbeIndex(), 7);

    // One that can't be read takes the writing away for good.
    host_.abortat = host_.steps + 2;
    host_.forms.ExpectBox("Aborted querying information.");
    host_.forms.ExpectBox("Unable to read settings.");
    EXPECT_TRUE(PickText(user, "cboProbeSelection", "Probe 4"));
    EXPECT_TRUE(PickText(user, "cboProbeSelection", "Probe 7"));
    EXPECT_EQ(FormText(user.Form(), {"cmdApply", "(0)"}), "cmdApply off\ncmdOKCancelHelp(0) off\n");
    host_.script.silent.insert("read 140 Probe=4");
    host_.forms.ExpectBox("attempting to read settings");
    EXPECT_TRUE(PickText(user, "cboProbeSelection", "Probe 4"));
    EXPECT_TRUE(user.Form().Enabled());
    EXPECT_FALSE(user.Return());
  }));
}

TEST_F(ChannelDialog, AChosenTypeReplacesTheConversionAtOnce) {
  EXPECT_FALSE(Edit([&](ui::CUser& user) {
    EXPECT_TRUE(PickText(user, "cboConversionType", "Callendar-Van Dusen"));
    EXPECT_EQ(channel_.Probe()->ConversionType(), EVaneConversionType::CONV_CVD);
  }));
  EXPECT_EQ(channel_.Probe()->ConversionType(), EVaneConversionType::CONV_CVD);
}

TEST_F(ChannelDialog, WhatCannotBeReadLeavesCancelAndHelp) {
  const struct {
    std::function<void()> fails;
    const char* box;
    const char* current;
  } rows[] = {
      {[&] { host_.abortat = host_.steps + 1; }, "Unable to read settings.", ""},
      {[&] { host_.script.silent.insert("read 140"); }, "attempting to read settings", "0.0000"}};
  for (const auto& row : rows) {
    host_.script.silent.clear();
    row.fails();
    if (host_.abortat) host_.forms.ExpectBox("Aborted querying information.");
    host_.forms.ExpectBox(row.box);
    EXPECT_FALSE(Edit([&](ui::CUser& user) {
      host_.abortat.reset();
      EXPECT_EQ(FormText(user.Form(), {"cmdOK", "cmdApply", "txtCurrent"}),
                std::string("txtCurrent=") + row.current +
                    "\ncmdApply off\ncmdOKCancelHelp(0) off\ncmdOKCancelHelp(1)\n"
                    "cmdOKCancelHelp(2)\n");
      EXPECT_FALSE(user.Return() || Apply(user));
    }));
  }
}

// Not even the box that would say so comes up: the user still gets out.
TEST_F(ChannelDialog, ABoxThatCannotBeShownLocksNobodyIn) {
  host_.script.silent.insert("read 140");
  host_.platform.failsatbox = true;
  host_.forms.ExpectBox("An error occurred while carrying out the command.");
  EXPECT_FALSE(Edit([&](ui::CUser& user) {
    EXPECT_TRUE(user.Form().Enabled());
    EXPECT_FALSE(user.Return() || Apply(user));
    EXPECT_TRUE(user.Escape());
  }));
}

TEST_F(ChannelDialog, GatheringEndsAtWhatHasNoValue) {
  host_.script.replies["read 138"] = "?";
  EXPECT_FALSE(Edit([&](ui::CUser& user) {
    EXPECT_TRUE(Enter(user, "txtProbeSerial", "new"));
    EXPECT_TRUE(Enter(user, "txtCurrent", "3"));
    for (const bool apply : {true, false}) {
      host_.forms.ExpectBox("attempting to gather settings");
      EXPECT_TRUE(apply ? Apply(user) : Press(user, 0));
    }
    EXPECT_EQ(channel_.Probe()->SerialNumber(), "new");
    EXPECT_EQ(channel_.ProbeCurrent(), 1.0);
  }));
  // Input 2 has no external resistor.
  auto& input = *it_.GetChannelReference(2);
  host_.script.replies["read 138"] = "10 KOHM EXT";
  host_.forms.Expect(kForm, [&](ui::CUser& user) {
    EXPECT_EQ(user.Form().Caption(), "Channel 2 Settings");
    EXPECT_EQ(user.Find<ui::CDropDown>("cboReference").ListIndex(), -1);
    EXPECT_EQ(user.Find<ui::CDropDown>("cboReference").ListCount(), 4);
    EXPECT_TRUE(user.CloseBox());
  });
  EXPECT_FALSE(input.Edit());
}

TEST_F(ChannelDialog, FieldsAreLimitedWhenTheyAreLeft) {
  host_.platform.separator = ",";
  SetDecimalSeparator("");
  const struct {
    const char* field;
    const char* text;
    const char* shown;
  } rows[] = {{"txtCurrent", "0", "0,0001"},
              {"txtCurrent", "-1", "0,0001"},
              {"txtCurrent", " 1,5 ", "1,5000"},
              {"txtCurrent", "21,00001", "21,0000"},
              {"txtCurrent", "1.5", "21,0000"},
              {"txtCurrent", "", "21,0000"},
              {"txtCurrent", "+-1", "21,0000"},
              {"txtCurrent", "1e400", "21,0000"},
              {"txtCurrent", "1e-400", "0,0001"},
              {"txtCurrent", "nan", "0,0001"},
              {"txtCurrent", "inf", "0,0001"},
              {"txtCurrent", "2 3", "0,0001"},
              {"txt3WireOffset", "-0,5", "0,000000"},
              {"txt3WireOffset", "1e7", "1000000,000000"},
              {"txt3WireOffset", "0,5x", "1000000,000000"}};
  Edit([&](ui::CUser& user) {
    for (const auto& row : rows) {
      EXPECT_TRUE(Enter(user, row.field, row.text)) << row.text;
      EXPECT_EQ(user.Find<ui::CTextField>(row.field).Text(), row.shown) << row.text;
    }
    // Return limits the field without leaving it.
    EXPECT_TRUE(user.Focus(user.Find<ui::CTextField>("txtCurrent")) && user.SelectAll());
    EXPECT_TRUE(user.Type("99"));
    host_.forms.ExpectBox(kQuestion, EBoxButton::NO);
    EXPECT_TRUE(user.Return());
  });
  EXPECT_EQ(channel_.ProbeCurrent(), 21.0);
  EXPECT_EQ(channel_.Probe3WireOffset(), 1000000.0);
  SetDecimalSeparator("");
}

TEST_F(ChannelDialog, AWriteIsInterruptedByNoClick) {
  Edit([&](ui::CUser& user) {
    EXPECT_TRUE(Enter(user, "txtCurrent", "2"));
    host_.forms.ExpectBox(kQuestion, EBoxButton::YES);
    host_.forms.AtPass(1, [&] {
      EXPECT_FALSE(user.CloseBox() || Apply(user) || Press(user, 0) ||
                   PickText(user, "cboProbeSelection", "Probe 7") ||
                   PickText(user, "cboConversionType", "Ohms"));
      EXPECT_TRUE(Enter(user, "txt3WireOffset", "5"));
    });
    EXPECT_TRUE(Apply(user));
    EXPECT_EQ(host_.log.Count("write 143 Probe=4 value=0.250000"), 1u);
    EXPECT_EQ(user.Find<ui::CTextField>("txt3WireOffset").Text(), "5.000000");
    // The line is lost at a write: one box, the window and its edits stay.
    host_.script.silent.insert("write 143 Probe=4 value=5.000000");
    host_.forms.ExpectBox(kQuestion, EBoxButton::YES);
    host_.forms.ExpectBox("An error occurred while carrying out the command.");
    EXPECT_FALSE(Apply(user));
    EXPECT_TRUE(channel_.Changed());
  });
}

TEST_F(ChannelDialog, FailuresOfTheWindowItself) {
  it_.SetRegistry(nullptr);
  channel_.SetRegistry(nullptr);
  EXPECT_EQ(CTestHost::ErrorOf([&] { channel_.Edit(); }).Source(), "frmT312BPRTTHRMChannel - Edit");
  CVaneT312BPRTTHRMChannel loose(host_.components);
  EXPECT_EQ(CTestHost::ErrorOf([&] { loose.Edit(); }).Description(),
            "The channel belongs to no instrument.");
}

}  // namespace
}  // namespace vane
