// The instrument: the root object of the library and the only one that a host makes.
//
// One object stands for one connected readout. It holds a copy of every setting of the instrument
// as a property, owns the communications component and the modules with their channels, and shares
// the registry component of the host. `Query...` operations fill the copy from the instrument;
// properties by themselves never talk to it, and reading one never fails for lack of it.
//
// Order of use: `SetRegistry`, `InitializeCommunications`, `QueryInfo` or `QueryChannelInfo`, then
// the rest.
//
// Results and failures. An operation with a Boolean result gives true when it is done, false when
// the user has already been told why not; everything else that goes wrong is a `LibraryError`, with
// the outermost operation that passed it on as its source.
//
// An object lives on the thread that made it, and every operation blocks that thread. Nothing here
// locks. While an operation pauses, the platform's message queue runs, so a host's event handlers
// may be entered; they must not start another exchange or initialize communications anew.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "vane/channels/module.h"
#include "vane/components/components.h"
#include "vane/components/field_parser.h"
#include "vane/components/library_error.h"
#include "vane/components/registry.h"
#include "vane/support/date.h"
#include "vane/support/enums.h"
#include "vane/support/failure.h"
#include "vane/support/messages.h"
#include "vane/support/tracked.h"
#include "vane/topology/topology.h"

namespace vane {

enum class EMeasurementTrouble {
  TIMED_OUT,  ///< no new reading came within `NewDataLimit`
  CANCELLED,  ///< by `CancelWait`
  FAILED      ///< an exchange failed, or what the instrument sent is no reading
};

/// Why there is no reading, and the error by which that showed first: one of the line, say, or the
/// platform's overflow error for a number that a Double can't hold.
struct MeasurementTrouble {
  EMeasurementTrouble kind;
  LibraryError error;
};

/// Takes an identification reply apart: the text before the first comma, trimmed, is the model, the
/// number behind it the firmware. Without a comma the model is "<unknown>" and the firmware 0.
void ExtractModFWFromID(const std::string& id, std::string& model, double& firmware);

class CVaneT312B {
 public:
  /// Keeps a reference to `components`, which the host has installed for the process as well.
  explicit CVaneT312B(const Components& components);
  ~CVaneT312B();
  CVaneT312B(const CVaneT312B&) = delete;
  CVaneT312B& operator=(const CVaneT312B&) = delete;

  // The members stand in the order of the instrument's interface; what this library has beside it
  // stands behind them.

  // Settings of the instrument. Setting one to a value that differs from the stored one sets
  // `Changed`; limits are for dialogs and hosts, and only the resolutions enforce one, at the top.

  void SetOven(ET312BOven value) { oven_.Set(value); }
  ET312BOven Oven() const { return oven_.Get(); }
  void SetADC(double value) { adc_.Set(value); }
  double ADC() const { return adc_.Get(); }

  /// Formats in which values are written and shown; not settings of the instrument.
  void SetADCFormat(const std::string& value) { adcformat_ = value; }
  const std::string& ADCFormat() const { return adcformat_; }

  /// Storage for the host.
  void SetLogSessionInterval(std::int16_t value) { logsessioninterval_ = value; }
  std::int16_t LogSessionInterval() const { return logsessioninterval_; }
  static constexpr double MaxADC() { return 3.0; }
  static constexpr double MinADC() { return -3.0; }

  /// Limits of a calibration parameter; 0 for an index without a name.
  static double MaxCalParamValue(ET312BCalParams cp);
  static double MinCalParamValue(ET312BCalParams cp);
  static constexpr std::int16_t NumCalParams() { return 5; }

  /// There are six places, of which `NumCalParams` are in use. An index outside them is the
  /// platform's out-of-range error.
  void SetCalParamsFormat(ET312BCalParams Index, const std::string& value);
  const std::string& CalParamsFormat(ET312BCalParams Index) const;
  void SetCalParams(ET312BCalParams Index, double value);
  double CalParams(ET312BCalParams Index) const;

  void SetSampleAction(ET312BSampleAction value) { sampleaction_.Set(value); }
  ET312BSampleAction SampleAction() const { return sampleaction_.Get(); }

  /// Digits shown of a temperature, a resistance, a ratio. A value above the maximum becomes the
  /// maximum.
  std::int16_t Resolution() const { return resolution_.Get(); }
  void SetResolution(std::int16_t value) { resolution_.SetUpTo(value, MaxResolution()); }
  std::int16_t ResistanceResolution() const { return resistanceresolution_.Get(); }
  void SetResistanceResolution(std::int16_t value) {
    resistanceresolution_.SetUpTo(value, MaxResistanceResolution());
  }
  std::int16_t RatioResolution() const { return ratioresolution_.Get(); }
  void SetRatioResolution(std::int16_t value) {
    ratioresolution_.SetUpTo(value, MaxRatioResolution());
  }

