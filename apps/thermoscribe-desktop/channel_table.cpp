#include "apps/thermoscribe-desktop/channel_table.h"

#include <QDateTime>
#include <QEvent>
#include <QHeaderView>
#include <QPixmap>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <algorithm>
#include <cmath>
#include <set>

#include "adapters/qt/qt_text.h"
#include "apps/thermoscribe-desktop/plot/plot_view.h"
#include "vane/support/display_texts.h"

namespace vane::desktop {
namespace {

enum EColumn : int {
  CHANNEL,
  NAME,
  PROBE,
  READING,
  UNIT,
  COMPUTED,
  TIME,
  STATE,
  COUNT,
  SMALLEST,
  LARGEST,
  MEAN,
  DEVIATION,
  COLUMNS
};

constexpr const char* kTitles[COLUMNS] = {
    "Channel", "Name",     "Probe",    "Reading", "Unit", "Computed \u00B0C", "Time",
    "State",   "Readings", "Smallest", "Largest", "Mean", "Std. deviation"};
// Of sums, behind those of the reading.
constexpr int kMoreDecimals = 2;
constexpr int kComputedDecimals = 4;

QString Number(double value, int decimals) {
  return std::isnan(value) ? QString("-") : ToQt(NumberText(value, decimals));
}

// Numbers of neighbouring columns stand apart.
class CRoomyCells final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    return QStyledItemDelegate::sizeHint(option, index) + QSize(16, 0);
  }
};

bool IsNumber(int column) {
  return column == READING || column == COMPUTED || column == COUNT || column >= SMALLEST ||
         column == CHANNEL || column == PROBE;
}

}  // namespace

