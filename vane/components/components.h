// The one door to everything outside: the platform, and the factory of the component objects that
// operations make for themselves.
//
// A host builds one `Components` in `main`, keeps it alive longer than every object of the library,
// and hands it to `CVaneT312B`. Free functions that take no context (message boxes, pauses, help)
// use the bundle that `CInstalledComponents` has installed for the process.
#pragma once

#include <memory>

#include "vane/components/communications.h"
#include "vane/components/conversion.h"
#include "vane/components/field_parser.h"
#include "vane/components/file_dialog.h"
#include "vane/components/form.h"
#include "vane/components/output_file.h"
#include "vane/components/passcode_dialog.h"
#include "vane/components/platform.h"
#include "vane/components/progress.h"
#include "vane/components/text_file.h"

namespace vane {

/// Makes component objects. Every result is non-null and belongs to the caller; a failure is an
/// exception. A host that has no such thing to offer leaves the optional ones as they are: they
/// raise an error that says so.
class CComponentFactory {
 public:
  virtual ~CComponentFactory() = default;

  virtual std::unique_ptr<CVaneCommunications> MakeCommunications() = 0;
  virtual std::unique_ptr<CVaneProbe> MakeProbe() = 0;
  virtual std::unique_ptr<CVaneProgress> MakeProgress() = 0;

  // Optional.
  virtual std::unique_ptr<CVaneOutputFile> MakeOutputFile();
  virtual std::unique_ptr<CVaneFileDialog> MakeFileDialog();
  virtual std::unique_ptr<AwkOne> MakeFieldParser();
  virtual std::unique_ptr<CVanePasscodeDialog> MakePasscodeDialog();

  /// A new, empty file at `path`, which only the user can read. What lay there, be it a link, is
  /// taken away and not followed; what somebody else puts there in between is a failure.
  virtual std::unique_ptr<CVaneTextFile> CreateTextFile(const std::string& path);

  /// The window of a dialog, by the dialog's name.
  virtual std::unique_ptr<ui::CForm> MakeForm(const std::string& name);
};

/// References to what the host owns.
struct Components {
  CPlatform& platform;
  CComponentFactory& factory;
};

/// Installs a bundle for the process while it lives, and brings back the one before it at its end.
class CInstalledComponents {
 public:
  explicit CInstalledComponents(const Components& components);
  ~CInstalledComponents();
  CInstalledComponents(const CInstalledComponents&) = delete;
  CInstalledComponents& operator=(const CInstalledComponents&) = delete;

 private:
  const Components* previous_;
};

/// The installed bundle. Raises an error when the host has installed none.
const Components& InstalledComponents();

}  // namespace vane