  /// The user-defined scan sequence: instrument channel numbers in step order, with "," between.
  void SetScanChannels(const std::string& value) { scanchannels_.Set(value); }
  const std::string& ScanChannels() const { return scanchannels_.Get(); }
  /// The single channel of `CM_SCANNER_CHANNEL`.
  void SetScanChannel(std::int16_t value) { scanchannel_.Set(value); }
  std::int16_t ScanChannel() const { return scanchannel_.Get(); }
  void SetScanSeqChannels(std::int16_t value) { scanseqchannels_.Set(value); }
  std::int16_t ScanSeqChannels() const { return scanseqchannels_.Get(); }
  void SetScanSeqSteps(std::int16_t value) { scanseqsteps_.Set(value); }
  std::int16_t ScanSeqSteps() const { return scanseqsteps_.Get(); }
  /// The mode that a host asks for; no query fills it.
  void SetScanMode(ET312BScanMode value) { scanmode_.Set(value); }
  ET312BScanMode ScanMode() const { return scanmode_.Get(); }

  /// Folder passed on to the modules; at creation, the one that the library lies in.
  void SetFilePath(const std::string& value);
  const std::string& FilePath() const { return filepath_; }

  /// What to set the instrument's clock to; 0 is the present moment.
  void SetSystemClock(Date value) { systemclock_ = value; }
  Date SystemClock() const { return systemclock_; }

  /// Help topic of a communications failure, and the help file of the whole library.
  void SetHCIDCommError(std::int32_t value) { hcidcommerror_ = value; }
  std::int32_t HCIDCommError() const { return hcidcommerror_; }
  void SetHelpFile(const std::string& value) { SetLibraryHelpFile(value); }
  const std::string& HelpFile() const { return LibraryHelpFile(); }

  /// Keeps a further reference to the host's registry component.
  void SetRegistry(std::shared_ptr<CVaneRegistry> Reg) { registry_ = std::move(Reg); }
  const std::shared_ptr<CVaneRegistry>& Registry() const { return registry_; }

  /// Makes a new communications component in place of an earlier one and sets up its port. Opens
  /// nothing: the first exchange does. `fp` is the component's data folder when the library lies in
  /// the system folder; otherwise the folder above the library's is. True, or raises.
  bool InitializeCommunications(const std::string& fp = {},
                                EVanePortNumber cp = EVanePortNumber::PORT_1,
                                EVaneBaudRate br = EVaneBaudRate::BR_9600);

  /// Set by every change of a setting and of the number of modules, also by a query that brings a
  /// new value. The library's dialogs and hosts clear it.
  void SetChanged(bool value) { changed_ = value; }
  bool Changed() const { return changed_; }

  /// A switch for the host; the library itself does not read it.
  void SetAllowSetSerial(bool value) { allowsetserial_ = value; }
  bool AllowSetSerial() const { return allowsetserial_; }

  /// Whether the dialogs read everything back behind an Apply that was written.
  void SetReadAfterApply(bool value) { readafterapply_ = value; }
  bool ReadAfterApply() const { return readafterapply_; }

  /// Asks the user for the passcode until it is the instrument's or he gives up. Opens nothing by
  /// itself: that is the caller's.
  bool ValidatePasscode(ui::CWindow* frm);

  /// The instrument's protection of four groups of settings, and whether editing of each is open
  /// for this user. Setting a flag sets the state that goes with it; a state moves alone.
  void SetProtectCalParams(bool value) { protectcalparams_.SetFlag(value); }
  bool ProtectCalParams() const { return protectcalparams_.flag; }
  void SetProtectConversion(bool value) { protectconversion_.SetFlag(value); }
  bool ProtectConversion() const { return protectconversion_.flag; }
  void SetProtectSampling(bool value) { protectsampling_.SetFlag(value); }
  bool ProtectSampling() const { return protectsampling_.flag; }
  void SetProtectUnitsTime(bool value) { protectunitstime_.SetFlag(value); }
  bool ProtectUnitsTime() const { return protectunitstime_.flag; }
  void SetCalParamPasscodeState(ET312BPasscodeState value) { protectcalparams_.state = value; }
  ET312BPasscodeState CalParamPasscodeState() const { return protectcalparams_.state; }
  void SetConvPasscodeState(ET312BPasscodeState value) { protectconversion_.state = value; }
  ET312BPasscodeState ConvPasscodeState() const { return protectconversion_.state; }
  void SetSamplingPasscodeState(ET312BPasscodeState value) { protectsampling_.state = value; }
  ET312BPasscodeState SamplingPasscodeState() const { return protectsampling_.state; }
  void SetUnitsTimePasscodeState(ET312BPasscodeState value) { protectunitstime_.state = value; }
  ET312BPasscodeState UnitsTimePasscodeState() const { return protectunitstime_.state; }

