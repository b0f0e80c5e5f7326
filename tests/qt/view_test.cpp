// The library's windows in real widgets. A user's walk through them runs twice, at the door of the
// seam and by keys and mouse on the widgets, and has to leave the same transcript: what he sees
// behind each act, and every line that went to the readout.
#include <gmock/gmock.h>

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <algorithm>
#include <deque>
#include <map>

#include "adapters/conversions/probe.h"
#include "adapters/headless/headless_factory.h"
#include "adapters/headless/headless_platform.h"
#include "adapters/qt/pumped_communications.h"
#include "adapters/qt/qt_text.h"
#include "adapters/qt/qt_view.h"
#include "simulator/line_server.h"
#include "tests/support/form_text.h"
#include "vane/channels/channel.h"
#include "vane/components/memory_forms.h"
#include "vane/instrument/t312b.h"

namespace vane {
namespace {

using test::FormText;
using testing::HasSubstr;

// What a user does, by the names of the controls.
class CHands {
 public:
  virtual ~CHands() = default;
  virtual void Begin() {}
  virtual void Enter(const std::string& field, const std::string& text) = 0;
  virtual void Paste(const std::string& field, const std::string& text) = 0;
  virtual void Step(const std::string& updown, bool up) = 0;
  virtual void Pick(const std::string& list, std::int32_t index) = 0;
  virtual void DoubleClick(const std::string& list, std::int32_t index) = 0;
  virtual void Choose(const std::string& group, std::int32_t index) = 0;
  virtual void Tick(const std::string& box) = 0;
  virtual void Press(const std::string& button) = 0;
  virtual void ShowTab(std::int32_t index) = 0;
  virtual void Tab(bool forward) = 0;
  virtual void Return() = 0;
  virtual void Escape() = 0;
  virtual void AccessKey(char key) = 0;
  virtual void CloseBox() = 0;
};

class CDoorHands final : public CHands {
 public:
  explicit CDoorHands(ui::CForm& form) : user_(form) {}

  void Enter(const std::string& field, const std::string& text) override {
    user_.Focus(user_.Find<ui::CTextField>(field));
    user_.SelectAll();
    user_.Type(text);
  }
  void Paste(const std::string& field, const std::string& text) override {
    user_.Focus(user_.Find<ui::CTextField>(field));
    user_.SelectAll();
    user_.Paste(text);
  }
  void Step(const std::string& updown, bool up) override {
    user_.Step(user_.Find<ui::CUpDown>(updown), up);
  }
  void Pick(const std::string& list, std::int32_t index) override {
    user_.Pick(user_.Find<ui::CItemList>(list), index);
  }
  void DoubleClick(const std::string& list, std::int32_t index) override {
    user_.DoubleClick(user_.Find<ui::CListBox>(list), index);
  }
  void Choose(const std::string& group, std::int32_t index) override {
    user_.Choose(user_.Find<ui::COptionGroup>(group), index);
  }
  void Tick(const std::string& box) override { user_.Click(user_.Find<ui::CCheckBox>(box)); }
  void Press(const std::string& button) override { user_.Click(user_.Find<ui::CButton>(button)); }
  void ShowTab(std::int32_t index) override {
    user_.SelectTab(user_.Find<ui::CTabStrip>("tabSettings"), index);
  }
  void Tab(bool forward) override { user_.Tab(forward); }
  void Return() override { user_.Return(); }
  void Escape() override { user_.Escape(); }
  void AccessKey(char key) override { user_.PressAccessKey(key); }
  void CloseBox() override { user_.CloseBox(); }

 private:
  ui::CUser user_;
};

class CWidgetHands final : public CHands {
 public:
  explicit CWidgetHands(QWidget& window) : window_(window) {}

  // Without a screen nobody makes a window active again when a list or a window above it has gone.
  void Begin() override {
    QCoreApplication::processEvents();
    window_.activateWindow();
    EXPECT_TRUE(QTest::qWaitFor(
        [this] { return QGuiApplication::focusWindow() == window_.windowHandle(); }));
  }

