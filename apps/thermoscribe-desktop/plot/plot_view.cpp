#include "apps/thermoscribe-desktop/plot/plot_view.h"

#include <qcustomplot.h>

#include <QBuffer>
#include <QDateTime>
#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPageSize>
#include <QPdfWriter>
#include <QSvgGenerator>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace vane::desktop {
namespace {

constexpr double kShortestSpan = 2;  // s
constexpr double kLongestSpan = 366 * 86400.0;
constexpr double kFirstSpan = 600;
constexpr double kZoom = 1.25;
constexpr double kMargin = 0.06;  // of the values' range, above and below
constexpr std::size_t kMostSmoothPoints = 6000;
constexpr double kPictureScale = 2;
constexpr int kPointsOfAnInch = 72;
constexpr double kPenWidth = 1.6;  // a wider one of many points is drawn slowly
constexpr double kThinPenWidth = 1;

QString TimeText(double seconds) {
  return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(seconds * 1000))
      .toString("yyyy-MM-dd HH:mm:ss");
}

}  // namespace

QColor ChannelColour(std::int16_t channel, bool isdark) {
  // Of Okabe and Ito (2008) the first seven, and five between them in another lightness.
  static constexpr QRgb kOnLight[] = {0x0072B2, 0xD55E00, 0x009E73, 0xCC79A7, 0x56B4E9, 0xE69F00,
                                      0x444444, 0x003F66, 0x7A3600, 0x005C43, 0x7B3F63, 0x8C8200};
  static constexpr QRgb kOnDark[] = {0x4DA6E0, 0xFF8A3D, 0x2FD1A3, 0xE79FC6, 0x9AD6FF, 0xFFC23D,
                                     0xDDDDDD, 0x7F9FFF, 0xC98A5E, 0x8FE388, 0xC9A0FF, 0xF0E442};
  const auto place = static_cast<std::size_t>(std::max(channel - 1, 0)) % std::size(kOnLight);
  return QColor::fromRgb(isdark ? kOnDark[place] : kOnLight[place]);
}

class CPlotView::CPlot final : public QCustomPlot {
 public:
  CPlot(const CReadingStore& store, CPlotView& view) : QCustomPlot(&view), store_(store) {
    setFocusProxy(&view);
    setMouseTracking(true);
    const QSharedPointer<QCPAxisTickerDateTime> ticker(new QCPAxisTickerDateTime);
    ticker->setDateTimeSpec(Qt::LocalTime);
    ticker->setDateTimeFormat("HH:mm:ss\nyyyy-MM-dd");
    xAxis->setTicker(ticker);
    // At the top; what is left of its column stays empty.
    auto* const column = new QCPLayoutGrid;
    plotLayout()->addElement(0, 1, column);
    plotLayout()->setColumnStretchFactor(1, 0.001);
    column->addElement(0, 0, legend);
    column->addElement(1, 0, new QCPLayoutElement);
    column->setRowStretchFactor(0, 0.001);
    legend->setBorderPen(Qt::NoPen);
    legend->setVisible(true);
    legend->setRowSpacing(0);
    legend->setIconSize(22, 14);
    cursor_ = new QCPItemStraightLine(this);
    cursor_->setVisible(false);
    moment_ = new QCPItemText(this);
    moment_->setPositionAlignment(Qt::AlignTop | Qt::AlignLeft);
    moment_->position->setType(QCPItemPosition::ptAxisRectRatio);
    moment_->position->setCoords(0.01, 0.01);
    Restyle();
  }

  void SetSeries(const PlottedSeries& series) {
    Row& row = rows_[series.id];
    if (row.graph == nullptr) row.graph = addGraph(xAxis, AxisOf(series.unit));
    row.series = series;
    row.graph->setPen(QPen(series.colour, kPenWidth));
    row.graph->setVisible(series.visible);
    row.graph->setName(series.name);
    row.graph->removeFromLegend();
    if (series.visible) row.graph->addToLegend();
  }

  void RemoveAll() {
    rows_.clear();
    clearGraphs();
  }

