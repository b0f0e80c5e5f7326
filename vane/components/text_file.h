// A plain text file that an operation writes from its start to its end, for people and for whoever
// has to find out what happened.
//
// An operation makes one through `CComponentFactory` and owns it. Lives on the user-interface
// thread. Every failure is an exception.
#pragma once

#include <string>

namespace vane {

class CVaneTextFile {
 public:
  virtual ~CVaneTextFile() = default;

  /// `text` and a line end. The line has been handed to the system when the call returns: it is in
  /// the file even if the process dies behind it.
  virtual void WriteLine(const std::string& text) = 0;

  /// `text` as it is.
  virtual void Write(const std::string& text) = 0;

  /// Nothing can be written behind it. The destructor closes what is open and swallows failures.
  virtual void Close() = 0;
};

}  // namespace vane
