#pragma once

#include <HIDCommunicator/HidTransport.h>

#include <memory>

namespace HIDCommunicator {

/// The system's own HID bus. Each platform brings one definition; the build file chooses it.
std::unique_ptr<HidTransport> makeDefaultTransport();

} // namespace HIDCommunicator
