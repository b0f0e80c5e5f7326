// Which channels and modules an instrument has, and the objects that stand for them.
//
// Part of the instrument object. A pointer to a module is good until the next `QueryNumModules` or
// `SetNumModules`; every change marks the instrument as changed.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "vane/channels/module.h"
#include "vane/components/components.h"

namespace vane {

class CVaneT312B;

class CTopology {
 public:
  CTopology(CVaneT312B& instrument, const Components& components)
      : instrument_(instrument), components_(components) {}

  /// Ask the instrument, on old firmware by trying. True, or an error. `NumChannels` follows from
  /// no module, and no module from it.
  bool QueryNumModules();
  bool QueryNumChannels();

  /// Lays out 0, 1 or 2 modules anew, also when there are as many. A failure is shown in a box.
  void SetNumModules(std::int16_t value);
  std::int16_t NumModules() const { return nummodules_; }
  std::int16_t NumChannels() const { return numchannels_; }

  /// Null for a module that is not there; raises `ERR_INVALID_MODULE` for any index but 0 and 1.
  CModule* Module(std::int16_t idx) const;

 private:
  void Rebuild(std::int16_t value);

  CVaneT312B& instrument_;
  const Components& components_;
  std::vector<std::unique_ptr<CModule>> modules_;
  std::int16_t nummodules_ = 0;
  std::int16_t numchannels_ = 0;
};

}  // namespace vane
