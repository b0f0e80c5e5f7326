// A group of channels with one owner: the readout's own two inputs, or a scanner's ten.
//
// The instrument object makes and owns its modules and rebuilds them whenever it asks the
// instrument for them; a module makes and owns its channels. A pointer to either is good until the
// next rebuild. The two classes have the same members and behaviour; what differs are the facts of
// `ModuleKind`. A module has no exchange of its own. Lives on the instrument object's thread.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "vane/channels/channel.h"
#include "vane/components/components.h"
#include "vane/components/registry.h"

namespace vane {

class CVaneT312B;

struct ModuleKind {
  const char* classname;
  const char* model;  ///< and name
  std::int16_t numchannels;
};

class CModule {
 public:
  virtual ~CModule();
  CModule(const CModule&) = delete;
  CModule& operator=(const CModule&) = delete;

  /// Passed on to every channel.
  const std::string& FilePath() const { return filepath_; }
  void SetFilePath(const std::string& value);

  /// Passed on to every channel. What a probe puts in its place holds for that channel alone.
  void SetRegistry(const std::shared_ptr<CVaneRegistry>& Reg);
  const std::shared_ptr<CVaneRegistry>& Registry() const { return registry_; }

  /// The instrument, which is not owned. Channels find it through here.
  void SetBaseUnit(CVaneT312B* bu) { baseunit_ = bu; }
  CVaneT312B* BaseUnit() const { return baseunit_; }

  /// The module's own flag; the channels have theirs.
  bool Changed() const { return changed_; }
  void SetChanged(bool value) { changed_ = value; }

  /// Place in the instrument's list of modules, from 0.
  void SetModuleNumber(std::int16_t mdnum) { modulenumber_ = mdnum; }
  std::int16_t ModuleNumber() const { return modulenumber_; }

  std::int16_t NumChannels() const { return kind_.numchannels; }

  /// Instrument channel number of the first channel; -1 until the instrument has set it.
  void SetStartChannel(std::int16_t chn) { startchannel_ = chn; }
  std::int16_t StartChannel() const { return startchannel_; }

  /// Reads the number of the assigned probe of every channel; with `inclchannels`, every channel
  /// whole, whose failures don't stop the run and don't show in the result. False when the user has
  /// been told of a failure or an abort.
  bool QueryInfo(ui::CWindow* frm = nullptr, bool inclchannels = false);

  const std::string& Model() const { return model_; }
  const std::string& ModuleName() const { return modulename_; }

  /// The channel at `idx`, from 0; never null. Raises `ERR_INVALID_CHANNEL` outside the module.
  CVaneT312BPRTTHRMChannel* Channels(std::int16_t idx) const;

 protected:
  CModule(const ModuleKind& kind, const Components& components);

 private:
  void SetModel(const std::string& text) { model_ = text; }
  void SetModuleName(const std::string& text) { modulename_ = text; }

  const ModuleKind& kind_;
  const Components& components_;
  std::shared_ptr<CVaneRegistry> registry_;  // outlives the channels
  std::string modulename_;
  std::string model_;
  std::int16_t modulenumber_ = 0;
  std::int16_t startchannel_ = 0;
  std::vector<std::unique_ptr<CVaneT312BPRTTHRMChannel>> channels_;
  CVaneT312B* baseunit_ = nullptr;
  bool changed_ = false;
  std::string filepath_;
};

class CVaneT312BBaseModule final : public CModule {
 public:
  explicit CVaneT312BBaseModule(const Components& components);
};

class CVaneM420Multiplexer final : public CModule {
 public:
  explicit CVaneM420Multiplexer(const Components& components);
};

}  // namespace vane
