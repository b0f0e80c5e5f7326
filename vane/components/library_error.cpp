#include "vane/components/library_error.h"

#include <utility>

namespace vane {

LibraryError::LibraryError(std::int32_t number, std::string source, std::string description,
                           std::string helpfile, std::int32_t helpcontext)
    : number_(number),
      source_(std::move(source)),
      description_(std::move(description)),
      helpfile_(std::move(helpfile)),
      helpcontext_(helpcontext) {}

LibraryError PlatformError(std::int32_t number) {
  switch (number) {
    case ERR_PLATFORM_OVERFLOW:
      return {number, {}, "Overflow"};
    case ERR_PLATFORM_OUT_OF_RANGE:
      return {number, {}, "Subscript out of range"};
    case ERR_PLATFORM_DIVISION:
      return {number, {}, "Division by zero"};
    case ERR_PLATFORM_TYPE_MISMATCH:
      return {number, {}, "Type mismatch"};
    default:
      return {number, {}, "Unknown failure"};
  }
}

}  // namespace vane