  void Enter(const std::string& field, const std::string& text) override {
    auto& line = Click<QLineEdit>(field);
    QTest::keyClick(&line, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(&line, ToQt(text));
  }
  void Paste(const std::string& field, const std::string& text) override {
    QApplication::clipboard()->setText(ToQt(text));
    auto& line = Click<QLineEdit>(field);
    QTest::keyClick(&line, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&line, Qt::Key_V, Qt::ControlModifier);
  }
  void Step(const std::string& updown, bool up) override {
    for (auto* const arrow : Find<QWidget>(updown).findChildren<QToolButton*>()) {
      if ((arrow->arrowType() == Qt::UpArrow) == up) QTest::mouseClick(arrow, Qt::LeftButton);
    }
  }
  void Pick(const std::string& list, std::int32_t index) override {
    if (auto* const combo = qobject_cast<QComboBox*>(&Find<QWidget>(list))) {
      QTest::mouseClick(combo, Qt::LeftButton);
      QTest::keyClick(combo->view(), Qt::Key_Home);
      for (std::int32_t i = 0; i < index; ++i) QTest::keyClick(combo->view(), Qt::Key_Down);
      QTest::keyClick(combo->view(), Qt::Key_Return);
    } else {
      ClickItem(Find<QListWidget>(list), index);
    }
  }
  void DoubleClick(const std::string& list, std::int32_t index) override {
    auto& box = Find<QListWidget>(list);
    ClickItem(box, index);
    QTest::mouseDClick(box.viewport(), Qt::LeftButton, {}, PlaceOf(box, index));
  }
  void Choose(const std::string& group, std::int32_t index) override {
    auto* const button = Find<QWidget>(group).findChildren<QRadioButton*>().at(index);
    QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
  }
  void Tick(const std::string& box) override {
    auto& button = Find<QCheckBox>(box);
    QTest::mouseClick(&button, Qt::LeftButton, {}, QPoint(8, button.height() / 2));
  }
  void Press(const std::string& button) override { Click<QPushButton>(button); }
  void ShowTab(std::int32_t index) override {
    auto& bar = Find<QTabBar>("tabSettings");
    QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.tabRect(index).center());
  }
  void Tab(bool forward) override { Key(forward ? Qt::Key_Tab : Qt::Key_Backtab); }
  void Return() override { Key(Qt::Key_Return); }
  void Escape() override { Key(Qt::Key_Escape); }
  void AccessKey(char key) override { QTest::keyClick(Target(), key, Qt::AltModifier); }
  void CloseBox() override { window_.close(); }

 private:
  template <class Widget>
  Widget& Find(const std::string& name) {
    auto* const found = window_.findChild<Widget*>(ToQt(name));
    if (found == nullptr) throw std::invalid_argument("no widget " + name);
    return *found;
  }
  template <class Widget>
  Widget& Click(const std::string& name) {
    auto& widget = Find<Widget>(name);
    QTest::mouseClick(&widget, Qt::LeftButton);
    return widget;
  }
  static QPoint PlaceOf(QAbstractItemView& view, int row) {
    const QModelIndex index = view.model()->index(row, 0);
    view.scrollTo(index);
    return view.visualRect(index).center();
  }
  static void ClickItem(QAbstractItemView& view, int row) {
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, PlaceOf(view, row));
  }
  QWidget* Target() { return window_.focusWidget() != nullptr ? window_.focusWidget() : &window_; }
  void Key(Qt::Key key) { QTest::keyClick(Target(), key); }

  QWidget& window_;
};

class CTypedPasscode final : public CVanePasscodeDialog {
 public:
  void SetHelpFile(const std::string&) override {}
  bool ShowDialog(std::string& entered, ui::CWindow*) override {
    entered = "1234";
    return true;
  }
};

// What went to the readout, without tags and check values.
class CSentLines final : public CLineTrace {
 public:
  explicit CSentLines(std::string& transcript) : transcript_(transcript) {}
  void Record(ETraceMark mark, std::string_view text) override {
    if (mark != ETraceMark::SENT) return;
    const std::size_t start = text.find(' ') + 1;
    transcript_ += "> " + std::string(text.substr(start, text.rfind('*') - start)) + "\n";
  }

 private:
  std::string& transcript_;
};

using Acts = std::function<void(CHands& hands)>;

// Hands that write down what the user sees behind each act.
class CWalker final : public CHands {
 public:
  CWalker(CHands& hands, ui::CForm& form, std::string& transcript)
      : hands_(hands), form_(form), transcript_(transcript) {}

