// The editor of the user-defined scan sequence: a list with an entry for each step, the number of
// steps, and the channel of the selected step.
//
// An entry carries the instrument channel number of its step; -1 is a step without a channel. Steps
// come and go at the end of the list only.
#pragma once

#include <string>

#include "vane/components/form.h"

namespace vane {

class CScanSequence {
 public:
  /// Of a list, the number of its steps, and the choice of a channel. Takes over
  /// the events of the lists and the change of the text.
  CScanSequence(ui::CListBox& list, ui::CTextField& steps, ui::CDropDown& channel);
  CScanSequence(const CScanSequence&) = delete;
  CScanSequence& operator=(const CScanSequence&) = delete;

  /// Runs when another step, or none, has been selected, before its channel is shown.
  void OnSelected(ui::Handler handler) { selected_ = std::move(handler); }

  /// Shows the channel of the selected step, as its selection does.
  void ShowStep();

  /// The channels of all steps, as the instrument object has them.
  std::string ScanChannels() const;

  /// Whether a step is of channel 0: one that the instrument's list was too short for. It can't be
  /// written any more than one without a channel.
  bool LacksChannel() const;

 private:
  void Resize();
  void SetChannel();

  ui::CListBox& list_;
  ui::CTextField& steps_;
  ui::CDropDown& channel_;
  bool selecting_ = false;  // the choice is being emptied by this editor
  ui::Handler selected_;
};

}  // namespace vane
