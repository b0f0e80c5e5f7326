// The field parser: splits one text into fields at runs of separator characters.
//
// The caller of a download hands one in and keeps it. Lives on the user-interface thread.
#pragma once

#include <cstdint>
#include <string>

namespace vane {

class AwkOne {
 public:
  virtual ~AwkOne() = default;

  /// The separator characters. A run of them is one separation, whatever its length.
  virtual void SetFS(const std::string& separators) = 0;

  /// The text to split. The parser keeps a copy.
  virtual void SetL(const std::string& text) = 0;

  /// Number of fields of that text; an empty text has none.
  virtual std::int32_t NF() = 0;

  /// Field `i`, from 1. Outside 1 to `NF` raises `std::out_of_range`.
  virtual std::string f(std::int32_t i) = 0;
};

}  // namespace vane
