// The desktop program's window: the channels and their plot, the errors and the trace, and the way
// to everything else.
#pragma once

#include <QMainWindow>
#include <chrono>
#include <functional>
#include <optional>
#include <vector>

#include "adapters/qt/qt_view.h"
#include "apps/thermoscribe-desktop/banner.h"
#include "apps/thermoscribe-desktop/channel_table.h"
#include "apps/thermoscribe-desktop/desktop_host.h"
#include "apps/thermoscribe-desktop/live_measuring.h"
#include "apps/thermoscribe-desktop/plot/plot_view.h"
#include "apps/thermoscribe-desktop/reading_store.h"
#include "apps/thermoscribe-desktop/snapshot_actions.h"

class QAction;
class QDockWidget;
class QLabel;
class QPlainTextEdit;
class QSplitter;
class QTreeWidget;

namespace vane::desktop {

class CMainWindow final : public QMainWindow {
 public:
  /// `host` outlives it.
  explicit CMainWindow(CDesktopHost& host);
  ~CMainWindow() override;

  /// False when the user has been told why not.
  bool Connect(const Connection& connection);
  /// To the readout of the last time, where its line is there; else asks for one. A simulated
  /// readout is never taken unasked: its readings could pass for real ones.
  void ConnectAsBefore();
  void Disconnect();

  /// Where the window was, and its panes, at the end of the last run; and keeps them at the end of
  /// this one.
  void KeepPlace();

  CMeasuring& Measuring() { return measuring_; }
  const CReadingStore& Readings() const { return store_; }
  /// When a reading was shown for the first time.
  std::optional<std::chrono::steady_clock::time_point> FirstReading() const { return first_; }
  CPlotView& Plot() { return *plot_; }

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  QAction* Add(class QMenu& menu, const char* text, const QKeySequence& keys,
               std::function<void()> run, bool needsreadout = true);
  void MakeMenus();
  void MakePanes();
  void AskAndConnect();
  void StartMeasuring();
  /// Behind anything that may have changed them.
  void TakeNewSettings();
  void AskPeriod();
  void EditChannel();
  void SetClock();
  void SwitchReadout(bool on);
  void BeginRecording();
  bool StartRecording(const QString& path);
  void EndRecording(const std::string& why);
  void ShowRecording();
  void ExportPlot();
  void ExportReadings();
  void Export(const QString& title, const QString& path, const std::string& content);
  void ShowReadings();
  void ShowState();
  void PlotSeries();
  void LogError(const QString& text);
  void SetTracing(bool on);
  void SavePlace();

  CDesktopHost& host_;
  bool keepsplace_ = false;
  std::optional<std::chrono::steady_clock::time_point> first_;
  CQtWindow window_{*this};
  CReadingStore store_;
  CMeasuring measuring_{host_, store_};
  CSnapshotActions snapshots_{host_, *this, [this](const QString& text) { LogError(text); }};
  std::optional<CDesktopRecording> recording_;
  std::chrono::milliseconds period_{0};
  CBanner* banner_ = nullptr;
  QLabel* readout_ = nullptr;
  QLabel* line_ = nullptr;
  QLabel* recordinglabel_ = nullptr;
  QSplitter* splitter_ = nullptr;
  CChannelTable* table_ = nullptr;
  CPlotView* plot_ = nullptr;
  QTreeWidget* errors_ = nullptr;
  QPlainTextEdit* trace_ = nullptr;
  QDockWidget* errorpane_ = nullptr;
  QDockWidget* tracepane_ = nullptr;
  QAction* live_ = nullptr;
  QAction* record_ = nullptr;
  QAction* endrecord_ = nullptr;
  QAction* follow_ = nullptr;
  QAction* deviations_ = nullptr;
  std::vector<QAction*> needreadout_;
};

}  // namespace vane::desktop
