// The instrument's date and time.
#include <cstdio>
#include <string>

#include "vane/instrument/operations.h"
#include "vane/instrument/t312b.h"
#include "vane/support/exchange.h"
#include "vane/support/text_table.h"
#include "vane/support/texts.h"

namespace vane {
namespace {

using namespace std::chrono;

template <class... Numbers>
std::string Text(const char* format, Numbers... numbers) {
  char text[32];
  std::snprintf(text, sizeof text, format, numbers...);
  return text;
}

std::string DateText(local_seconds moment) {
  const year_month_day date(floor<days>(moment));
  return Text("%02u-%02u-%04d", static_cast<unsigned>(date.month()),
              static_cast<unsigned>(date.day()), static_cast<int>(date.year()));
}

// Characters of UTF-8; those behind the first byte of one begin with the bits 10.
std::string LastCharacters(const std::string& text, int count) {
  std::size_t start = text.size();
  while (start > 0 && count > 0) {
    --start;
    if ((static_cast<unsigned char>(text[start]) & 0xC0) != 0x80) --count;
  }
  return text.substr(start);
}

// On a clock of 12 hours noon and midnight are hour 0, and the marker of the half day is the one
// that the user's own clock has.
std::string TimeText(local_seconds moment, const std::string& usersclock) {
  const hh_mm_ss time(moment - floor<days>(moment));
  const auto hours = static_cast<int>(time.hours().count());
  const auto minutes = static_cast<int>(time.minutes().count());
  const auto seconds = static_cast<int>(time.seconds().count());
  if (!Contains(usersclock, "M")) return Text("%02d:%02d:%02d", hours, minutes, seconds);
  return Text("%d:%02d:%02d", hours % 12, minutes, seconds) + LastCharacters(usersclock, 2);
}

}  // namespace

bool CVaneT312B::UpdateSystemClock(ui::CWindow*) {
  return Exchange(*this, "UpdateSystemClock", [&] {
    const local_seconds moment =
        SystemClock() == 0 ? components_.platform.LocalTime() : MomentOf(SystemClock());
    Write(LineOf(*this), ECommand::WRITE_DATE, {{&CommandParams::value, DateText(moment)}});
    LineOf(*this).params().value = TimeText(moment, components_.platform.LongTimeText(moment));
    LineOf(*this).WriteSetting(ECommand::WRITE_TIME);
    return true;
  });
}

}  // namespace vane
