#include "LinuxTransport.h"

#include "HidrawConnection.h"
#include "HidrawNodes.h"

namespace HIDCommunicator {

QList<HidDeviceInfo> LinuxTransport::enumerate(int vendorId)
{
    return listHidrawNodes(vendorId);
}

std::unique_ptr<HidConnection> LinuxTransport::open(const QString &path)
{
    const QByteArray deviceFile = usableDeviceFile(path);
    return deviceFile.isEmpty() ? nullptr : openHidraw(deviceFile);
}

std::unique_ptr<HidTransport> makeDefaultTransport()
{
    return std::make_unique<LinuxTransport>();
}

} // namespace HIDCommunicator
