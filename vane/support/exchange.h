// One exchange with the instrument: the fields are emptied and set anew, and the command goes out.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

#include "vane/components/communications.h"

namespace vane {

/// A field of a command and its text.
struct FieldText {
  std::string CommandParams::*field;
  std::string text;
};

inline void SetFields(CVaneCommunications& line, std::initializer_list<FieldText> fields) {
  CommandParams& params = line.params();
  params.ClearAll();
  for (const FieldText& field : fields) params.*field.field = field.text;
}

/// Gives the reply.
inline std::string Read(CVaneCommunications& line, ECommand id,
                        std::initializer_list<FieldText> fields = {}) {
  SetFields(line, fields);
  return line.ReadSetting(id);
}

inline void Write(CVaneCommunications& line, ECommand id,
                  std::initializer_list<FieldText> fields = {}) {
  SetFields(line, fields);
  line.WriteSetting(id);
}

}  // namespace vane
