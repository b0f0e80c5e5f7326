#include "apps/thermoscribe-desktop/main_window.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDateTime>
#include <QDockWidget>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QSplitter>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <exception>
#include <map>
#include <sstream>
#include <utility>

#include "adapters/files/replacing_file.h"
#include "adapters/qt/qt_text.h"
#include "apps/thermoscribe-desktop/connect_dialog.h"
#include "vane/support/display_texts.h"
#include "vane/support/messages.h"
#include "vane/support/text_table.h"

namespace vane::desktop {
namespace {

constexpr char kWindowSubkey[] = "Desktop\\Window";
constexpr int kMostTraceLines = 5000;
constexpr int kMostErrors = 1000;
constexpr int kClosePause = 20;     // ms
constexpr double kLeastPeriod = 0;  // s
constexpr double kMostPeriod = 86400;

QString NowText() { return QDateTime::currentDateTime().toString("yyyy-MM-dd HH:mm:ss"); }

QString TraceText(const TraceLine& line) {
  const char* const mark = line.mark == ETraceMark::SENT       ? " > "
                           : line.mark == ETraceMark::RECEIVED ? " < "
                                                               : " - ";
  const auto time = std::chrono::floor<std::chrono::milliseconds>(line.time);
  return QDateTime::fromMSecsSinceEpoch(time.time_since_epoch().count()).toString("HH:mm:ss.zzz") +
         mark + ToQt(EscapedText(line.text));
}

}  // namespace

CMainWindow::CMainWindow(CDesktopHost& host) : host_(host) {
  setObjectName("main");
  setWindowTitle("Thermoscribe");
  auto* const content = new QWidget(this);
  auto* const layout = new QVBoxLayout(content);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  banner_ = new CBanner(
      "&Try now", [this] { measuring_.TryNow(); }, content);
  banner_->setObjectName("banner");
  layout->addWidget(banner_);
  auto* const splitter = new QSplitter(Qt::Vertical, content);
  table_ = new CChannelTable(splitter);
  plot_ = new CPlotView(store_, splitter);
  splitter->setStretchFactor(0, 0);
  splitter->setStretchFactor(1, 1);
  splitter->setChildrenCollapsible(false);
  splitter_ = splitter;
  layout->addWidget(splitter, 1);
  setCentralWidget(content);
  readout_ = new QLabel(this);
  line_ = new QLabel(this);
  recordinglabel_ = new QLabel(this);
  recordinglabel_->setObjectName("recording");
  statusBar()->addWidget(readout_, 1);
  statusBar()->addPermanentWidget(recordinglabel_);
  statusBar()->addPermanentWidget(line_);
  MakePanes();
  MakeMenus();
  table_->OnPlotted([this] {
    PlotSeries();
    plot_->Refresh();
  });
  plot_->OnFollowing([this](bool follows) { follow_->setChecked(follows); });
  measuring_.OnRound([this] { ShowReadings(); });
  measuring_.OnState([this] { ShowState(); });
  measuring_.OnRecordingEnded([this](const std::string& why) {
    EndRecording(why);
    QMessageBox::critical(this, "Recording", ToQt(why));
  });
  host_.Platform().OnBox([this](const ShownBox& box) {
    if ((box.flags & kBoxYesNo) == 0) LogError(ToQt(box.text).replace('\n', ' '));
  });
  host_.OnTrouble([this](const std::string& text) { LogError(ToQt(text)); });
  resize(1100, 760);
  ShowState();
}

CMainWindow::~CMainWindow() {
  // A pane that is shown is hidden when the window has gone down to a plain one already.
  tracepane_->toggleViewAction()->disconnect(this);
  host_.SetTrace(nullptr);
  host_.Platform().OnBox(nullptr);
  host_.OnTrouble(nullptr);
}

void CMainWindow::MakePanes() {
  errors_ = new QTreeWidget(this);
  errors_->setHeaderLabels({"Time", "What happened"});
  errors_->setRootIsDecorated(false);
  errors_->setAccessibleName("Errors and messages");
  errors_->setWordWrap(true);
  errorpane_ = new QDockWidget("Messages", this);
  errorpane_->setObjectName("errors");
  errorpane_->setWidget(errors_);
  addDockWidget(Qt::BottomDockWidgetArea, errorpane_);
  errorpane_->hide();
  trace_ = new QPlainTextEdit(this);
  trace_->setReadOnly(true);
  trace_->setMaximumBlockCount(kMostTraceLines);
  trace_->setLineWrapMode(QPlainTextEdit::NoWrap);
  trace_->setFont(QFont("monospace"));
  trace_->setAccessibleName("Lines to and from the readout");
  tracepane_ = new QDockWidget("Line", this);
  tracepane_->setObjectName("trace");
  tracepane_->setWidget(trace_);
  addDockWidget(Qt::BottomDockWidgetArea, tracepane_);
  tracepane_->hide();
  connect(tracepane_->toggleViewAction(), &QAction::toggled, this,
          [this](bool shown) { SetTracing(shown); });
}

QAction* CMainWindow::Add(QMenu& menu, const char* text, const QKeySequence& keys,
                          std::function<void()> run, bool needsreadout) {
  QAction* const action = menu.addAction(text);
  action->setShortcut(keys);
  connect(action, &QAction::triggered, this, [run = std::move(run)] { run(); });
  if (needsreadout) needreadout_.push_back(action);
  return action;
}

void CMainWindow::MakeMenus() {
  QMenu& file = *menuBar()->addMenu("&File");
  QAction* const connection = Add(
      file, "&Connect...", QKeySequence("Ctrl+O"), [this] { AskAndConnect(); }, false);
  Add(file, "&Disconnect", {}, [this] { Disconnect(); });
  file.addSeparator();
  record_ =
      Add(file, "Reco&rd to a file...", QKeySequence("Ctrl+Shift+R"), [this] { BeginRecording(); });
  endrecord_ = Add(
      file, "E&nd the recording", {}, [this] { EndRecording("The recorder was stopped."); }, false);
  file.addSeparator();
  Add(
      file, "Export &plot...", QKeySequence("Ctrl+P"), [this] { ExportPlot(); }, false);
  Add(
      file, "Export &readings...", QKeySequence("Ctrl+E"), [this] { ExportReadings(); }, false);
  file.addSeparator();
  Add(
      file, "&Quit", QKeySequence::Quit, [this] { close(); }, false);

  QMenu& readout = *menuBar()->addMenu("&Readout");
  QAction* const settings = Add(readout, "&Settings...", QKeySequence("Ctrl+T"), [this] {
    host_.Run("editing the settings", [this] { host_.Instrument().Edit(); });
    TakeNewSettings();
  });
  QAction* const channel =
      Add(readout, "&Channel...", QKeySequence("Ctrl+H"), [this] { EditChannel(); });
  QAction* const download = Add(readout, "&Download a log...", QKeySequence("Ctrl+D"), [this] {
    host_.Run("downloading the log", [this] { host_.Instrument().DownloadLoggedData(); });
  });
  readout.addSeparator();
  Add(readout, "Sa&ve a snapshot...", QKeySequence::Save, [this] { snapshots_.Save(); });
  Add(readout, "Co&mpare with a snapshot...", {}, [this] { snapshots_.Compare(); });
  Add(
      readout, "Compare t&wo snapshots...", {}, [this] { snapshots_.CompareFiles(); }, false);
  Add(readout, "&Restore a snapshot...", {}, [this] {
    snapshots_.Restore();
    TakeNewSettings();
  });
  readout.addSeparator();
  Add(readout, "Switch measuring &on", {}, [this] { SwitchReadout(true); });
  Add(readout, "Switch measuring o&ff", {}, [this] { SwitchReadout(false); });
  Add(readout, "Set the cloc&k to this computer's", {}, [this] { SetClock(); });

  QMenu& view = *menuBar()->addMenu("&View");
  live_ = Add(view, "&Live", QKeySequence("Ctrl+L"), [this] {
    if (live_->isChecked()) {
      StartMeasuring();
    } else {
      measuring_.Stop();
    }
  });
  live_->setCheckable(true);
  live_->setChecked(true);
  Add(
      view, "&Interval...", QKeySequence("Ctrl+I"), [this] { AskPeriod(); }, false);
  Add(
      view, "Start the s&tatistics anew", QKeySequence("Ctrl+R"),
      [this] {
        store_.ResetStatistics();
        ShowReadings();
      },
      false);
  view.addSeparator();
  follow_ = Add(
      view, "&Follow the latest", QKeySequence("Ctrl+F"),
      [this] {
        plot_->SetFollowing(follow_->isChecked());
        plot_->Refresh();
      },
      false);
  follow_->setCheckable(true);
  follow_->setChecked(true);
  deviations_ = Add(
      view, "&Deviations from the mean", QKeySequence("Ctrl+Shift+D"),
      [this] { plot_->SetRelative(deviations_->isChecked()); }, false);
  deviations_->setCheckable(true);
  Add(
      view, "Show &all", QKeySequence("Ctrl+0"), [this] { plot_->ShowAll(); }, false);
  view.addSeparator();
  errorpane_->toggleViewAction()->setShortcut(QKeySequence("Ctrl+M"));
  view.addAction(errorpane_->toggleViewAction());
  view.addAction(tracepane_->toggleViewAction());

  QMenu& help = *menuBar()->addMenu("&Help");
  Add(
      help, "&Contents", QKeySequence::HelpContents, [] { HelpOpenTopic(0, 0); }, false);
  Add(
      help, "&About", {},
      [this] {
        QMessageBox::about(
            this, "About Thermoscribe",
            "Thermoscribe " THERMOSCRIBE_VERSION
            "\n\nReads and sets the T312B thermometer readout and its M420 scanner.");
      },
      false);

  auto* const bar = addToolBar("Tools");
  bar->setObjectName("tools");
  bar->setMovable(false);
  for (QAction* const action :
       {connection, live_, settings, channel, download, follow_, deviations_}) {
    bar->addAction(action);
  }
}

bool CMainWindow::Connect(const Connection& connection) {
  EndRecording("The recorder was stopped.");
  measuring_.Stop();
  const bool isdone = host_.Connect(connection, &window_);
  store_.Clear();
  plot_->RemoveAll();
  table_->SetChannels(host_.Channels());
  // The rows, as far as they leave the plot its half.
  const int rows = std::min(table_->sizeHint().height(), splitter_->height() / 2);
  splitter_->setSizes({rows, splitter_->height() - rows});
  if (isdone) {
    live_->setChecked(true);
    plot_->SetFollowing(true);
    StartMeasuring();
  }
  ShowState();
  ShowReadings();
  return isdone;
}

void CMainWindow::Disconnect() {
  if (host_.IsBusy()) return;
  EndRecording("The recorder was stopped.");
  measuring_.Stop();
  host_.Disconnect();
  ShowState();
}

void CMainWindow::ConnectAsBefore() {
  const std::optional<Connection> last = host_.LastConnection();
  if (!last || last->simulated || last->port.empty()) return AskAndConnect();
  Connect(*last);
}

void CMainWindow::AskAndConnect() {
  if (host_.IsBusy()) return;
  const auto chosen = AskForConnection(this, host_.LastConnection());
  if (chosen) Connect(*chosen);
}

void CMainWindow::StartMeasuring() {
  if (!host_.IsConnected() || !live_->isChecked()) return;
  std::vector<std::int16_t> channels;
  for (const ChannelRow& row : host_.Channels()) {
    if (row.enabled) channels.push_back(row.channel);
  }
  measuring_.Start(std::move(channels), period_);
}

void CMainWindow::TakeNewSettings() {
  if (!host_.IsConnected()) return;
  // A line that is lost by now is told by the live view.
  if (!host_.IsBusy()) host_.Exchange([this] { host_.ReadChannels(); });
  table_->SetChannels(host_.Channels());
  StartMeasuring();
  ShowReadings();
}

void CMainWindow::AskPeriod() {
  bool isgiven = false;
  const double seconds = QInputDialog::getDouble(
      this, "Interval",
      "Seconds from one round over the channels to the next, at least.\n"
      "0: whenever the readout has a new reading.",
      std::chrono::duration<double>(period_).count(), kLeastPeriod, kMostPeriod, 1, &isgiven);
  if (!isgiven) return;
  period_ = std::chrono::round<std::chrono::milliseconds>(std::chrono::duration<double>(seconds));
  StartMeasuring();
}

void CMainWindow::EditChannel() {
  const std::int16_t channel = table_->CurrentChannel();
  if (channel == 0) return;
  host_.Run("editing the channel", [&] {
    if (!host_.Instrument().EditChannel(channel)) return;
    // What was written may be right all the same.
    for (const std::string& text : host_.OddThingsOf(channel)) ShowMessage(text);
  });
  TakeNewSettings();
}

void CMainWindow::SwitchReadout(bool on) {
  host_.Run("switching the measuring",
            [&] { on ? host_.Instrument().StartMeasure() : host_.Instrument().StopMeasure(); });
}

void CMainWindow::SetClock() {
  host_.Run("setting the clock", [this] {
    host_.Instrument().SetSystemClock({});
    if (host_.Instrument().UpdateSystemClock(&window_)) {
      LogError("The readout's clock was set to this computer's.");
    }
  });
}

// One that is there already goes on, with its channels.
void CMainWindow::BeginRecording() {
  if (host_.IsBusy() || recording_) return;
  const QString path = QFileDialog::getSaveFileName(this, "Record to a file", "readings.t312",
                                                    "Recordings (*.t312);;All files (*)", nullptr,
                                                    QFileDialog::DontConfirmOverwrite);
  if (path.isEmpty() || !host_.IsConnected()) return;
  const bool isthere = QFileInfo::exists(path);
  if (StartRecording(path)) return;
  recording_.reset();
  if (!isthere) {
    for (const char* const end : {"", "-wal", "-shm"}) QFile::remove(path + end);
  }
}

// False when the user has been told why not.
bool CMainWindow::StartRecording(const QString& path) {
  std::string trouble;
  host_.Run("starting the recording", [&] {
    try {
      recording_.emplace(host_, FromQt(path));
      thermoscribe::Snapshot snapshot;
      if (recording_->IsNew() && !snapshots_.Take("Starting the recording", snapshot)) {
        trouble = "The recording was not started.";
        return;
      }
      std::vector<std::int16_t> channels;
      for (const ChannelRow& row : host_.Channels()) {
        if (row.enabled) channels.push_back(row.channel);
      }
      recording_->OnHappened([this](const std::string& text) {
        LogError(ToQt(text));
        ShowRecording();
      });
      recording_->Start(std::move(channels), snapshot);
    } catch (const std::exception& error) {
      trouble = error.what();
    }
  });
  if (!trouble.empty() || !recording_) {
    QMessageBox::critical(this, "Recording", ToQt(trouble));
    return false;
  }
  live_->setChecked(true);
  if (measuring_.State() == CMeasuring::EState::OFF) StartMeasuring();
  measuring_.Record(&*recording_);
  ShowState();
  ShowRecording();
  return true;
}

void CMainWindow::EndRecording(const std::string& why) {
  if (!recording_) return;
  measuring_.Record(nullptr);
  bool isended = false;
  const std::string trouble = host_.Exchange([&] { isended = recording_->Finish(why); });
  const QString file = ToQt(recording_->Path());
  const std::int64_t count = recording_->Count();
  recording_.reset();
  LogError(QString("%1 has %2 readings. %3")
               .arg(file)
               .arg(count)
               .arg(isended ? QString() : "There was no room for the latest: " + ToQt(trouble)));
  ShowState();
  ShowRecording();
}

void CMainWindow::ShowRecording() {
  if (!recording_) return recordinglabel_->clear();
  const bool isfull = recording_->IsDiskFull();
  const QString name = QFileInfo(ToQt(recording_->Path())).fileName();
  recordinglabel_->setText(
      isfull ? "The disk is full: " + name + " waits for room"
             : QString("Recording %1: %2 readings").arg(name).arg(recording_->Count()));
  QPalette palette = statusBar()->palette();
  if (isfull) palette.setColor(QPalette::WindowText, QColor(0xC0, 0x1C, 0x1C));
  recordinglabel_->setPalette(palette);
}

void CMainWindow::ExportPlot() {
  const QString path =
      QFileDialog::getSaveFileName(this, "Export the plot", "plot.png",
                                   "Picture (*.png);;Scalable drawing (*.svg);;Document (*.pdf)");
  if (path.isEmpty()) return;
  const QString ending = QFileInfo(path).suffix().toLower();
  const EPicture form = ending == "svg"   ? EPicture::SVG
                        : ending == "pdf" ? EPicture::PDF
                                          : EPicture::PNG;
  Export("Export the plot", path, plot_->Picture(form).toStdString());
}

void CMainWindow::ExportReadings() {
  const QString path = QFileDialog::getSaveFileName(this, "Export the readings", "readings.csv",
                                                    "Comma-separated values (*.csv)");
  if (path.isEmpty()) return;
  std::map<std::int16_t, std::string> names;
  for (const ChannelRow& row : host_.Channels()) names[row.channel] = row.name;
  std::ostringstream stream;
  store_.WriteCsv(stream, names, UnitsText);
  Export("Export the readings", path, stream.str());
}

void CMainWindow::Export(const QString& title, const QString& path, const std::string& content) {
  try {
    CReplacingFile file(FromQt(path));
    file.Write(content);
    file.Commit();
    LogError(path + " was written.");
  } catch (const std::exception& error) {
    QMessageBox::critical(this, title, error.what());
  }
}

void CMainWindow::ShowReadings() {
  if (!host_.IsConnected()) return;
  table_->Show(store_, measuring_);
  if (!first_ && measuring_.HasReading()) first_ = std::chrono::steady_clock::now();
  PlotSeries();
  plot_->Refresh();
  ShowRecording();
}

void CMainWindow::PlotSeries() {
  const bool isdark = palette().color(QPalette::Base).lightness() < 128;
  std::map<std::int16_t, QString> names;
  for (const ChannelRow& row : host_.Channels()) names[row.channel] = ToQt(row.name);
  for (const SeriesId id : store_.All()) {
    plot_->SetSeries({id, names[id.channel], ToQt(UnitsText(id.unit)),
                      ChannelColour(id.channel, isdark), table_->IsPlotted(id.channel)});
  }
}

void CMainWindow::ShowState() {
  const bool isconnected = host_.IsConnected();
  for (QAction* const action : needreadout_) action->setEnabled(isconnected);
  // A recording has each new reading, of its own channels, until it is ended.
  const bool isrecording = measuring_.IsRecording();
  live_->setEnabled(isconnected && !isrecording);
  record_->setEnabled(isconnected && !isrecording);
  endrecord_->setEnabled(isrecording);
  const bool islost = measuring_.State() == CMeasuring::EState::LOST;
  QString notice;
  if (islost) {
    notice =
        "The readout can't be reached: " + ToQt(measuring_.Trouble()) + " Trying again by itself.";
    if (banner_->Text() != notice) LogError(notice);
  } else if (!banner_->Text().isEmpty() && isconnected) {
    LogError("The readout answers again.");
  }
  banner_->SetText(notice);
  if (!isconnected) {
    readout_->setText("Not connected");
    line_->clear();
    return;
  }
  QString modules;
  for (std::int16_t idx = 0; idx < host_.Instrument().NumModules(); ++idx) {
    modules += (idx == 0 ? "" : " and ") + ToQt(host_.ModuleText(idx));
  }
  readout_->setText(modules + "  \u00B7  firmware " +
                    QString::number(host_.Instrument().Firmware(), 'f', 2));
  line_->setText(ToQt(host_.Current().Text()));
}

void CMainWindow::LogError(const QString& text) {
  auto* const item = new QTreeWidgetItem({NowText(), text});
  item->setToolTip(1, text);
  errors_->addTopLevelItem(item);
  while (errors_->topLevelItemCount() > kMostErrors) delete errors_->takeTopLevelItem(0);
  errors_->resizeColumnToContents(0);
  errors_->scrollToItem(item);
  statusBar()->showMessage(text, 10'000);
}

void CMainWindow::SetTracing(bool on) {
  if (!on) return host_.SetTrace(nullptr);
  host_.SetTrace([this](const TraceLine& line) { trace_->appendPlainText(TraceText(line)); });
}

void CMainWindow::closeEvent(QCloseEvent* event) {
  // Only a signal gets here in the middle of something. What has the line ends behind its present
  // exchange, what waits for the user is given up.
  QWidget* const modal = QApplication::activeModalWidget();
  if (host_.IsBusy() || modal != nullptr) {
    host_.BeginToEnd();
    if (modal != nullptr) modal->close();
    event->ignore();
    QTimer::singleShot(kClosePause, this, [this] { close(); });
    return;
  }
  EndRecording("The recorder was stopped.");
  measuring_.Stop();
  if (keepsplace_) SavePlace();
  QMainWindow::closeEvent(event);
}

void CMainWindow::KeepPlace() {
  keepsplace_ = true;
  const auto saved = [&](const char* name) {
    return QByteArray::fromBase64(QByteArray::fromStdString(
        host_.Registry().ReadText(name, "", kCurrentUserRoot, kWindowSubkey)));
  };
  restoreGeometry(saved("Geometry"));
  restoreState(saved("Panes"));
}

void CMainWindow::SavePlace() {
  const auto save = [&](const char* name, const QByteArray& value) {
    host_.Registry().WriteText(name, value.toBase64().toStdString(), kWindowSubkey);
  };
  try {
    save("Geometry", saveGeometry());
    save("Panes", saveState());
  } catch (const std::exception&) {
    // The window is about to go: its place is not worth a box.
  }
}

}  // namespace vane::desktop