  void Enter(const std::string& field, const std::string& text) override {
    Do("enter " + field + "=" + text, [&] { hands_.Enter(field, text); });
  }
  void Paste(const std::string& field, const std::string& text) override {
    Do("paste " + field + "=" + text, [&] { hands_.Paste(field, text); });
  }
  void Step(const std::string& updown, bool up) override {
    Do("step " + updown, [&] { hands_.Step(updown, up); });
  }
  void Pick(const std::string& list, std::int32_t index) override {
    Do("pick " + list + std::to_string(index), [&] { hands_.Pick(list, index); });
  }
  void DoubleClick(const std::string& list, std::int32_t index) override {
    Do("double-click " + list, [&] { hands_.DoubleClick(list, index); });
  }
  void Choose(const std::string& group, std::int32_t index) override {
    Do("choose " + group, [&] { hands_.Choose(group, index); });
  }
  void Tick(const std::string& box) override {
    Do("tick " + box, [&] { hands_.Tick(box); });
  }
  void Press(const std::string& button) override {
    Do("press " + button, [&] { hands_.Press(button); });
  }
  void ShowTab(std::int32_t index) override {
    Do("tab " + std::to_string(index), [&] { hands_.ShowTab(index); });
  }
  void Tab(bool forward) override {
    Do("Tab", [&] { hands_.Tab(forward); });
  }
  void Return() override {
    Do("Return", [&] { hands_.Return(); });
  }
  void Escape() override {
    Do("Escape", [&] { hands_.Escape(); });
  }
  void AccessKey(char key) override {
    Do(std::string("Alt+") + key, [&] { hands_.AccessKey(key); });
  }
  void CloseBox() override {
    Do("close box", [&] { hands_.CloseBox(); });
  }

 private:
  void Do(const std::string& what, const std::function<void()>& act) {
    transcript_ += "- " + what + "\n";
    hands_.Begin();
    act();
    if (!form_.Shown()) {
      transcript_ += "closed\n";
      return;
    }
    const ui::CControl* const focused = form_.Focused();
    transcript_ += FormText(form_) + "focus " + (focused == nullptr ? "" : focused->Name()) + "\n";
  }

  CHands& hands_;
  ui::CForm& form_;
  std::string& transcript_;
};

struct Walk {
  std::string window;
  Acts acts;
};

// One run of walks on a fresh readout, at the door or on the widgets.
class CRun {
 public:
  CRun(bool haswidgets, std::deque<Walk> walks)
      : haswidgets_(haswidgets), walks_(std::move(walks)), factory_(*this), platform_(*this) {
    platform_.SkipWaits();
    readout_.Start();
    line_->devices[EVanePortNumber::PORT_1] = readout_.Path();
    instrument_.SetRegistry(std::make_shared<CEmptyRegistry>());
    instrument_.InitializeCommunications();
    EXPECT_TRUE(instrument_.QueryChannelInfo());
    line_->trace = std::make_shared<CSentLines>(transcript_);
  }

  CVaneT312B& Instrument() { return instrument_; }

  std::string Transcript() {
    EXPECT_TRUE(walks_.empty()) << walks_.front().window << " has not come up";
    return transcript_;
  }

 private:
  class CFactory final : public CHeadlessFactory {
   public:
    explicit CFactory(CRun& run) : CHeadlessFactory(run.line_), run_(run) {}
    std::unique_ptr<CVaneCommunications> MakeCommunications() override {
      auto line = CHeadlessFactory::MakeCommunications();
      if (!run_.haswidgets_) return line;
      return std::make_unique<CPumpedCommunications>(std::move(line));
    }
    std::unique_ptr<CVaneProbe> MakeProbe() override {
      return std::make_unique<CThermometerProbe>(true);
    }
    std::unique_ptr<CVanePasscodeDialog> MakePasscodeDialog() override {
      return std::make_unique<CTypedPasscode>();
    }
    std::unique_ptr<ui::CForm> MakeForm(const std::string& name) override {
      return run_.MakeForm(name);
    }

   private:
    CRun& run_;
  };

  class CPlatformOfRun final : public CHeadlessPlatform {
   public:
    explicit CPlatformOfRun(CRun& run) : CHeadlessPlatform(EBoxButton::YES), run_(run) {}
    EBoxButton MessageBox(const std::string& text, const std::string& title, std::int32_t flags,
                          const std::string& helpfile, std::int32_t helpcontext) override {
      run_.transcript_ += "box " + text + "\n";
      return CHeadlessPlatform::MessageBox(text, title, flags, helpfile, helpcontext);
    }

   private:
    CRun& run_;
  };

