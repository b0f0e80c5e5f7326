#include "simulator/readout_numbers.h"

#include <array>
#include <charconv>
#include <cmath>

namespace vane::simulator {
namespace {

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

template <typename T>
std::optional<T> ParseAll(std::string_view text) {
  text = Trimmed(text);
  T value{};
  const char* const last = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), last, value);
  if (error != std::errc{} || end != last) return std::nullopt;
  return value;
}

}  // namespace

std::optional<double> ParseReal(std::string_view text) {
  const auto value = ParseAll<double>(text);
  return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<std::int32_t> ParseWhole(std::string_view text) {
  return ParseAll<std::int32_t>(text);
}

std::string RealText(double value) {
  std::array<char, 32> buffer;
  char* const end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
  for (char* c = buffer.data(); c != end; ++c) {
    if (*c == 'e') *c = 'E';
  }
  return {buffer.data(), end};
}

std::string FixedText(double value, int digits) {
  std::array<char, 340> buffer;
  char* const end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                  std::chars_format::fixed, digits)
                        .ptr;
  return {buffer.data(), end};
}

// The finalizer of SplitMix64 (Steele, Lea, Flood: Fast Splittable Pseudorandom Number Generators,
// 2014), once per key.
std::uint64_t Scatter(std::initializer_list<std::uint64_t> keys) {
  std::uint64_t state = 0;
  for (const std::uint64_t key : keys) {
    state = (state ^ key) + 0x9E3779B97F4A7C15u;
    state = (state ^ (state >> 30)) * 0xBF58476D1CE4E5B9u;
    state = (state ^ (state >> 27)) * 0x94D049BB133111EBu;
    state ^= state >> 31;
  }
  return state;
}

double ScatterUnit(std::initializer_list<std::uint64_t> keys) {
  return static_cast<double>(Scatter(keys) >> 11) * 0x1p-53;
}

}  // namespace vane::simulator