  void Refresh() {
    if (follows_) Follow();
    const auto columns = static_cast<std::size_t>(std::max(axisRect()->width(), 100));
    std::size_t points = 0;
    for (auto& [id, row] : rows_) {
      if (!row.series.visible) continue;
      const std::vector<PlotPoint> found =
          store_.PointsOf(id, xAxis->range().lower, xAxis->range().upper, columns);
      points += found.size();
      QVector<QCPGraphData> seen;
      seen.reserve(static_cast<qsizetype>(found.size()));
      const double zero = ZeroOf(id);
      for (const PlotPoint& point : found) {
        seen.append(QCPGraphData(point.time, point.value - zero));
      }
      row.graph->data()->set(seen, true);
    }
    const bool issmooth = points < kMostSmoothPoints;
    setAntialiasedElement(QCP::aePlottables, issmooth);
    setNotAntialiasedElement(QCP::aePlottables, !issmooth);
    for (auto& [id, row] : rows_) {
      row.graph->setPen(QPen(row.series.colour, issmooth ? kPenWidth : kThinPenWidth));
    }
    if (fitsvalues_) FitValues();
    ShowCursor();
    replot();
  }

  void SetFollowing(bool follows) {
    if (std::exchange(follows_, follows) == follows) return;
    if (onfollowing) onfollowing(follows);
  }

  void SetSpan(double seconds) {
    span_ = std::clamp(seconds, kShortestSpan, kLongestSpan);
    if (!follows_) {
      const double middle = xAxis->range().center();
      xAxis->setRange(middle - span_ / 2, middle + span_ / 2);
    }
  }

  void SetRelative(bool isrelative) {
    isrelative_ = isrelative;
    fitsvalues_ = true;
    for (const auto& [unit, axis] : axes_) axis->setLabel(LabelOf(unit));
    Refresh();
  }

  void ShowAll() {
    const auto [first, last] = store_.TimeRange();
    SetFollowing(false);
    fitsvalues_ = true;
    const double length = std::max(last - first, kShortestSpan);
    xAxis->setRange(last - length * 1.01, last + length * 0.01);
    span_ = length;
    Refresh();
  }

  bool TakeKey(int key) {
    const double width = xAxis->range().size();
    switch (key) {
      case Qt::Key_Left:
        return Move(-width / 10);
      case Qt::Key_Right:
        return Move(width / 10);
      case Qt::Key_Plus:
      case Qt::Key_Equal:
        return ZoomTime(1 / kZoom, xAxis->range().center());
      case Qt::Key_Minus:
        return ZoomTime(kZoom, xAxis->range().center());
      case Qt::Key_PageUp:
        return ZoomValues(1 / kZoom);
      case Qt::Key_PageDown:
        return ZoomValues(kZoom);
      case Qt::Key_Up:
        return MoveValues(0.1);
      case Qt::Key_Down:
        return MoveValues(-0.1);
      case Qt::Key_Home:
        return Move(store_.TimeRange().first - xAxis->range().lower);
      case Qt::Key_End:
        return Move(store_.TimeRange().second - xAxis->range().upper);
      case Qt::Key_0:
        ShowAll();
        return true;
      case Qt::Key_F:
        SetFollowing(!follows_);
        Refresh();
        return true;
      default:
        return false;
    }
  }

  void Restyle() {
    const QPalette colours = palette();
    const QColor text = colours.color(QPalette::Text);
    const QColor base = colours.color(QPalette::Base);
    QColor grid = text;
    grid.setAlpha(40);
    setBackground(base);
    legend->setBrush(base);
    legend->setTextColor(text);
    legend->setFont(font());
    for (QCPAxis* const axis : axisRect()->axes()) {
      axis->setBasePen(QPen(text));
      axis->setTickPen(QPen(text));
      axis->setSubTickPen(QPen(text));
      axis->setTickLabelColor(text);
      axis->setLabelColor(text);
      axis->setTickLabelFont(font());
      axis->setLabelFont(font());
      axis->grid()->setPen(QPen(grid));
      axis->grid()->setZeroLinePen(Qt::NoPen);
    }
    QColor line = text;
    line.setAlpha(140);
    cursor_->setPen(QPen(line, 1, Qt::DashLine));
    moment_->setColor(text);
    moment_->setFont(font());
  }

