// What the files of this adapter have in common.
#pragma once

namespace vane {

/// A program that was started without its standard files gets their numbers for the next files that
/// it opens, and what it prints would go there. Gives the file a number above them, closed at exec,
/// and closes the old one. -1, with `errno` set, when there is none left; -1 stays -1.
int AboveStandard(int handle);

}  // namespace vane
