// The dialog of the instrument's settings on a scripted line, and what its user does.
#pragma once

#include <gmock/gmock.h>

#include <functional>
#include <set>
#include <string>

#include "tests/support/transcript.h"
#include "vane/support/number_text.h"

namespace vane::test {

inline constexpr char kWishToWrite[] =
    "Do you wish to write the changes that have been made to the T312B?";
inline constexpr char kCarryingOut[] = "An error occurred while carrying out the command.";

class SettingsWindow : public testing::Test {
 protected:
  SettingsWindow() {
    host_.platform.asksforms = true;
    host_.script.replies = {
        {"read 24", "AVERAGE"},   {"read 26", "3.5"},         {"read 28", "0.25"},
        {"read 168", "C"},        {"read 60", "SAMPLE N"},    {"read 58", "20"},
        {"read 32", "100"},       {"read 34", "5"},           {"read 36", "50"},
        {"read 66", "6"},         {"read 68", "4"},           {"read 70", "5"},
        {"read 56", "4"},         {"read 54", "2"},           {"read 76 Index=0", "99.5"},
        {"read 76 Index=1", "1"}, {"read 76 Index=2", "10"},  {"read 76 Index=3", "100"},
        {"read 84", "0.5"},       {"read 76 Index=4", "1e4"}, {"read 86", "ON"},
        {"read 116", "4"},        {"read 104", "5"},          {"read 106", "7"},
        {"read 108", "3"},        {"read 110 Index=1", "0"},  {"read 110 Index=2", "10"},
        {"read 110", ""},         {"read 136", "5"},          {"read 112", "6"},
        {"read -1", "1234"},      {"read 122", "AB"},         {"read 138", "100 OHM"},
        {"read 140", "1"},        {"read 142", "0"},          {"read 130", "RATIO"}};
    Protect({});
    host_.ConnectWith(true);
    host_.forms.OnChanged([this](ui::CControl& control, ui::EAspect aspect) {
      if (control.Name() == "txtADC" && aspect == ui::EAspect::TEXT) host_.log.Add("loaded");
      if (control.Kind() != ui::EKind::FORM || aspect != ui::EAspect::ENABLED) return;
      host_.log.Add(control.Enabled() ? "window on" : "window off");
    });
  }
  ~SettingsWindow() override {
    EXPECT_EQ(host_.forms.Faults(), "");
    SetDecimalSeparator("");
  }

  // Conversion, calibration, sampling, units are 5 to 8.
  void Protect(const std::set<int>& groups) {
    for (const int id : {5, 6, 7, 8}) {
      host_.script.replies["read " + std::to_string(id)] = groups.contains(id) ? "ON" : "OFF";
    }
  }

  using Acts = std::function<void(ui::CUser& user)>;

  // `acts` leave the window by Cancel when they haven't yet.
  bool Edit(const Acts& acts) {
    host_.forms.Expect("frmT312BSettings", [&](ui::CUser& user) {
      host_.log.Add("opened");
      acts(user);
      if (user.Form().Shown()) user.CloseBox();
    });
    host_.log.Clear();
    return it_.Edit();
  }

  static bool ShowTab(ui::CUser& user, int index) {
    return user.SelectTab(user.Find<ui::CTabStrip>("tabSettings"), index);
  }
  // The control, on its tab.
  template <class Control>
  static Control& At(ui::CUser& user, const std::string& name) {
    auto& control = user.Find<Control>(name);
    const std::string frame = control.Frame() != nullptr ? control.Frame()->Name() : "";
    if (frame.starts_with("framSettings(")) ShowTab(user, frame[13] - '0');
    return control;
  }
  static bool Apply(ui::CUser& user) { return user.Click(user.Find<ui::CButton>("cmdApply")); }
  static bool Press(ui::CUser& user, int index) {
    return user.Click(user.Find<ui::CButton>("cmdOKCancelHelp(" + std::to_string(index) + ")"));
  }
  static bool Paste(ui::CUser& user, const std::string& name, const std::string& text) {
    return user.Focus(At<ui::CTextField>(user, name)) && user.SelectAll() && user.Delete() &&
           user.Paste(text);
  }
  static bool Enter(ui::CUser& user, const std::string& name, const std::string& text) {
    return Paste(user, name, text) && user.Tab();
  }
  static bool Step(ui::CUser& user, const std::string& name, bool up) {
    return user.Step(At<ui::CUpDown>(user, name), up);
  }
  static std::string Text(ui::CUser& user, const std::string& name) {
    return user.Find<ui::CTextField>(name).Text();
  }
  static bool PickCode(ui::CUser& user, const std::string& name, int code) {
    auto& list = At<ui::CItemList>(user, name);
    for (std::int32_t i = 0; i < list.ListCount(); ++i) {
      if (list.ItemData(i) == code) return user.Pick(list, i);
    }
    return false;
  }
  static std::string Entries(ui::CUser& user, const std::string& name) {
    const auto& list = user.Find<ui::CItemList>(name);
    std::string text;
    for (std::int32_t i = 0; i < list.ListCount(); ++i) {
      text += list.ItemText(i) + "#" + std::to_string(list.ItemData(i)) + "|";
    }
    return text;
  }

  // What is out of use, in these frames or in all, in the order of the focus.
  static std::string Disabled(const ui::CForm& form, const std::set<std::string>& frames = {}) {
    std::string names;
    for (const auto& control : form.Controls()) {
      const std::string frame = control->Frame() != nullptr ? control->Frame()->Name() : "";
      if (control->Enabled() || (!frames.empty() && !frames.contains(frame))) continue;
      names += (names.empty() ? "" : " ") + control->Name();
    }
    return names;
  }

  CTestHost host_;
  CVaneT312B& it_ = *host_.instrument;
};

}  // namespace vane::test
