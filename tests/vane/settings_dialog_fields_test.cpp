// The fields of the dialog of the instrument's settings: what follows a choice, what limits a
// number, and the sequence of scan steps.
#include "tests/support/settings_window.h"

namespace vane {
namespace {

using test::kWishToWrite;

class SettingsFields : public test::SettingsWindow {
 protected:
  static std::string Times(ui::CUser& user) {
    return Text(user, "txtInterval") + "/" + Text(user, "txtIntegrationTime") + "/" +
           Text(user, "txtConversionTime");
  }
};

TEST_F(SettingsFields, FieldsFollowTheChoiceInAList) {
  // Each row is what is out of use of the tabs of filters, of sampling and of measurement.
  constexpr char kNoCount[] = "lblSeqChannels txtSeqChannels udSeqChannels";
  constexpr char kNoSteps[] =
      "lblUserDefinedSeq lblSteps txtSteps udSteps lblSequence lstSequence lblSelectedChannel "
      "cboSelectedChannel";
  constexpr char kNoScan[] = "lblScanMode cboScanMode";
  constexpr char kNoChannel[] = "lblScanChannel cboScanChannel";
  constexpr char kNoFilter[] = "lblResponseTime txtResponseTime lblThreshold txtThreshold";
  constexpr char kNoSampleN[] = "lblSampleN txtSampleN udSampleN";
  const auto all = [](std::initializer_list<std::string> names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : " ") + name;
    return text;
  };
  const std::string noscanner = all({kNoChannel, kNoScan, kNoCount, kNoSteps});
  const std::string nosteps = all({kNoChannel, kNoSteps});
  const struct {
    const char* list;
    int code;
    const char* frame;
    std::string disabled;
  } rows[] = {
      {"cboFilterType", 0, "framSettings(0)", kNoFilter},
      {"cboFilterType", 1, "framSettings(0)", ""},
      {"cboFilterType", 0, "framSettings(0)", kNoFilter},
      {"cboFilterType", 2, "framSettings(0)", ""},
      {"cboSampleAction", 0, "framSettings(1)", kNoSampleN},
      {"cboSampleAction", 2, "framSettings(1)", ""},
      {"cboSampleAction", 1, "framSettings(1)", kNoSampleN},
      {"cboChannelMode", 0, "framSettings(2)", noscanner},
      {"cboChannelMode", 3, "framSettings(2)", all({kNoScan, kNoCount, kNoSteps})},
      {"cboChannelMode", 1, "framSettings(2)", noscanner},
      {"cboChannelMode", 2, "framSettings(2)", noscanner},
      {"cboChannelMode", 4, "framSettings(2)",
       all({kNoChannel, kNoCount, "lblSelectedChannel cboSelectedChannel"})},
      {"lstSequence", 12, "framSettings(2)", all({kNoChannel, kNoCount})},
      {"cboScanMode", 1, "framSettings(2)", nosteps},
      {"cboScanMode", 2, "framSettings(2)", nosteps},
      {"cboScanMode", 3, "framSettings(2)", nosteps},
      {"cboScanMode", 4, "framSettings(2)", nosteps},
      {"cboScanMode", 5, "framSettings(2)", all({kNoChannel, kNoCount})},
      {"cboChannelMode", 0, "framSettings(2)", noscanner},
  };
  Edit([&](ui::CUser& user) {
    for (const auto& row : rows) {
      EXPECT_TRUE(PickCode(user, row.list, row.code)) << row.list << row.code;
      EXPECT_EQ(Disabled(user.Form(), {row.frame}), row.disabled) << row.list << row.code;
    }
  });
  // Without a choice nothing follows it, and what was in use stays so.
  host_.script.replies["read 168"] = "C";
  host_.script.replies["read 56"] = "3";
  host_.script.replies["read 116"] = "11";
  Edit([&](ui::CUser& user) {
    EXPECT_EQ(user.Find<ui::CDropDown>("cboScanChannel").ListIndex(), -1);
    EXPECT_EQ(Disabled(user.Form(), {"framSettings(2)"}), all({kNoScan, kNoCount, kNoSteps}));
  });
}

TEST_F(SettingsFields, AreLimitedWhenTheyAreLeft) {
  host_.platform.separator = ",";
  SetDecimalSeparator("");
  constexpr const char* kBad = nullptr;  // gives way to what was shown before
  constexpr char kReal[] = "1-,";
  const struct {
    const char* name;
    const char* typed;  // what the keys of "1-e.x" leave
    const char* low;
    std::vector<std::pair<const char*, const char*>> pasted;
    const char* above;
    const char* high;
  } rows[] = {
      {"txtResponseTime", kReal, "2,0", {{" 3,45 ", "3,5"}, {"3.5", kBad}}, "200,1", "200,0"},
      {"txtThreshold", kReal, "0,0001", {{"1e1", "10,0000"}, {"1 2", kBad}}, "1e7", "1000000,0000"},
      {"txtSampleN", "1", "1", {{"2,5", "2"}, {"32768", kBad}, {"7x", kBad}}, "32001", "32000"},
      {"txtInterval", "1", "2", {{"7x", "7"}, {"", "2"}, {"5,9", "5"}}, "100000", "99999"},
      {"txtIntegrationTime", "1", "2", {{"5.5", "6"}, {"1e400", kBad}}, "10000", "9999"},
      {"txtConversionTime", "1", "2", {{" 3", "3"}, {"", "2"}}, "11", "10"},
      {"txtTempResolution", "1", "0", {{"3", "3"}, {"40000", kBad}}, "9", "8"},
      {"txtResResolution", "1", "0", {{"", kBad}}, "9", "8"},
      {"txtRatioResolution", "1", "0", {{"+1", "1"}}, "9", "8"},
      {"txtRepetitions", "1", "1", {{"9", "9"}, {"-40000", kBad}}, "32001", "32000"},
      {"txtSeqChannels", "1", "1", {{"9", "9"}, {"", kBad}}, "11", "10"},
      {"txtSteps", "1", "1", {{"2", "2"}, {"2x", kBad}}, "101", "100"},
      {"txtCalParam(0)", "1-e,", "0,10000000000", {{"", kBad}}, "1e6", "990000,00000000000"},
      {"txtCalParam(1)", "1-e,", "0,1000000000000", {{"e", kBad}}, "6", "5,0000000000000"},
      {"txtCalParam(2)", "1-e,", "5,000000000000", {{"5.5", kBad}}, "51", "50,000000000000"},
      {"txtCalParam(3)", "1-e,", "50,00000000000", {{"inf", kBad}}, "501", "500,00000000000"},
      {"txtCalParam(4)",
       "1-e,",
       "5,000000000E+03",
       {{"15e3", "1,500000000E+04"}},
       "2e6",
       "1,000000000E+06"},
      {"txtADC",
       kReal,
       "-3,00",
       {{"-0,001", "0,00"}, {"nan", kBad}, {"1,005", "1,01"}},
       "4",
       "3,00"},
  };
  Edit([&](ui::CUser& user) {
    for (const auto& row : rows) {
      // The number of channels and the steps are in use in different modes.
      const bool counts = row.name == std::string("txtSeqChannels");
      EXPECT_TRUE(PickCode(user, "cboScanMode", counts ? 1 : 5));
      const auto leaves = [&](const std::string& text, const char* shown) {
        const std::string before = Text(user, row.name);
        EXPECT_TRUE(Enter(user, row.name, text)) << row.name << text;
        EXPECT_EQ(Text(user, row.name), shown != nullptr ? shown : before) << row.name << text;
      };
      leaves("-9", row.low);
      for (const auto& [text, shown] : row.pasted) leaves(text, shown);
      leaves(row.above, row.high);
      EXPECT_TRUE(user.Focus(At<ui::CTextField>(user, row.name)));
      EXPECT_FALSE(user.Type("1-e.x"));
      EXPECT_EQ(Text(user, row.name), row.typed);
      leaves(row.above, row.high);
    }
  });
}

TEST_F(SettingsFields, TimesKeepTheirOrder) {
  struct Row {
    const char* name;
    const char* text;  // or the direction of a step
    const char* times;
  };
  const Row rows[] = {
      {"txtInterval", "4", "4/4/4"},
      {"txtIntegrationTime", "9", "4/4/4"},
      {"txtConversionTime", "8", "4/4/4"},
      {"txtInterval", "50000", "50000/4/4"},
      {"txtIntegrationTime", "9999", "50000/9999/4"},
      {"txtConversionTime", "10", "50000/9999/10"},
      {"txtInterval", "10", "10/10/10"},
      {"udInterval", "down", "9/9/9"},
      {"udIntegrationTime", "up", "9/9/9"},
      {"udConversionTime", "up", "9/9/9"},
      {"udConversionTime", "down", "9/9/8"},
      {"udIntegrationTime", "down", "9/8/8"},
      {"udInterval", "up", "10/8/8"},
  };
  Edit([&](ui::CUser& user) {
    EXPECT_EQ(Times(user), "100/50/5");
    for (const Row& row : rows) {
      if (row.name[0] == 't') {
        EXPECT_TRUE(Enter(user, row.name, row.text));
      } else {
        EXPECT_TRUE(Step(user, row.name, row.text == std::string("up")));
      }
      EXPECT_EQ(Times(user), row.times) << row.name << " " << row.text;
    }
    EXPECT_TRUE(Paste(user, "txtInterval", "3"));
    EXPECT_EQ(Times(user), "3/8/8");
  });
  // What the instrument holds is shown as it is; an interval above the other limits stops at them.
  host_.script.replies["read 32"] = "20000";
  host_.script.replies["read 36"] = "30000";
  host_.script.replies["read 34"] = "10000";
  Edit([&](ui::CUser& user) {
    EXPECT_EQ(Times(user), "20000/30000/10000");
    std::string order;
    host_.forms.OnChanged([&](ui::CControl& control, ui::EAspect aspect) {
      if (aspect == ui::EAspect::TEXT) order += control.Name() + "\n";
    });
    EXPECT_TRUE(user.Focus(At<ui::CTextField>(user, "txtInterval")) && user.Tab());
    EXPECT_EQ(Times(user), "20000/9999/10");
    EXPECT_EQ(order, "txtConversionTime\ntxtIntegrationTime\n");
  });
}

TEST_F(SettingsFields, StepsOfASequenceComeAndGoAtItsEnd) {
  constexpr char kOne[] = "1) Input 2#2|";
  const std::string three = std::string(kOne) + "2) <not assigned>#-1|3) <not assigned>#-1|";
  const auto steps = [](ui::CUser& user) { return Entries(user, "lstSequence"); };
  const auto count = [](ui::CUser& user) {
    return user.Find<ui::CListBox>("lstSequence").ListCount();
  };
  const auto type = [](ui::CUser& user, const char* keys) {
    return user.Focus(At<ui::CTextField>(user, "txtSteps")) && user.SelectAll() && user.Type(keys);
  };
  Edit([&](ui::CUser& user) {
    EXPECT_EQ(steps(user), "1) Input 2#2|2) Scanner 10#12|3) Input 2#2|");
    EXPECT_TRUE(type(user, "1"));
    EXPECT_EQ(steps(user), kOne);
    EXPECT_TRUE(type(user, "3"));
    EXPECT_EQ(steps(user), three);
    // As long as that the sequence can't be written, whatever the mode.
    for (const int mode : {5, 1}) {
      EXPECT_TRUE(PickCode(user, "cboScanMode", mode));
      for (const bool apply : {true, false}) {
        EXPECT_TRUE(ShowTab(user, 4));
        host_.forms.ExpectBox("A valid channel must be assigned to every step");
        EXPECT_TRUE(apply ? Apply(user) : user.Return());
        EXPECT_EQ(user.Find<ui::CTabStrip>("tabSettings").Selected(), 2);
        EXPECT_TRUE(user.Find<ui::CFrame>("framSettings(2)").Visible());
        EXPECT_FALSE(user.Find<ui::CFrame>("framSettings(4)").Visible());
        EXPECT_EQ(user.Form().Focused()->Name() == "lstSequence", mode == 5);
      }
    }
    EXPECT_EQ(it_.ScanChannels(), "2,-1,-1");
    EXPECT_EQ(host_.log.Only({"write 1"}), "");

    EXPECT_TRUE(PickCode(user, "cboScanMode", 5));
    auto& channel = user.Find<ui::CDropDown>("cboSelectedChannel");
    auto& list = user.Find<ui::CListBox>("lstSequence");
    EXPECT_TRUE(user.Pick(list, 0));
    EXPECT_EQ(channel.ListIndex(), 0);
    EXPECT_TRUE(user.Pick(list, 2));
    EXPECT_EQ(channel.ListIndex(), -1);
    EXPECT_EQ(steps(user), three);
    EXPECT_TRUE(user.Pick(channel, 10));
    EXPECT_TRUE(user.Pick(list, 1) && user.Pick(channel, 1) && user.Pick(list, 2));
    EXPECT_EQ(channel.ListIndex(), 10);
    EXPECT_EQ(steps(user), "1) Input 2#2|2) Scanner 1#3|3) Scanner 10#12|");
    // A step that goes takes the choice of its channel along.
    EXPECT_TRUE(Step(user, "udSteps", false));
    EXPECT_EQ(steps(user), "1) Input 2#2|2) Scanner 1#3|");
    EXPECT_FALSE(user.Pick(channel, 0));
    host_.forms.ExpectBox(kWishToWrite, EBoxButton::YES);
    EXPECT_TRUE(Apply(user));
    EXPECT_EQ(host_.log.Only({"write 109", "write 111"}),
              "write 109 value=2\nwrite 111 Channel=0 Index=1 value=2\n"
              "write 111 Channel=1 Index=2 value=2\n");

    // What is no length of a sequence, on its way in and when it is left.
    const struct {
      const char* text;
      int length;
      const char* shown;
    } rows[] = {{"101", 101, "100"}, {"-5", 0, "1"},  {"", 0, "1"},    {"2", 2, "2"},
                {"x", 0, "2"},       {"2.5", 2, "2"}, {"1e9", 2, "2"}, {"1e999", 2, "2"},
                {"-1e9", 0, "2"},    {"3x", 3, "2"}};
    for (const auto& row : rows) {
      EXPECT_TRUE(user.Focus(user.Find<ui::CTextField>("txtSteps")) && user.SelectAll());
      EXPECT_TRUE(user.Paste(row.text));
      EXPECT_EQ(count(user), row.length) << row.text;
      EXPECT_TRUE(user.Tab());
      EXPECT_EQ(Text(user, "txtSteps") + "/" + std::to_string(count(user)),
                std::string(row.shown) + "/" + row.shown)
          << row.text;
    }
    EXPECT_TRUE(type(user, "12") && user.Key(8) && user.Key(8));
    EXPECT_EQ(count(user), 0);
  });
}

TEST_F(SettingsFields, AStepWithoutANumberIsUnassigned) {
  host_.abortat = 1u + 25u + 4u + 2u;  // the user stops at the second step of the sequence
  Edit([&](ui::CUser& user) {
    EXPECT_EQ(Entries(user, "lstSequence"), "1) Input 2#2|2) Scanner 10#12|3) Input 0#0|");
    for (const bool apply : {true, false}) {
      host_.forms.ExpectBox("A valid channel must be assigned to every step");
      EXPECT_TRUE(apply ? Apply(user) : Press(user, 0));
    }
    EXPECT_EQ(host_.log.Only({"write 1"}), "");
    auto& list = At<ui::CListBox>(user, "lstSequence");
    EXPECT_TRUE(user.Pick(list, 2) && PickCode(user, "cboSelectedChannel", 4));
    host_.forms.ExpectBox(kWishToWrite, EBoxButton::YES);
    EXPECT_TRUE(Press(user, 0));
  });
  EXPECT_EQ(it_.ScanChannels(), "2,12,4");
}

}  // namespace
}  // namespace vane
