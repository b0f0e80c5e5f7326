// Keeps a short text from standing readable in the program file. It hides, it does not protect.
#pragma once

#include <string>

namespace vane {

/// Every character combined by exclusive-or with one fixed byte; applied twice it gives the text
/// back.
std::string ScrambleText(const std::string& text);

}  // namespace vane
