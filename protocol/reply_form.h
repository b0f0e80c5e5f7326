// What the answer to a command may look like.
//
// A readout that was switched off and on again answers its identification to whatever it is asked,
// with the right tag and a right check value. A parse rule that takes 0 or a fallback for what it
// doesn't understand would make a value of that. So every command has a form, as wide as the rule
// that reads its answer, and an answer of another form is no answer.
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace vane::protocol {

enum class EReply : std::int32_t {
  NOTHING,   ///< the empty text, which acknowledges a write
  NUMBER,    ///< a number; a unit may stand behind it, after a blank
  WHOLE,     ///< the same, without a fraction: a count or a number of something
  WORD,      ///< one of certain words and no other
  SUBRANGE,  ///< the number of a subrange of ITS-90, a blank, a bracket, any text; or NONE
  NAME,      ///< a text that isn't empty and holds no comma, which every identification does
  TEXT,      ///< any text that isn't empty
  ANY,       ///< any text, the empty one included
};

struct ReplyForm {
  EReply kind = EReply::NOTHING;
  /// Of a number.
  double lowest = std::numeric_limits<double>::lowest();
  double highest = std::numeric_limits<double>::max();
  /// Separated by "|". A "*" within a word stands for any text.
  std::string_view words = {};
  bool eithercase = false;    ///< of the words
  bool maybenothing = false;  ///< the empty text fits as well
};

/// Blanks around a number or a word don't count. A number is what the whole text is, but for its
/// unit, and one that a Double holds: "12.3.4", "1,5" and "1e400" are none.
bool FitsForm(const ReplyForm& form, std::string_view reply);

/// The form in words, such as "a whole number from 0 to 32766".
std::string FormText(const ReplyForm& form);

}  // namespace vane::protocol
