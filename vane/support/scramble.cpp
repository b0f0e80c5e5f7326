#include "vane/support/scramble.h"

namespace vane {
namespace {

// Chosen so that the stored texts are printable characters.
constexpr unsigned char kScrambleByte = 0x15;

}  // namespace

std::string ScrambleText(const std::string& text) {
  std::string scrambled = text;
  for (char& c : scrambled) c = static_cast<char>(static_cast<unsigned char>(c) ^ kScrambleByte);
  return scrambled;
}

}  // namespace vane
