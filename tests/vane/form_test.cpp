#include <gmock/gmock.h>

#include <map>

#include "tests/support/transcript.h"
#include "vane/components/memory_forms.h"
#include "vane/support/failure.h"
#include "vane/support/field_editing.h"
#include "vane/support/messages.h"

namespace vane {
namespace {

using namespace ui;
using testing::ElementsAre;

// A window with one control of each kind, whose events write themselves down.
class Form : public testing::Test {
 protected:
  Form() {
    form_.OnLoad(Note("load"));
    form_.OnFirstPaint(Note("paint"));
    form_.OnUnload(Note("unload"));
    form_.OnFailure(
        [this] { log_ += "failed: " + std::string(PendingError().Description()) + "\n"; });
    field_.OnGotFocus([this] {
      log_ += "field got\n";
      SelectActiveText();
    });
    field_.OnLostFocus([this] {
      log_ += "field lost\n";
      if (raises_) throw LibraryError(1, {}, "lost");
    });
    field_.OnChange([this] { log_ += "field " + field_.Text() + "\n"; });
    field_.OnKeyPress(FilterRealKey);
    updown_.SetRange(1, 100, 10);
    updown_.OnChange(Note("updown"));
    for (CItemList* list : std::initializer_list<CItemList*>{&drop_, &list_}) {
      for (const int code : {7, 8, 9}) {
        list->AddItem("entry " + std::to_string(code));
        list->SetItemData(list->NewIndex(), code);
      }
      list->OnClick(
          [this, list] { log_ += list->Name() + " " + std::to_string(list->ListIndex()) + "\n"; });
    }
    list_.OnDoubleClick(Note("double"));
    box_.OnClick(Note("box"));
    options_.OnClick(Note("options"));
    options_.SetOptionCaption(1, "&Two");
    tabs_.AddTab(0);
    tabs_.AddTab(1);
    tabs_.OnClick(Note("tabs"));
    label_.SetCaption("&Field");
    ok_.SetCaption("&OK");
    ok_.OnClick([this] {
      log_ += "ok\n";
      if (inok_) inok_();
    });
    cancel_.OnClick([this] {
      log_ += "cancel\n";
      form_.Hide();
    });
    help_.OnClick(Note("help"));
  }

  Handler Note(const std::string& text) {
    return [this, text] { log_ += text + "\n"; };
  }

  // What `acts` leaves in the log, in the shown window, which is closed afterwards.
  std::string Of(const std::function<void(CUser& user)>& acts) {
    std::string seen;
    forms_.Expect("frmTest", [&](CUser& user) {
      log_.clear();
      acts(user);
      seen = log_;
      form_.Hide();
    });
    form_.ShowModal(nullptr);
    return seen;
  }

