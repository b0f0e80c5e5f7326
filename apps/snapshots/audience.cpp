#include "apps/snapshots/audience.h"

namespace vane::thermoscribe {

EEnd CAudience::ReadWell(const std::function<bool()>& read) {
  const std::int32_t troubles = Troubles();
  try {
    if (!read()) return EEnd::STOPPED;
  } catch (...) {
    SayError("reading from the instrument");
    return EEnd::RAISED;
  }
  if (IsInterrupted()) return EEnd::STOPPED;
  if (Troubles() == troubles) return EEnd::DONE;
  Say("Not everything could be read well.");
  return EEnd::BADLY;
}

}  // namespace vane::thermoscribe
