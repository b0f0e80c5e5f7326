// Numbers as the readout reads and writes them, and the repeatable chance behind noise and faults.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace vane::simulator {

/// The number that the whole of `text` is, blanks around it apart; nothing for any other text and
/// for one beyond a Double.
std::optional<double> ParseReal(std::string_view text);
std::optional<std::int32_t> ParseWhole(std::string_view text);

/// The shortest text that reads back as the same number; an exponent has a capital "E".
std::string RealText(double value);

/// `value` with `digits` digits behind the point.
std::string FixedText(double value, int digits);

/// A number that looks random and depends on `keys` alone.
std::uint64_t Scatter(std::initializer_list<std::uint64_t> keys);

/// The same, from 0 up to but not including 1.
double ScatterUnit(std::initializer_list<std::uint64_t> keys);

}  // namespace vane::simulator
