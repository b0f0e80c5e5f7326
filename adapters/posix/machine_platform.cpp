#include "adapters/posix/machine_platform.h"

#include <langinfo.h>

#include <algorithm>
#include <climits>
#include <clocale>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <utility>

#include "adapters/posix/clock_text.h"

namespace vane {

int CMachinePlatform::WaitOf(std::uint32_t longestwait) {
  if (skipswaits_) skipped_ += std::exchange(longestwait, 0);
  return static_cast<int>(std::min<std::uint32_t>(longestwait, INT_MAX));
}

std::uint32_t CMachinePlatform::TickCount() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return skipped_ + static_cast<std::uint32_t>(
                        std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

std::chrono::local_seconds CMachinePlatform::LocalTime() {
  const std::time_t now = std::time(nullptr);
  std::tm fields{};
  ::localtime_r(&now, &fields);
  return std::chrono::local_seconds(std::chrono::seconds(now + fields.tm_gmtoff));
}

std::string CMachinePlatform::DecimalSeparator() {
  const std::string separator = std::localeconv()->decimal_point;
  return separator.empty() ? "." : separator;
}

std::string CMachinePlatform::LongTimeText(std::chrono::local_seconds moment) {
  return ClockText(moment, ::nl_langinfo(T_FMT));
}

std::string CMachinePlatform::FolderOfLibrary() {
  // Every channel asks, at each read of all settings.
  static const std::string kFolder =
      std::filesystem::read_symlink("/proc/self/exe").parent_path().string();
  return kFolder;
}

std::string CMachinePlatform::SystemFolder() { return "/usr/lib"; }

std::string CMachinePlatform::TemporaryFolder() {
  const char* variable = std::getenv("TMPDIR");
  std::string folder = variable && *variable ? variable : "/tmp";
  while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
  return folder;
}

}  // namespace vane