  // Limits.
  static constexpr std::int16_t MaxSampleN() { return 32000; }
  static constexpr std::int16_t MinSampleN() { return 1; }
  static constexpr std::int16_t MaxRepetitions() { return 32000; }
  static constexpr std::int16_t MinRepetitions() { return 1; }
  static constexpr std::int32_t MaxInterval() { return 99999; }
  static constexpr std::int32_t MinInterval() { return 2; }
  static constexpr std::int16_t MaxConversionTime() { return 10; }
  static constexpr std::int16_t MinConversionTime() { return 2; }
  static constexpr std::int16_t MaxIntegrationTime() { return 9999; }
  static constexpr std::int16_t MinIntegrationTime() { return 2; }
  static constexpr double MaxFilterRespTime() { return 200.0; }
  static constexpr double MinFilterRespTime() { return 2.0; }
  static constexpr double MaxFilterThreshold() { return 1000000.0; }
  static constexpr double MinFilterThreshold() { return 0.0001; }
  static constexpr std::int16_t MaxResolution() { return 8; }
  static constexpr std::int16_t MinResolution() { return 0; }
  static constexpr std::int16_t MinResistanceResolution() { return 0; }
  static constexpr std::int16_t MaxResistanceResolution() { return 8; }
  static constexpr std::int16_t MinRatioResolution() { return 0; }
  static constexpr std::int16_t MaxRatioResolution() { return 8; }
  static constexpr EVaneBaudRate IRBaudRate() { return EVaneBaudRate::BR_INFRARED; }

  /// Finds out the channels and the modules. False when the user has been told of a failure or an
  /// abort, or when the instrument stays silent.
  bool QueryChannelInfo();

  /// Reads all settings into this copy, then the modules; see `CModule::QueryInfo` for
  /// `inclchannels`. `frm` owns the display; without it the run is the same and shows none. What
  /// was read before a failure or an abort stays.
  bool QueryInfo(ui::CWindow* frm = nullptr, bool inclmodules = true, bool inclchannels = false);

  /// Asks who is on the line. False when nobody answers. `Model` and `Firmware` are set from the
  /// answer with `setprops` only, `Identification` always, also to an empty answer.
  bool QueryIdentification(bool setprops = true);

  /// Whether the firmware is at least `MinFirmwareRequired`: from that version on the readout
  /// counts its channels and modules by itself and gives out its logs.
  bool VerifyMinimumFirmware() const { return firmware_ >= MinFirmwareRequired(); }
  static constexpr double MinFirmwareRequired() { return 5.03; }

  // Reads and, below, writes of single settings: true, or an error. Only `QueryUnits` can give
  // false: for a reply that names no unit, which makes `Units` `UNITS_NONE`.

  bool QueryScannerScanMode();
  bool QueryUnits();
  bool QuerySampleAction();
  bool QueryChannelMode();

  /// The reading of channel `chan`, in the instrument's units; -1 stands for `SelectedChannel`.
  /// With `waitfornew`, waits for a new reading first, up to `NewDataLimit`. Every failure of the
  /// exchange, of the wait, or by `CancelWait`, is `ERR_MEASUREMENT`, and `LastMeasurementTrouble`
  /// tells which; a channel that the instrument
  /// does not have is `ERR_INVALID_CHANNEL`.
  double QueryMeasurement(std::int16_t chan = -1, bool waitfornew = false);

  /// Writes the whole copy, changed or not: the scanner's settings, the readout's own, and the
  /// calibration when `CalParamPasscodeState` says that editing it is open. `Model` and `Firmware`
  /// stay as they are. What was written before a failure or an abort stays written.
  /// `inclchannels` has no effect: a channel writes itself.
  bool UpdateInfo(ui::CWindow* frm = nullptr, bool inclchannels = false);

  bool UpdateUnits();
  bool UpdateSampleAction();
  bool UpdateChannelMode();
  bool UpdateScannerScanMode();

