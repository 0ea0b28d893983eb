#pragma once

#include <HIDCommunicator/HidTransport.h>

#include <QByteArray>

#include <memory>

namespace HIDCommunicator {

/// Opens a hidraw device file through hidapi; null when it may not be opened or is not ready.
std::unique_ptr<HidConnection> openHidraw(const QByteArray &deviceFile);

} // namespace HIDCommunicator
