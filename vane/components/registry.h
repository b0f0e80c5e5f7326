// The registry component: values and window places that outlive the program, per user.
//
// Made by the host, which shares it with the instrument object; that passes it on to modules,
// channels and probes. The library reads values, and keeps the places of its windows. Lives on the
// user-interface thread.
#pragma once

#include <cstdint>
#include <string>

namespace vane {

namespace ui {
class CForm;
}

/// The root under which the current user's values lie; the only one that the library names.
inline constexpr std::uint32_t kCurrentUserRoot = 0x80000001u;

class CVaneRegistry {
 public:
  virtual ~CVaneRegistry() = default;

  /// The value `name`, or `fallback` where there is none; 0 is false. An empty `subkey` leaves the
  /// place to the component.
  virtual std::int32_t ReadBoolean(const std::string& name, bool fallback, std::uint32_t root,
                                   const std::string& subkey) = 0;

  virtual std::string ReadText(const std::string& name, const std::string& fallback,
                               std::uint32_t root, const std::string& subkey) = 0;

  /// Keeps where the window is, and gives it that place again when it comes up another time. A
  /// window that has never been anywhere is left alone. The two further arguments are always 0 and
  /// true.
  virtual void RestoreFormPlacement(ui::CForm& form, std::int32_t variant, bool flag) = 0;
  virtual void SaveFormPlacement(ui::CForm& form, std::int32_t variant, bool flag) = 0;
};

}  // namespace vane