  /// Switch the instrument's measuring on and off. False when the user has been told of a failure.
  bool StartMeasure();
  bool StopMeasure();

  bool UpdateInterval(ui::CWindow* frm = nullptr);  ///< `frm` is not used
  bool UpdateConversionTime();
  bool UpdateIntegrationTime();
  bool UpdateSampleN();
  bool UpdateRepetitions();
  bool UpdateResolution();
  bool UpdateResistanceResolution();
  bool UpdateRatioResolution();

  /// The instrument has no delay between scan steps: true, and nothing is done.
  bool UpdateScanSeqDelay() { return true; }

  /// Writes the steps of `ScanChannels`, as it is at the start, and sets `ScanSeqSteps` to their
  /// number. An item is a whole number, rounded like a reply; a channel that no step can take is
  /// `ERR_INVALID_CHANNEL`, and the steps before it stay written.
  bool UpdateScanChannelList(ui::CWindow* frm = nullptr);

  /// Puts the instrument into the mode of `ScanMode`; with `override`, into the plain mode or, with
  /// `scmode`, the one that walks: both inputs, or the user-defined sequence.
  bool UpdateScanMode(bool override = false, bool scmode = false);
  bool UpdateScanChannel();
  bool UpdateScanSeqChannels();
  bool UpdateScanSeqSteps();

  /// Sets the instrument's date and time to `SystemClock`, on a clock of 12 or 24 hours as the
  /// user's own. `frm` is not used.
  bool UpdateSystemClock(ui::CWindow* frm);

  /// Proves the line. False when the user has been told of a failure.
  bool InitializeCommunicationSettings();

  static constexpr bool HasScanSeqDelay() { return false; }

  /// The channel that `QueryMeasurement` reads by itself; -1 is none. A value above
  /// `NumChannels` - 1 raises `ERR_INVALID_CHANNEL`; there is no lower limit.
  void SetSelectedChannel(std::int16_t value);
  std::int16_t SelectedChannel() const { return selectedchannel_; }

  /// A plain number, such as 5.03; 0 until the instrument has been identified.
  double Firmware() const { return firmware_; }

  /// Channels over all modules; 0 until they have been queried.
  std::int16_t NumChannels() const { return topology_.NumChannels(); }
  static constexpr std::int16_t NumProbes() { return 16; }

  void SetUnits(ET312BUnits value) { units_.Set(value); }
  ET312BUnits Units() const { return units_.Get(); }

  /// 1, or 2 with a scanner; 0 until they have been queried.
  std::int16_t NumModules() const { return topology_.NumModules(); }

  /// Lets the user edit the settings in a dialog above the window that is shown, which reads the
  /// instrument first and writes what the user applies. False when he leaves by Cancel, also behind
  /// an Apply; true by OK, whether or not anything was written. What was read stays in this copy.
  bool Edit();

  /// `Edit` of the channel with that instrument channel number; false when no module has it. Below
  /// 1 and above the owner's last channel, `ERR_INVALID_CHANNEL`.
  bool EditChannel(std::int16_t chnidx);

  /// Shows the dialog in which the user chooses what of a log to download, as often as he likes.
  /// True when he has closed it, whatever has become of the downloads.
  bool DownloadLoggedData();

  /// Fetches one of the instrument's logs reading by reading, writes it as a column text file, and
  /// offers that to the user. `numreadings` 0 is up to 100 readings; the log's end ends the
  /// fetching earlier. `resol` is the number of decimals, negative for numbers as they came. The
  /// file is download.txt in the folder of the registry value "DownloadFolder", or where the user
  /// says when `prompt` is true. `awkParser` is the host's and is used during the run only.
  ///
  /// Never raises. True when the list of files was reached; false when the user has been told of a
  /// failure, has stopped the run, or when the instrument stays silent. A stop during the parsing
  /// leaves the rows so far in the file. In the temporary folder stay DNLDT312B.LOG, the trace of
  /// the run, and TMPDWNLD.LOG, the readings as the instrument has sent them, up to the log's end,
  /// a stop, a reading that stays bad, or a failure of the line. A run that ends before it asks for
  /// the first reading leaves an earlier run's there.
  bool DownloadLog(AwkOne& awkParser,
                   ET312BDownloadLogOption log = ET312BDownloadLogOption::DOWNLOAD_HISTORY_LOG,
                   ET312BDownloadOption opt = ET312BDownloadOption::DOWNLOAD_SINGLE_FILE,
                   std::int16_t numreadings = 0, std::int16_t resol = -1, bool prompt = false);

