// What the library's operations make for themselves, as a program in a terminal has it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "adapters/terminal/interrupts.h"
#include "vane/components/components.h"

namespace vane {
struct LineSettings;
}

namespace vane::thermoscribe {

/// The latest text file of columns.
struct WrittenFile {
  std::string path;        ///< empty: none was finished
  std::int32_t rows = 0;   ///< behind its head
  bool cancelled = false;  ///< whether the user gave up the question for its name
};

/// Makes what the library's operations need for themselves.
class CHostFactory final : public CComponentFactory {
 public:
  /// Without `showsforms`, windows stay unseen, and close at once. `tell` gets what the user has to
  /// know.
  CHostFactory(std::shared_ptr<LineSettings> line, CInterrupts& interrupts,
               std::string passcodefile, bool showsforms,
               std::function<void(const std::string&)> tell)
      : line_(std::move(line)),
        interrupts_(interrupts),
        passcodefile_(std::move(passcodefile)),
        showsforms_(showsforms),
        tell_(std::move(tell)) {}

  std::unique_ptr<CVaneCommunications> MakeCommunications() override;
  std::unique_ptr<CVaneProbe> MakeProbe() override;
  std::unique_ptr<CVaneProgress> MakeProgress() override;
  std::unique_ptr<CVanePasscodeDialog> MakePasscodeDialog() override;
  std::unique_ptr<CVaneOutputFile> MakeOutputFile() override;
  std::unique_ptr<CVaneFileDialog> MakeFileDialog() override;
  std::unique_ptr<AwkOne> MakeFieldParser() override;
  std::unique_ptr<CVaneTextFile> CreateTextFile(const std::string& path) override;
  std::unique_ptr<ui::CForm> MakeForm(const std::string& name) override;

  const WrittenFile& LatestFile() const { return latestfile_; }

 private:
  std::shared_ptr<LineSettings> line_;
  CInterrupts& interrupts_;
  const std::string passcodefile_;
  const bool showsforms_;
  const std::function<void(const std::string&)> tell_;
  WrittenFile latestfile_;
};

}  // namespace vane::thermoscribe
