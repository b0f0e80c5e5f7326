// A setting that marks its owner as changed.
#pragma once

#include <functional>
#include <utility>

namespace vane {

/// "Differs" for values of which one is neither below nor above the other when they can't be
/// ordered: what is not a number never replaces a number.
struct OrderedDiffers {
  template <class T>
  bool operator()(const T& a, const T& b) const {
    return a < b || b < a;
  }
};

/// An owner that is no more than its flag.
class CChangedFlag {
 public:
  void SetChanged(bool value) { changed_ = value; }
  bool Changed() const { return changed_; }

 private:
  bool changed_ = false;
};

/// A value of an `Owner`, which outlives it. A value that differs from the stored one sets the
/// owner's `Changed` and is stored; an equal one does nothing.
template <class T, class Owner, class Differs = std::not_equal_to<T>>
class CTracked {
 public:
  explicit CTracked(Owner& owner, T initial = T{}) : owner_(owner), value_(std::move(initial)) {}

  const T& Get() const { return value_; }

  void Set(T value) {
    if (!Differs{}(value, value_)) return;
    owner_.SetChanged(true);
    value_ = std::move(value);
  }

  /// Compares with `value` and stores it or, if that is lower, `maximum`.
  void SetUpTo(T value, T maximum) {
    if (!Differs{}(value, value_)) return;
    owner_.SetChanged(true);
    value_ = value > maximum ? maximum : value;
  }

 private:
  Owner& owner_;
  T value_;
};

}  // namespace vane
