#include "apps/snapshots/probe_members.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "apps/snapshots/audience.h"
#include "apps/snapshots/enum_words.h"
#include "apps/snapshots/value_text.h"
#include "vane/channels/coefficients.h"
#include "vane/instrument/t312b.h"
#include "vane/support/display_texts.h"
#include "vane/support/field_editing.h"
#include "vane/support/texts.h"

namespace vane::thermoscribe {
namespace {

using ProbeChannel = CVaneT312BPRTTHRMChannel;

using enum ET312BProbeRefResistor;
using ReferenceWords =
    EnumWords<RefResistorText, PRR_EXTERNAL, PRR_1_OHM, PRR_10_OHM, PRR_100_OHM, PRR_10K_OHM>;

std::string ConversionText(EVaneConversionType type) {
  return ConversionTypeText(static_cast<std::int32_t>(type));
}

using enum EVaneConversionType;
using ConversionWords =
    EnumWords<ConversionText, CONV_ITS90, CONV_IPTS68, CONV_CVD, CONV_POLYNOMIAL,
              CONV_THERMISTOR_TR, CONV_THERMISTOR_RT, CONV_RESISTANCE, CONV_WT90, CONV_RATIO>;

// The readout's serial numbers are read in capital letters.
std::optional<std::string> SerialTaken(std::string_view typed) {
  const bool isgood = !typed.empty() &&
                      typed.size() <= static_cast<std::size_t>(ProbeChannel::MaxSerialLength()) &&
                      std::ranges::all_of(typed, [](char character) {
                        if (character <= ' ') return false;
                        std::int16_t key = character;
                        FilterSerialKey(key);
                        return key != 0;
                      });
  return isgood ? std::optional<std::string>(UpperCase(typed)) : std::nullopt;
}

std::optional<std::string> SerialInFile(std::string_view serial) {
  const bool isgood =
      serial.size() <= static_cast<std::size_t>(ProbeChannel::MaxSerialLength()) &&
      std::ranges::none_of(serial, [](unsigned char c) { return c < ' ' || c == 0x7F; });
  return isgood ? std::optional<std::string>(serial) : std::nullopt;
}

std::optional<std::string> UnknownReference(std::string_view word) {
  const std::string unknown = RefResistorText(PRR_NONE);
  return word == unknown ? std::optional<std::string>(unknown) : std::nullopt;
}

// The settings of the channel's conversion, which is one that has them.
template <class Settings>
Settings& SettingsOf(const ProbeChannel& channel) {
  return dynamic_cast<Settings&>(*channel.Probe()->Conversion().Settings());
}

constexpr std::int32_t kNoRange = -1;

// A subrange of ITS-90.
template <auto Range>
ProbeMemberRow RangeRow(std::string_view name, std::string_view title, double lowest,
                        double highest) {
  return {.name = name,
          .title = title,
          .rule = NumberRule{lowest, highest, true},
          .get =
              [](const ProbeChannel& channel) {
                const std::int32_t number = (SettingsOf<CITS90Settings>(channel).*Range)().Range();
                return number == kNoRange ? Value() : Value(number);
              },
          .set =
              [](ProbeChannel& channel, const Value& value) {
                (SettingsOf<CITS90Settings>(channel).*Range)().SetRange(
                    value.IsNone() ? kNoRange : static_cast<std::int32_t>(value.Number()));
              },
          .only = CONV_ITS90,
          .maybenone = true};
}

// "Keep existing", the text of the code for none, is a choice in a list and no conversion.
Value GetConversion(const ProbeChannel& channel) {
  const EVaneConversionType type = channel.Probe()->ConversionType();
  return type == CONV_NONE ? Value() : Value(ConversionText(type));
}

const std::string kMostCharacters = std::to_string(ProbeChannel::MaxSerialLength());

const ProbeMemberRow kMembers[] = {
    {.name = "serial",
     .title = "Probe serial number",
     .rule = TextRule{SerialTaken, "1 to " + kMostCharacters + " letters, digits and \"-\""},
     .get = [](const ProbeChannel& channel) { return Value(channel.Probe()->SerialNumber()); },
     .set = [](ProbeChannel& channel,
               const Value& value) { channel.Probe()->SetSerialNumber(value.Text()); },
     .isconversion = false,
     .infile = TextRule{SerialInFile, "a text of up to " + kMostCharacters +
                                          " characters without control characters"}},
    {.name = "reference",
     .title = "Reference",
     .rule = WordRule{ReferenceWords::All},
     .get =
         [](const ProbeChannel& channel) {
           return Value(RefResistorText(channel.ProbeRefResistor()));
         },
     .set =
         [](ProbeChannel& channel, const Value& value) {
           channel.SetProbeRefResistor(ReferenceWords::Find(value.Text()).value_or(PRR_NONE));
         },
     .isconversion = false,
     .infile = TextRule{UnknownReference, {}}},
    {.name = "current",
     .title = "Current",
     .rule = NumberRule{ProbeChannel::MinProbeCurrent(), ProbeChannel::MaxProbeCurrent()},
     .get = [](const ProbeChannel& channel) { return Value(channel.ProbeCurrent()); },
     .set = [](ProbeChannel& channel,
               const Value& value) { channel.SetProbeCurrent(value.Number()); },
     .isconversion = false},
    {.name = "offset3wire",
     .title = "3W offset",
     .rule = NumberRule{ProbeChannel::MinProbe3WireOffset(), ProbeChannel::MaxProbe3WireOffset()},
     .get = [](const ProbeChannel& channel) { return Value(channel.Probe3WireOffset()); },
     .set = [](ProbeChannel& channel,
               const Value& value) { channel.SetProbe3WireOffset(value.Number()); },
     .isconversion = false},
    {.name = "conversion",
     .title = "Conversion type",
     .rule = WordRule{ConversionWords::All},
     .get = GetConversion,
     .set =
         [](ProbeChannel& channel, const Value& value) {
           const auto type = value.IsNone() ? std::nullopt : ConversionWords::Find(value.Text());
           channel.SetConversionType(type.value_or(CONV_NONE));
         },
     .maybeunknown = true},
    RangeRow<&CITS90Settings::LowRange>("lowrange", "Low subrange", 1, 5),
    RangeRow<&CITS90Settings::HighRange>("highrange", "High subrange", 6, 11),
    {.name = "scale",
     .title = "Scale",
     .rule = WordRule{[] {
                        return std::vector<std::string>{"90", "68"};
                      },
                      true},
     .get =
         [](const ProbeChannel& channel) {
           const auto& settings = SettingsOf<CIPTS68Settings>(channel);
           return settings.ScaleEnabled() ? Value(settings.IPTS68Scale() == 0 ? 90 : 68) : Value();
         },
     .set =
         [](ProbeChannel& channel, const Value& value) {
           if (value.IsNone()) return;
           auto& settings = SettingsOf<CIPTS68Settings>(channel);
           settings.SetIPTS68Scale(value == 90 ? 0 : 1);
           settings.SetScaleEnabled(true);
         },
     .only = CONV_IPTS68,
     .maybeunknown = true},
};

bool IsOf(const ProbeMemberRow& row, const ProbeChannel& channel) {
  return !row.only || channel.Probe()->ConversionType() == *row.only;
}

// None of a member that belongs to another conversion says nothing.
void StoreMember(ProbeChannel& channel, const ProbeMemberRow& row, const Value& value) {
  if (IsOf(row, channel)) return row.set(channel, value);
  if (value.IsNone()) return;
  throw std::invalid_argument(std::string(row.name) + " can't be set: it belongs to " +
                              ConversionText(*row.only) + ", and the conversion is " +
                              ConversionText(channel.Probe()->ConversionType()) + ".");
}

void StoreCoefficient(const ProbeChannel& channel, const std::string& name, double value) {
  std::string known;
  for (const Coefficient& coefficient : CoefficientsOf(channel)) {
    if (Folded(coefficient.name) == Folded(name)) return coefficient.set(value);
    Append(known, ", ", coefficient.name);
  }
  throw std::invalid_argument(name + " is no coefficient of " +
                              ConversionText(channel.Probe()->ConversionType()) +
                              (known.empty() ? ", which has none." : ", which has " + known + "."));
}

}  // namespace

std::span<const ProbeMemberRow> ProbeMembers() { return kMembers; }

bool Holds(const ProbeValues& values, const ProbeKey& key) {
  return std::ranges::find(values, key, &ProbeValue::key) != values.end();
}

Value ValueIn(const ProbeValues& values, const ProbeKey& key) {
  const auto value = std::ranges::find(values, key, &ProbeValue::key);
  return value == values.end() ? Value() : value->value;
}

bool KnowsConversion(const ProbeValues& values) {
  return std::ranges::none_of(values, [](const ProbeValue& one) {
    return one.key.row != nullptr && one.key.row->get == GetConversion && one.value.IsNone();
  });
}

bool HoldsConversion(const ProbeValues& values) {
  return std::ranges::any_of(values, &ProbeKey::IsConversion, &ProbeValue::key);
}

CVaneT312BPRTTHRMChannel* ProbeCarrier(const CVaneT312B& instrument, CAudience& audience) {
  CVaneT312BPRTTHRMChannel* const channel = instrument.GetChannelReference(1);
  if (channel == nullptr) audience.Say("The readout reports no channels.");
  return channel;
}

ProbeValues ProbeRecord(const ProbeChannel& channel) {
  ProbeValues record;
  for (const ProbeMemberRow& row : kMembers) {
    record.push_back({ProbeKey(row), IsOf(row, channel) ? row.get(channel) : Value()});
  }
  for (const Coefficient& coefficient : CoefficientsOf(channel)) {
    record.push_back({ProbeKey(coefficient.name), coefficient.get()});
  }
  return record;
}

// In the order of the record: a conversion has to be there before what belongs to it.
void StoreProbeValues(ProbeChannel& channel, const ProbeValues& values) {
  for (const ProbeMemberRow& row : kMembers) {
    for (const auto& [key, value] : values) {
      if (key.row == &row) StoreMember(channel, row, value);
    }
  }
  for (const auto& [key, value] : values) {
    if (key.row == nullptr) StoreCoefficient(channel, key.coefficient, value.Number());
  }
}

Members MembersOf(std::int16_t number, const ProbeValues& record) {
  Members members = {{"probe", number}};
  Members coefficients;
  for (const auto& [key, value] : record) {
    (key.row != nullptr ? members : coefficients).push_back({key.Name(), value});
  }
  members.push_back({"coefficients", std::move(coefficients)});
  return members;
}

void AddRecordLine(std::string& text, const std::string& title, const Value& value) {
  constexpr std::size_t kTitleColumns = 21;
  AddLine(text, title, kTitleColumns, TextOf(value));
}

void AddProbeRecord(std::string& text, std::int16_t number, const ProbeChannel& channel) {
  AddRecordLine(text, "Probe", number);
  for (const auto& [key, value] : ProbeRecord(channel)) {
    if (key.row == nullptr) {
      AddRecordLine(text, "  " + key.coefficient, value);
    } else if (IsOf(*key.row, channel)) {
      AddRecordLine(text, std::string(key.row->title), value);
    }
  }
}

}  // namespace vane::thermoscribe
