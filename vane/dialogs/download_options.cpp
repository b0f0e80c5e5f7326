#include "vane/dialogs/download_options.h"

#include "vane/dialogs/editing.h"
#include "vane/dialogs/user_guard.h"
#include "vane/instrument/operations.h"
#include "vane/instrument/t312b.h"
#include "vane/support/failure.h"
#include "vane/support/messages.h"
#include "vane/support/numbers.h"

namespace vane {
namespace {

constexpr std::int32_t kHelpContext = 10852;
constexpr std::int32_t kLastReadings = 1;  // of the choice how many

// As many as a download of all readings asks for. A host may ask for more.
constexpr std::int32_t kMaxReadings = 100;
constexpr std::int32_t kReadingsStep = 10;

}  // namespace

frmT312BDownloadOptions::frmT312BDownloadOptions(const Components& components)
    : awkparser_(components.factory.MakeFieldParser()),
      form_(components.factory.MakeForm("frmT312BDownloadOptions")),
      options_(form_->Add<ui::CFrame>("framOptions")),
      logframe_(form_->Add<ui::CFrame>("framLog", &options_)),
      log_(form_->Add<ui::COptionGroup>("optLog", &logframe_, 2)),
      readingsframe_(form_->Add<ui::CFrame>("framReadings", &options_)),
      readings_(form_->Add<ui::COptionGroup>("optReadings", &readingsframe_, 2)),
      txtreadings_(form_->Add<ui::CTextField>("txtReadings", &readingsframe_)),
      udreadings_(form_->Add<ui::CUpDown>("udReadings", &readingsframe_, txtreadings_)),
      lblreadings_(form_->Add<ui::CLabel>("lblReadings", &readingsframe_)),
      lblresolution_(form_->Add<ui::CLabel>("lblResolution", &readingsframe_)),
      txtresolution_(form_->Add<ui::CTextField>("txtResolution", &readingsframe_)),
      udresolution_(form_->Add<ui::CUpDown>("udResolution", &readingsframe_, txtresolution_)),
      lblplaces_(form_->Add<ui::CLabel>("lblResolutionPlaces", &readingsframe_)),
      filesframe_(form_->Add<ui::CFrame>("framFiles", &options_)),
      files_(form_->Add<ui::COptionGroup>("optFiles", &filesframe_, 2)),
      prompt_(form_->Add<ui::CCheckBox>("chkPrompt", &filesframe_)),
      download_(form_->Add<ui::CButton>("cmdOKCancelHelp(0)", nullptr, ui::EButtonRole::DEFAULT)),
      close_(form_->Add<ui::CButton>("cmdOKCancelHelp(1)", nullptr, ui::EButtonRole::CANCEL)),
      help_(form_->Add<ui::CButton>("cmdOKCancelHelp(2)", nullptr, ui::EButtonRole::HELP)),
      numreadings_(txtreadings_, EFieldKind::TIME, nullptr, &udreadings_),
      resolution_(txtresolution_, EFieldKind::TIME, nullptr, &udresolution_) {
  GuardEvents(*form_);
  form_->OnLoad([this] {
    form_->SetHelpContext(kHelpContext);
    LoadCaptions();
  });
  form_->OnFirstPaint([this] {
    AtBoundary([] { return ResourceText(EText::ATTEMPTING_TO_SETUP_DIALOG); },
               [&] {
                 SetUpFields();
                 return true;
               });
  });
  form_->OnUnload([this] {
    if (instrument_ != nullptr) SavePlacement(instrument_->Registry(), *form_);
    instrument_ = nullptr;
  });
  log_.OnClick([this] { logchoice_ = log_.Selected(); });
  files_.OnClick([this] { filechoice_ = files_.Selected(); });
  readings_.OnClick([this] { ChooseReadings(); });
  download_.OnClick([this] { Download(); });
  close_.OnClick([this] { form_->Hide(); });
  help_.OnClick([this] { ShowHelpTopic(form_->HelpContext()); });
}

void frmT312BDownloadOptions::LoadCaptions() {
  form_->SetCaption(ResourceText(EText::T312B_DOWNLOAD_OPTIONS));
  options_.SetCaption(WithColon(EText::T312B_DOWNLOAD_OPTIONS));
  logframe_.SetCaption(WithColon(EText::SELECT_LOG_TO_DOWNLOAD));
  log_.SetOptionCaption(0, ResourceText(EText::HISTORY_LOG));
  log_.SetOptionCaption(1, ResourceText(EText::MEMORY_LOG));
  readingsframe_.SetCaption(WithColon(EText::READINGS));
  readings_.SetOptionCaption(0, ResourceText(EText::DOWNLOAD_ALL_READINGS));
  readings_.SetOptionCaption(1, ResourceText(EText::DOWNLOAD_LAST_READINGS));
  lblreadings_.SetCaption(ResourceText(EText::READINGS_UNIT));
  lblresolution_.SetCaption(WithColon(EText::RESOLUTION));
  lblplaces_.SetCaption(ResourceText(EText::DIGITS));
  filesframe_.SetCaption(WithColon(EText::FILES));
  files_.SetOptionCaption(0, ResourceText(EText::WRITE_SINGLE_FILE));
  files_.SetOptionCaption(1, ResourceText(EText::SEPARATE_BY_CHANNEL));
  prompt_.SetCaption(ResourceText(EText::PROMPT_FOR_FILENAME));
  download_.SetCaption(ResourceText(EText::DOWNLOAD));
  close_.SetCaption(ResourceText(EText::CLOSE));
  help_.SetCaption(ResourceText(EText::HELP));
}

void frmT312BDownloadOptions::SetUpFields() {
  logchoice_ = 0;
  log_.Select(0);
  filechoice_ = 0;
  files_.Select(0);
  readingschoice_ = 0;
  readings_.Select(0);
  udreadings_.SetRange(1, kMaxReadings, kReadingsStep);
  numreadings_.SetFormat("###0");
  numreadings_.Show(1);
  InstalledComponents().platform.RunMessageQueue(0);
  udresolution_.SetRange(CVaneT312B::MinResolution(), CVaneT312B::MaxResolution(), 1);
  resolution_.SetFormat("#0");
  resolution_.Show(CVaneT312B::MaxResolution());
  SetBusyCursor(false);
}

void frmT312BDownloadOptions::ChooseReadings() {
  readingschoice_ = readings_.Selected();
  const bool counts = readingschoice_ == kLastReadings;
  txtreadings_.SetEnabled(counts);
  udreadings_.SetEnabled(counts);
  lblreadings_.SetEnabled(counts);
}

void frmT312BDownloadOptions::Download() {
  const std::int16_t numreadings = readingschoice_ == kLastReadings
                                       ? ToInteger(NumberFromText(txtreadings_.Text()))
                                       : std::int16_t{0};
  const std::int16_t resol = ToInteger(NumberFromText(txtresolution_.Text()));
  instrument_->DownloadLogAbove(form_.get(), *awkparser_, ET312BDownloadLogOption{logchoice_},
                                ET312BDownloadOption{filechoice_}, numreadings, resol,
                                prompt_.Checked());
}

bool CVaneT312B::DownloadLoggedData() {
  try {
    frmT312BDownloadOptions dialog(components_);
    const CLoadedForm loaded(dialog.Form());
    dialog.SetInstrument(*this);
    RestorePlacement(Registry(), dialog.Form());
    dialog.Form().ShowModal(ui::CForm::Active());
    return true;
  } catch (...) {
    RaiseAgain(InstrumentLabel("DownloadLoggedData"));
  }
}

}  // namespace vane
