// The plot of a live view: all channels over the time, one axis of values per unit.
//
// This folder alone knows the plot library, whose licence binds the program that has it (see
// docs/decisions.md).
#pragma once

#include <QByteArray>
#include <QColor>
#include <QString>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <memory>

#include "apps/thermoscribe-desktop/reading_store.h"

namespace vane::desktop {

/// How the readings of a channel look.
struct PlottedSeries {
  SeriesId id;
  QString name;
  QString unit;
  QColor colour;
  bool visible = true;
};

enum class EPicture : std::int32_t { PNG, SVG, PDF };

/// The mouse: the wheel zooms the time, with Ctrl the values, dragging moves, a double click shows
/// all; the pointer is a cursor with the values of all channels. The keys: arrows move, + and -
/// zoom the time, Page Up and Page Down the values, Home and End go to the first and the latest
/// reading, 0 shows all, F follows the latest.
class CPlotView final : public QWidget {
 public:
  /// `store` outlives the view.
  explicit CPlotView(const CReadingStore& store, QWidget* parent = nullptr);
  ~CPlotView() override;

  void SetSeries(const PlottedSeries& series);
  void RemoveAll();

  /// Stays with the latest readings, as much time of them as is seen. A movement of the user's ends
  /// that.
  void SetFollowing(bool follows);
  bool IsFollowing() const;
  /// Seconds from the left to the right.
  void SetSpan(double seconds);
  void ShowAll();
  /// Each series as its difference from its mean since the last reset, so that small movements of
  /// far temperatures can be compared.
  void SetRelative(bool isrelative);

  /// Draws what the store has now.
  void Refresh();

  /// What is seen, as the content of a file. Empty when it can't be drawn.
  QByteArray Picture(EPicture form);

  /// Hears when the user has ended or started the following.
  void OnFollowing(std::function<void(bool)> observer);

 protected:
  void changeEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  class CPlot;
  const std::unique_ptr<CPlot> plot_;
};

/// Twelve colours that also a person who sees no red or no green can tell apart by their lightness
/// and order, for a light or a dark background.
QColor ChannelColour(std::int16_t channel, bool isdark);

}  // namespace vane::desktop
