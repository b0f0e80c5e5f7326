#include "vane/dialogs/editing.h"

#include "vane/components/components.h"
#include "vane/components/library_error.h"
#include "vane/support/failure.h"
#include "vane/support/messages.h"

namespace vane {

std::int32_t SelectedCode(const ui::CItemList& list) { return list.ItemData(list.ListIndex()); }

std::string WithColon(EText text) { return ResourceText(text) + ":"; }

bool AskToWrite(EText question) {
  return InstalledComponents().platform.MessageBox(ResourceText(question), kCompanyName,
                                                   kBoxQuestion + kBoxYesNo, {},
                                                   0) == EBoxButton::YES;
}

void RestorePlacement(const std::shared_ptr<CVaneRegistry>& registry, ui::CForm& form) {
  if (!registry) throw LibraryError(ERR_PLATFORM_CALL, {}, "There is no registry component.");
  registry->RestoreFormPlacement(form, 0, true);
}

void SavePlacement(const std::shared_ptr<CVaneRegistry>& registry, ui::CForm& form) noexcept {
  CPendingFailure ignored;
  ignored.Try([&] {
    if (registry) registry->SaveFormPlacement(form, 0, true);
  });
}

void CReadingSteps::TellUnable() {
  Do([] { ShowMessage(ResourceText(EText::UNABLE_TO_READ_SETTINGS)); });
  TakeAway();
}

void CReadingSteps::ShowPending() {
  try {
    ShowError(ResourceText(EText::ATTEMPTING_TO_READ_SETTINGS), kCompanyName, {}, 0);
  } catch (...) {
    TakeAway();
    throw;
  }
  TakeAway();
}

void CReadingSteps::TakeAway() {
  ok_.SetEnabled(false);
  apply_.SetEnabled(false);
}

}  // namespace vane
