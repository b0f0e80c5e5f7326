// The save dialog: asks the user where a file shall go.
//
// The download makes one through `CComponentFactory` for one question. Lives on the user-interface
// thread. The properties are set in the order of their declaration, then `ShowSave` asks.
#pragma once

#include <cstdint>
#include <string>

namespace vane {

class CVaneFileDialog {
 public:
  virtual ~CVaneFileDialog() = default;

  virtual void SetOptionA(bool value) = 0;  ///< always false
  virtual void SetDefaultExt(const std::string& extension) = 0;
  virtual void SetDialogTitle(const std::string& title) = 0;
  /// 0x280806: ask before overwriting, no read-only box, the path must exist, explorer style, long
  /// names.
  virtual void SetFlags(std::int32_t flags) = 0;
  virtual void SetFileName(const std::string& name) = 0;
  virtual void SetFilter(const std::string& filter) = 0;
  virtual void SetOptionB(bool value) = 0;  ///< always false
  virtual void SetInitDir(const std::string& folder) = 0;

  /// Modal. Raises an error when the user cancels.
  virtual void ShowSave() = 0;

  /// The path that the user chose.
  virtual const std::string& FileName() const = 0;
};

}  // namespace vane
