// The clocks of a recording, and what a step of the wall clock looks like between them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace vane::recorder {

/// One moment on all clocks, in milliseconds.
struct Moment {
  std::int64_t utc = 0;  ///< since 1970, without leap seconds; somebody may set it
  /// Since the machine was started, the time that it was suspended included. Never goes back, and
  /// means nothing behind the next start.
  std::int64_t monotonic = 0;
  std::int64_t awake = 0;  ///< as `monotonic`, but stands still while the machine is suspended

  friend bool operator==(const Moment&, const Moment&) = default;
};

class CClock {
 public:
  virtual ~CClock() = default;

  virtual Moment Now() const = 0;

  /// Tells one start of the machine from another: monotonic times count within one alone.
  virtual std::string Boot() const = 0;
};

class CMachineClock final : public CClock {
 public:
  Moment Now() const override;
  std::string Boot() const override;
};

/// Notices when the wall clock is set, and when the machine was suspended.
class CStepWatch {
 public:
  struct Found {
    /// By how much the wall clock went forward (or back, below 0) against the monotonic one since
    /// the last call; 0 for what a clock that is merely steered does by itself.
    std::int64_t step = 0;
    std::int64_t asleep = 0;
  };

  Found Look(const Moment& now);

 private:
  std::optional<Moment> last_;
};

/// "2026-03-01T09:30:00.125Z"; with `islocal`, the user's time with its distance from UTC.
std::string TimeText(std::int64_t utc, bool islocal = false);

/// The moment of a text such as "2026-03-01T09:30:00.125Z", "2026-03-01 09:30", "2026-03-01", with
/// a "Z" or a distance such as "+01:00" behind a time; without one it is the user's own time. In
/// milliseconds of UTC; nothing for what is no time.
std::optional<std::int64_t> TimeOfText(const std::string& text);

}  // namespace vane::recorder
