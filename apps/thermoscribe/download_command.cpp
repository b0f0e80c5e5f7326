// thermoscribe download: one of the readout's logs as a text file of columns.

#include <filesystem>
#include <memory>
#include <string>
#include <utility>

#include "adapters/files/config_registry.h"
#include "adapters/files/field_reader.h"
#include "adapters/files/replacing_file.h"
#include "adapters/posix/links.h"
#include "apps/thermoscribe/host.h"
#include "apps/thermoscribe/line_output.h"
#include "apps/thermoscribe/program_commands.h"
#include "vane/support/paths.h"

namespace vane::thermoscribe {
namespace {

constexpr std::int16_t kMaxReadings = 32767;
constexpr std::int16_t kMaxResolution = 15;
constexpr std::int32_t kFieldsOfReading = 3;
constexpr mode_t kUsualMode = 0644;
constexpr const char* kFileName = "download.txt";

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
  void RestoreFormPlacement(ui::CForm& form, std::int32_t variant, bool flag) override {
    registry_->RestoreFormPlacement(form, variant, flag);
  }
  void SaveFormPlacement(ui::CForm& form, std::int32_t variant, bool flag) override {
    registry_->SaveFormPlacement(form, variant, flag);
  }

 private:
  std::shared_ptr<CVaneRegistry> registry_;
  std::string folder_;
};

// The readings as the instrument sent them, in ASCII, so that nothing is lost on the way into a
// spreadsheet.
std::string CsvText(CFieldReader& fields) {
  std::string text = CsvLine({"number", "unit", "third"});
  for (std::int32_t i = kFieldsOfReading; i <= fields.NF(); i += kFieldsOfReading) {
    text += CsvLine({fields.f(i - 2), fields.f(i - 1), fields.f(i)});
  }
  return text;
}

bool IsSameFile(const std::filesystem::path& one, const std::filesystem::path& other) {
  std::error_code missing;
  if (std::filesystem::equivalent(one, other, missing)) return true;
  // What isn't there yet. The name of an open pipe looks like a link that leads nowhere.
  const auto place = [](const std::filesystem::path& path) {
    const std::filesystem::path file = FollowLinks(path);
    return std::filesystem::weakly_canonical(std::filesystem::absolute(file).parent_path()) /
           file.filename();
  };
  return place(one) == place(other);
}

std::string Readings(std::int32_t count) {
  return std::to_string(count) + (count == 1 ? " reading" : " readings");
}

// One download, from the choice of its folder to what is told of it.
class CDownload {
 public:
  CDownload(CHost& host, const DownloadOptions& options)
      : host_(host), options_(options), tostandard_(IsStandardOutput(options.csv)) {}

  EExitCode Run() {
    if (const std::string problem = Problem(); !problem.empty()) {
      host_.Say(problem);
      return EExitCode::USAGE;
    }
    CheckFolder(BuildFullPath(Folder(), kFileName));
    if (!tostandard_ && !options_.csv.empty()) CheckFolder(options_.csv);
    if (const EExitCode code = host_.Connect(); code != EExitCode::DONE) return code;
    if (!Fetch()) {
      const EExitCode code = host_.CodeOfStoppedRun();
      host_.Say(HalfDoneText(code == EExitCode::ABORTED ? "Aborted. " : ""));
      return code;
    }
    // The run also reaches its end when the file could not be made, which the user has been told,
    // or when he has cancelled the question for it.
    const WrittenFile& file = host_.LatestFile();
    if (file.path.empty()) {
      host_.Say("No file was written.");
      return file.cancelled ? EExitCode::ABORTED : EExitCode::FAILED;
    }
    if (host_.IsInterrupted()) {
      host_.Say("Aborted. " + Account());
      return EExitCode::ABORTED;
    }
    if (const EExitCode code = WriteCsv(); code != EExitCode::DONE) return code;
    ShowResult();
    return EExitCode::DONE;
  }

