// thermoscribe download: one of the readout's logs as a text file of columns.

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>

#include "adapters/files/atomic_file.h"
#include "adapters/files/field_reader.h"
#include "apps/thermoscribe/commands.h"
#include "apps/thermoscribe/host.h"

namespace vane {
namespace {

constexpr std::int16_t kMaxReadings = 32767;
constexpr std::int16_t kMaxResolution = 15;
constexpr std::int32_t kFieldsOfReading = 3;
constexpr mode_t kUsualMode = 0644;

struct DownloadOptions {
  std::string log = "history";
  std::int16_t readings = 0;
  std::int16_t resolution = -1;
  bool prompt = false;
  std::string folder;
  std::string csv;
};

// The user's registry, with the folder of this one download.
class CFolderRegistry final : public CVaneRegistry {
 public:
  CFolderRegistry(std::shared_ptr<CVaneRegistry> registry, std::string folder)
      : registry_(std::move(registry)), folder_(std::move(folder)) {}

  std::int32_t ReadBoolean(const std::string& name, bool fallback, std::uint32_t root,
                           const std::string& subkey) override {
    return registry_->ReadBoolean(name, fallback, root, subkey);
  }
  std::string ReadText(const std::string& name, const std::string& fallback, std::uint32_t root,
                       const std::string& subkey) override {
    if (name == "DownloadFolder") return folder_;
    return registry_->ReadText(name, fallback, root, subkey);
  }
  void RestoreFormPlacement(ui::CWindow& window, std::int32_t variant, bool flag) override {
    registry_->RestoreFormPlacement(window, variant, flag);
  }
  void SaveFormPlacement(ui::CWindow& window, std::int32_t variant, bool flag) override {
    registry_->SaveFormPlacement(window, variant, flag);
  }

 private:
  std::shared_ptr<CVaneRegistry> registry_;
  std::string folder_;
};

std::string Quoted(const std::string& field) {
  if (field.find_first_of("\",\r\n") == field.npos) return field;
  std::string quoted = "\"";
  for (const char c : field) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
  return quoted + "\"";
}

// The readings as the instrument sent them, in ASCII, so that nothing is lost on the way into a
// spreadsheet.
std::string CsvText(CFieldReader& fields) {
  std::string text = "number,unit,third\r\n";
  for (std::int32_t i = kFieldsOfReading; i <= fields.NF(); i += kFieldsOfReading) {
    text += Quoted(fields.f(i - 2)) + "," + Quoted(fields.f(i - 1)) + "," + Quoted(fields.f(i)) +
            "\r\n";
  }
  return text;
}

EExitCode RunDownload(CHost& host, const DownloadOptions& options) {
  if (const EExitCode code = host.Connect(); code != EExitCode::DONE) return code;
  CVaneT312B& instrument = host.Instrument();
  // Without any other word the file comes to where the user is.
  instrument.SetFilePath(std::filesystem::current_path().string());
  if (!options.folder.empty()) {
    instrument.SetRegistry(
        std::make_shared<CFolderRegistry>(instrument.Registry(), options.folder));
  }
  CFieldReader fields;
  const bool done = instrument.DownloadLog(fields,
                                           options.log == "memory"
                                               ? ET312BDownloadLogOption::DOWNLOAD_MEMORY_LOG
                                               : ET312BDownloadLogOption::DOWNLOAD_HISTORY_LOG,
                                           ET312BDownloadOption::DOWNLOAD_SINGLE_FILE,
                                           options.readings, options.resolution, options.prompt);
  const WrittenFile& file = host.LatestFile();
  if (!done) return host.CodeOfStoppedRun();
  // The run also reaches its end when the file could not be made, which the user has been told, or
  // when he has cancelled the question for it.
  if (file.path.empty()) return file.cancelled ? EExitCode::ABORTED : EExitCode::FAILED;

  const std::int32_t readings = fields.NF() / kFieldsOfReading;
  Json members = {{"file", file.path}, {"readings", readings}};
  std::string text = std::to_string(readings) + (readings == 1 ? " reading" : " readings") +
                     " written to " + file.path;
  if (!options.csv.empty()) {
    WriteFileAtomically(options.csv, CsvText(fields), kUsualMode);
    members["csv"] = options.csv;
    text += "\nand as they came to " + options.csv;
  }
  host.Output().Record("download", members, text);
  return EExitCode::DONE;
}

}  // namespace

Command DownloadCommand() {
  const auto options = std::make_shared<DownloadOptions>();
  Option folder = TextOption("--folder", "DIR", options->folder, "folder of the file, see below");
  folder.offer = EOffer::FOLDERS;
  Option csv = TextOption("--csv", "FILE", options->csv,
                          "also write the readings as comma-separated\nvalues, as the readout sent "
                          "them");
  csv.offer = EOffer::FILES;
  return {
      .name = "download",
      .brief = "Write a log of the readout to a file",
      .footer =
          R"(Fetches the log reading by reading and writes download.txt, a text file of columns. It goes
to --folder, else to the folder "DownloadFolder" of the configuration file, else to where
you are; an older file of that name is replaced when the new one is whole. Ctrl-C stops:
while the readings are fetched without a file, behind that with the rows so far.

What went over the line is in DNLDT312B.LOG and TMPDWNLD.LOG in the folder for temporary
files. The firmware must be 5.03 or higher.

Examples:
  thermoscribe download --resolution 3
  thermoscribe download --log memory --readings 250 --folder ~/logs --csv memory.csv
  thermoscribe --simulate download)",
      .options = {WordOption("--log", "LOG", {"history", "memory"}, options->log,
                             "history or memory (history)"),
                  WholeOption("--readings", "N", options->readings, 1, kMaxReadings,
                              "at most so many readings (100)"),
                  WholeOption("--resolution", "D", options->resolution, 0, kMaxResolution,
                              "decimals of the readings; without it, all that\n"
                              "the readout sent"),
                  Flag("--prompt", options->prompt, "ask for the name of the file"),
                  std::move(folder), std::move(csv)},
      .body = [options](CHost& host) { return RunDownload(host, *options); }};
}

}  // namespace vane
