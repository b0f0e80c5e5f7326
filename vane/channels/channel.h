// A measuring input for a platinum resistance thermometer or a thermistor: one of the readout's two
// inputs or one of the scanner's ten.
//
// A copy in memory. `Query...` fills it from the instrument; properties by themselves never talk to
// it. The instrument keeps the number of the assigned probe per channel and everything else per
// probe, so two channels with the same probe hold a copy of its record each.
//
// Owned by its module, lives on the instrument object's thread. The instrument is reached as
// `Module()->BaseUnit()`: a channel needs `SetModule` before its first exchange.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "vane/components/components.h"
#include "vane/components/registry.h"
#include "vane/support/enums.h"
#include "vane/support/tracked.h"

namespace vane {

class CModule;
class CVaneT312B;

class CVaneT312BPRTTHRMChannel {
 public:
  explicit CVaneT312BPRTTHRMChannel(const Components& components);
  ~CVaneT312BPRTTHRMChannel();
  CVaneT312BPRTTHRMChannel(const CVaneT312BPRTTHRMChannel&) = delete;
  CVaneT312BPRTTHRMChannel& operator=(const CVaneT312BPRTTHRMChannel&) = delete;

  // Limits of what a user may enter. The properties don't enforce them.
  static constexpr double MinProbeCurrent() { return 0.0001; }
  static constexpr double MaxProbeCurrent() { return 21.0; }
  static constexpr double MinProbe3WireOffset() { return 0.0; }
  static constexpr double MaxProbe3WireOffset() { return 1000000.0; }

  /// The library carries current and offset as the instrument gives them and knows no unit. The
  /// formats are those in which they are written to the instrument.
  const std::string& ProbeCurrentFormat() const { return probecurrentformat_; }
  void SetProbeCurrentFormat(const std::string& value) { probecurrentformat_ = value; }
  double ProbeCurrent() const { return probecurrent_.Get(); }
  void SetProbeCurrent(double value) { probecurrent_.Set(value); }
  const std::string& Probe3WireOffsetFormat() const { return probe3wireoffsetformat_; }
  void SetProbe3WireOffsetFormat(const std::string& value) { probe3wireoffsetformat_ = value; }
  double Probe3WireOffset() const { return probe3wireoffset_.Get(); }
  void SetProbe3WireOffset(double value) { probe3wireoffset_.Set(value); }
  ET312BProbeRefResistor ProbeRefResistor() const { return proberefresistor_.Get(); }
  void SetProbeRefResistor(ET312BProbeRefResistor value) { proberefresistor_.Set(value); }

  static constexpr std::int16_t MaxSerialLength() { return 8; }

  /// Whether the channel is in use. For the host: the library only sets it.
  bool Enabled() const { return enabled_; }
  void SetEnabled(bool value) { enabled_ = value; }

  void SetModule(CModule* md) { module_ = md; }
  CModule* Module() const { return module_; }

  /// Passed on to the probe.
  const std::string& FilePath() const { return filepath_; }
  void SetFilePath(const std::string& value);

  /// Shared with the probe, which may put another in its place for this channel.
  void SetRegistry(const std::shared_ptr<CVaneRegistry>& vData);
  const std::shared_ptr<CVaneRegistry>& Registry() const { return registry_; }

  /// The channel's own flag or the probe's. Setting it sets both.
  bool Changed() const;
  void SetChanged(bool value);

  /// For the host: the library neither sets nor uses it.
  void SetBaseUnit(CVaneT312B* BaseUnit) { baseunit_ = BaseUnit; }
  CVaneT312B* BaseUnit() const { return baseunit_; }

  /// Place within the module, from 1. No command uses it.
  std::int16_t ModuleChannel() const { return modulechannel_; }
  void SetModuleChannel(std::int16_t vData) { modulechannel_ = vData; }

  /// Number on the instrument: 1 and 2 are its inputs, 3 and up are scanner channels.
  std::int16_t ActualChannel() const { return actualchannel_; }
  void SetActualChannel(std::int16_t vData) { actualchannel_ = vData; }

  CVaneProbe* Probe() const { return probe_.get(); }

  /// Number of the assigned probe, -1 until it has been read.
  std::int16_t ProbeIndex() const { return probeindex_.Get(); }
  void SetProbeIndex(std::int16_t value) { probeindex_.Set(value); }

  /// Gives the probe a conversion of type `ct` with its formats, limits and defaults; codes that
  /// the library does not use become `CONV_NONE`. A conversion that has the type already keeps all
  /// its values. Always true; raises on failure.
  bool SetConversionType(EVaneConversionType ct);

  /// Shows the dialog in which the user edits this channel; it reads the instrument, and writes
  /// what the user applies. False when he has left it with Cancel; what was read or chosen until
  /// then stays in this copy.
  bool Edit();

  // Reads. A single one gives true or raises. `prbidx` is a probe's number on the instrument and
  // need not be `ProbeIndex`. A composite one runs under a reporter that belongs to `frm`, and
  // gives false when the user has been told of a failure or an abort; what it has read by then
  // stays.

  /// The assigned probe, and its whole record.
  bool QueryInfo(ui::CWindow* frm = nullptr);
  /// The number of the assigned probe.
  bool QueryProbeIndex();
  /// The whole record of a probe: serial number, reference resistor, current, 3-wire offset,
  /// conversion type and the values of that conversion.
  bool QueryProbeInfo(std::int16_t prbidx, ui::CWindow* frm = nullptr);
  bool QueryProbeSerialNumber(std::int16_t prbidx);
  bool QueryRefResistor(std::int16_t prbidx);
  bool QueryCurrent(std::int16_t prbidx);
  bool Query3WireOffset(std::int16_t prbidx);
  /// Sets up the conversion anew when the type differs from the one at hand. -1 stands for the
  /// assigned probe, whose number is read first.
  bool QueryConversionType(std::int16_t prbidx = -1);

  // Writes, changed or not. `prbidx` and `frm` as above; results too. What was written before a
  // failure or an abort stays written, and nothing is read back.

  /// The number of the assigned probe, and behind it that probe's whole record.
  bool UpdateInfo(ui::CWindow* frm = nullptr);
  /// The record of a probe; its conversion only when the instrument's `ConvPasscodeState` says that
  /// editing conversions is open.
  bool UpdateProbeInfo(std::int16_t prbidx, ui::CWindow* frm = nullptr);

  // Fill a list control, a host's too, with the choices of a setting, each with its code; nothing
  // is selected then. Entries before a failure stay.
  void FillRefResistorList(ui::CListControl& lst) const;
  void FillConversionTypeList(ui::CListControl& lst, bool keepexisting = false) const;

 private:
  template <class T, class Differs = std::not_equal_to<T>>
  using Tracked = CTracked<T, CVaneT312BPRTTHRMChannel, Differs>;

  const Components& components_;
  std::shared_ptr<CVaneRegistry> registry_;  // outlives the probe
  bool changed_ = false;
  bool enabled_ = false;
  std::unique_ptr<CVaneProbe> probe_;
  std::int16_t actualchannel_ = 0;
  std::int16_t modulechannel_ = 0;
  std::string filepath_;
  CModule* module_ = nullptr;
  CVaneT312B* baseunit_ = nullptr;
  Tracked<ET312BProbeRefResistor> proberefresistor_{*this};
  Tracked<std::int16_t> probeindex_{*this};
  Tracked<double, OrderedDiffers> probecurrent_{*this};
  Tracked<double, OrderedDiffers> probe3wireoffset_{*this};
  std::string probecurrentformat_;
  std::string probe3wireoffsetformat_;
};

}  // namespace vane
