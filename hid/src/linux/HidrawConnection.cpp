// hidapi is used with care for what it does not guard: one error text for the process, touched by open and
// close, and one for each handle, touched by every read and write. So one lock covers open and close, and a
// connection has two handles, one for the receive thread and one for the send thread.
#include "HidrawConnection.h"

#include <hidapi/hidapi.h>
#include <linux/hidraw.h>

#include <cerrno>
#include <mutex>
#include <utility>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace HIDCommunicator {

namespace {

/// More than any device of the family sends; a longer report is cut there.
constexpr int kLargestReport = 4096;

std::mutex &openMutex()
{
    static std::mutex mutex;
    return mutex;
}

struct CloseHandle {
    void operator()(hid_device *handle) const
    {
        const std::lock_guard lock(openMutex());
        hid_close(handle);
    }
};
using Handle = std::unique_ptr<hid_device, CloseHandle>;

Handle openHandle(const QByteArray &deviceFile)
{
    const std::lock_guard lock(openMutex());
    return Handle(hid_open_path(deviceFile.constData()));
}

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

class HidrawConnection : public HidConnection {
public:
    HidrawConnection(Handle reading, Handle writing)
        : m_reading(std::move(reading))
        , m_writing(std::move(writing))
    {
    }

    ReadResult read(QByteArray &report, std::chrono::milliseconds timeout) override
    {
        report.resize(kLargestReport);
        errno = 0;
        const int length = hid_read_timeout(m_reading.get(), reinterpret_cast<unsigned char *>(report.data()),
                                            size_t(report.size()), int(timeout.count()));
        if (length > 0) {
            report.truncate(length);
            return ReadResult::Report;
        }
        // A signal that interrupts the wait is no fault of the device.
        return length == 0 || errno == EINTR ? ReadResult::Timeout : ReadResult::Gone;
    }

    bool write(const QByteArray &report) override
    {
        return hid_write(m_writing.get(), reinterpret_cast<const unsigned char *>(report.constData()),
                         size_t(report.size()))
            >= 0;
    }

private:
    Handle m_reading;
    Handle m_writing;
};

} // namespace

std::unique_ptr<HidConnection> openHidraw(const QByteArray &deviceFile)
{
    const NodeProbe probe(deviceFile);
    if (!probe.ready())
        return nullptr;
    Handle reading = openHandle(deviceFile);
    Handle writing = reading ? openHandle(deviceFile) : nullptr;
    if (!writing)
        return nullptr;
    return std::make_unique<HidrawConnection>(std::move(reading), std::move(writing));
}

} // namespace HIDCommunicator
