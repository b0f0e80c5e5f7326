#include "vane/instrument/operations.h"

namespace vane {

std::string InstrumentLabel(std::string_view operation) {
  return OperationLabel("CVaneT312B", operation);
}

CVaneCommunications& LineOf(const CVaneT312B& instrument) {
  if (instrument.Communications() == nullptr) {
    throw LibraryError(ERR_PLATFORM_CALL, {}, "Communications have not been initialized.");
  }
  return *instrument.Communications();
}

CModule& ModuleOf(const CVaneT312B& instrument, std::int16_t idx) {
  CModule* const md = instrument.Modules(idx);
  if (md == nullptr) {
    throw LibraryError(ERR_PLATFORM_CALL, {},
                       "Module " + std::to_string(idx) + " could not be made.");
  }
  return *md;
}

CVaneRegistry& RegistryOf(const CVaneT312B& instrument) {
  if (!instrument.Registry()) {
    throw LibraryError(ERR_PLATFORM_CALL, {}, "There is no registry component.");
  }
  return *instrument.Registry();
}

}  // namespace vane
