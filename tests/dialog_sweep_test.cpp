// The editing dialogs on the simulated readout, over the real line: a user changes every field and
// applies, and a fresh object shows what he has typed.
#include <gmock/gmock.h>

#include <memory>

#include "adapters/conversions/probe.h"
#include "adapters/headless/headless_factory.h"
#include "adapters/headless/headless_platform.h"
#include "simulator/line_server.h"
#include "tests/support/form_text.h"
#include "vane/channels/channel.h"
#include "vane/components/memory_forms.h"
#include "vane/instrument/t312b.h"

namespace vane {
namespace {

using test::FormText;

class CTypedPasscode final : public CVanePasscodeDialog {
 public:
  void SetHelpFile(const std::string&) override {}
  bool ShowDialog(std::string& entered, ui::CWindow*) override {
    entered = "1234";
    return true;
  }
};

class CDialogPlatform final : public CHeadlessPlatform {
 public:
  explicit CDialogPlatform(CMemoryForms& forms) : forms_(forms) {}
  EBoxButton MessageBox(const std::string& text, const std::string&, std::int32_t flags,
                        const std::string&, std::int32_t) override {
    return forms_.MessageBox(text, flags);
  }

 private:
  CMemoryForms& forms_;
};

class CDialogFactory final : public CHeadlessFactory {
 public:
  CDialogFactory(std::shared_ptr<LineSettings> line, CMemoryForms& forms)
      : CHeadlessFactory(std::move(line)), forms_(forms) {}
  std::unique_ptr<ui::CForm> MakeForm(const std::string& name) override {
    return forms_.Make(name);
  }
  std::unique_ptr<CVaneProbe> MakeProbe() override {
    return std::make_unique<CThermometerProbe>(true);
  }
  std::unique_ptr<CVanePasscodeDialog> MakePasscodeDialog() override {
    return std::make_unique<CTypedPasscode>();
  }

 private:
  CMemoryForms& forms_;
};

class DialogSweep : public testing::Test {
 protected:
  DialogSweep() {
    platform_.SkipWaits();
    readout_.Start();
    line_->devices[EVanePortNumber::PORT_1] = readout_.Path();
  }
  ~DialogSweep() override { EXPECT_EQ(forms_.Faults(), ""); }

  std::unique_ptr<CVaneT312B> Fresh() const {
    auto instrument = std::make_unique<CVaneT312B>(components_);
    instrument->SetRegistry(std::make_shared<CEmptyRegistry>());
    instrument->InitializeCommunications();
    EXPECT_TRUE(instrument->QueryChannelInfo());
    return instrument;
  }

  static bool Enter(ui::CUser& user, const std::string& name, const std::string& text) {
    return user.Focus(user.Find<ui::CTextField>(name)) && user.SelectAll() && user.Type(text) &&
           user.Tab();
  }
  static bool PickText(ui::CUser& user, const std::string& name, const std::string& text) {
    auto& list = user.Find<ui::CDropDown>(name);
    for (std::int32_t i = 0; i < list.ListCount(); ++i) {
      if (list.ItemText(i) == text) return user.Pick(list, i);
    }
    return false;
  }
  static void Press(ui::CUser& user, const char* name) {
    EXPECT_TRUE(user.Click(user.Find<ui::CButton>(name))) << name;
  }

