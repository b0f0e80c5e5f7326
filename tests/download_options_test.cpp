// The dialog of the download options, over scripted communications and with real files.
#include <gmock/gmock.h>

#include "tests/support/download_host.h"
#include "tests/support/form_text.h"
#include "vane/support/messages.h"

namespace vane {
namespace {

using test::CTestHost;

class DownloadOptions : public test::Download {
 protected:
  DownloadOptions() { host_.platform.asksforms = true; }
  ~DownloadOptions() override { EXPECT_EQ(host_.forms.Faults(), ""); }

  // Opens the dialog for `acts`, which have to close it.
  void Open(const std::function<void(ui::CUser& user)>& acts) {
    host_.forms.Expect("frmT312BDownloadOptions", acts);
    host_.log.Clear();
    EXPECT_TRUE(it_.DownloadLoggedData());
    EXPECT_EQ(ui::CForm::Active(), nullptr);
  }

  static ui::CButton& Button(ui::CUser& user, int index) {
    return user.Find<ui::CButton>("cmdOKCancelHelp(" + std::to_string(index) + ")");
  }
  static bool Enter(ui::CUser& user, const char* name, const std::string& text) {
    return user.Focus(user.Find<ui::CTextField>(name)) && user.SelectAll() && user.Paste(text) &&
           user.Tab();
  }
  // The captions, those of options behind their group's.
  static std::string Captions(const ui::CForm& form) {
    std::string text = form.Caption() + "\n";
    for (const auto& control : form.Controls()) {
      if (!control->Caption().empty()) text += control->Caption() + "\n";
      const auto* const options = dynamic_cast<const ui::COptionGroup*>(control.get());
      for (int i = 0; options != nullptr && i < options->Count(); ++i) {
        text += options->OptionCaption(i) + "\n";
      }
    }
    return text;
  }
  std::string Counted() const {
    const std::size_t place = Trace().find("Count: ");
    return Trace().substr(place, Trace().find('\n', place) - place);
  }
};

constexpr char kFreshOptions[] =
    "optLog=0\noptReadings=0\ntxtReadings=1 off\nudReadings off\nlblReadings off\n"
    "txtResolution=8\noptFiles=0\nchkPrompt=no\ncmdOKCancelHelp(0)\ncmdOKCancelHelp(1)\n"
    "cmdOKCancelHelp(2)\n";

constexpr char kCaptions[] =
    "T312B 'Thermoscribe' Download Options\nT312B 'Thermoscribe' Download Options:\n"
    "Select log to download:\nHistory log\nMemory log\n"
    "Readings:\nDownload all readings from log\nDownload last n readings from log\n"
    "readings\nResolution:\ndigits\n"
    "Files:\nWrite all readings into a single file\nSeparate readings by channel\n"
    "Prompt to enter filename\n&Download\n&Close\n&Help\n";

TEST_F(DownloadOptions, StartAfreshAtEachOpening) {
  for (int opening = 0; opening < 2; ++opening) {
    Open([&](ui::CUser& user) {
      EXPECT_EQ(test::FormText(user.Form()), kFreshOptions);
      EXPECT_EQ(host_.log.Text(), "queue 0\nbusy off\n");
      EXPECT_EQ(Captions(user.Form()), kCaptions);
      EXPECT_TRUE(user.Choose(user.Find<ui::COptionGroup>("optReadings"), 1));
      EXPECT_EQ(test::FormText(user.Form(), {"Readings"}), "optReadings=1\ntxtReadings=1\n");
      EXPECT_TRUE(user.Step(user.Find<ui::CUpDown>("udReadings"), true));
      EXPECT_TRUE(user.Step(user.Find<ui::CUpDown>("udResolution"), false));
      EXPECT_EQ(test::FormText(user.Form(), {"txt"}), "txtReadings=11\ntxtResolution=7\n");
      EXPECT_TRUE(user.Click(user.Find<ui::CCheckBox>("chkPrompt")));
      EXPECT_TRUE(opening == 0 ? user.Help() : user.Click(Button(user, 2)));
      EXPECT_EQ(host_.log.Only({"help"}), "help VaneT312B.hlp 1 10852\n");
      EXPECT_TRUE(opening == 0 ? user.Escape() : user.Click(Button(user, 1)));
    });
  }
}

TEST_F(DownloadOptions, FieldsAreLimitedWhenTheyAreLeft) {
  const struct {
    const char* field;
    const char* text;
    const char* shown;
  } rows[] = {{"txtReadings", "500", "100"}, {"txtReadings", "", "1"},
              {"txtReadings", "-3", "1"},    {"txtReadings", "12.5 x", "13"},
              {"txtReadings", "7,9", "7"},   {"txtReadings", "1e999", "7"},
              {"txtResolution", "9", "8"},   {"txtResolution", "x", "0"},
              {"txtResolution", "2.4", "2"}, {"txtResolution", "40000", "8"}};
  Open([&](ui::CUser& user) {
    user.Choose(user.Find<ui::COptionGroup>("optReadings"), 1);
    for (const auto& row : rows) {
      EXPECT_TRUE(Enter(user, row.field, row.text));
      EXPECT_EQ(user.Find<ui::CTextField>(row.field).Text(), row.shown) << row.text;
    }
    // By the default button the field is limited and keeps the focus.
    EXPECT_TRUE(user.Focus(user.Find<ui::CTextField>("txtReadings")) && user.Type("40000"));
    ExpectList();
    EXPECT_TRUE(user.Return());
    EXPECT_EQ(Counted(), "Count: 100");
    EXPECT_TRUE(user.CloseBox());
  });
}

TEST_F(DownloadOptions, DownloadsAsOftenAsTheUserLikes) {
  Open([&](ui::CUser& user) {
    user.Choose(user.Find<ui::COptionGroup>("optReadings"), 1);
    EXPECT_TRUE(Enter(user, "txtReadings", "2") && Enter(user, "txtResolution", "1"));
    ExpectList();
    // A second one while the first runs does nothing, and neither does the close box.
    host_.forms.AtPass(2, [&] {
      EXPECT_FALSE(user.Click(Button(user, 0)) || user.CloseBox());
      EXPECT_FALSE(user.Click(Button(user, 1)));
    });
    EXPECT_TRUE(user.Click(Button(user, 0)));
    EXPECT_EQ(host_.forms.LastOwner(), &user.Form());
    EXPECT_EQ(Counted(), "Count: 2");
    EXPECT_THAT(File(), testing::HasSubstr(" 25.0 "));

    // All readings, whatever the field holds; both logs, and both kinds of file.
    user.Choose(user.Find<ui::COptionGroup>("optReadings"), 0);
    user.Choose(user.Find<ui::COptionGroup>("optLog"), 1);
    user.Choose(user.Find<ui::COptionGroup>("optFiles"), 1);
    user.Click(user.Find<ui::CCheckBox>("chkPrompt"));
    host_.chosen = (out_ / "mine.txt").string();
    ExpectList();
    host_.log.Clear();
    host_.script.replies["read 276"] = "";
    host_.script.replies["read 276 Index=1"] = "5 C 1";
    EXPECT_TRUE(user.Click(Button(user, 0)));
    EXPECT_EQ(Counted(), "Count: 100");
    EXPECT_EQ(host_.log.Only({"dialog asks", "read 27"}),
              "read 276 Index=1\nread 276 Index=2\ndialog asks\n");

    // One that fails has told so itself, and the dialog stays.
    host_.script.silent.insert("read 276");
    host_.forms.ExpectBox("attempting to download log data");
    EXPECT_TRUE(user.Click(Button(user, 0)));
    EXPECT_TRUE(user.CloseBox());
  });
}

TEST_F(DownloadOptions, KeepsItsPlaceOnEveryRoad) {
  auto& registry = *host_.registry;
  const std::string restored = "restore frmT312BDownloadOptions 0 1\n";
  for (const char* failing : {"", "save", "restore"}) {
    registry.failing = failing;
    registry.placements.clear();
    if (registry.failing == "restore") {
      const LibraryError error = CTestHost::ErrorOf([&] { it_.DownloadLoggedData(); });
      EXPECT_EQ(error.Source(), "CVaneT312B - DownloadLoggedData");
    } else {
      Open([&](ui::CUser& user) {
        EXPECT_EQ(registry.placements, restored);
        EXPECT_TRUE(user.Escape());
      });
    }
    EXPECT_EQ(registry.placements, restored + "save frmT312BDownloadOptions 0 1\n") << failing;
  }
}

TEST_F(DownloadOptions, ComesUpAboveTheWindowThatIsShown) {
  Open([&](ui::CUser& user) {
    host_.forms.Expect("frmT312BDownloadOptions", [](ui::CUser& above) { above.Escape(); });
    EXPECT_TRUE(it_.DownloadLoggedData());
    EXPECT_EQ(host_.forms.LastOwner(), &user.Form());
    EXPECT_TRUE(user.Escape());
  });
}

TEST_F(DownloadOptions, FailuresOfTheDialog) {
  host_.platform.onqueue = [] { throw LibraryError(7, "queue", "stuck"); };
  host_.forms.ExpectBox("An error occurred while attempting to setup dialog.");
  Open([&](ui::CUser& user) {
    host_.platform.onqueue = nullptr;
    EXPECT_EQ(user.Find<ui::CTextField>("txtResolution").Text(), "");
    // Without a viewer for the help there is one box, and the dialog stays.
    SetLibraryHelpFile("");
    host_.forms.ExpectBox("An error occurred while carrying out the command.");
    EXPECT_FALSE(user.Help());
    EXPECT_TRUE(user.CloseBox());
  });
  it_.SetRegistry(nullptr);
  const LibraryError error = CTestHost::ErrorOf([&] { it_.DownloadLoggedData(); });
  EXPECT_EQ(error.Source(), "CVaneT312B - DownloadLoggedData");
  EXPECT_EQ(error.Description(), "There is no registry component.");
}

}  // namespace
}  // namespace vane
