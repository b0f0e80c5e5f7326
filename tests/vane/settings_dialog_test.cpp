// The dialog of the instrument's settings: what it reads, shows, guards and writes.
#include "tests/support/form_text.h"
#include "tests/support/settings_window.h"

namespace vane {
namespace {

using test::CTestHost;
using test::FormText;
using test::kCarryingOut;
using test::kWishToWrite;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using enum ET312BPasscodeState;

class SettingsDialog : public test::SettingsWindow {};

// Every control that has one with its caption, in the order of the focus.
std::string Captions(const ui::CForm& form) {
  std::string text;
  for (const auto& control : form.Controls()) {
    if (!control->Caption().empty()) text += control->Name() + " " + control->Caption() + "\n";
  }
  return text;
}

constexpr char kCaptions[] =
    "framT312BSettings T312B 'Thermoscribe' Settings:\nlblModel Model:\n"
    "lblIdentification Identification:\nlblChannels Channels:\nlblFilterType Filter type:\n"
    "lblResponseTime Response time:\nlblThreshold Threshold:\nlblUnits Units:\n"
    "lblSampleAction Sample action:\nlblSampleN Sample n:\nlblSampleTiming Sample timing:\n"
    "lblInterval Sample interval:\nlblIntegrationTime Integration time:\n"
    "lblConversionTime Conversion time:\nlblResolutions Resolutions:\n"
    "lblTempResolution Temperature:\nlblResResolution Resistance:\nlblRatioResolution Ratio:\n"
    "lblPasscodeProtectedSamp Some sampling settings are passcode protected!\n"
    "lblChannelMode Channel mode:\nlblScanChannel Scanner channel:\nlblRepetitions Repetitions:\n"
    "lblScanMode Scanner sequence mode:\nlblSeqChannels Seq. channels:\n"
    "lblUserDefinedSeq User-defined scanner sequence:\nlblSteps Steps:\n"
    "lblSequence Scanner sequence:\nlblSelectedChannel Step channel:\nlblChannelsList Channels:\n"
    "cmdChannelSettings &Channel Settings...\nframSettings(4) Module Settings:\n"
    "lblCalParam(0) External resistor:\nlblInternal Internal resistors:\nlblCalParam(1) 1 Ohm:\n"
    "lblCalParam(2) 10 Ohm:\nlblCalParam(3) 100 Ohm:\nlblCalParam(4) 10K Ohm:\nlblADC ADC:\n"
    "lblOven Oven:\n"
    "lblCalWarning WARNING! Changing these values voids the thermometer readout calibration!\n"
    "lblPasscodeProtectedCal Calibration parameters are passcode protected!\n"
    "cmdEditProtected &Edit\ncmdApply &Apply\ncmdOKCancelHelp(0) &OK\n"
    "cmdOKCancelHelp(1) &Cancel\ncmdOKCancelHelp(2) &Help\n";

constexpr char kButtons[] =
    "cmdApply\ncmdOKCancelHelp(0)\ncmdOKCancelHelp(1)\ncmdOKCancelHelp(2)\n";

// By tab, of an unprotected instrument with a scanner.
constexpr const char* kShown[] = {
    "tabSettings=0\ncboFilterType=Average\ntxtResponseTime=3.5\ntxtThreshold=0.2500\n",
    "tabSettings=1\ncboUnits=°C\ncboSampleAction=Sample n\ntxtSampleN=20\ntxtInterval=100\n"
    "txtIntegrationTime=50\ntxtConversionTime=5\ntxtTempResolution=6\ntxtResResolution=4\n"
    "txtRatioResolution=5\n",
    "tabSettings=2\ncboChannelMode=Scanner sequence\nlblScanChannel off\ncboScanChannel=4 off\n"
    "txtRepetitions=2\ncboScanMode=User-defined scanner sequence\nlblSeqChannels off\n"
    "txtSeqChannels=7 off\nudSeqChannels off\ntxtSteps=3\nlstSequence=<none>\n"
    "lblSelectedChannel off\ncboSelectedChannel=<none> off\n",
    "tabSettings=3\nlstChannels=<none>\ncmdChannelSettings off\n",
    "tabSettings=4\ntxtCalParam(0)=99.50000000000\ntxtCalParam(1)=1.0000000000000\n"
    "txtCalParam(2)=10.000000000000\ntxtCalParam(3)=100.00000000000\n"
    "txtCalParam(4)=1.000000000E+04\ntxtADC=0.50\ncboOven=On\nlblCalWarning\n",
};

constexpr char kScannerControls[] =
    "lblScanChannel cboScanChannel lblScanMode cboScanMode lblSeqChannels txtSeqChannels "
    "udSeqChannels lblUserDefinedSeq lblSteps txtSteps udSteps lblSequence lstSequence "
    "lblSelectedChannel cboSelectedChannel";

TEST_F(SettingsDialog, ReadsTheInstrumentAndShowsIt) {
  EXPECT_FALSE(Edit([&](ui::CUser& user) {
    EXPECT_THAT(host_.log.Only({"window", "read", "opened", "attach"}),
                StartsWith("window off\nattach window\nread 18 mayfail\nread 43\nread 41\n"));
    EXPECT_THAT(host_.log.Only({"window", "read 110", "read 112", "loaded", "opened"}),
                testing::AllOf(HasSubstr("read 110 Index=3\n"),
                               EndsWith("read 112 Channel=10\nwindow on\nloaded\nopened\n")));
    EXPECT_FALSE(it_.Changed());
    EXPECT_EQ(user.Form().Caption(), "T312B 'Thermoscribe' Settings");
    EXPECT_EQ(Captions(user.Form()), kCaptions);
    const auto& tabs = user.Find<ui::CTabStrip>("tabSettings");
    const char* const texts[] = {"Filtering", "Sampling", "Measurement", "Channels", "Calibration"};
    for (int tab = 0; tab < 5; ++tab) {
      EXPECT_EQ(tabs.TabText(tab), texts[tab]);
      EXPECT_TRUE(ShowTab(user, tab));
      EXPECT_EQ(FormText(user.Form()),
                std::string("txtModel=T312B\ntxtIdentification=T312B, 5.03\ntxtChannels=12\n") +
                    kShown[tab] + kButtons);
    }
    EXPECT_EQ(Entries(user, "lstSequence"), "1) Input 2#2|2) Scanner 10#12|3) Input 2#2|");
    EXPECT_THAT(Entries(user, "cboSelectedChannel"), StartsWith("Input 2#2|Scanner 1#3|"));
    EXPECT_THAT(Entries(user, "lstChannels"),
                StartsWith("Input 2) Probe 5#2|Scanner 1) Probe 6#3|"));
    // What is read-only can be copied and not changed.
    EXPECT_TRUE(user.Focus(user.Find<ui::CTextField>("txtIdentification")));
    EXPECT_EQ(user.Find<ui::CTextField>("txtIdentification").SelectionLength(), 11);
    EXPECT_FALSE(user.Type("1") || user.Paste("1"));
  }));
  EXPECT_EQ(ui::CForm::Active(), nullptr);

  host_.script.replies["read 56"] = "1";
  host_.ConnectWith(false);
  EXPECT_TRUE(Edit([&](ui::CUser& user) {
    EXPECT_EQ(Disabled(user.Form()), std::string(kScannerControls) + " cmdChannelSettings");
    EXPECT_EQ(Entries(user, "cboChannelMode"), "Alternate input 1/input 2#0|Input 1#1|Input 2#2|");
    EXPECT_EQ(Entries(user, "cboScanChannel") + Entries(user, "cboScanMode") +
                  Entries(user, "lstSequence") + Entries(user, "cboSelectedChannel"),
              "");
    EXPECT_EQ(Entries(user, "lstChannels"), "Input 1) Probe 5#1|Input 2) Probe 5#2|");
    EXPECT_TRUE(Enter(user, "txtRepetitions", "9"));
    host_.forms.ExpectBox(kWishToWrite, EBoxButton::YES);
    EXPECT_TRUE(Press(user, 0));
  }));
  EXPECT_EQ(host_.log.Only({"write 1", "write 55"}), "write 169 value=C\nwrite 55 value=9\n");
}

TEST_F(SettingsDialog, GathersEveryFieldAndWritesIt) {
  EXPECT_TRUE(Edit([&](ui::CUser& user) {
    EXPECT_TRUE(PickCode(user, "cboFilterType", 2) && Enter(user, "txtResponseTime", "4.5") &&
                Enter(user, "txtThreshold", "0.5") && PickCode(user, "cboUnits", 4) &&
                Step(user, "udSampleN", true) && Enter(user, "txtInterval", "200") &&
                Enter(user, "txtIntegrationTime", "60") && Step(user, "udConversionTime", true) &&
                Enter(user, "txtTempResolution", "3") && Enter(user, "txtResResolution", "2") &&
                Enter(user, "txtRatioResolution", "1"));
    EXPECT_TRUE(PickCode(user, "cboChannelMode", 3) && PickCode(user, "cboScanChannel", 9) &&
                PickCode(user, "cboChannelMode", 4) && Enter(user, "txtRepetitions", "8") &&
                PickCode(user, "cboScanMode", 1) && Enter(user, "txtSeqChannels", "6") &&
                PickCode(user, "cboScanMode", 5) &&
                user.Pick(user.Find<ui::CListBox>("lstSequence"), 1) &&
                PickCode(user, "cboSelectedChannel", 3));
    EXPECT_TRUE(Enter(user, "txtCalParam(0)", "50") && Enter(user, "txtCalParam(1)", "2") &&
                Enter(user, "txtCalParam(2)", "20") && Enter(user, "txtCalParam(3)", "200") &&
                Enter(user, "txtCalParam(4)", "2E4") && Enter(user, "txtADC", "-1.5") &&
                PickCode(user, "cboOven", 1));
    EXPECT_FALSE(it_.Changed());
    host_.log.Clear();
    host_.forms.ExpectBox(kWishToWrite, EBoxButton::YES);
    EXPECT_TRUE(Apply(user));
    EXPECT_EQ(host_.log.Only({"write", "window", "attach", "visible"}),
              "attach window\nvisible\nwrite 0\nwrite 117 Channel=9\nwrite 105 value=5\n"
              "write 107 value=6\nattach window\nvisible\nwrite 109 value=3\n"
              "write 111 Channel=0 Index=1 value=3\nwrite 111 Channel=1 Index=2 value=3\n"
              "write 111 Channel=0 Index=3 value=3\nwrite 25 FilterCode=e\nwrite 27 value=4.5\n"
              "write 29 value=0.5\nwrite 169 value=O\nwrite 61 value=SN\nwrite 59 value=21\n"
              "write 33 value=200\nwrite 35 value=6\nwrite 37 value=60\nwrite 67 value=3\n"
              "write 69 value=2\nwrite 71 value=1\nwrite 57 value=4\nwrite 55 value=8\n"
              "write 77 Index=0 value=50.00000000000\nwrite 77 Index=1 value=2.0000000000000\n"
              "write 77 Index=2 value=20.000000000000\nwrite 77 Index=3 value=200.00000000000\n"
              "write 77 Index=4 value=2.000000000E+04\nwrite 85 value=-1.50\n"
              "write 87 value=OFF\n");
    EXPECT_FALSE(it_.Changed());
    // Of a text that a program has left there, the number of samples alone must be all of it.
    user.Find<ui::CTextField>("txtConversionTime").SetText("7 s");
    user.Find<ui::CTextField>("txtSeqChannels").SetText("2x");
    for (const char* const name : {"txtSampleN", "txtADC"}) {
      auto& field = user.Find<ui::CTextField>(name);
      const std::string before = field.Text();
      field.SetText("7x");
      host_.forms.ExpectBox("attempting to gather settings");
      EXPECT_TRUE(Press(user, 0));
      field.SetText(before);
    }
    EXPECT_EQ(it_.ConversionTime() * 10 + it_.ScanSeqChannels(), 72);
    host_.forms.ExpectBox(kWishToWrite, EBoxButton::NO);
    EXPECT_TRUE(Press(user, 0));
  }));
}

TEST_F(SettingsDialog, LeavesByEveryRoad) {
  const auto change = [&](ui::CUser& user) { EXPECT_TRUE(Enter(user, "txtRepetitions", "9")); };
  const auto written = [&] { return host_.log.Only({"write 55", "box"}); };
  const std::string asked = std::string("box 36 Corvane: ") + kWishToWrite + "\n";

  EXPECT_TRUE(Edit([&](ui::CUser& user) {
    host_.forms.ExpectBox("There are no changes to apply.");
    EXPECT_TRUE(Apply(user));
    EXPECT_TRUE(Press(user, 0));
  }));
  EXPECT_EQ(written(), "box 64 Corvane: There are no changes to apply.\n");
  for (const Acts& leave : std::initializer_list<Acts>{[](ui::CUser& user) { user.Escape(); },
                                                       [](ui::CUser& user) { user.CloseBox(); },
                                                       [](ui::CUser& user) { Press(user, 1); }}) {
    EXPECT_FALSE(Edit([&](ui::CUser& user) {
      change(user);
      leave(user);
      EXPECT_FALSE(user.Form().Shown());
    }));
    EXPECT_EQ(written() + std::to_string(it_.Repetitions()), "2");
  }
  // No at Apply stays and keeps what was gathered; Cancel doesn't take it back.
  EXPECT_FALSE(Edit([&](ui::CUser& user) {
    change(user);
    host_.forms.ExpectBox(kWishToWrite, EBoxButton::NO);
    EXPECT_TRUE(Apply(user) && user.Form().Shown() && Press(user, 1));
  }));
  EXPECT_EQ(written(), asked);
  EXPECT_TRUE(it_.Changed() && it_.Repetitions() == 9);
  for (const auto answer : {EBoxButton::NO, EBoxButton::YES}) {
    EXPECT_TRUE(Edit([&](ui::CUser& user) {
      EXPECT_FALSE(it_.Changed());
      change(user);
      host_.forms.ExpectBox(kWishToWrite, answer);
      EXPECT_TRUE(user.Return());
    }));
    EXPECT_EQ(written(), answer == EBoxButton::NO ? asked : asked + "write 55 value=9\n");
    EXPECT_TRUE(it_.Changed() && it_.Repetitions() == 9);
    EXPECT_THAT(host_.log.Lines(), testing::Contains("read 54").Times(1));
  }
  // A written Apply is kept when Cancel follows; what the user reads back is the instrument's.
  for (const bool readsback : {false, true}) {
    it_.SetReadAfterApply(readsback);
    EXPECT_FALSE(Edit([&](ui::CUser& user) {
      change(user);
      EXPECT_TRUE(PickCode(user, "lstSequence", 12));
      host_.forms.ExpectBox(kWishToWrite, EBoxButton::YES);
      EXPECT_TRUE(Apply(user));
      EXPECT_FALSE(it_.Changed());
      EXPECT_EQ(user.Find<ui::CDropDown>("cboSelectedChannel").Enabled(), !readsback);
      EXPECT_EQ(Text(user, "txtRepetitions"), readsback ? "2" : "9");
      EXPECT_EQ(host_.log.Count("read 54"), readsback ? 2u : 1u);
      EXPECT_TRUE(user.Help() && Press(user, 1));
    }));
    EXPECT_EQ(host_.log.Only({"help"}), "help VaneT312B.hlp 1 0\n");
  }
  // A host's number has more digits than the field: what is shown is what is gathered.
  host_.script.replies["read 26"] = "3.55";
  EXPECT_TRUE(Edit([&](ui::CUser& user) {
    host_.forms.ExpectBox(kWishToWrite, EBoxButton::NO);
    EXPECT_TRUE(Press(user, 0));
  }));
  EXPECT_EQ(it_.FilterRespTime(), 3.6);

  it_.SetRegistry(nullptr);
  EXPECT_EQ(CTestHost::ErrorOf([&] { it_.Edit(); }).Source(), "CVaneT312B - Edit");
  EXPECT_TRUE(host_.registry->placements.ends_with(
      "restore frmT312BSettings 0 1\nsave frmT312BSettings 0 1\n"));
}

TEST_F(SettingsDialog, WhatCannotBeReadLeavesCancelAndHelp) {
  std::string raises;  // the control that can't be drawn
  host_.forms.OnChanged([&](ui::CControl& control, ui::EAspect) {
    if (control.Name() == raises) throw LibraryError(1, {}, "drawn");
  });
  const std::vector<const char*> failed = {"attempting to read settings"};
  const struct {
    std::function<void()> fails;
    std::vector<const char*> boxes;
    const char* shown;  // of fields that are loaded early and late
    ET312BPasscodeState state = PS_ENABLED;
  } rows[] = {
      {[&] { host_.abortat = host_.steps + 3; },
       {"Aborted querying information.", "Unable to read settings."},
       "/",
       PS_DISABLED},
      {[&] { host_.script.replies["read 168"] = "?"; },
       {"Failed to successfully query 'Units'.", "Unable to read settings."},
       "/"},
      {[&] { host_.script.silent.insert("read 86"); }, failed, "3.5/0.50"},
      {[&] { raises = "txtADC"; }, failed, "3.5/0.50"},
      {[&] { raises = "framSettings(1)"; }, failed, "3.5/0.50"},
      // What isn't protected is open, also where the protection couldn't be read anew.
      {[&] {
         it_.SetConvPasscodeState(PS_DISABLED);
         host_.script.silent.insert("read 43");
       },
       failed, "3.5/0.50"},
      // Without its modules the loading ends at the list of channels.
      {[&] {
         it_.SetConvPasscodeState(PS_DISABLED);
         host_.script.silent.insert("read 41");
       },
       {"attempting to read settings", "Module 0 could not be made."},
       "3.5/",
       PS_DISABLED},
  };
  for (const auto& row : rows) {
    host_.script.silent.clear();
    row.fails();
    for (const char* const box : row.boxes) host_.forms.ExpectBox(box);
    EXPECT_FALSE(Edit([&](ui::CUser& user) {
      host_.abortat.reset();
      EXPECT_TRUE(user.Form().Enabled());
      EXPECT_EQ(Text(user, "txtResponseTime") + "/" + Text(user, "txtADC"), row.shown);
      EXPECT_EQ(it_.ConvPasscodeState(), row.state);
      EXPECT_FALSE(user.Return() || Apply(user) || Press(user, 0));
      EXPECT_TRUE(Press(user, 2));
    }));
    host_.script.replies["read 168"] = "C";
    raises.clear();
  }
  // So does reading back.
  it_.SetReadAfterApply(true);
  host_.script.silent.clear();
  EXPECT_FALSE(Edit([&](ui::CUser& user) {
    EXPECT_TRUE(Enter(user, "txtRepetitions", "9"));
    host_.forms.ExpectBox(kWishToWrite, EBoxButton::YES);
    host_.forms.ExpectBox("attempting to read settings");
    host_.script.silent.insert("read 54");
    EXPECT_TRUE(Apply(user));
    EXPECT_FALSE(Apply(user) || Press(user, 0));
  }));
  // And a mode that no list has an entry for leaves gathering without one, until one is picked.
  host_.script.silent.clear();
  host_.ConnectWith(false);
  host_.script.replies["read 56"] = "4";
  EXPECT_TRUE(Edit([&](ui::CUser& user) {
    EXPECT_EQ(Disabled(user.Form(), {"framSettings(2)"}), kScannerControls);
    EXPECT_TRUE(Enter(user, "txtSampleN", "7") && Enter(user, "txtRepetitions", "7"));
    for (const bool apply : {true, false}) {
      host_.forms.ExpectBox("attempting to gather settings");
      EXPECT_TRUE(apply ? Apply(user) : Press(user, 0));
    }
    EXPECT_EQ(it_.SampleN() * 10 + it_.Repetitions(), 72);
    EXPECT_TRUE(PickCode(user, "cboChannelMode", 0));
    host_.forms.ExpectBox(kWishToWrite, EBoxButton::NO);
    EXPECT_TRUE(Press(user, 0));
  }));
  EXPECT_EQ(it_.Repetitions(), 7);
}

TEST_F(SettingsDialog, GroupsStandBehindThePasscode) {
  constexpr char kConversion[] = "lblCalParam(0) txtCalParam(0)";
  constexpr char kCalibration[] =
      "lblInternal lblCalParam(1) txtCalParam(1) lblCalParam(2) txtCalParam(2) lblCalParam(3) "
      "txtCalParam(3) lblCalParam(4) txtCalParam(4) lblADC txtADC lblOven cboOven";
  constexpr char kSampling[] =
      "lblSampleTiming lblInterval txtInterval udInterval lblIntegrationTime txtIntegrationTime "
      "udIntegrationTime lblConversionTime txtConversionTime udConversionTime";
  constexpr char kUnits[] = "lblUnits cboUnits";
  const std::set<std::string> frames = {"", "framSettings(1)", "framSettings(4)"};
  const auto notices = [](ui::CUser& user) {
    std::string seen;
    for (const char* const name :
         {"lblPasscodeProtectedSamp", "lblPasscodeProtectedCal", "cmdEditProtected"}) {
      seen += user.Find<ui::CControl>(name).Visible() ? '1' : '0';
    }
    return seen;
  };
  const auto states = [&] {
    std::string open;
    for (const auto state : {it_.ConvPasscodeState(), it_.CalParamPasscodeState(),
                             it_.SamplingPasscodeState(), it_.UnitsTimePasscodeState()}) {
      open += state == PS_ENABLED ? '1' : '0';
    }
    return open;
  };
  const struct {
    std::set<int> groups;
    std::string disabled;
    const char* notices;
    const char* states;
  } rows[] = {
      {{}, "", "000", "1111"},
      {{5}, kConversion, "011", "0111"},
      {{6}, kCalibration, "011", "1011"},
      {{7}, kSampling, "101", "1101"},
      {{8}, kUnits, "101", "1110"},
      {{5, 6, 7, 8},
       std::string(kUnits) + " " + kSampling + " " + kConversion + " " + kCalibration,
       "111",
       "0000"},
  };
  for (const auto& row : rows) {
    Protect(row.groups);
    for (const bool readsback : {false, true}) {
      it_.SetReadAfterApply(readsback);
      Edit([&](ui::CUser& user) {
        EXPECT_EQ(Disabled(user.Form(), frames), row.disabled);
        EXPECT_EQ(notices(user), row.notices);
        EXPECT_EQ(states(), row.states);
        if (row.groups.empty()) return;
        host_.typed = {"4321"};
        host_.forms.ExpectBox("The passcode entered is incorrect.");
        EXPECT_TRUE(user.PressAccessKey('e'));
        host_.script.silent = {"read -1"};
        host_.typed = {"1234"};
        host_.forms.ExpectBox(kCarryingOut);
        EXPECT_FALSE(user.PressAccessKey('e'));
        host_.script.silent.clear();
        EXPECT_EQ(Disabled(user.Form(), frames), row.disabled);

        host_.typed = {"1234"};
        EXPECT_TRUE(user.PressAccessKey('e'));
        EXPECT_EQ(Disabled(user.Form(), frames), "cmdEditProtected");
        EXPECT_EQ(notices(user) + states(), "0011111");
        EXPECT_TRUE(Enter(user, "txtADC", "1"));
        host_.forms.ExpectBox(kWishToWrite, EBoxButton::YES);
        EXPECT_TRUE(Apply(user));
        EXPECT_EQ(host_.log.Count("write 85 value=1.00"), 1u);
        // Only a read shuts what the user has opened.
        EXPECT_EQ(Disabled(user.Form(), frames), readsback ? row.disabled : "cmdEditProtected");
      });
      EXPECT_EQ(states(), readsback || row.groups.empty() ? row.states : "1111");
    }
  }
  // Shut calibration is gathered, and not written.
  it_.SetReadAfterApply(true);
  EXPECT_FALSE(Edit([&](ui::CUser& user) {
    EXPECT_FALSE(Enter(user, "txtADC", "2"));
    EXPECT_TRUE(Enter(user, "txtRepetitions", "9"));
    Protect({});
    host_.forms.ExpectBox(kWishToWrite, EBoxButton::YES);
    EXPECT_TRUE(Apply(user));
    EXPECT_EQ(host_.log.Count("write 55 value=9") * 10 + host_.log.Count("write 85 value=0.50"),
              10u);
    // Protection that has gone takes the button away, and leaves the rest as it is.
    EXPECT_EQ(notices(user), "000");
    EXPECT_EQ(states(), "1111");
    EXPECT_EQ(Disabled(user.Form(), frames), rows[5].disabled);
    Protect({8});
    EXPECT_TRUE(Enter(user, "txtRepetitions", "8"));
    host_.forms.ExpectBox(kWishToWrite, EBoxButton::YES);
    EXPECT_TRUE(Apply(user));
    EXPECT_EQ(notices(user), "100");
    EXPECT_EQ(Disabled(user.Form(), frames), kUnits);
  }));
}

TEST_F(SettingsDialog, AWriteIsInterruptedByNoClickAndAFailedOneLosesNothing) {
  EXPECT_FALSE(Edit([&](ui::CUser& user) {
    EXPECT_TRUE(Enter(user, "txtRepetitions", "9"));
    host_.forms.ExpectBox(kWishToWrite, EBoxButton::YES);
    host_.forms.AtPass(1, [&] {
      EXPECT_TRUE(user.Form().Enabled());
      EXPECT_FALSE(user.CloseBox() || user.Escape() || Apply(user) || Press(user, 0));
      EXPECT_TRUE(Enter(user, "txtSampleN", "8"));
    });
    EXPECT_TRUE(Apply(user));
    EXPECT_EQ(host_.log.Only({"write 55", "write 59"}), "write 59 value=20\nwrite 55 value=9\n");
    EXPECT_EQ(Text(user, "txtSampleN"), "8");

    // What was typed meanwhile goes with the next write, which stays to be done until it succeeds.
    const auto fails = [&](const std::function<void()>& how, const char* box) {
      for (const bool apply : {true, false}) {
        how();
        host_.forms.ExpectBox(kWishToWrite, EBoxButton::YES);
        host_.forms.ExpectBox(box);
        apply ? Apply(user) : Press(user, 0);
        EXPECT_TRUE(user.Form().Shown() && user.Form().Enabled() && it_.Changed());
        EXPECT_EQ(Text(user, "txtSampleN"), "8");
      }
    };
    fails([&] { host_.script.silent = {"write 55"}; }, kCarryingOut);
    host_.script.silent.clear();
    fails([&] { host_.abortat = host_.steps + 9; }, "Aborted updating information.");
    host_.forms.ExpectBox(kWishToWrite, EBoxButton::YES);
    EXPECT_TRUE(Apply(user));
    EXPECT_EQ(host_.log.Lines().back(), "busy off");
    EXPECT_FALSE(it_.Changed());
  }));
  EXPECT_EQ(it_.SampleN(), 8);
}

TEST_F(SettingsDialog, ChannelsAreEditedFromTheirList) {
  constexpr char kChannelForm[] = "frmT312BPRTTHRMChannel";
  EXPECT_FALSE(Edit([&](ui::CUser& user) {
    EXPECT_FALSE(user.Click(At<ui::CButton>(user, "cmdChannelSettings")));
    EXPECT_TRUE(PickCode(user, "lstChannels", 3));
    host_.forms.Expect(kChannelForm, [&](ui::CUser& channel) {
      EXPECT_FALSE(Apply(user));
      EXPECT_TRUE(PickCode(channel, "cboProbeSelection", 7));
      host_.forms.ExpectBox("this channel?", EBoxButton::NO);
      EXPECT_TRUE(channel.Return());
    });
    EXPECT_TRUE(user.PressAccessKey('c'));
    EXPECT_EQ(host_.forms.LastOwner(), &user.Form());
    const auto& list = user.Find<ui::CListBox>("lstChannels");
    EXPECT_EQ(list.ItemText(list.ListIndex()), "Scanner 1) Probe 7");
    // What the channel's dialog ends with doesn't matter; what it raises is one box.
    host_.forms.Expect(kChannelForm, [](ui::CUser& channel) { channel.CloseBox(); });
    EXPECT_TRUE(user.PressAccessKey('c'));
    it_.GetChannelReference(3)->SetRegistry(nullptr);
    host_.forms.ExpectBox("attempting to edit channel");
    EXPECT_TRUE(user.PressAccessKey('c'));
    EXPECT_EQ(list.ListIndex(), 1);
    EXPECT_TRUE(user.Find<ui::CButton>("cmdChannelSettings").Enabled());
  }));

  const struct {
    std::int16_t channel;
    const char* title;  // null for one that is refused
  } rows[] = {{0, nullptr},
              {-1, nullptr},
              {13, nullptr},
              {1, "Channel 1 Settings"},
              {2, "Channel 2 Settings"},
              {12, "Scanner Channel 10 Settings"}};
  for (const auto& row : rows) {
    if (row.title == nullptr) {
      const LibraryError error = CTestHost::ErrorOf([&] { it_.EditChannel(row.channel); });
      EXPECT_EQ(error.Number(), ERR_INVALID_CHANNEL) << row.channel;
      EXPECT_EQ(error.Source(), "CVaneT312B - EditChannel");
      continue;
    }
    for (const bool accepts : {true, false}) {
      host_.forms.Expect(kChannelForm, [&](ui::CUser& user) {
        EXPECT_EQ(user.Form().Caption(), row.title);
        accepts ? user.Return() : user.Escape();
      });
      EXPECT_EQ(it_.EditChannel(row.channel), accepts);
    }
  }
  host_.ConnectWith(false);
  EXPECT_FALSE(it_.EditChannel(3));
}

}  // namespace
}  // namespace vane
