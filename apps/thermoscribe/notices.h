// What the program tells on standard error: text for people, or with --json one object per line.
#pragma once

#include <cstdint>
#include <string>

#include "apps/thermoscribe/exit_codes.h"

namespace vane {

class CNotices {
 public:
  CNotices(bool json, bool quiet) : json_(json), quiet_(quiet) {}

  bool IsJson() const { return json_; }

  /// Tells what went wrong. `number` and `source` are those of an error, where one is behind it.
  void Tell(const std::string& text, std::int32_t number = 0, const std::string& source = {});

  /// Tells what is good to know; a quiet program doesn't.
  void Note(const std::string& text);

  /// The last word of a program that ends with `code`: what to do next. As JSON it is the object of
  /// the error itself, with what was told last; `number` stands in where that was no error.
  void Close(EExitCode code, const std::string& hint, std::int32_t number);

 private:
  const bool json_;
  const bool quiet_;
  std::string text_;
  std::string source_;
  std::int32_t number_ = 0;
};

}  // namespace vane
