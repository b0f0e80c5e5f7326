// A log fetched reading by reading, and the run around that.
#include "vane/dialogs/show_files.h"
#include "vane/download/log_download.h"
#include "vane/instrument/operations.h"
#include "vane/instrument/t312b.h"
#include "vane/support/exchange.h"
#include "vane/support/failure.h"
#include "vane/support/messages.h"
#include "vane/support/number_text.h"
#include "vane/support/paths.h"
#include "vane/support/text_table.h"
#include "vane/support/texts.h"

namespace vane {
namespace {

constexpr char kTraceName[] = "DNLDT312B.LOG";
constexpr char kRawTextName[] = "TMPDWNLD.LOG";

constexpr std::int16_t kUsualReadings = 100;  // of either log
constexpr int kMaxRepeats = 10;

// Part of the identification text, which an instrument that has just been reset sends for anything.
constexpr char kIdentificationMark[] = "T312B, ";

std::string NumberFormat(std::int16_t resol) {
  if (resol < 0) return {};
  if (resol == 0) return "###0";
  return "###0." + std::string(static_cast<std::size_t>(resol), '0');
}

}  // namespace

bool CVaneT312B::DownloadLog(AwkOne& awkParser, ET312BDownloadLogOption log,
                             ET312BDownloadOption opt, std::int16_t numreadings, std::int16_t resol,
                             bool prompt) {
  return DownloadLogAbove(nullptr, awkParser, log, opt, numreadings, resol, prompt);
}

bool CVaneT312B::DownloadLogAbove(ui::CWindow* frm, AwkOne& awkParser, ET312BDownloadLogOption log,
                                  ET312BDownloadOption, std::int16_t numreadings,
                                  std::int16_t resol, bool prompt) {
  return CLogDownload(*this, components_).Run(frm, awkParser, log, numreadings, resol, prompt);
}

bool CLogDownload::Run(ui::CWindow* frm, AwkOne& awkParser, ET312BDownloadLogOption log,
                       std::int16_t numreadings, std::int16_t resol, bool prompt) {
  CPendingFailure ignored;
  bool done = false;
  try {
    SetBusyCursor(true);
    trace_ = components_.factory.CreateTextFile(
        BuildFullPath(components_.platform.TemporaryFolder(), kTraceName));
    trace_->WriteLine("Preparing to download data from T312B...");
    numberformat_ = NumberFormat(resol);
    switch (Transfer(log, numreadings)) {
      case EEnd::SILENT:
        return false;
      case EEnd::STOPPED:
        break;
      case EEnd::DONE:
        Parse(awkParser, prompt);
        done = !aborted_;
    }
  } catch (...) {
    const LibraryError error = PendingError();
    ignored.Try([&] {
      if (progress_) progress_->Hide(false);
    });
    ignored.Try([&] {
      if (trace_) {
        trace_->WriteLine("Error: " + std::to_string(error.Number()) + " - " + error.Description() +
                          "[Source: " + error.Source() + "]");
      }
    });
    ignored.Try(
        [] { ShowError(ResourceText(EText::ATTEMPTING_TO_DOWNLOAD), kCompanyName, {}, 0); });
  }
  if (done) ShowFiles(frm);

  ignored.Try([&] {
    if (trace_) trace_->WriteLine("Download finished...");
  });
  trace_.reset();
  ignored.Try([&] {
    if (progress_) progress_->Finish();
  });
  progress_.reset();
  files_[0].reset();
  ignored.Try([] { SetBusyCursor(false); });
  return done;
}

CLogDownload::EEnd CLogDownload::Transfer(ET312BDownloadLogOption log, std::int16_t numreadings) {
  trace_->WriteLine("Initializing communications...");
  instrument_.InitializeCommunicationSettings();
  trace_->WriteLine("Querying firmware version...");
  if (!instrument_.QueryIdentification(true)) return EEnd::SILENT;
  trace_->WriteLine("Firmware version " + PlainNumberText(instrument_.Firmware()));
  if (!instrument_.VerifyMinimumFirmware()) {
    ShowMessage(ResourceText(EText::FEATURE_NOT_SUPPORTED));
    return EEnd::STOPPED;
  }
  const std::int16_t count = numreadings == 0 ? kUsualReadings : numreadings;
  trace_->WriteLine("Count: " + std::to_string(count));
  trace_->WriteLine("Downloading data...");
  LineOf(instrument_).params().ClearAll();
  progress_ = components_.factory.MakeProgress();
  progress_->Start(ResourceText(EText::DOWNLOADING_DATA), 0);
  const ECommand id = log == ET312BDownloadLogOption::DOWNLOAD_HISTORY_LOG
                          ? ECommand::READ_HISTORY_LOG
                          : ECommand::READ_MEMORY_LOG;
  constexpr char kWriting[] = "Writing downloaded data to temp file...";
  try {
    FetchReadings(id, count);
  } catch (...) {
    // The readings so far are kept, and those of an earlier run don't pass for them.
    CPendingFailure ignored;
    ignored.Try([&] { trace_->WriteLine(kWriting); });
    WriteTempFile();
    throw;
  }
  trace_->WriteLine(kWriting);
  WriteTempFile();
  progress_->Finish();
  progress_.reset();
  if (!aborted_) return EEnd::DONE;
  trace_->WriteLine("Download aborted...");
  ShowMessage(ResourceText(EText::DOWNLOAD_ABORTED));
  return EEnd::STOPPED;
}

void CLogDownload::FetchReadings(ECommand id, std::int16_t count) {
  const std::string total = std::to_string(count);
  for (std::int32_t reading = 1; reading <= count; ++reading) {
    LineOf(instrument_).params().Index = std::to_string(reading);
    const std::string reply = FetchReading(id, reading, total);
    if (!progress_->Step(count, reading, kNoPosition)) {
      aborted_ = true;
      return;
    }
    if (reply.empty()) return;
    rawtext_ += reply;
    rawtext_ += "\r\n";
  }
}

std::string CLogDownload::FetchReading(ECommand id, std::int32_t reading,
                                       const std::string& total) {
  for (int repeats = 0; repeats <= kMaxRepeats; ++repeats) {
    if (repeats > 0) trace_->WriteLine("Bad result - retry...");
    trace_->WriteLine("Querying value " + std::to_string(reading) + " of " + total + "...");
    std::string reply = LineOf(instrument_).ReadSetting(id);
    trace_->WriteLine("Result: " + reply);
    if (!Contains(reply, kIdentificationMark)) return reply;
  }
  throw LibraryError(ERR_BAD_READING, InstrumentLabel("DownloadLog"),
                     "Reading " + std::to_string(reading) +
                         " of the log could not be fetched: the instrument answers with its "
                         "identification.");
}

bool CLogDownload::WriteTempFile() {
  std::string path;
  try {
    path = BuildFullPath(components_.platform.TemporaryFolder(), kRawTextName);
    const auto file = components_.factory.CreateTextFile(path);
    file->Write(rawtext_);
    CPendingFailure ignored;
    ignored.Try([&] { file->Close(); });
    return true;
  } catch (...) {
    ShowError("attempting to write the downloaded data to a temporary file (" + path + ")",
              "Download Logged Data", {}, 0);
    return false;
  }
}

void CLogDownload::ShowFiles(ui::CWindow* frm) {
  CPendingFailure ignored;
  std::unique_ptr<frmShowFiles> dialog;
  try {
    dialog = std::make_unique<frmShowFiles>(components_);
    dialog->SetFiles(files_);
    dialog->Show(frm);
  } catch (...) {
    ignored.Try([] {
      ShowError(ResourceText(EText::ATTEMPTING_TO_SHOW_DOWNLOAD_FILES), kCompanyName, {}, 0);
    });
  }
  ignored.Try([&] {
    if (dialog) dialog->Unload();
  });
}

}  // namespace vane
