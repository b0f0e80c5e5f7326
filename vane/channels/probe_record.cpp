#include "vane/channels/probe_record.h"

#include "vane/channels/channel.h"
#include "vane/channels/probe_exchange.h"
#include "vane/support/number_text.h"
#include "vane/support/numbers.h"
#include "vane/support/words.h"

namespace vane {
namespace {

using Channel = CVaneT312BPRTTHRMChannel;

constexpr WordRow<ET312BProbeRefResistor> kResistorWords[] = {
    {"EXT", "EXT", ET312BProbeRefResistor::PRR_EXTERNAL},
    {"10 KOHM", "10K", ET312BProbeRefResistor::PRR_10K_OHM},
    {"100 OHM", "100", ET312BProbeRefResistor::PRR_100_OHM},
    {"10 OHM", "10", ET312BProbeRefResistor::PRR_10_OHM},
    {"1 OHM", "1", ET312BProbeRefResistor::PRR_1_OHM},
};

// The reply for R(T) also holds the mark of a resistance.
constexpr WordRow<EVaneConversionType> kConversionWords[] = {
    {"ITS-90", "90", EVaneConversionType::CONV_ITS90},
    {"IPTS-68", "68", EVaneConversionType::CONV_IPTS68},
    {"CVD", "CVD", EVaneConversionType::CONV_CVD},
    {"THRM-R(T)", "TT", EVaneConversionType::CONV_THERMISTOR_RT},
    {"THRM-T(R)", "TR", EVaneConversionType::CONV_THERMISTOR_TR},
    {"POLYNOMIAL", "POLY", EVaneConversionType::CONV_POLYNOMIAL},
    {"R(", "O", EVaneConversionType::CONV_RESISTANCE},
    {"W(T90)", "W", EVaneConversionType::CONV_WT90},
    {"RATIO", "R", EVaneConversionType::CONV_RATIO},
};

}  // namespace

constexpr ProbeRow kProbeSerial{
    "ProbeSerialNumber",
    "ProbeSerial",
    EText::SERIAL,
    ECommand::READ_PROBE_SERIAL,
    [](Channel& channel, const std::string& reply) { channel.Probe()->SetSerialNumber(reply); },
    [](const Channel& channel) { return channel.Probe()->SerialNumber(); },
};

constexpr ProbeRow kRefResistor{
    "RefResistor",
    "RefResistor",
    EText::REFERENCE,
    ECommand::READ_REF_RESISTOR,
    [](Channel& channel, const std::string& reply) {
      channel.SetProbeRefResistor(
          ValueOf<ET312BProbeRefResistor>(reply, kResistorWords, ET312BProbeRefResistor::PRR_NONE));
    },
    [](const Channel& channel) {
      return CodeOf<ET312BProbeRefResistor>(channel.ProbeRefResistor(), kResistorWords);
    },
};

constexpr ProbeRow kProbeCurrent{
    "Current",
    "Current",
    EText::CURRENT,
    ECommand::READ_PROBE_CURRENT,
    [](Channel& channel, const std::string& reply) {
      channel.SetProbeCurrent(NumberFromText(reply));
    },
    [](const Channel& channel) {
      return ToDotDecimal(FormatNumber(channel.ProbeCurrent(), channel.ProbeCurrentFormat()));
    },
};

constexpr ProbeRow kProbe3WireOffset{
    "3WireOffset",
    "3WireOffset",
    EText::OFFSET_3W,
    ECommand::READ_PROBE_3WIRE_OFFSET,
    [](Channel& channel, const std::string& reply) {
      channel.SetProbe3WireOffset(NumberFromText(reply));
    },
    [](const Channel& channel) {
      return ToDotDecimal(
          FormatNumber(channel.Probe3WireOffset(), channel.Probe3WireOffsetFormat()));
    },
};

constexpr ProbeRow kConversionType{
    "ConversionType",
    "ConversionType",
    EText::CONVERSION_TYPE,
    ECommand::READ_CONVERSION_TYPE,
    [](Channel& channel, const std::string& reply) {
      channel.SetConversionType(
          ValueOf<EVaneConversionType>(reply, kConversionWords, EVaneConversionType::CONV_NONE));
    },
    [](const Channel& channel) {
      return CodeOf<EVaneConversionType>(channel.Probe()->ConversionType(), kConversionWords);
    },
};

bool QueryProbe(Channel& channel, const ProbeRow& row, std::int16_t prbidx) {
  return QueryProbe(channel, {row.readname, row.readid}, prbidx,
                    [&](const std::string& reply) { row.store(channel, reply); });
}

bool UpdateProbe(const Channel& channel, const ProbeRow& row, std::int16_t prbidx) {
  return UpdateProbe(channel, {row.writename, row.readid}, prbidx,
                     [&] { return row.text(channel); });
}

}  // namespace vane