 private:
  // Without any other word the file comes to where the user is.
  std::string Folder() {
    if (!options_.folder.empty()) return options_.folder;
    return host_.Registry()->ReadText("DownloadFolder", CurrentFolder(), kCurrentUserRoot, {});
  }
  static std::string CurrentFolder() { return std::filesystem::current_path().string(); }

  // What is known before anything is sent.
  std::string Problem() {
    const std::string file = BuildFullPath(Folder(), kFileName);
    if (!options_.prompt && IsStandardOutput(file)) {
      return "Standard output can't be \"" + file + "\", which is the download's own file.";
    }
    if (options_.csv.empty()) return {};
    if (tostandard_) {
      return host_.Output().IsJson()
                 ? "--csv " + options_.csv + " is standard output, and so is the answer of --json."
                 : std::string();
    }
    return !options_.prompt && IsSameFile(options_.csv, file)
               ? "--csv can't be \"" + options_.csv + "\", which is the download's own file."
               : std::string();
  }

  bool Fetch() {
    CVaneT312B& instrument = host_.Instrument();
    instrument.SetFilePath(CurrentFolder());
    if (!options_.folder.empty()) {
      instrument.SetRegistry(
          std::make_shared<CFolderRegistry>(instrument.Registry(), options_.folder));
    }
    return instrument.DownloadLog(fields_,
                                  options_.log == "memory"
                                      ? ET312BDownloadLogOption::DOWNLOAD_MEMORY_LOG
                                      : ET312BDownloadLogOption::DOWNLOAD_HISTORY_LOG,
                                  ET312BDownloadOption::DOWNLOAD_SINGLE_FILE, options_.readings,
                                  options_.resolution, options_.prompt);
  }

  std::string HalfDoneText(const std::string& before) const {
    const WrittenFile& file = host_.LatestFile();
    if (file.path.empty()) return before + "No file was written.";
    return before + file.path + " holds no more than the first " + Readings(file.rows) + ".";
  }

  // Of a file that is whole, where there is more to do.
  std::string Account() const {
    const WrittenFile& file = host_.LatestFile();
    return file.path + " holds " + Readings(file.rows) +
           (options_.csv.empty() ? "." : "; no CSV file was written.");
  }

  // The download's file is there and stays, whatever becomes of the other one.
  EExitCode WriteCsv() {
    if (options_.csv.empty()) return EExitCode::DONE;
    if (IsSameFile(options_.csv, host_.LatestFile().path)) {
      host_.Say("--csv can't be the download's own file. " + Account());
      return EExitCode::USAGE;
    }
    try {
      host_.Output().File(options_.csv, CsvText(fields_), kUsualMode);
      return EExitCode::DONE;
    } catch (...) {
      const EExitCode code = host_.ReportFailure("writing the CSV file");
      host_.Say(Account());
      return code;
    }
  }

  void ShowResult() {
    const std::string& path = host_.LatestFile().path;
    const std::int32_t readings = fields_.NF() / kFieldsOfReading;
    std::string text = Readings(readings) + " written to " + path;
    if (tostandard_) return host_.Note(text);
    if (!options_.csv.empty()) text += "\nand as they came to " + options_.csv;
    host_.Output().Record(
        "download", {{"file", path}, {"readings", readings}, {"csv", Known(options_.csv)}}, text);
  }

  CHost& host_;
  const DownloadOptions& options_;
  const bool tostandard_;
  CFieldReader fields_;
};

}  // namespace

Command DownloadCommand() {
  const auto options = std::make_shared<DownloadOptions>();
  Option folder = PathOption("--folder", "DIR", options->folder, "folder of the file, see below",
                             EOffer::FOLDERS);
  Option csv = PathOption("--csv", "FILE", options->csv,
                          "also write the readings as comma-separated\nvalues, as the readout sent "
                          "them;\n\"-\": standard output");
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
      .body = [options](CHost& host) { return CDownload(host, *options).Run(); }};
}

}  // namespace vane::thermoscribe
