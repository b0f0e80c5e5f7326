#include "vane/support/library_error.h"

#include <utility>

namespace vane {

LibraryError::LibraryError(std::int32_t number, std::string source, std::string description,
                           std::string helpfile, std::int32_t helpcontext)
    : number_(number),
      source_(std::move(source)),
      description_(std::move(description)),
      helpfile_(std::move(helpfile)),
      helpcontext_(helpcontext) {}

}  // namespace vane
