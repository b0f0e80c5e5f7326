// What a program of this project does before anything else.
#pragma once

namespace vane {

/// To be called first in `main`, before any file is opened and any thread is there.
///
/// Standard input, output and error that the program was started without are filled: reading finds
/// the end, writing fails. Else the next file to be opened, such as a serial port, would get what
/// is meant for the user. A reader that goes away and a file that grows beyond its limit become
/// errors of the call, not the end of the process (SIGPIPE, SIGXFSZ).
void PrepareProcess();

}  // namespace vane
