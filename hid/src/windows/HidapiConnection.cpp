// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// hidapi is used with care for what it does not guard: one error text for the process, touched by open and
// close, and one for each handle, touched by every read and write. So one lock covers open and close, and a
// connection has two handles, one for the receive thread and one for the send thread.
#include "HidapiConnection.h"

#include <hidapi/hidapi.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <utility>

namespace HIDCommunicator {

namespace {

/// More than any device of the family sends; a longer report is cut there.
constexpr int kLargestReport = 4096;

/// hidapi cannot be interrupted: how long an interruption goes unnoticed while the device says nothing.
constexpr std::chrono::milliseconds kReadSlice{30};

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
        for (auto left = timeout; !m_interrupted.exchange(false); left -= kReadSlice) {
            const ReadResult result = readSlice(report, std::min(left, kReadSlice));
            if (result != ReadResult::Timeout || left <= kReadSlice)
                return result;
        }
        return ReadResult::Timeout;
    }

    void interruptRead() override { m_interrupted = true; }

    bool write(const QByteArray &report) override
    {
        return hid_write(m_writing.get(), reinterpret_cast<const unsigned char *>(report.constData()),
                         size_t(report.size()))
            >= 0;
    }

private:
    ReadResult readSlice(QByteArray &report, std::chrono::milliseconds slice)
    {
        report.resize(kLargestReport);
        const int length = hid_read_timeout(m_reading.get(), reinterpret_cast<unsigned char *>(report.data()),
                                            size_t(report.size()), int(slice.count()));
        if (length < 0)
            return ReadResult::Gone;
        report.truncate(length);
        return length > 0 ? ReadResult::Report : ReadResult::Timeout;
    }

    Handle m_reading;
    Handle m_writing;
    std::atomic<bool> m_interrupted{false};
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
