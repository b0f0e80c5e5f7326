#include "vane/dialogs/number_field.h"

#include <charconv>
#include <cmath>
#include <system_error>

#include "vane/components/library_error.h"
#include "vane/support/field_editing.h"
#include "vane/support/number_text.h"
#include "vane/support/numbers.h"
#include "vane/support/texts.h"

namespace vane {

double RealFromField(std::string_view text) {
  std::string number(TrimBlanks(text));
  // "." is nobody's decimal separator but its own: read as one, 1.234 would mean different numbers.
  if (GetDecimalSeparator() != "." && number.find('.') != number.npos) {
    throw PlatformError(ERR_PLATFORM_TYPE_MISMATCH);
  }
  number = ToDotDecimal(std::move(number));
  const bool hasplus = number.size() > 1 && number[0] == '+' && number[1] != '-';
  const char* const begin = number.data() + (hasplus ? 1 : 0);
  const char* const end = number.data() + number.size();
  double value = 0;
  const auto [stop, error] = std::from_chars(begin, end, value);
  if (error == std::errc::result_out_of_range && stop == end) {
    // Too near to 0 is 0, as everywhere; the other kind of range has an exponent or digits above.
    value = NumberFromText({begin, end});
  } else if (error != std::errc() || stop != end || !std::isfinite(value)) {
    throw PlatformError(ERR_PLATFORM_TYPE_MISMATCH);
  }
  return value;
}

std::int16_t WholeFromField(std::string_view text) { return ToInteger(RealFromField(text)); }

CNumberField::CNumberField(ui::CTextField& field, EFieldKind kind, KeyFilter filter,
                           ui::CUpDown* updown)
    : field_(field), kind_(kind), updown_(updown) {
  field_.OnGotFocus([] { SelectActiveText(); });
  if (filter != nullptr) field_.OnKeyPress(filter);
  field_.OnLostFocus([this] {
    // One that the program has closed in the meantime keeps what the program shows in it.
    if (field_.IsOpen() || field_.Text() != good_) Limit();
    if (settled_) settled_();
  });
  if (updown_ == nullptr) return;
  updown_->OnChange([this] {
    good_ = field_.Text();
    if (settled_) settled_();
  });
}

void CNumberField::SetLimits(double minimum, double maximum, std::string format) {
  minimum_ = minimum;
  maximum_ = maximum;
  format_ = std::move(format);
}

void CNumberField::Show(double value) {
  const bool isplain = kind_ != EFieldKind::REAL && format_.empty();
  good_ = isplain ? std::to_string(ToLong(value)) : FormatNumber(value, format_);
  field_.SetText(good_);
}

double CNumberField::Number() const {
  switch (kind_) {
    case EFieldKind::WHOLE:
      return WholeFromField(field_.Text());
    case EFieldKind::TIME:
      return NumberFromText(field_.Text());
    default:
      return RealFromField(field_.Text());
  }
}

void CNumberField::Limit() {
  double number = 0;
  try {
    number = Number();
  } catch (const LibraryError&) {
    field_.SetText(good_);
    return;
  }
  Show(updown_ != nullptr ? Clamp<double>(number, updown_->Min(), updown_->Max())
                          : Clamp(number, minimum_, maximum_));
}

}  // namespace vane
