// Opening the way to the instrument and finding out who is on the other end.
#include <string>

#include "vane/instrument/operations.h"
#include "vane/instrument/t312b.h"
#include "vane/support/exchange.h"
#include "vane/support/long_run.h"
#include "vane/support/numbers.h"
#include "vane/support/paths.h"
#include "vane/support/text_table.h"
#include "vane/support/texts.h"

namespace vane {
namespace {

constexpr std::int32_t kInstrumentKind = 9;
constexpr std::int32_t kReadTries = 2;

// The folder above `folder`, without a trailing separator.
std::string ParentFolder(const std::string& folder) {
  std::string parent = GetFolderFromPath(folder);
  if (parent.size() > 1) parent.pop_back();
  return parent;
}

// The whole reply is searched: an instrument that names its model behind the comma passes.
bool CheckModel(const CVaneT312B& instrument, CLongRun& run) {
  if (Contains(instrument.Identification(), kReadoutModel)) return true;
  run.Hide();
  ShowMessage(SubstituteParams(ResourceText(EText::NOT_A_MODEL),
                               std::string(kReadoutModel) + "|" + kReadoutModel));
  return false;
}

}  // namespace

bool CVaneT312B::InitializeCommunications(const std::string& fp, EVanePortNumber cp,
                                          EVaneBaudRate br) {
  try {
    communications_ = components_.factory.MakeCommunications();
    CVaneCOMPort& port = communications_->COMPort();
    port.SetReadTries(kReadTries);
    const std::string library = components_.platform.FolderOfLibrary();
    const bool insystem =
        Contains(UpperCase(components_.platform.SystemFolder()), UpperCase(library));
    communications_->SetDataPath(insystem ? fp : ParentFolder(library));
    communications_->SetInstrumentKind(kInstrumentKind);
    port.SetBaudRate(br);
    port.SetPortNumber(cp);
    port.SetAutoClose(RegistryOf(*this).ReadBoolean("COMAutoClose", false, kCurrentUserRoot, {}) !=
                      0);
    return true;
  } catch (...) {
    const LibraryError error = PendingError();
    throw LibraryError(error.Number(),
                       InstrumentLabel("InitializeCommunications(),") + fp + "," +
                           std::to_string(static_cast<std::int32_t>(cp)) + "," +
                           std::to_string(static_cast<std::int32_t>(br)),
                       error.Description());
  }
}

bool CVaneT312B::InitializeCommunicationSettings() {
  return AtBoundary([] { return ResourceText(EText::ATTEMPTING_TO_INITIALIZE_COMMUNICATIONS); },
                    [&] {
                      Write(LineOf(*this), ECommand::WRITE_INITIALIZE);
                      return true;
                    });
}

bool CVaneT312B::QueryIdentification(bool setprops) {
  return Exchange(*this, "QueryIdentification", [&] {
    CVaneCommunications& line = LineOf(*this);
    line.params().ClearAll();
    identification_ = line.ReadSetting(ECommand::READ_IDENTIFICATION, false);
    if (identification_.empty()) return false;
    std::string model;
    double firmware = 0;
    ExtractModFWFromID(identification_, model, firmware);
    if (setprops) {
      model_ = model;
      firmware_ = firmware;
    }
    return true;
  });
}

void ExtractModFWFromID(const std::string& id, std::string& model, double& firmware) {
  try {
    model = ResourceText(EText::UNKNOWN);
    firmware = 0;
    const std::size_t comma = id.find(',');
    if (comma == id.npos) return;
    model = TrimBlanks(std::string_view(id).substr(0, comma));
    firmware = NumberFromText(std::string_view(id).substr(comma + 1));
  } catch (...) {
    const LibraryError error = PendingError();
    throw LibraryError(error.Number(), "ExtractModFWFromID - " + id, error.Description());
  }
}

// A failed initialization has been shown and does not stop it: the identification tells whether
// anybody is there.
bool ProveInstrument(CVaneT312B& instrument, CLongRun& run, bool setprops) {
  instrument.InitializeCommunicationSettings();
  return instrument.QueryIdentification(setprops) && CheckModel(instrument, run);
}

}  // namespace vane
