// What can stand at the cursor of a command line that is still being typed, from the description of
// the program; and the scripts by which bash, zsh and fish ask for it.
//
// The scripts know nothing of the commands: they call "thermoscribe __complete WORD..." with the
// words up to the cursor, the last of them as far as it is typed, and offer what comes back. So a
// script always fits the program that it completes, also one that is installed beside another.
#pragma once

#include <span>
#include <string>

#include "apps/thermoscribe/command.h"

namespace vane::thermoscribe {

/// The word behind which the words of the line follow, none of them to be taken as this program's.
inline constexpr const char* kCompleteWord = "__complete";

/// "words", "files" or "folders" in the first line, where the last two leave the rest to the shell.
/// Behind "words" one candidate per line for the last one of `words`, which may be empty, and after
/// a tab what it means. A candidate that ends with "=" goes on.
std::string CompletionText(const Command& program, std::span<const std::string> words);

}  // namespace vane::thermoscribe
