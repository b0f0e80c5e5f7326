// A text field that holds a number: what may be typed into it, and what becomes of it when the user
// leaves it. A number out of range is moved to the nearest limit without a word; a text that is no
// number gives way to the last good one.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "vane/components/form.h"

namespace vane {

/// How a text becomes a number, and how that is written back.
enum class EFieldKind : std::int32_t {
  REAL,   ///< all of the text, under the user's decimal separator; the field's format
  WHOLE,  ///< the same, to a 16-bit integer; a plain whole number
  TIME,   ///< the number that the text begins with, 0 without one; a plain whole number
};

/// All of `text` as a number under the user's decimal separator, blanks around it aside. Raises the
/// platform's type mismatch error for a text that is none, its overflow error for a number that a
/// Double can't hold. Separators of thousands are none of a number.
double RealFromField(std::string_view text);

/// The same as a 16-bit integer, rounded as all numbers are.
std::int16_t WholeFromField(std::string_view text);

class CNumberField {
 public:
  using KeyFilter = void (*)(std::int16_t& key) noexcept;

  /// Without a `filter` every key is taken. Takes over the events of `field`, and with `updown`
  /// that of the up-down, whose limits are the field's then.
  CNumberField(ui::CTextField& field, EFieldKind kind, KeyFilter filter,
               ui::CUpDown* updown = nullptr);
  CNumberField(const CNumberField&) = delete;
  CNumberField& operator=(const CNumberField&) = delete;

  ui::CTextField& Field() const { return field_; }

  /// For a field without an up-down; its format as in `SetFormat`.
  void SetLimits(double minimum, double maximum, std::string format);

  /// In which the number is written, see `FormatNumber`. The other kinds have one as well when it
  /// is set.
  void SetFormat(std::string format) { format_ = std::move(format); }

  /// Writes `value` as it is, also one that is out of range.
  void Show(double value);

  /// Runs when the user has left the field, after it was limited, and when the up-down has moved
  /// it.
  void OnSettled(ui::Handler handler) { settled_ = std::move(handler); }

  /// What the user's leaving does, but for the event.
  void Limit();

 private:
  double Number() const;

  ui::CTextField& field_;
  const EFieldKind kind_;
  ui::CUpDown* const updown_;
  double minimum_ = 0;
  double maximum_ = 0;
  std::string format_;
  std::string good_;  // the text that was last shown, limited or stepped to
  ui::Handler settled_;
};

}  // namespace vane