  /// The whole identification reply; empty until then.
  const std::string& Identification() const { return identification_; }
  /// Plain text; no exchange touches it.
  void SetSerial(const std::string& value) { serial_ = value; }
  const std::string& Serial() const { return serial_; }
  /// "T312B" until the instrument has said what it is.
  const std::string& Model() const { return model_; }

  /// Module 0 holds the inputs, module 1 is the scanner; null for one that is not there. Any other
  /// index raises `ERR_INVALID_MODULE`.
  CModule* Modules(std::int16_t idx) const { return topology_.Module(idx); }

  void SetInterval(std::int32_t value) { interval_.Set(value); }
  std::int32_t Interval() const { return interval_.Get(); }
  void SetConversionTime(std::int16_t value) { conversiontime_.Set(value); }
  std::int16_t ConversionTime() const { return conversiontime_.Get(); }
  void SetIntegrationTime(std::int16_t value) { integrationtime_.Set(value); }
  std::int16_t IntegrationTime() const { return integrationtime_.Get(); }
  void SetSampleN(std::int16_t value) { samplen_.Set(value); }
  std::int16_t SampleN() const { return samplen_.Get(); }
  void SetRepetitions(std::int16_t value) { repetitions_.Set(value); }
  std::int16_t Repetitions() const { return repetitions_.Get(); }
  void SetChannelMode(ET312BChannelMode value) { channelmode_.Set(value); }
  ET312BChannelMode ChannelMode() const { return channelmode_.Get(); }
  void SetScannerScanMode(ET312BScannerScanMode value) { scannerscanmode_.Set(value); }
  ET312BScannerScanMode ScannerScanMode() const { return scannerscanmode_.Get(); }
  void SetFilterRespTime(double value) { filterresptime_.Set(value); }
  double FilterRespTime() const { return filterresptime_.Get(); }
  void SetFilterThreshold(double value) { filterthreshold_.Set(value); }
  double FilterThreshold() const { return filterthreshold_.Get(); }
  void SetFilterType(ET312BFilterType value) { filtertype_.Set(value); }
  ET312BFilterType FilterType() const { return filtertype_.Get(); }

  // Fill a list control, a host's own too, with the choices of a setting: the text of each, and its
  // code as its number. The list is emptied first, and nothing is selected then. What fails has the
  // label of the filler, and the entries before it stay.

  void FillFilterTypeList(ui::CListControl& lst) const;
  /// `FillUnitsList` with the units of temperature alone.
  void FillRTLSUnitsList(ui::CListControl& lst, bool keepexisting = false) const;
  /// `keepexisting` puts "<keep existing>" before, `inclnontemp` the units that are none of a
  /// temperature behind.
  void FillUnitsList(ui::CListControl& lst, bool keepexisting = false,
                     bool inclnontemp = true) const;
  void FillSampleActionList(ui::CListControl& lst) const;
  void FillOvenList(ui::CListControl& lst) const;
  void FillChannelModeList(ui::CListControl& lst) const;
  void FillScannerScanModeList(ui::CListControl& lst) const;
  /// By the numbers on the scanner; empty without one.
  void FillScanChannelList(ui::CListControl& lst) const;
  /// The steps of `ScanChannels`, `ScanSeqSteps` of them; one that has no number there is of
  /// channel 0.
  void FillScanSeqList(ui::CListControl& lst) const;
  /// The channels that a step of a scan sequence can take.
  void FillChannelNameList(ui::CListControl& lst) const;
  /// The channels with their probes.
  void FillChannelList(ui::CListControl& lst) const;
  void FillProbeNameList(ui::CListControl& lst) const;

  /// A channel's name for people: "Input 2", "Scanner 10". No range check.
  std::string GetScanSeqChannelName(std::int16_t chn) const;

  /// The channel of an instrument channel number; null when there is none.
  CVaneT312BPRTTHRMChannel* GetChannelReference(std::int16_t chn) const;

  /// Null until `InitializeCommunications`. Owned here.
  CVaneCommunications* Communications() const { return communications_.get(); }

  bool HasScanners() const { return NumModules() >= 2; }

  // Not of the interface: what a host may want besides.

