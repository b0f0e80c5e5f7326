// One download of a log, from the first line of its trace to the last: what its stages hand on to
// each other, and the stages.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "vane/components/components.h"
#include "vane/components/field_parser.h"
#include "vane/support/enums.h"

namespace vane {

class CVaneT312B;

class CLogDownload {
 public:
  CLogDownload(CVaneT312B& instrument, const Components& components)
      : instrument_(instrument), components_(components) {}

  /// `CVaneT312B::DownloadLogAbove`. Once per object.
  bool Run(ui::CWindow* frm, AwkOne& awkParser, ET312BDownloadLogOption log,
           std::int16_t numreadings, std::int16_t resol, bool prompt);

 private:
  enum class EEnd { SILENT, STOPPED, DONE };

  EEnd Transfer(ET312BDownloadLogOption log, std::int16_t numreadings);
  void FetchReadings(ECommand id, std::int16_t count);
  std::string FetchReading(ECommand id, std::int32_t reading, const std::string& total);
  bool WriteTempFile();
  void Parse(AwkOne& awkParser, bool prompt);
  bool PrepareFile(CVaneOutputFile& file, bool prompt, std::int16_t chn);
  void WriteRows(AwkOne& awkParser);
  void ShowFiles(ui::CWindow* frm);

  CVaneT312B& instrument_;
  const Components& components_;
  std::unique_ptr<CVaneTextFile> trace_;
  std::unique_ptr<CVaneProgress> progress_;
  std::string numberformat_;
  std::string rawtext_;  // the replies so far, each with CR LF behind it
  bool aborted_ = false;

  // Only the first is ever filled; the second ends the list for the dialog.
  std::array<std::unique_ptr<CVaneOutputFile>, 2> files_;
};

}  // namespace vane
