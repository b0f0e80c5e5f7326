// Running another program and waiting for its end.
#pragma once

#include <string>
#include <vector>

namespace vane {

/// Runs the program `arguments[0]`, which is looked for in PATH, and hands it the arguments as they
/// stand: no shell reads them. Gives its exit code when it has ended, or 128 and the number of the
/// signal that ended it. Raises `std::system_error` when it can't be started.
///
/// With `output` all that it prints goes there and it reads an empty input. Without, it has the
/// user's terminal; what it prints goes to standard error, since standard output is the host's.
int RunProgram(const std::vector<std::string>& arguments, std::string* output = nullptr);

}  // namespace vane
