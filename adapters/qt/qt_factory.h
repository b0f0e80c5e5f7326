// What the library's operations make for themselves in a program with windows.
#pragma once

#include <memory>
#include <string>

#include "adapters/headless/headless_factory.h"

namespace vane {

/// As without a person, but for what that person sees: windows, the passcode prompt, the save
/// dialog, the progress; and the line runs beside the event loop.
class CQtFactory : public CHeadlessFactory {
 public:
  using CHeadlessFactory::CHeadlessFactory;

  std::unique_ptr<CVaneCommunications> MakeCommunications() override;
  std::unique_ptr<CVaneProbe> MakeProbe() override;
  std::unique_ptr<CVaneProgress> MakeProgress() override;
  std::unique_ptr<CVaneOutputFile> MakeOutputFile() override;
  std::unique_ptr<CVaneFileDialog> MakeFileDialog() override;
  std::unique_ptr<CVanePasscodeDialog> MakePasscodeDialog() override;
  /// With the help topic of the window.
  std::unique_ptr<ui::CForm> MakeForm(const std::string& name) override;
};

}  // namespace vane