  std::unique_ptr<ui::CForm> MakeForm(const std::string& name) {
    EXPECT_FALSE(walks_.empty()) << name;
    const Walk walk = walks_.front();
    walks_.pop_front();
    EXPECT_EQ(name, walk.window);
    if (!haswidgets_) {
      memory_.Expect(name, [this, walk](ui::CUser& user) {
        CDoorHands hands(user.Form());
        Go(walk, hands, user.Form());
      });
      return memory_.Make(name);
    }
    auto view = std::make_unique<CQtView>();
    CQtView& shown = *view;
    auto form = std::make_unique<ui::CForm>(name, std::move(view));
    WaitAndGo(walk, *form, shown);
    return form;
  }

  // When the window has painted itself.
  void WaitAndGo(const Walk& walk, ui::CForm& form, CQtView& view) {
    QTimer::singleShot(10, [this, walk, &form, &view] {
      QWidget* const window = form.Shown() ? view.WidgetOf(form) : nullptr;
      if (window == nullptr || !window->isVisible() || !form.Enabled() || form.IsRunning()) {
        return WaitAndGo(walk, form, view);
      }
      CWidgetHands hands(*window);
      Go(walk, hands, form);
    });
  }

  void Go(const Walk& walk, CHands& hands, ui::CForm& form) {
    transcript_ += walk.window + "\n" + FormText(form);
    CWalker walker(hands, form, transcript_);
    walk.acts(walker);
    EXPECT_FALSE(form.Shown()) << walk.window;
    if (form.Shown()) form.Hide();
  }

