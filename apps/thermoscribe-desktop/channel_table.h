// The channels of a live view: the latest reading of each and what sums its readings up.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <vector>

#include "apps/thermoscribe-desktop/copy_table.h"
#include "apps/thermoscribe-desktop/desktop_host.h"
#include "apps/thermoscribe-desktop/live_measuring.h"
#include "apps/thermoscribe-desktop/reading_store.h"

namespace vane::desktop {

class CChannelTable final : public CCopyTable {
 public:
  explicit CChannelTable(QWidget* parent = nullptr);

  /// A row per channel in use. What the user has chosen for a channel that was there stays.
  void SetChannels(const std::vector<ChannelRow>& channels);
  void Show(const CReadingStore& store, const CMeasuring& measuring);

  /// As high as its rows.
  QSize sizeHint() const override;

  bool IsPlotted(std::int16_t channel) const;
  /// Of the row that the user is in; 0 for none.
  std::int16_t CurrentChannel() const;

  /// The user has chosen which channels the plot has.
  void OnPlotted(std::function<void()> observer) { onplotted_ = std::move(observer); }

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void Colour();
  void SetText(int row, int column, const QString& text);

  std::vector<std::int16_t> channels_;  // by row
  std::function<void()> onplotted_;
};

}  // namespace vane::desktop