CChannelTable::CChannelTable(QWidget* parent) : CCopyTable(0, COLUMNS, parent) {
  QStringList titles;
  for (const char* const title : kTitles) titles.append(title);
  setHorizontalHeaderLabels(titles);
  setEditTriggers(NoEditTriggers);
  setSelectionBehavior(SelectRows);
  setSelectionMode(SingleSelection);
  setAlternatingRowColors(true);
  setTabKeyNavigation(false);
  setShowGrid(false);
  verticalHeader()->hide();
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
  horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
  horizontalHeader()->setSectionResizeMode(NAME, QHeaderView::Stretch);
  setItemDelegate(new CRoomyCells(this));
  horizontalHeader()->setHighlightSections(false);
  for (int column = 0; column < COLUMNS; ++column) {
    horizontalHeaderItem(column)->setTextAlignment(
        (IsNumber(column) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
  }
  setAccessibleName("Channels with their latest readings");
  connect(this, &QTableWidget::itemChanged, this, [this](const QTableWidgetItem* item) {
    if (item->column() == CHANNEL && onplotted_) onplotted_();
  });
}

void CChannelTable::SetChannels(const std::vector<ChannelRow>& channels) {
  const QSignalBlocker silence(this);
  const std::int16_t current = CurrentChannel();
  std::set<std::int16_t> hidden;
  for (const std::int16_t channel : channels_) {
    if (!IsPlotted(channel)) hidden.insert(channel);
  }
  channels_.clear();
  setRowCount(0);
  for (const ChannelRow& channel : channels) {
    if (!channel.enabled) continue;
    const int row = rowCount();
    insertRow(row);
    channels_.push_back(channel.channel);
    for (int column = 0; column < COLUMNS; ++column) {
      auto* const item = new QTableWidgetItem("-");
      item->setTextAlignment((IsNumber(column) ? Qt::AlignRight : Qt::AlignLeft) |
                             Qt::AlignVCenter);
      if (column == CHANNEL) {
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(hidden.contains(channel.channel) ? Qt::Unchecked : Qt::Checked);
        item->setToolTip("Whether the plot has it");
      }
      setItem(row, column, item);
    }
    item(row, CHANNEL)->setText(QString::number(channel.channel));
    item(row, NAME)->setText(ToQt(channel.name));
    item(row, PROBE)->setText(channel.probe < 0 ? "-" : QString::number(channel.probe));
  }
  Colour();
  const auto place = std::ranges::find(channels_, current);
  if (rowCount() > 0) {
    setCurrentCell(place == channels_.end() ? 0 : static_cast<int>(place - channels_.begin()),
                   NAME);
  }
  updateGeometry();
}

void CChannelTable::Show(const CReadingStore& store, const CMeasuring& measuring) {
  const QSignalBlocker silence(this);
  const QString unit = ToQt(UnitsText(static_cast<std::int16_t>(measuring.Units())));
  setColumnHidden(COMPUTED, measuring.IsTemperature());
  const bool islost = measuring.State() == CMeasuring::EState::LOST;
  for (int row = 0; row < rowCount(); ++row) {
    const std::int16_t channel = channels_[static_cast<std::size_t>(row)];
    const ChannelStatistics sums = store.StatisticsOf(measuring.SeriesOf(channel));
    const LatestReading& latest = measuring.LatestOf(channel);
    QString state = latest.text.empty() ? "Waiting" : latest.isnew ? "New" : "From earlier";
    if (!latest.trouble.empty()) state = ToQt(latest.trouble);
    if (measuring.State() == CMeasuring::EState::OFF) state = "Paused";
    if (islost) state = "No connection";
    const int decimals = DecimalsOf(latest.text);
    const int more = decimals == kAnyDecimals ? decimals : decimals + kMoreDecimals;
    SetText(row, READING, latest.text.empty() ? "-" : ToQt(latest.text).trimmed());
    // What doesn't hold now steps back.
    const bool holds = latest.isnew && latest.trouble.empty() && !islost;
    item(row, READING)
        ->setForeground(
            palette().brush(holds ? QPalette::Active : QPalette::Disabled, QPalette::Text));
    SetText(row, UNIT, unit);
    SetText(row, COMPUTED, latest.celsius ? Number(*latest.celsius, kComputedDecimals) : "-");
    SetText(row, TIME,
            sums.lasttime == TimePoint{}
                ? "-"
                : QDateTime::fromMSecsSinceEpoch(
                      std::chrono::floor<std::chrono::milliseconds>(sums.lasttime)
                          .time_since_epoch()
                          .count())
                      .toString("HH:mm:ss"));
    SetText(row, STATE, state);
    SetText(row, COUNT, QString::number(sums.count));
    SetText(row, SMALLEST, Number(sums.smallest, decimals));
    SetText(row, LARGEST, Number(sums.largest, decimals));
    SetText(row, MEAN, Number(sums.mean, more));
    SetText(row, DEVIATION, Number(sums.deviation, more));
  }
}

void CChannelTable::SetText(int row, int column, const QString& text) {
  QTableWidgetItem& cell = *item(row, column);
  if (cell.text() != text) cell.setText(text);
}

QSize CChannelTable::sizeHint() const {
  const int rows = rowCount() * verticalHeader()->defaultSectionSize();
  return {CCopyTable::sizeHint().width(),
          horizontalHeader()->sizeHint().height() + rows + 2 * frameWidth() + 4};
}

bool CChannelTable::IsPlotted(std::int16_t channel) const {
  for (int row = 0; row < rowCount(); ++row) {
    if (channels_[static_cast<std::size_t>(row)] == channel) {
      return item(row, CHANNEL)->checkState() == Qt::Checked;
    }
  }
  return false;
}

std::int16_t CChannelTable::CurrentChannel() const {
  return currentRow() < 0 ? std::int16_t{0} : channels_[static_cast<std::size_t>(currentRow())];
}

void CChannelTable::changeEvent(QEvent* event) {
  CCopyTable::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) Colour();
}

// As the plot has them.
void CChannelTable::Colour() {
  const QSignalBlocker silence(this);
  const bool isdark = palette().color(QPalette::Base).lightness() < 128;
  for (int row = 0; row < rowCount(); ++row) {
    QPixmap swatch(12, 12);
    swatch.fill(ChannelColour(channels_[static_cast<std::size_t>(row)], isdark));
    item(row, CHANNEL)->setIcon(QIcon(swatch));
  }
}

}  // namespace vane::desktop