  QByteArray Picture(EPicture form) {
    const bool hascursor = cursor_->visible();
    cursor_->setVisible(false);
    moment_->setVisible(false);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    switch (form) {
      case EPicture::PNG:
        toPixmap(width(), height(), kPictureScale).save(&buffer, "png");
        break;
      case EPicture::SVG: {
        QSvgGenerator generator;
        generator.setOutputDevice(&buffer);
        generator.setSize(size());
        generator.setViewBox(rect());
        generator.setTitle("Readings");
        Draw(generator);
        break;
      }
      case EPicture::PDF: {
        QPdfWriter writer(&buffer);
        writer.setTitle("Readings");
        writer.setPageSize(QPageSize(QSizeF(size()), QPageSize::Point));
        writer.setPageMargins({});
        writer.setResolution(kPointsOfAnInch);
        Draw(writer);
        break;
      }
    }
    cursor_->setVisible(hascursor);
    moment_->setVisible(hascursor);
    return bytes;
  }

  // As lines and texts, not as a picture.
  void Draw(QPaintDevice& device) {
    QCPPainter painter;
    if (!painter.begin(&device)) return;
    painter.setMode(QCPPainter::pmVectorized);
    painter.setMode(QCPPainter::pmNoCaching);
    toPainter(&painter, width(), height());
    painter.end();
  }

  bool IsFollowing() const { return follows_; }

  std::function<void(bool)> onfollowing;

 protected:
  void wheelEvent(QWheelEvent* event) override {
    const double steps = event->angleDelta().y() / 120.0;
    const double factor = std::pow(kZoom, -steps);
    if ((event->modifiers() & Qt::ControlModifier) != 0) {
      ZoomValues(factor);
    } else {
      ZoomTime(factor,
               follows_ ? xAxis->range().upper : xAxis->pixelToCoord(event->position().x()));
    }
    event->accept();
  }

  void mousePressEvent(QMouseEvent* event) override {
    if (event->button() == Qt::LeftButton) grabbed_ = event->pos().x();
    QCustomPlot::mousePressEvent(event);
  }

  void mouseReleaseEvent(QMouseEvent* event) override {
    grabbed_.reset();
    QCustomPlot::mouseReleaseEvent(event);
  }

  void mouseDoubleClickEvent(QMouseEvent*) override { ShowAll(); }

  void mouseMoveEvent(QMouseEvent* event) override {
    if (grabbed_) {
      const int x = event->pos().x();
      const double moved = xAxis->pixelToCoord(*grabbed_) - xAxis->pixelToCoord(x);
      grabbed_ = x;
      if (moved != 0) Move(moved);
    }
    pointer_ = event->pos().x();
    ShowCursor();
    replot();
  }

  void leaveEvent(QEvent* event) override {
    pointer_.reset();
    ShowCursor();
    replot();
    QCustomPlot::leaveEvent(event);
  }

  void resizeEvent(QResizeEvent* event) override {
    QCustomPlot::resizeEvent(event);
    Refresh();
  }

 private:
  struct Row {
    PlottedSeries series;
    QCPGraph* graph = nullptr;
  };

  // The first unit stands at the left, all others at the right.
  QCPAxis* AxisOf(const QString& unit) {
    const auto found = axes_.find(unit);
    if (found != axes_.end()) return found->second;
    QCPAxis* axis = yAxis;
    if (axes_.size() == 1) axis = yAxis2;
    if (axes_.size() > 1) axis = axisRect()->addAxis(QCPAxis::atRight);
    axis->setVisible(true);
    axis->setLabel(LabelOf(unit));
    axes_[unit] = axis;
    Restyle();
    return axis;
  }

  QString LabelOf(const QString& unit) const {
    return isrelative_ ? "Deviation from the mean, " + unit : unit;
  }

  double ZeroOf(SeriesId id) const {
    const double mean = isrelative_ ? store_.StatisticsOf(id).mean : 0;
    return std::isnan(mean) ? 0 : mean;
  }

  void Follow() {
    const auto [first, last] = store_.TimeRange();
    const double length = std::clamp(last - first, 10.0, span_);
    xAxis->setRange(last - length, last + length * 0.01);
  }

  bool Move(double seconds) {
    SetFollowing(false);
    xAxis->moveRange(seconds);
    Refresh();
    return true;
  }

  bool ZoomTime(double factor, double middle) {
    const double width = std::clamp(xAxis->range().size() * factor, kShortestSpan, kLongestSpan);
    const double lower = middle - (middle - xAxis->range().lower) * width / xAxis->range().size();
    xAxis->setRange(lower, lower + width);
    span_ = width;
    Refresh();
    return true;
  }

