// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "CollectionConnection.h"

#include "Transfer.h"

#include <array>
#include <chrono>
#include <utility>

namespace HIDCommunicator {

namespace {

using namespace std::chrono_literals;

/// How long a device may go on to take no report, as on Linux.
constexpr auto kWriteLimit = 5s;

DWORD toSystem(std::chrono::milliseconds timeout)
{
    return timeout == HidConnection::kNoLimit ? INFINITE : DWORD(timeout.count());
}

class CollectionConnection : public HidConnection {
public:
    explicit CollectionConnection(CollectionFile file)
        : m_file(std::move(file))
        , m_interrupt(makeEvent(true))
        , m_reading(m_file.handle.get())
        , m_writing(m_file.handle.get())
    {
    }

    bool works() const { return m_file.handle && m_interrupt && m_reading.works() && m_writing.works(); }

    ReadResult read(QByteArray &report, std::chrono::milliseconds timeout) override;
    void interruptRead() override { SetEvent(m_interrupt.get()); }
    bool write(const QByteArray &report) override;

private:
    ReadResult takeReport(QByteArray &report);

    CollectionFile m_file; // goes last: the transfers are over then
    SystemHandle m_interrupt;
    Transfer m_reading;
    Transfer m_writing;
};

/// No read outlives this call: the system ends one with the thread that began it, and Wine does so without
/// saying how it ended. One that takes a report along when it is called back is the next call's.
HidConnection::ReadResult CollectionConnection::read(QByteArray &report, std::chrono::milliseconds timeout)
{
    if (!m_reading.isUnderWay() && !m_reading.read(m_file.inputSize))
        return ReadResult::Gone;
    const std::array<HANDLE, 2> events{m_interrupt.get(), m_reading.done()};
    switch (WaitForMultipleObjects(DWORD(events.size()), events.data(), FALSE, toSystem(timeout))) {
    case WAIT_OBJECT_0:
    case WAIT_TIMEOUT:
        m_reading.callBack();
        return ReadResult::Timeout;
    case WAIT_OBJECT_0 + 1:
        return takeReport(report);
    default:
        return ReadResult::Gone;
    }
}

/// Of one that was called back, the next read tells whether the device is still there.
HidConnection::ReadResult CollectionConnection::takeReport(QByteArray &report)
{
    const auto taken = m_reading.take();
    if (!taken)
        return m_reading.wasCalledBack() ? ReadResult::Timeout : ReadResult::Gone;
    report = *taken;
    return report.isEmpty() ? ReadResult::Timeout : ReadResult::Report;
}

/// The system takes no report that is shorter than the collection's longest, and one whole or not at all: the
/// length that it tells afterwards is not the same on every system, and says nothing.
bool CollectionConnection::write(const QByteArray &report)
{
    const QByteArray whole = report.leftJustified(m_file.outputSize, '\0');
    if (!m_writing.write(whole))
        return false;
    if (WaitForSingleObject(m_writing.done(), toSystem(kWriteLimit)) != WAIT_OBJECT_0)
        m_writing.callBack();
    return m_writing.take().has_value();
}

} // namespace

std::unique_ptr<HidConnection> connectCollection(CollectionFile file)
{
    auto connection = std::make_unique<CollectionConnection>(std::move(file));
    return connection->works() ? std::move(connection) : nullptr;
}

} // namespace HIDCommunicator
