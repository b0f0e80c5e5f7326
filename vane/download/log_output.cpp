// The text of a log taken apart and written as a column text file.
#include "vane/download/log_download.h"
#include "vane/instrument/operations.h"
#include "vane/instrument/t312b.h"
#include "vane/support/display_texts.h"
#include "vane/support/failure.h"
#include "vane/support/messages.h"
#include "vane/support/number_text.h"
#include "vane/support/numbers.h"
#include "vane/support/paths.h"
#include "vane/support/text_table.h"
#include "vane/support/texts.h"

namespace vane {
namespace {

constexpr std::int32_t kFieldsOfReading = 3;
constexpr std::int32_t kHeadWithTitles = 8;
constexpr char kLineEnd[] = "\r\n";

enum EColumn : std::int16_t {
  DATE_COLUMN,
  TIME_COLUMN,
  READING_COLUMN,
  LABEL_COLUMN,
  CHANNEL_COLUMN
};

// A reading carries no date, no time, no label and no channel; their columns say so.
struct ColumnRow {
  EText title;
  std::int16_t width;
  EText nothing;  // `NO_TEXT` where a reading does have it
};

// By column. The channel's is there only in a file that takes all channels.
constexpr ColumnRow kColumns[] = {{EText::DATE, 12, EText::NO_DATE},
                                  {EText::TIME, 12, EText::NO_TIME},
                                  {EText::READING, 20, EText::NO_TEXT},
                                  {EText::LABEL, 10, EText::NO_LABEL},
                                  {EText::CHANNEL, 10, EText::NO_CHANNEL}};

constexpr std::int32_t kSaveDialogFlags = 0x280806;

std::string LogUnitText(const std::string& text) {
  if (Contains(text, "C")) return UnitsText(0);
  if (Contains(text, "F")) return UnitsText(1);
  return text;
}

}  // namespace

void CLogDownload::Parse(AwkOne& awkParser, bool prompt) {
  trace_->WriteLine("Preparing to parse downloaded data...");
  awkParser.SetFS(" \r\n");
  awkParser.SetL(rawtext_);
  awkParser.NF();  // the parser splits here, before the display says what goes on
  trace_->WriteLine("Fields to parse: " + std::to_string(awkParser.NF()));
  progress_ = components_.factory.MakeProgress();
  progress_->Start(ResourceText(EText::PARSING_DATA), 0);
  trace_->WriteLine("Creating file...");
  files_[0] = components_.factory.MakeOutputFile();
  files_[0]->SetRegistry(instrument_.Registry());
  progress_->Hide(false);
  components_.platform.RunMessageQueue(0);
  trace_->WriteLine("Preparing file...");
  if (PrepareFile(*files_[0], prompt, 0)) {
    progress_->Hide(true);
    components_.platform.RunMessageQueue(0);
    WriteRows(awkParser);
    trace_->WriteLine("Closing file...");
    bool closed = false;
    files_[0]->Close(closed);
  }
  progress_->Hide(false);
}

void CLogDownload::WriteRows(AwkOne& awkParser) {
  CVaneOutputFile& file = *files_[0];
  std::string nothing[std::size(kColumns)];
  for (std::size_t i = 0; i < std::size(kColumns); ++i) {
    if (kColumns[i].nothing != EText::NO_TEXT) nothing[i] = ResourceText(kColumns[i].nothing);
  }
  const std::int32_t count = awkParser.NF();
  const std::string total = " of " + std::to_string(count) + ": ";
  for (std::int32_t i = 1; i <= count; ++i) {
    const std::string field = awkParser.f(i);
    trace_->WriteLine("Field " + std::to_string(i) + total + field);
    switch (i % kFieldsOfReading) {
      case 1:
        file.SetField(READING_COLUMN, FormatNumber(NumberFromText(field), numberformat_));
        break;
      case 2:
        file.SetField(READING_COLUMN, file.Field(READING_COLUMN) + " " + LogUnitText(field));
        break;
      default:
        for (const EColumn column : {LABEL_COLUMN, CHANNEL_COLUMN, TIME_COLUMN, DATE_COLUMN}) {
          file.SetField(column, nothing[column]);
        }
        trace_->WriteLine("Updating file...");
        bool written = false;
        file.WriteRow(written);
        if (!progress_->Step(count, i, kNoPosition)) {
          aborted_ = true;
          return;
        }
    }
  }
}

bool CLogDownload::PrepareFile(CVaneOutputFile& file, bool prompt, std::int16_t chn) {
  return AtBoundary(
      [] { return ResourceText(EText::ATTEMPTING_TO_CREATE_DOWNLOAD_FILE); },
      [&] {
        const auto downloadfolder = [&] {
          return RegistryOf(instrument_)
              .ReadText("DownloadFolder", instrument_.FilePath(), kCurrentUserRoot, {});
        };
        const bool allchannels = chn == 0;
        const std::string extension = "txt";
        const std::string name =
            "download" + (allchannels ? std::string() : std::to_string(chn)) + "." + extension;
        std::string path = BuildFullPath(downloadfolder(), name);
        if (prompt) {
          const auto dialog = components_.factory.MakeFileDialog();
          dialog->SetOptionA(false);
          dialog->SetDefaultExt(extension);
          dialog->SetDialogTitle(ResourceText(EText::SAVE_DOWNLOAD_FILE_AS));
          dialog->SetFlags(kSaveDialogFlags);
          dialog->SetFileName(name);
          dialog->SetFilter(SubstituteParams(ResourceText(EText::DOWNLOAD_FILES_FILTER),
                                             extension + "|" + extension));
          dialog->SetOptionB(false);
          dialog->SetInitDir(downloadfolder());
          SetBusyCursor(false);
          CPendingFailure cancelled;
          cancelled.Try([&] { dialog->ShowSave(); });
          if (cancelled.IsSet()) return false;
          path = dialog->FileName();
        }
        file.SetHelpFile(instrument_.HelpFile());
        file.SetFileName(GetFileFromPath(path));
        file.SetFolder(GetFolderFromPath(path));

        const std::int16_t columns = allchannels ? CHANNEL_COLUMN + 1 : CHANNEL_COLUMN;
        file.SetNumColumns(columns);
        file.SetLayoutOptionA(true);
        for (std::int16_t column = 0; column < columns; ++column) {
          file.SetColumnWidth(column, kColumns[column].width);
        }
        file.SetLayoutOptionB(false);
        for (std::int16_t column = 0; column < columns; ++column) {
          file.SetField(column, ResourceText(kColumns[column].title));
        }
        file.SetHeader(kLineEnd + ResourceText(EText::READOUT_MODEL) + ": " + instrument_.Model());
        if (!allchannels) {
          file.SetHeader(file.Header() + kLineEnd + ResourceText(EText::CHANNEL) + ": " +
                         std::to_string(chn));
        }
        bool created = false;
        file.Create(true, created);
        bool headed = false;
        file.WriteHeader(kHeadWithTitles, headed);
        return created && headed;
      });
}

}  // namespace vane