  bool ZoomValues(double factor) {
    fitsvalues_ = false;
    for (const auto& [unit, axis] : axes_) axis->scaleRange(factor);
    Refresh();
    return true;
  }

  bool MoveValues(double part) {
    fitsvalues_ = false;
    for (const auto& [unit, axis] : axes_) axis->moveRange(axis->range().size() * part);
    Refresh();
    return true;
  }

  void FitValues() {
    for (const auto& [unit, axis] : axes_) {
      bool any = false;
      QCPRange values;
      for (const auto& [id, row] : rows_) {
        if (!row.series.visible || row.graph->valueAxis() != axis) continue;
        bool found = false;
        const QCPRange range = row.graph->getValueRange(found, QCP::sdBoth, xAxis->range());
        if (!found) continue;
        values =
            any ? QCPRange(std::min(values.lower, range.lower), std::max(values.upper, range.upper))
                : range;
        any = true;
      }
      if (!any) continue;
      // A line of one value stands in the middle of some digits' room.
      const double least = std::max(std::abs(values.center()) * 1e-7, 1e-9);
      const double margin = std::max(values.size() * kMargin, least);
      axis->setRange(values.lower - margin, values.upper + margin);
    }
  }

  // The legend tells the values at the cursor.
  void ShowCursor() {
    const bool isshown =
        pointer_ && axisRect()->rect().contains(*pointer_, axisRect()->center().y());
    cursor_->setVisible(isshown);
    moment_->setVisible(isshown);
    const double time = isshown ? xAxis->pixelToCoord(*pointer_) : 0;
    if (isshown) {
      cursor_->point1->setCoords(time, 0);
      cursor_->point2->setCoords(time, 1);
      moment_->setText(TimeText(time));
    }
    const double reach = std::max(xAxis->range().size() / 50, 5.0);
    for (auto& [id, row] : rows_) {
      QString name = row.series.name;
      const double value = isshown ? store_.ValueAt(id, time, reach) : std::nan("");
      if (!std::isnan(value)) name += "  " + QString::number(value, 'g', 9) + " " + row.series.unit;
      row.graph->setName(name);
    }
  }

  const CReadingStore& store_;
  std::map<SeriesId, Row> rows_;
  std::map<QString, QCPAxis*> axes_;
  QCPItemStraightLine* cursor_;
  QCPItemText* moment_;
  std::optional<int> pointer_;
  std::optional<int> grabbed_;
  double span_ = kFirstSpan;
  bool follows_ = true;
  bool fitsvalues_ = true;
  bool isrelative_ = false;
};

CPlotView::CPlotView(const CReadingStore& store, QWidget* parent)
    : QWidget(parent), plot_(std::make_unique<CPlot>(store, *this)) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(plot_.get());
  setFocusPolicy(Qt::StrongFocus);
  setMinimumSize(320, 180);
  setAccessibleName("Plot of the readings");
  setAccessibleDescription(
      "Arrows move, plus and minus zoom, 0 shows all, F follows the latest reading.");
}

CPlotView::~CPlotView() = default;

void CPlotView::SetSeries(const PlottedSeries& series) { plot_->SetSeries(series); }
void CPlotView::RemoveAll() { plot_->RemoveAll(); }
void CPlotView::SetFollowing(bool follows) { plot_->SetFollowing(follows); }
bool CPlotView::IsFollowing() const { return plot_->IsFollowing(); }
void CPlotView::SetSpan(double seconds) { plot_->SetSpan(seconds); }
void CPlotView::ShowAll() { plot_->ShowAll(); }
void CPlotView::SetRelative(bool isrelative) { plot_->SetRelative(isrelative); }
void CPlotView::Refresh() { plot_->Refresh(); }
QByteArray CPlotView::Picture(EPicture form) { return plot_->Picture(form); }
void CPlotView::OnFollowing(std::function<void(bool)> observer) {
  plot_->onfollowing = std::move(observer);
}

void CPlotView::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
    plot_->Restyle();
    plot_->Refresh();
  }
}

void CPlotView::keyPressEvent(QKeyEvent* event) {
  if (event->modifiers() == Qt::NoModifier && plot_->TakeKey(event->key())) return;
  QWidget::keyPressEvent(event);
}

}  // namespace vane::desktop
