#include "vane/support/failure.h"

#include <exception>
#include <stdexcept>
#include <typeinfo>

namespace vane {

std::string OperationLabel(std::string_view classname, std::string_view operation) {
  std::string label(classname);
  label += " - ";
  label += operation;
  return label;
}

LibraryError PendingError() {
  const std::exception_ptr pending = std::current_exception();
  if (!pending) return {0, {}, {}};
  try {
    std::rethrow_exception(pending);
  } catch (const LibraryError& error) {
    return error;
  } catch (const std::overflow_error&) {
    return PlatformError(ERR_PLATFORM_OVERFLOW);
  } catch (const std::out_of_range&) {
    return PlatformError(ERR_PLATFORM_OUT_OF_RANGE);
  } catch (const std::bad_cast&) {
    return PlatformError(ERR_PLATFORM_TYPE_MISMATCH);
  } catch (const std::invalid_argument&) {
    return PlatformError(ERR_PLATFORM_TYPE_MISMATCH);
  } catch (const std::exception& error) {
    return {ERR_PLATFORM_CALL, {}, error.what()};
  } catch (...) {
    return PlatformError(ERR_PLATFORM_CALL);
  }
}

void RaiseAgain(const std::string& label) {
  const LibraryError error = PendingError();
  throw LibraryError(error.Number(), label, error.Description(), error.HelpFile(),
                     error.HelpContext());
}

void RaiseAgain(const std::string& label, const HelpFields& help) {
  const LibraryError error = PendingError();
  throw LibraryError(error.Number(), label, error.Description(), help.file, help.context);
}

}  // namespace vane
