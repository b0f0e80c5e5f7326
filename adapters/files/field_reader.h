// The field parser of a download: a whole log as one text, taken apart in one pass.
//
// The host makes one and hands it to the download. Lives on the user-interface thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "vane/components/field_parser.h"

namespace vane {

/// Separators at either end of the text make no empty field. Without separators the text is one
/// field.
class CFieldReader : public AwkOne {
 public:
  void SetFS(const std::string& separators) override;
  void SetL(const std::string& text) override;

  /// Splits the text when it or the separators are new, else costs nothing.
  std::int32_t NF() override;
  std::string f(std::int32_t i) override;

 private:
  struct Place {
    std::size_t begin;
    std::size_t size;
  };

  const std::vector<Place>& Places();

  std::string separators_;
  std::string text_;
  std::vector<Place> places_;
  bool split_ = true;  // whether `places_` belongs to the text and the separators
};

}  // namespace vane
