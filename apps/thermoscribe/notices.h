// What the program tells on standard error: text for people, or with --json one object per line.
#pragma once

#include <cstdint>
#include <string>

#include "apps/thermoscribe/exit_codes.h"

namespace vane::thermoscribe {

class CNotices {
 public:
  CNotices(bool json, bool quiet) : json_(json), quiet_(quiet) {}

  /// Tells what went wrong. `number` and `source` are those of an error, where one is behind it.
  void Tell(const std::string& text, std::int32_t number = 0, const std::string& source = {});

  /// `Tell` for what the library shows in a box; `box` is that for people.
  void TellBox(const std::string& box, const std::string& text, std::int32_t number,
               const std::string& source);

  /// Tells what is good to know; a quiet program doesn't.
  void Note(const std::string& text);

  /// What is told from now on comes out at `Release`: something else has to be shown before.
  void Hold() { isholding_ = true; }
  void Release();

  /// Nothing is told any more.
  void Silence() { issilent_ = true; }
  bool IsSilent() const { return issilent_; }

  /// Whether texts that are no objects may stand on standard error.
  bool TakesLooseText() const { return !json_ && !quiet_; }

  /// The last word of a program that ends with `code`: what to do next. As JSON it is the object of
  /// the error itself, with what was told last; `number` stands in where that was no error.
  void Close(EExitCode code, const std::string& hint, std::int32_t number);

 private:
  void Write(const std::string& lines);

  const bool json_;
  const bool quiet_;
  bool isholding_ = false;
  bool issilent_ = false;
  std::string held_;
  std::string text_;
  std::string source_;
  std::int32_t number_ = 0;
};

}  // namespace vane::thermoscribe
