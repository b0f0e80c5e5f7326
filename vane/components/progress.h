// The progress reporter: what the user sees of a long run, and where the user can stop it.
//
// A long run makes one through `CComponentFactory` and releases it at its end, on every road; an
// object that is released takes its display away. Lives on the user-interface thread.
#pragma once

#include <cstdint>
#include <string>

namespace vane {

namespace ui {
class CWindow;
}

/// "Not given" for a position of `CVaneProgress::Step`.
inline constexpr std::int32_t kNoPosition = -2;

class CVaneProgress {
 public:
  virtual ~CVaneProgress() = default;

  /// Whether the reporter shows itself at all. A run goes on the same way when it does not.
  virtual void SetVisible(bool flag) = 0;

  /// The window that the display belongs to; may be null.
  virtual void Attach(ui::CWindow* frm) = 0;

  /// False takes the display off the screen, so that a message box can come up; true brings it
  /// back.
  virtual void Hide(bool flag) = 0;

  /// Opens a run. `share` is the percent that one plain `Step` adds; 0 is for a run that gives its
  /// position itself.
  virtual void Start(const std::string& text, double share) = 0;

  /// Advances the run: by its share, or to `position` of `total`. False means that the user wants
  /// the run to end; once false, it stays false until `Finish`.
  virtual bool Step(std::int32_t total = kNoPosition, std::int32_t position = kNoPosition,
                    std::int32_t extra = kNoPosition) = 0;

  /// Ends the run and takes the display away; `Start` may follow.
  virtual void Finish() = 0;
};

}  // namespace vane