  std::string log_;
  bool raises_ = false;
  Handler inok_;
  test::CTestHost host_;
  CMemoryForms forms_;
  std::unique_ptr<CForm> made_ = forms_.Make("frmTest");
  CForm& form_ = *made_;
  CFrame& frame_ = form_.Add<CFrame>("fram");
  CLabel& label_ = form_.Add<CLabel>("lbl", &frame_);
  CTextField& field_ = form_.Add<CTextField>("txt", &frame_);
  CUpDown& updown_ = form_.Add<CUpDown>("ud", &frame_, field_);
  CTextField& fixed_ = form_.Add<CTextField>("txtFixed", nullptr, true);
  CDropDown& drop_ = form_.Add<CDropDown>("cbo");
  CListBox& list_ = form_.Add<CListBox>("lst");
  CCheckBox& box_ = form_.Add<CCheckBox>("chk");
  COptionGroup& options_ = form_.Add<COptionGroup>("opt", nullptr, 2);
  CTabStrip& tabs_ = form_.Add<CTabStrip>("tab");
  CButton& ok_ = form_.Add<CButton>("cmdOK", nullptr, EButtonRole::DEFAULT);
  CButton& cancel_ = form_.Add<CButton>("cmdCancel", nullptr, EButtonRole::CANCEL);
  CButton& help_ = form_.Add<CButton>("cmdHelp", nullptr, EButtonRole::HELP);
};

TEST_F(Form, ProgramAndUserRunTheirEvents) {
  form_.Load();
  EXPECT_EQ(log_, "load\n");
  log_.clear();
  field_.SetText("5");
  field_.SetText("5");
  updown_.SetRange(1, 50, 10);
  form_.SetEnabled(false);
  list_.SetListIndex(1);
  list_.SetListIndex(1);
  SelectItemByData(drop_, 9);
  list_.RemoveItem(0);
  list_.RemoveItem(0);
  drop_.Clear();
  options_.Select(0);
  options_.Select(0);
  box_.SetChecked(true);
  tabs_.Select(0);
  tabs_.Select(1);
  form_.SetEnabled(true);
  EXPECT_EQ(log_, "field 5\nlst 1\ncbo 2\noptions\ntabs\n");
  EXPECT_EQ(list_.ListIndex(), -1);
  EXPECT_THROW(list_.SetListIndex(1), std::out_of_range);
  EXPECT_THROW(list_.RemoveItem(-1), std::out_of_range);

  EXPECT_EQ(Of([&](CUser& user) {
              EXPECT_TRUE(user.Pick(list_, 0));
              EXPECT_TRUE(user.Pick(list_, 0));
              EXPECT_TRUE(user.DoubleClick(list_, 0));
              EXPECT_FALSE(user.Pick(list_, 1));
              EXPECT_TRUE(user.Click(box_));
              EXPECT_TRUE(user.Choose(options_, 1));
              EXPECT_TRUE(user.SelectTab(tabs_, 0));
              EXPECT_TRUE(user.Click(ok_));
              EXPECT_TRUE(user.Help());
              EXPECT_TRUE(user.Escape());
              EXPECT_FALSE(user.Click(ok_));
            }),
            "field lost\nlst 0\ndouble\nbox\noptions\ntabs\nok\nhelp\ncancel\n");
  EXPECT_FALSE(box_.Checked());
  form_.Unload();
  form_.Unload();
  EXPECT_EQ(log_, "field lost\nlst 0\ndouble\nbox\noptions\ntabs\nok\nhelp\ncancel\nunload\n");
  EXPECT_EQ(forms_.Faults(), "");
}

TEST_F(Form, KeysGoIntoTheFieldWithTheFocus) {
  host_.platform.separator = ",";
  field_.SetMaxLength(6);
  EXPECT_EQ(Of([&](CUser& user) {
              EXPECT_EQ(form_.Focused(), &field_);
              EXPECT_FALSE(user.Type("x1.5"));
              EXPECT_EQ(field_.Text(), "1,5");
              EXPECT_TRUE(user.Key(8));
              EXPECT_TRUE(user.Select(0));
              EXPECT_FALSE(user.Paste("a\xC3\xA4\xE2\x82\xACz99\n7"));
              EXPECT_EQ(field_.Text(), "a\xC3\xA4\xE2\x82\xACz1,");
              EXPECT_EQ(field_.SelectionStart(), 4);
              EXPECT_TRUE(user.Select(1, 2));
              EXPECT_TRUE(user.Delete());
              EXPECT_TRUE(user.Delete());
              EXPECT_TRUE(user.Key(3));
              EXPECT_EQ(field_.Text(), "a1,");
              EXPECT_TRUE(user.SelectAll());
              EXPECT_TRUE(user.Type("2"));
              EXPECT_FALSE(user.Type("\xC3\xA4"));
            }),
            "field 1\nfield 1,\nfield 1,5\nfield 1,\nfield a\xC3\xA4\xE2\x82\xACz1,\nfield az1,\n"
            "field a1,\nfield 2\n");
  EXPECT_EQ(Of([&](CUser& user) {
              EXPECT_TRUE(user.Tab());
              EXPECT_EQ(form_.Focused(), &fixed_);
              EXPECT_FALSE(user.Type("1") || user.Paste("1") || user.Delete());
              EXPECT_TRUE(user.Tab(false));
              EXPECT_EQ(field_.SelectionLength(), 1);
              EXPECT_TRUE(user.Tab(false));
              EXPECT_EQ(form_.Focused(), &help_);
              EXPECT_TRUE(user.PressAccessKey('F'));
              EXPECT_TRUE(user.PressAccessKey('t'));
              EXPECT_EQ(options_.Selected(), 1);
              EXPECT_FALSE(user.PressAccessKey('z'));
            }),
            "field lost\nfield got\nfield lost\nfield got\nfield lost\noptions\n");
}

TEST_F(Form, UpDownStaysWithinItsLimits) {
  const auto stepped = [&](const char* text, bool up) {
    field_.SetText(text);
    Of([&](CUser& user) { EXPECT_TRUE(user.Step(updown_, up)); });
    return field_.Text();
  };
  EXPECT_EQ(stepped("1", true), "11");
  EXPECT_EQ(stepped("95", true), "100");
  EXPECT_EQ(stepped("500", false), "100");
  EXPECT_EQ(stepped("5", false), "1");
  EXPECT_EQ(stepped("", true), "10");
  EXPECT_EQ(stepped(" +20x", true), "30");
  EXPECT_EQ(stepped("99999999999999999999", false), "100");
  EXPECT_EQ(stepped("-99999999999999999999", true), "1");
  field_.SetText("100");
  EXPECT_EQ(Of([&](CUser& user) {
              user.Tab();
              user.Step(updown_, true);
              user.Step(updown_, false);
            }),
            "field lost\nfield got\nfield 90\nupdown\n");
}

TEST_F(Form, NothingHappensOnWhatCantBeUsed) {
  EXPECT_FALSE(CUser(form_).Click(ok_));
  EXPECT_FALSE(form_.SetFocus(list_));
  EXPECT_EQ(Of([&](CUser& user) {
              EXPECT_TRUE(form_.SetFocus(list_));
              EXPECT_FALSE(form_.SetFocus(frame_));
              frame_.SetVisible(false);
              EXPECT_FALSE(user.Focus(field_) || user.Step(updown_, true));
              EXPECT_FALSE(user.PressAccessKey('f'));
              frame_.SetVisible(true);
              updown_.SetEnabled(false);
              EXPECT_FALSE(user.Step(updown_, true));
              ok_.SetEnabled(false);
              EXPECT_FALSE(user.Click(ok_) || user.Return());
              form_.SetEnabled(false);
              EXPECT_FALSE(user.CloseBox() || user.Pick(list_, 2) || user.Tab());
              EXPECT_FALSE(form_.SetFocus(list_));
              form_.SetEnabled(true);
              EXPECT_TRUE(user.Focus(ok_) == false && user.Focus(help_));
              help_.SetVisible(false);
              EXPECT_TRUE(user.Pick(list_, 2));
            }),
            "field lost\nlst 2\n");

  // A window lies under the one that was shown last, whoever owns that.
  ok_.SetEnabled(true);
  const auto above = forms_.Make("frmAbove");
  inok_ = [&] {
    forms_.Expect("frmAbove", [&](CUser& other) {
      CUser user(form_);
      EXPECT_FALSE(user.Pick(list_, 0) || user.Click(box_) || user.CloseBox());
      other.Form().Hide();
    });
    above->ShowModal(&form_);
  };
  EXPECT_EQ(Of([&](CUser& user) {
              EXPECT_TRUE(user.Click(ok_));
              EXPECT_TRUE(user.Pick(list_, 0));
            }),
            "field lost\nok\nlst 0\n");
  EXPECT_EQ(forms_.LastOwner(), &form_);

  // An entry may be gone by then with the field that lost the focus.
  EXPECT_EQ(Of([&](CUser& user) {
              field_.OnLostFocus([&] { list_.RemoveItem(2); });
              EXPECT_FALSE(user.Pick(list_, 2));
            }),
            "");
}

TEST_F(Form, OneCommandRunsAtATime) {
  drop_.SetCommand(true);
  inok_ = [&] {
    CUser user(form_);
    EXPECT_TRUE(form_.IsRunning());
    EXPECT_FALSE(user.Click(ok_) || user.Click(cancel_) || user.CloseBox() || user.Escape() ||
                 user.Return() || user.Help() || user.Pick(drop_, 0) || user.DoubleClick(list_, 0));
    EXPECT_TRUE(user.Pick(list_, 2) && user.Focus(field_) && user.Type("1"));
  };
  EXPECT_EQ(Of([&](CUser& user) {
              EXPECT_TRUE(user.Return());
              EXPECT_FALSE(form_.IsRunning());
              EXPECT_TRUE(user.Pick(drop_, 0));
              EXPECT_TRUE(user.CloseBox());
            }),
            "field lost\nok\nfield lost\nlst 2\nfield got\nfield 1\nfield lost\ncbo 0\ncancel\n");
  form_.OnFirstPaint([&] { EXPECT_FALSE(CUser(form_).CloseBox()); });
  form_.Unload();
  EXPECT_EQ(Of([](CUser&) {}), "");
}

TEST_F(Form, FailureOfAnEventEndsAtTheForm) {
  raises_ = true;
  EXPECT_EQ(Of([&](CUser& user) {
              EXPECT_FALSE(user.Click(ok_));
              EXPECT_EQ(form_.Focused(), &field_);
              EXPECT_FALSE(user.Return());
              raises_ = false;
              inok_ = [] { throw LibraryError(2, {}, "ok"); };
              EXPECT_FALSE(user.Return());
              EXPECT_TRUE(form_.Shown());
            }),
            "field lost\nfailed: lost\nfield lost\nfailed: lost\nfield lost\nok\nfailed: ok\n");
  // Without a handler it closes the window.
  form_.OnFailure({});
  EXPECT_EQ(test::CTestHost::ErrorOf([&] {
              Of([&](CUser& user) {
                EXPECT_FALSE(user.Return());
                EXPECT_FALSE(form_.Shown());
              });
            }).Number(),
            2);
  EXPECT_EQ(CForm::Active(), nullptr);
}

// A back end that only does what it is told has the same window as the library.
TEST_F(Form, BackEndIsToldEveryChange) {
  std::map<std::pair<std::string, EAspect>, std::string> mirror;
  const auto value = [](CControl& control, EAspect aspect) -> std::string {
    const auto* const list = dynamic_cast<CItemList*>(&control);
    switch (aspect) {
      case EAspect::CAPTION:
        return control.Caption();
      case EAspect::ENABLED:
        return control.Enabled() ? "1" : "0";
      case EAspect::VISIBLE:
        return control.Visible() ? "1" : "0";
      case EAspect::TEXT:
        return dynamic_cast<CTextField&>(control).Text();
      case EAspect::ITEMS: {
        std::string items;
        for (std::int32_t i = 0; i < list->ListCount(); ++i) {
          items += list->ItemText(i) + "#" + std::to_string(list->ItemData(i)) + " ";
        }
        return items;
      }
      case EAspect::SELECTION:
        return list != nullptr ? std::to_string(list->ListIndex()) : "field";
      default:
        return "told";
    }
  };
  forms_.OnChanged([&](CControl& control, EAspect aspect) {
    mirror[{control.Name(), aspect}] = value(control, aspect);
  });
  const auto seen = [&](CControl& control, EAspect aspect) {
    EXPECT_EQ((mirror[{control.Name(), aspect}]), value(control, aspect)) << control.Name();
  };
  Of([&](CUser& user) {
    user.Type("12");
    seen(field_, EAspect::TEXT);
    user.Key(8);
    seen(field_, EAspect::TEXT);
    user.Step(updown_, true);
    seen(field_, EAspect::TEXT);
    user.Pick(list_, 1);
    seen(list_, EAspect::SELECTION);
    list_.SetItemText(1, "renamed");
    seen(list_, EAspect::ITEMS);
    list_.SetItemData(1, -1);
    seen(list_, EAspect::ITEMS);
    list_.RemoveItem(0);
    seen(list_, EAspect::ITEMS);
    seen(list_, EAspect::SELECTION);
    list_.Clear();
    seen(list_, EAspect::ITEMS);
    seen(list_, EAspect::SELECTION);
    label_.SetCaption("new");
    seen(label_, EAspect::CAPTION);
    form_.SetEnabled(false);
    seen(form_, EAspect::ENABLED);
    form_.SetEnabled(true);
    box_.SetVisible(false);
    seen(box_, EAspect::VISIBLE);
    updown_.SetRange(0, 1, 1);
    seen(updown_, EAspect::RANGE);
    user.SelectTab(tabs_, 1);
    seen(tabs_, EAspect::TAB);
    seen(tabs_, EAspect::FOCUS);
    form_.SetPlace({1, 2, 3, 4});
    seen(form_, EAspect::PLACE);
  });
  seen(form_, EAspect::SHOWN);
}

// What an event does to the controls around it leaves the focus where it can be.
TEST_F(Form, FocusFollowsWhatEventsClose) {
  field_.OnChange([this] { field_.SetEnabled(field_.Text() != "9"); });
  field_.OnLostFocus([this] { box_.SetEnabled(false); });
  EXPECT_EQ(Of([&](CUser& user) {
              EXPECT_TRUE(user.Type("9"));
              EXPECT_EQ(form_.Focused(), &fixed_);
              field_.SetEnabled(true);
              box_.SetEnabled(true);
              EXPECT_TRUE(user.Focus(field_));
              EXPECT_FALSE(user.Click(box_));
              EXPECT_EQ(form_.Focused(), &field_);
              field_.OnLostFocus([this] { list_.RemoveItem(2); });
              EXPECT_FALSE(user.DoubleClick(list_, 2));
              EXPECT_TRUE(form_.Shown());
            }),
            "field got\n");
  EXPECT_FALSE(box_.Checked());
}

TEST(MemoryForms, TellsWhatNobodyExpectedAndWhatNobodyUsed) {
  CMemoryForms forms;
  forms.ExpectBox("write", EBoxButton::YES);
  EXPECT_EQ(forms.MessageBox("Do you wish to write?", kBoxQuestion | kBoxYesNo), EBoxButton::YES);
  EXPECT_EQ(forms.Faults(), "");
  int passes = 0;
  forms.AtPass(2, [&] {
    ++passes;
    forms.RunMessageQueue();
  });
  forms.AtPass(3, [&] { passes += 10; });
  forms.AtPass(4, [] {});
  forms.RunMessageQueue();
  forms.RunMessageQueue();
  EXPECT_EQ(passes, 11);
  forms.Expect("frmShy", [&](CUser&) { ++passes; });
  const auto shy = forms.Make("frmShy");
  shy->OnFirstPaint([&] { shy->Hide(); });
  shy->ShowModal(nullptr);
  EXPECT_EQ(passes, 11);
  EXPECT_EQ(forms.MessageBox("sure?", kBoxYesNo), EBoxButton::NO);
  forms.ExpectBox("gone", EBoxButton::NO);
  EXPECT_EQ(forms.MessageBox("gone", kBoxStop), EBoxButton::NO);
  forms.ExpectBox("never");
  forms.Expect("frmNever", {});
  EXPECT_EQ(forms.Faults(),
            "The window frmShy closed before anybody acted.\n"
            "Nobody expected the box \"sure?\".\n"
            "The box \"gone\" has no such button as was expected.\n"
            "The window frmNever has not come up.\nThe box \"never\" has not come up.\n"
            "The queue was not passed to the 4. time.\n");
}

}  // namespace
}  // namespace vane
