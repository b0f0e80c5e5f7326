#include "adapters/files/field_reader.h"

#include <algorithm>
#include <stdexcept>

namespace vane {

void CFieldReader::SetFS(const std::string& separators) {
  separators_ = separators;
  split_ = false;
}

void CFieldReader::SetL(const std::string& text) {
  text_ = text;
  split_ = false;
}

std::int32_t CFieldReader::NF() { return static_cast<std::int32_t>(Places().size()); }

std::string CFieldReader::f(std::int32_t i) {
  const std::vector<Place>& places = Places();
  if (i < 1 || static_cast<std::size_t>(i) > places.size()) {
    throw std::out_of_range("There is no field " + std::to_string(i) + " in a text of " +
                            std::to_string(places.size()) + " fields.");
  }
  const Place& place = places[static_cast<std::size_t>(i) - 1];
  return text_.substr(place.begin, place.size);
}

const std::vector<CFieldReader::Place>& CFieldReader::Places() {
  if (split_) return places_;
  places_.clear();
  std::size_t begin = text_.find_first_not_of(separators_);
  while (begin != text_.npos) {
    const std::size_t end = std::min(text_.find_first_of(separators_, begin), text_.size());
    places_.push_back({begin, end - begin});
    begin = text_.find_first_not_of(separators_, end);
  }
  split_ = true;
  return places_;
}

}  // namespace vane