  /// The longest wait for one new reading, in milliseconds. Until a host sets one it follows the
  /// settings in this copy, so that no wait ends before the instrument had its time: the sample
  /// under way when the wait begins, and behind it a round of all that is measured by turns, at one
  /// sample per `Interval` seconds. A round is two samples; in the mode `CM_SCANNER_SEQUENCE` with
  /// a scanner, `ScanSeqSteps` of a user-defined sequence, twice `ScanSeqChannels` of any other,
  /// since every second sample may be of Input 2 or of scanner channel 1. It is never below 120 s,
  /// which is also what holds while the settings have not been read.
  void SetNewDataLimit(std::int64_t ms) { newdatalimit_ = ms; }
  std::int64_t NewDataLimit() const;

  /// Reads into this copy what the usual `NewDataLimit` follows, for a host that waits for readings
  /// without a `QueryInfo`: `Interval` and, with a scanner, the channel mode, the scanner's mode
  /// and the lengths of its sequences. The modules must have been found out. True, or an error
  /// under the label of the read that failed.
  bool QueryWaitSettings();

  /// For an event handler of the host: ends the wait of a running `QueryMeasurement` at once.
  void CancelWait() { waitcancelled_ = true; }

  /// What stands behind the `ERR_MEASUREMENT` of the last `QueryMeasurement`. Null when that gave a
  /// reading, or refused the channel; good until the next one.
  const MeasurementTrouble* LastMeasurementTrouble() const {
    return measurementtrouble_ ? &*measurementtrouble_ : nullptr;
  }

  /// `DownloadLog`, started from the window `frm`, above which the list of files opens.
  bool DownloadLogAbove(ui::CWindow* frm, AwkOne& awkParser, ET312BDownloadLogOption log,
                        ET312BDownloadOption opt, std::int16_t numreadings, std::int16_t resol,
                        bool prompt);

 private:
  template <class T>
  using Tracked = CTracked<T, CVaneT312B>;

  // A group of settings behind the passcode.
  struct ProtectedGroup {
    bool flag = false;
    ET312BPasscodeState state = ET312BPasscodeState::PS_ENABLED;

    void SetFlag(bool value) {
      flag = value;
      state = value ? ET312BPasscodeState::PS_DISABLED : ET312BPasscodeState::PS_ENABLED;
    }
  };

  static constexpr std::size_t kCalParamPlaces = 6;

  const Components& components_;

  bool changed_ = false;
  CTopology topology_;
  Tracked<ET312BUnits> units_{*this};
  std::array<Tracked<double>, kCalParamPlaces> calparams_;
  std::array<std::string, kCalParamPlaces> calparamsformat_;
  Tracked<double> adc_{*this};
  std::string adcformat_;
  Tracked<ET312BFilterType> filtertype_{*this};
  std::string model_;
  std::string serial_;
  std::string identification_;
  Tracked<double> filterresptime_{*this};
  Tracked<double> filterthreshold_{*this};
  Tracked<std::int32_t> interval_{*this};
  Tracked<std::int16_t> conversiontime_{*this};
  Tracked<std::int16_t> integrationtime_{*this};
  Tracked<std::int16_t> samplen_{*this};
  std::unique_ptr<CVaneCommunications> communications_;
  std::int16_t selectedchannel_ = 0;
  double firmware_ = 0;
  bool allowsetserial_ = false;
  bool readafterapply_ = false;
  std::shared_ptr<CVaneRegistry> registry_;
  std::string filepath_;
  Date systemclock_ = 0;
  Tracked<std::int16_t> resolution_{*this};
  Tracked<std::int16_t> resistanceresolution_{*this};
  Tracked<std::int16_t> ratioresolution_{*this};
  std::int16_t logsessioninterval_ = 0;
  ProtectedGroup protectconversion_;
  ProtectedGroup protectcalparams_;
  ProtectedGroup protectsampling_;
  ProtectedGroup protectunitstime_;
  Tracked<ET312BChannelMode> channelmode_{*this};
  Tracked<ET312BScannerScanMode> scannerscanmode_{*this};
  Tracked<ET312BScanMode> scanmode_{*this};
  Tracked<std::string> scanchannels_{*this};
  Tracked<std::int16_t> scanchannel_{*this};
  Tracked<std::int16_t> scanseqchannels_{*this};
  Tracked<std::int16_t> scanseqsteps_{*this};
  Tracked<std::int16_t> repetitions_{*this};
  Tracked<ET312BSampleAction> sampleaction_{*this};
  Tracked<ET312BOven> oven_{*this};
  std::int32_t hcidcommerror_ = 0;

  std::optional<std::int64_t> newdatalimit_;  // the host's
  bool waitcancelled_ = false;
  std::optional<MeasurementTrouble> measurementtrouble_;
};

}  // namespace vane
