#include "vane/components/components.h"

#include <utility>

#include "vane/components/library_error.h"

namespace vane {
namespace {

const Components* g_installed = nullptr;

[[noreturn]] void RefuseMissing(const char* operation, const char* what) {
  throw LibraryError(ERR_PLATFORM_CALL, std::string("CComponentFactory - ") + operation,
                     std::string("This program has no ") + what + ".");
}

}  // namespace

std::unique_ptr<CVaneOutputFile> CComponentFactory::MakeOutputFile() {
  RefuseMissing("MakeOutputFile", "column text file");
}

std::unique_ptr<CVaneFileDialog> CComponentFactory::MakeFileDialog() {
  RefuseMissing("MakeFileDialog", "save dialog");
}

std::unique_ptr<AwkOne> CComponentFactory::MakeFieldParser() {
  RefuseMissing("MakeFieldParser", "field parser");
}

std::unique_ptr<CVanePasscodeDialog> CComponentFactory::MakePasscodeDialog() {
  RefuseMissing("MakePasscodeDialog", "passcode prompt");
}

std::unique_ptr<CVaneTextFile> CComponentFactory::CreateTextFile(const std::string&) {
  RefuseMissing("CreateTextFile", "text files");
}

std::unique_ptr<ui::CForm> CComponentFactory::MakeForm(const std::string&) {
  RefuseMissing("MakeForm", "windows");
}

CInstalledComponents::CInstalledComponents(const Components& components)
    : previous_(std::exchange(g_installed, &components)) {}

CInstalledComponents::~CInstalledComponents() { g_installed = previous_; }

const Components& InstalledComponents() {
  if (g_installed == nullptr) {
    throw LibraryError(ERR_PLATFORM_CALL, "InstalledComponents",
                       "The host has installed no components.");
  }
  return *g_installed;
}

}  // namespace vane
