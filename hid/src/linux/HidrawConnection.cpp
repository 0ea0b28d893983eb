#include "HidrawConnection.h"

#include "HidapiConnection.h"

#include <linux/hidraw.h>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace HIDCommunicator {

namespace {

/// A node held open while hidapi opens it. hidapi's way out of a node that does not answer as a hidraw node
/// touches freed memory, so such a node never reaches it; and the kernel's slow wake-up of the device is done
/// once for all.
class NodeProbe {
public:
    explicit NodeProbe(const QByteArray &deviceFile)
        : m_descriptor(::open(deviceFile.constData(), O_RDWR | O_CLOEXEC | O_NONBLOCK))
    {
    }
    ~NodeProbe()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    NodeProbe(const NodeProbe &) = delete;
    NodeProbe &operator=(const NodeProbe &) = delete;

    bool ready() const
    {
        int size = 0;
        return m_descriptor >= 0 && ioctl(m_descriptor, HIDIOCGRDESCSIZE, &size) >= 0;
    }

private:
    int m_descriptor;
};

} // namespace

std::unique_ptr<HidConnection> openHidraw(const QByteArray &deviceFile)
{
    const NodeProbe probe(deviceFile);
    return probe.ready() ? openThroughHidapi(deviceFile) : nullptr;
}

} // namespace HIDCommunicator
