// A log fetched reading by reading, and the run around that.
#include "vane/dialogs/show_files.h"
#include "vane/download/log_download.h"
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
  LogDownload run;
  CPendingFailure ignored;
  bool done = false;
  try {
    SetBusyCursor(true);
    run.trace = components_.factory.CreateTextFile(
        BuildFullPath(components_.platform.TemporaryFolder(), kTraceName));
    run.trace->WriteLine("Preparing to download data from T312B...");
    run.numberformat = NumberFormat(resol);
    switch (TransferLog(run, log, numreadings)) {
      case EDownloadEnd::SILENT:
        return false;
      case EDownloadEnd::STOPPED:
        break;
      case EDownloadEnd::DONE:
        ParseLog(run, awkParser, prompt);
        done = !run.aborted;
    }
  } catch (...) {
    const LibraryError error = PendingError();
    ignored.Try([&] {
      if (run.progress) run.progress->Hide(false);
    });
    ignored.Try([&] {
      if (run.trace) {
        run.trace->WriteLine("Error: " + std::to_string(error.Number()) + " - " +
                             error.Description() + "[Source: " + error.Source() + "]");
      }
    });
    ignored.Try([] { ShowError(ResourceText(189), kCompanyName, {}, 0); });
  }
  if (done) ShowDownloadedFiles(run, frm);

  ignored.Try([&] {
    if (run.trace) run.trace->WriteLine("Download finished...");
  });
  run.trace.reset();
  ignored.Try([&] {
    if (run.progress) run.progress->Finish();
  });
  run.progress.reset();
  run.files[0].reset();
  ignored.Try([] { SetBusyCursor(false); });
  return done;
}

CVaneT312B::EDownloadEnd CVaneT312B::TransferLog(LogDownload& run, ET312BDownloadLogOption log,
                                                 std::int16_t numreadings) {
  run.trace->WriteLine("Initializing communications...");
  InitializeCommunicationSettings();
  run.trace->WriteLine("Querying firmware version...");
  if (!QueryIdentification(true)) return EDownloadEnd::SILENT;
  run.trace->WriteLine("Firmware version " + PlainNumberText(Firmware()));
  if (!HasRecentFirmware()) {
    ShowMessage(ResourceText(218));
    return EDownloadEnd::STOPPED;
  }
  const std::int16_t count = numreadings == 0 ? kUsualReadings : numreadings;
  const std::string total = std::to_string(count);
  run.trace->WriteLine("Count: " + total);
  run.trace->WriteLine("Downloading data...");
  Line().params().ClearAll();
  run.progress = components_.factory.MakeProgress();
  run.progress->Start(ResourceText(219), 0);
  const ECommand id = log == ET312BDownloadLogOption::DOWNLOAD_HISTORY_LOG
                          ? ECommand::READ_HISTORY_LOG
                          : ECommand::READ_MEMORY_LOG;
  std::int32_t bad = 0;
  for (std::int32_t reading = 1; reading <= count; ++reading) {
    Line().params().Index = std::to_string(reading);
    std::string reply;
    if (!FetchReading(run, id, reading, total, reply)) {
      bad = reading;
      break;
    }
    if (!run.progress->Step(count, reading, kNoPosition)) {
      run.aborted = true;
      break;
    }
    if (reply.empty()) break;
    run.rawtext += reply;
    run.rawtext += "\r\n";
  }
  run.trace->WriteLine("Writing downloaded data to temp file...");
  WriteDownloadTempFile(run.rawtext);
  if (bad != 0) {
    throw LibraryError(ERR_BAD_READING, Label("DownloadLog"),
                       "Reading " + std::to_string(bad) +
                           " of the log could not be fetched: the instrument answers with its "
                           "identification.");
  }
  run.progress->Finish();
  run.progress.reset();
  if (!run.aborted) return EDownloadEnd::DONE;
  run.trace->WriteLine("Download aborted...");
  ShowMessage(ResourceText(214));
  return EDownloadEnd::STOPPED;
}

bool CVaneT312B::FetchReading(LogDownload& run, ECommand id, std::int32_t reading,
                              const std::string& total, std::string& reply) {
  for (int repeats = 0;; ++repeats) {
    run.trace->WriteLine("Querying value " + std::to_string(reading) + " of " + total + "...");
    reply = Line().ReadSetting(id);
    run.trace->WriteLine("Result: " + reply);
    if (!Contains(reply, kIdentificationMark)) return true;
    if (repeats == kMaxRepeats) return false;
    run.trace->WriteLine("Bad result - retry...");
  }
}

bool CVaneT312B::WriteDownloadTempFile(const std::string& text) {
  std::string path;
  try {
    path = BuildFullPath(components_.platform.TemporaryFolder(), kRawTextName);
    const auto file = components_.factory.CreateTextFile(path);
    file->Write(text);
    CPendingFailure ignored;
    ignored.Try([&] { file->Close(); });
    return true;
  } catch (...) {
    ShowError("attempting to write the downloaded data to a temporary file (" + path + ")",
              "Download Logged Data", {}, 0);
    return false;
  }
}

void CVaneT312B::ShowDownloadedFiles(LogDownload& run, ui::CWindow* frm) {
  CPendingFailure ignored;
  std::unique_ptr<frmShowFiles> dialog;
  try {
    dialog = std::make_unique<frmShowFiles>(components_);
    dialog->SetFiles(run.files);
    dialog->Show(frm);
  } catch (...) {
    ignored.Try([] { ShowError(ResourceText(301), kCompanyName, {}, 0); });
  }
  ignored.Try([&] {
    if (dialog) dialog->Unload();
  });
}

}  // namespace vane
