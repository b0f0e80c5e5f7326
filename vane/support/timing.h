// A wait that keeps the user interface alive.
#pragma once

#include <cstdint>
#include <functional>

namespace vane {

/// Runs the message queue, at least once, until `ms` milliseconds of the platform's tick count have
/// passed. The tick count may wrap meanwhile. A pass of the queue may sleep for the next event, so
/// that the wait costs no processor time. `leave`, where given, is asked after each pass and ends
/// the wait before its time when it says so.
void PauseMs(std::int32_t ms, const std::function<bool()>& leave = {});

}  // namespace vane
