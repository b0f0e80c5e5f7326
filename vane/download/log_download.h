// The working state of one download, from the first line of its trace to the last.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "vane/components/components.h"
#include "vane/instrument/t312b.h"

namespace vane {

struct CVaneT312B::LogDownload {
  std::unique_ptr<CVaneTextFile> trace;
  std::unique_ptr<CVaneProgress> progress;
  std::string numberformat;
  std::string rawtext;  ///< the replies so far, each with CR LF behind it
  bool aborted = false;

  /// Only the first is ever filled; the second ends the list for the dialog.
  std::array<std::unique_ptr<CVaneOutputFile>, 2> files;
};

}  // namespace vane