  CMemoryForms forms_;
  CDialogPlatform platform_{forms_};
  std::shared_ptr<LineSettings> line_ = std::make_shared<LineSettings>();
  CDialogFactory factory_{line_, forms_};
  const Components components_{platform_, factory_};
  CInstalledComponents installed_{components_};
  simulator::CSimulatedLine readout_{
      simulator::ParseOptions("--protect units,sampling,calibration,conversion")};
};

TEST_F(DialogSweep, EverySettingComesBackAsTheUserTypedIt) {
  struct Field {
    int tab;
    const char* name;
    const char* value;
  };
  // In an order in which each field is open when its turn comes.
  const Field fields[] = {{0, "cboFilterType", "Exponential"},
                          {0, "txtResponseTime", "7.5"},
                          {0, "txtThreshold", "0.1250"},
                          {1, "cboUnits", "K"},
                          {1, "cboSampleAction", "Sample n"},
                          {1, "txtSampleN", "32000"},
                          {1, "txtInterval", "99"},
                          {1, "txtIntegrationTime", "42"},
                          {1, "txtConversionTime", "9"},
                          {1, "txtTempResolution", "7"},
                          {1, "txtResResolution", "6"},
                          {1, "txtRatioResolution", "5"},
                          {2, "txtRepetitions", "123"},
                          {2, "cboChannelMode", "Scanner channel"},
                          {2, "cboScanChannel", "9"},
                          {2, "cboChannelMode", "Scanner sequence"},
                          {2, "cboScanMode", "Scanner channels only"},
                          {2, "txtSeqChannels", "4"},
                          {2, "cboScanMode", "User-defined scanner sequence"},
                          {2, "txtSteps", "3"},
                          {4, "txtCalParam(0)", "123.4567"},
                          {4, "txtCalParam(1)", "1.234567"},
                          {4, "txtCalParam(2)", "12.34567"},
                          {4, "txtCalParam(3)", "123.4567"},
                          {4, "txtCalParam(4)", "1.234567e4"},
                          {4, "txtADC", "-1.5"},
                          {4, "cboOven", "Off"}};
  std::string typed;
  const auto shown = [](ui::CUser& user) { return FormText(user.Form(), {"txt", "cbo", "lst"}); };
  const auto whole = [&](ui::CUser& user) {
    std::string text;
    for (int tab = 0; tab < 5; ++tab) {
      EXPECT_TRUE(user.SelectTab(user.Find<ui::CTabStrip>("tabSettings"), tab));
      text += shown(user);
    }
    return text;
  };
  auto writer = Fresh();
  writer->SetReadAfterApply(true);
  forms_.Expect("frmT312BSettings", [&](ui::CUser& user) {
    Press(user, "cmdEditProtected");
    for (const auto& [tab, name, value] : fields) {
      EXPECT_TRUE(user.SelectTab(user.Find<ui::CTabStrip>("tabSettings"), tab));
      EXPECT_TRUE(name[0] == 't' ? Enter(user, name, value) : PickText(user, name, value)) << name;
    }
    EXPECT_TRUE(user.SelectTab(user.Find<ui::CTabStrip>("tabSettings"), 2));
    const char* const channels[] = {"Scanner 10", "Input 2", "Scanner 10"};
    for (int step = 0; step < 3; ++step) {
      EXPECT_TRUE(user.Pick(user.Find<ui::CListBox>("lstSequence"), step));
      EXPECT_TRUE(PickText(user, "cboSelectedChannel", channels[step]));
    }
    user.Find<ui::CListBox>("lstSequence").SetListIndex(-1);
    user.Find<ui::CDropDown>("cboSelectedChannel").SetListIndex(-1);
    typed = whole(user);
    forms_.ExpectBox("Do you wish to write the changes", EBoxButton::YES);
    Press(user, "cmdApply");
    // Read back, and shut: the same values, out of reach.
    EXPECT_EQ(user.Find<ui::CTextField>("txtInterval").Text(), "99");
    EXPECT_FALSE(user.Find<ui::CTextField>("txtInterval").IsOpen());
    Press(user, "cmdOKCancelHelp(0)");
  });
  EXPECT_TRUE(writer->Edit());
  EXPECT_FALSE(writer->Changed());
  writer.reset();  // the port is one object's at a time

  const auto reader = Fresh();
  forms_.Expect("frmT312BSettings", [&](ui::CUser& user) {
    Press(user, "cmdEditProtected");
    EXPECT_EQ(whole(user), typed);
    EXPECT_TRUE(user.Escape());
  });
  EXPECT_FALSE(reader->Edit());
  EXPECT_EQ(reader->ScanChannels(), "12,2,12");
  EXPECT_EQ(reader->CalParams(ET312BCalParams::CP_10K_OHM), 12345.67);
  for (const auto& [tab, name, value] : fields) {
    const std::string_view field = name;
    // Chosen twice, and written in another form.
    if (field == "cboChannelMode" || field == "cboScanMode" || field == "txtCalParam(4)") continue;
    EXPECT_THAT(typed, testing::HasSubstr(std::string(name) + "=" + value));
  }
}

TEST_F(DialogSweep, EveryChannelFieldComesBackThroughTheSettingsDialog) {
  const auto edit = [&](CVaneT312B& instrument, const std::function<void(ui::CUser & user)>& acts) {
    forms_.Expect("frmT312BSettings", [&](ui::CUser& user) {
      EXPECT_TRUE(user.SelectTab(user.Find<ui::CTabStrip>("tabSettings"), 3));
      auto& channels = user.Find<ui::CListBox>("lstChannels");
      forms_.Expect("frmT312BPRTTHRMChannel", acts);
      EXPECT_TRUE(user.Pick(channels, 4));
      Press(user, "cmdChannelSettings");
      EXPECT_EQ(channels.ItemText(4), "Scanner 4) Probe 16");
      EXPECT_EQ(channels.ListIndex(), 4);
      EXPECT_TRUE(user.Escape());
    });
    EXPECT_FALSE(instrument.Edit());
  };
  std::string typed;
  auto writer = Fresh();
  edit(*writer, [&](ui::CUser& user) {
    Press(user, "cmdEditProtected");
    EXPECT_TRUE(PickText(user, "cboProbeSelection", "Probe 16"));
    EXPECT_TRUE(Enter(user, "txtProbeSerial", "Z-99"));
    EXPECT_TRUE(PickText(user, "cboReference", "10K Ohm"));
    EXPECT_TRUE(Enter(user, "txtCurrent", "0.1234"));
    EXPECT_TRUE(Enter(user, "txt3WireOffset", "0.012345"));
    EXPECT_TRUE(PickText(user, "cboConversionType", "Callendar-Van Dusen"));
    typed = FormText(user.Form(), {"txt", "cbo"});
    forms_.ExpectBox("Do you wish to write the changes", EBoxButton::YES);
    EXPECT_TRUE(user.Click(user.Find<ui::CButton>("cmdOKCancelHelp(0)")));
  });
  writer.reset();
  const auto reader = Fresh();
  edit(*reader, [&](ui::CUser& user) {
    Press(user, "cmdEditProtected");
    EXPECT_EQ(FormText(user.Form(), {"txt", "cbo"}), typed);
    EXPECT_TRUE(user.Escape());
  });
  EXPECT_THAT(typed, testing::HasSubstr("txtProbeSerial=Z-99\ncboReference=10K Ohm\n"
                                        "txtCurrent=0.1234\ntxt3WireOffset=0.012345\n"));
}

// Each conversion's own window, opened from the channel's, on the probe that keeps what it writes.
TEST_F(DialogSweep, EveryConversionComesBackThroughItsEditor) {
  struct Row {
    const char* type;
    std::vector<std::pair<const char*, const char*>> entries;  // a field or list, and its value
  };
  const Row rows[] = {
      {"ITS-90",
       {{"txtRTPW", "25.51234567"},
        {"cboLowRange", "1: -259.3467 to 0.01 °C"},
        {"txtLow(0)", "-1.5e-4"},
        {"txtLow(6)", "7e-6"},
        {"cboHighRange", "6: 0 to 961.78 °C"},
        {"txtHigh(0)", "-2e-4"},
        {"txtHigh(3)", "9e-9"}}},
      {"IPTS-68",
       {{"txtR0", "100.125"},
        {"txtalpha", "0.0039271"},
        {"txta4", "1.5e-7"},
        {"cboScale", "ITS-90"}}},
      {"Callendar-Van Dusen",
       {{"txtR0", "99.9"}, {"txtalpha", "0.0039"}, {"txtdelta", "1.49"}, {"txtbeta", "0.11"}}},
      {"W(T90)", {{"txtRTPW", "25.75"}}},
      {"R(T)", {{"txtA0", "-4.5"}, {"txtA3", "2.5e-7"}}},
      {"T(R)", {{"txtB0", "1.25e-3"}, {"txtB3", "1e-7"}}},
      {"Polynomial", {{"txtOrder", "10"}, {"txtc0", "-245.5"}, {"txtc10", "1.5e-12"}}},
  };
  const auto edit = [&](CVaneT312B& instrument, const std::function<void(ui::CUser & user)>& acts) {
    forms_.Expect("frmT312BPRTTHRMChannel", acts);
    return instrument.EditChannel(5);
  };
  for (const Row& row : rows) {
    std::string typed;
    const auto shown = [](ui::CUser& user) { return FormText(user.Form(), {"txt", "cbo"}); };
    auto writer = Fresh();
    EXPECT_TRUE(edit(*writer, [&](ui::CUser& user) {
      Press(user, "cmdEditProtected");
      EXPECT_TRUE(PickText(user, "cboConversionType", row.type));
      forms_.Expect("frmConversionSettings", [&](ui::CUser& values) {
        for (const auto& [name, value] : row.entries) {
          EXPECT_TRUE(name[0] == 't' ? Enter(values, name, value) : PickText(values, name, value))
              << row.type << ' ' << name;
        }
        typed = shown(values);
        EXPECT_TRUE(values.Return());
      });
      Press(user, "cmdConversionSettings");
      forms_.ExpectBox("Do you wish to write the changes", EBoxButton::YES);
      Press(user, "cmdOKCancelHelp(0)");
    }));
    writer.reset();
    const auto reader = Fresh();
    EXPECT_FALSE(edit(*reader, [&](ui::CUser& user) {
      // Shut, and so to be looked at only.
      forms_.Expect("frmConversionSettings", [&](ui::CUser& values) {
        std::string open = shown(values);
        for (std::size_t at; (at = open.find(" off\n")) != open.npos;) open.erase(at, 4);
        EXPECT_EQ(open, typed) << row.type;
        EXPECT_TRUE(values.Return());
      });
      Press(user, "cmdConversionSettings");
      EXPECT_FALSE(reader->GetChannelReference(5)->Changed());
      EXPECT_TRUE(user.Escape());
    }));
    EXPECT_FALSE(typed.empty());
  }
}

}  // namespace
}  // namespace vane
