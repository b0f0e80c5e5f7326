// What a program tells the service manager that has started it, by the protocol of systemd: one
// datagram to the socket that $NOTIFY_SOCKET names. Without one nothing happens.
#pragma once

#include <string>

namespace vane::thermoscribe {

/// Such as "READY=1\nSTATUS=Recording". A manager that can't be told is none: nothing is raised.
void TellServiceManager(const std::string& state);

}  // namespace vane::thermoscribe