  const bool haswidgets_;
  std::deque<Walk> walks_;
  std::string transcript_;
  CMemoryForms memory_;
  std::shared_ptr<LineSettings> line_ = std::make_shared<LineSettings>();
  simulator::CSimulatedLine readout_{
      simulator::ParseOptions("--protect units,sampling,calibration,conversion")};
  CFactory factory_;
  CPlatformOfRun platform_;
  const Components components_{platform_, factory_};
  CInstalledComponents installed_{components_};
  CVaneT312B instrument_{components_};
};

// The walk at the door and on the widgets; gives the transcript that both have left.
std::string WalkTwice(const std::deque<Walk>& walks,
                      const std::function<void(CVaneT312B& instrument)>& open) {
  std::string transcripts[2];
  for (const bool haswidgets : {false, true}) {
    CRun run(haswidgets, walks);
    open(run.Instrument());
    transcripts[haswidgets ? 1 : 0] = run.Transcript();
  }
  const auto& [atdoor, onwidgets] = transcripts;
  const auto [one, other] = std::ranges::mismatch(atdoor, onwidgets);
  const auto around = [](auto place, const std::string& text) {
    const auto at = static_cast<std::size_t>(place - text.begin());
    return text.substr(at - std::min<std::size_t>(at, 300), 600);
  };
  EXPECT_TRUE(atdoor == onwidgets) << "At the door:\n"
                                   << around(one, atdoor) << "\nOn the widgets:\n"
                                   << around(other, onwidgets);
  return transcripts[1];
}

TEST(QtView, SettingsAreEditedAsAtTheDoor) {
  const Acts acts = [](CHands& user) {
    user.Tab(true);
    user.Tab(false);
    user.Press("cmdEditProtected");
    user.ShowTab(0);
    user.Pick("cboFilterType", 2);
    user.Enter("txtResponseTime", "7.5x");
    user.Tab(true);
    user.ShowTab(1);
    user.Pick("cboUnits", 1);
    user.Step("udInterval", true);
    user.Enter("txtInterval", "-99999");
    user.Tab(true);
    user.Paste("txtIntegrationTime", "4x2");
    user.Tab(true);
    user.ShowTab(2);
    user.Pick("cboChannelMode", 4);
    user.Pick("cboScanMode", 2);
    user.Enter("txtSteps", "3");
    user.Tab(true);
    user.Pick("lstSequence", 1);
    user.Pick("cboSelectedChannel", 4);
    user.ShowTab(4);
    user.Enter("txtADC", "-1.5e");
    user.Press("cmdApply");
    user.ShowTab(3);
    user.Return();
  };
  const std::string seen =
      WalkTwice({{"frmT312BSettings", acts}}, [](CVaneT312B& it) { EXPECT_TRUE(it.Edit()); });
  EXPECT_THAT(seen, HasSubstr("> SAMPLE:INTERVAL"));
  EXPECT_THAT(seen, HasSubstr("box Do you wish to write the changes"));
}

// Each road out of a window, with edits and without; what can't be used does nothing.
TEST(QtView, ChannelAndItsConversionAreEditedAsAtTheDoor) {
  const Acts look = [](CHands& user) { user.Return(); };
  const Acts change = [](CHands& user) {
    user.Enter("txtRTPW", "25.512345678");
    user.Pick("cboLowRange", 2);
    user.Tab(true);
    user.Enter("txtLow(0)", "-1.5e-4");
    user.Return();
  };
  const Acts edit = [](CHands& user) {
    user.Press("cmdConversionSettings");
    user.AccessKey('e');
    user.Pick("cboProbeSelection", 2);
    user.Enter("txtProbeSerial", "Z-99 way too long");
    user.Tab(false);
    user.Enter("txtCurrent", "0.12345678");
    user.Tab(true);
    user.Press("cmdConversionSettings");
    user.Pick("cboConversionType", 3);
    user.CloseBox();
  };
  for (const Acts& last : {Acts([](CHands& user) { user.Escape(); }), Acts()}) {
    const Acts acts = [&](CHands& user) {
      edit(user);
      if (last) last(user);
    };
    const std::string seen = WalkTwice({{"frmT312BPRTTHRMChannel", acts},
                                        {"frmConversionSettings", look},
                                        {"frmConversionSettings", change}},
                                       [](CVaneT312B& it) { it.EditChannel(5); });
    EXPECT_THAT(seen, HasSubstr("txtRTPW=25.512345678"));
  }
}

TEST(QtView, DownloadIsChosenAsAtTheDoor) {
  const Acts acts = [](CHands& user) {
    user.Choose("optLog", 1);
    user.Choose("optReadings", 1);
    user.Enter("txtReadings", "20");
    user.Step("udReadings", false);
    user.Step("udResolution", false);
    user.Choose("optFiles", 1);
    user.Tick("chkPrompt");
    user.Tick("chkPrompt");
    user.AccessKey('c');
  };
  const std::string seen = WalkTwice({{"frmT312BDownloadOptions", acts}},
                                     [](CVaneT312B& it) { it.DownloadLoggedData(); });
  EXPECT_THAT(seen, HasSubstr("txtReadings=10"));
}

// What a field does with a value beyond its limits, and a window with what can't be written.
TEST(QtView, LimitsAndChecksAreThoseAtTheDoor) {
  const Acts settings = [](CHands& user) {
    user.Press("cmdEditProtected");
    user.ShowTab(1);
    user.Enter("txtInterval", "100000");
    user.Tab(true);
    user.Enter("txtIntegrationTime", "100");
    user.Tab(true);
    user.Enter("txtConversionTime", "5");
    user.Tab(true);
    user.Enter("txtInterval", "4");
    user.Tab(true);
    user.ShowTab(2);
    user.Pick("cboChannelMode", 4);
    user.Pick("cboScanMode", 4);
    user.Enter("txtSteps", "1");
    user.Tab(true);
    user.Enter("txtSteps", "3");
    user.Tab(true);
    user.Press("cmdApply");
    user.Escape();
  };
  const std::string seen =
      WalkTwice({{"frmT312BSettings", settings}}, [](CVaneT312B& it) { EXPECT_FALSE(it.Edit()); });
  for (const char* const text : {"txtInterval=99999", "txtIntegrationTime=4", "txtConversionTime=4",
                                 "box A valid channel must be assigned to every step"}) {
    EXPECT_THAT(seen, HasSubstr(text));
  }
  const Acts channel = [](CHands& user) {
    user.Press("cmdEditProtected");
    user.Enter("txtCurrent", "30");
    user.Tab(true);
    user.Press("cmdApply");
    user.Escape();
  };
  EXPECT_THAT(WalkTwice({{"frmT312BPRTTHRMChannel", channel}},
                        [](CVaneT312B& it) { EXPECT_FALSE(it.EditChannel(3)); }),
              testing::AllOf(HasSubstr("txtCurrent=21.0000"),
                             HasSubstr("box Do you wish to write the changes that have been made "
                                       "to this channel?")));
  const Acts download = [](CHands& user) {
    user.Choose("optReadings", 1);
    user.Enter("txtReadings", "500");
    user.Tab(true);
    user.Enter("txtReadings", "");
    user.Escape();
  };
  EXPECT_THAT(WalkTwice({{"frmT312BDownloadOptions", download}},
                        [](CVaneT312B& it) { it.DownloadLoggedData(); }),
              HasSubstr("txtReadings=100"));
}

}  // namespace
}  // namespace vane
