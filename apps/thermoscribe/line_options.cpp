#include "apps/thermoscribe/line_options.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <stdexcept>

#include "adapters/files/config_registry.h"
#include "adapters/serial/baud_rates.h"
#include "adapters/serial/serial_ports.h"
#include "apps/snapshots/value_rule.h"
#include "apps/thermoscribe/command.h"
#include "apps/thermoscribe/port_choice.h"

namespace vane::thermoscribe {
namespace {

using Seconds = std::chrono::duration<double>;

constexpr double kMinTimeout = 0.01;  // s
constexpr double kMaxTimeout = 3600;

std::vector<std::string> BaudRateWords() {
  std::vector<std::string> words;
  for (const BaudRateRow& row : BaudRates()) words.push_back(std::to_string(row.bits));
  return words;
}

void TakePort(HostOptions& options, const std::string& called, const std::string& text) {
  if (text.empty()) throw CUsageError(called + " can't be empty.");
  options.port = text;
}

void TakeBaud(HostOptions& options, const std::string& called, const std::string& text) {
  const auto row = std::ranges::find_if(
      BaudRates(), [&](const BaudRateRow& one) { return std::to_string(one.bits) == text; });
  if (row == BaudRates().end()) {
    throw CUsageError(called + " can't be \"" + text + "\". It is " +
                      Listed(BaudRateWords(), "or") + ".");
  }
  options.baud = row->rate;
}

void TakeTimeout(HostOptions& options, const std::string& called, const std::string& text) {
  options.timeout = std::chrono::round<std::chrono::milliseconds>(
      Seconds(NumberIn(called, text, kMinTimeout, kMaxTimeout)));
}

constexpr LineOptionRow kLineOptions[] = {
    {"port", "THERMOSCRIBE_PORT", "", [] { return std::vector<std::string>(); }, TakePort,
     [](const HostOptions& options) { return Known(options.port); }},
    {"baud", "THERMOSCRIBE_BAUD", "bit/s", BaudRateWords, TakeBaud,
     [](const HostOptions& options) { return Value(FindBaudRate(options.baud)->bits); }},
    {"timeout", "THERMOSCRIBE_TIMEOUT", "s", [] { return std::vector<std::string>(); }, TakeTimeout,
     [](const HostOptions& options) { return Value(Seconds(options.timeout).count()); }},
};

bool IsPort(const LineOptionRow& row) { return row.take == TakePort; }

std::optional<std::string> TextInFile(const LineOptionRow& row, const CConfigRegistry& registry) {
  try {
    return registry.FindText(row.name, kProgramSubkey);
  } catch (const std::invalid_argument& error) {
    throw CUsageError(std::string(row.name) + " in " + registry.Path().string() + " is " +
                      error.what() + ".");
  } catch (const std::runtime_error& error) {
    // The others do no harm by being built in, and the host tells of the file when it first reads.
    if (!IsPort(row)) return std::nullopt;
    throw CUsageError(std::string(error.what()) +
                      ". It may name the port: mend it, or give --port.");
  }
}

}  // namespace

std::span<const LineOptionRow> LineOptions() { return kLineOptions; }

const LineOptionRow* FindLineOption(const std::string& name) {
  const auto row = std::ranges::find_if(
      kLineOptions, [&](const LineOptionRow& one) { return Folded(one.name) == Folded(name); });
  return row == std::end(kLineOptions) ? nullptr : row;
}

EValueSource TakeDefault(const LineOptionRow& row, HostOptions& options,
                         const CConfigRegistry& registry) {
  if (std::ranges::find(options.given, row.name) != options.given.end()) {
    return EValueSource::COMMAND_LINE;
  }
  if (const char* const text = std::getenv(row.variable); text != nullptr && *text != 0) {
    row.take(options, row.variable, text);
    return EValueSource::ENVIRONMENT;
  }
  if (const std::optional<std::string> text = TextInFile(row, registry)) {
    row.take(options, std::string(row.name) + " in " + registry.Path().string(), *text);
    return EValueSource::FILE;
  }
  return EValueSource::BUILT_IN;
}

void TakeDefaults(HostOptions& options, const CConfigRegistry& registry) {
  for (const LineOptionRow& row : kLineOptions) {
    if (!IsPort(row) || !options.simulated) TakeDefault(row, options, registry);
  }
  if (options.port.empty() && !options.simulated) options.port = LoneAdapter(ListSerialPorts());
}

}  // namespace vane::thermoscribe
