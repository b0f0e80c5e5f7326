// A value that marks its probe when it changes: compare, mark, store.
#pragma once

#include <utility>

namespace vane {

template <class T>
class CTrackedValue {
 public:
  /// `changed` is the probe's flag, which outlives the value.
  explicit CTrackedValue(bool& changed, T value = {})
      : changed_(changed), value_(std::move(value)) {}

  const T& Get() const { return value_; }

  /// Reals are compared as they are, with no tolerance.
  void Set(const T& value) {
    if (value_ < value || value < value_) {
      changed_ = true;
      value_ = value;
    }
  }

 private:
  bool& changed_;
  T value_;
};

}  // namespace vane
