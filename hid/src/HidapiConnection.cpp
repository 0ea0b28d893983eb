// hidapi is used with care for what it does not guard: one error text for the process, touched by open and
// close, and one for each handle, touched by every read and write. So one lock covers open and close, and a
// connection has two handles, one for the receive thread and one for the send thread.
#include "HidapiConnection.h"

#include <hidapi/hidapi.h>

#include <cerrno>
#include <utility>

namespace HIDCommunicator {

namespace {

/// More than any device of the family sends; a longer report is cut there.
constexpr int kLargestReport = 4096;

struct CloseHandle {
    void operator()(hid_device *handle) const
    {
        const std::lock_guard lock(hidapiMutex());
        hid_close(handle);
    }
};
using Handle = std::unique_ptr<hid_device, CloseHandle>;

Handle openHandle(const QByteArray &systemPath)
{
    const std::lock_guard lock(hidapiMutex());
    return Handle(hid_open_path(systemPath.constData()));
}

class HidapiConnection : public HidConnection {
public:
    HidapiConnection(Handle reading, Handle writing)
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

std::mutex &hidapiMutex()
{
    static std::mutex mutex;
    return mutex;
}

std::unique_ptr<HidConnection> openThroughHidapi(const QByteArray &systemPath)
{
    Handle reading = openHandle(systemPath);
    Handle writing = reading ? openHandle(systemPath) : nullptr;
    if (!writing)
        return nullptr;
    return std::make_unique<HidapiConnection>(std::move(reading), std::move(writing));
}

} // namespace HIDCommunicator
