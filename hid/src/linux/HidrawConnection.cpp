// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "HidrawConnection.h"

#include "WakeUp.h"

#include <cerrno>
#include <iterator>
#include <thread>
#include <utility>

#include <poll.h>
#include <unistd.h>

namespace HIDCommunicator {

namespace {

using namespace std::chrono_literals;

/// More than any device of the family sends; a longer report is cut there.
constexpr int kLargestReport = 4096;

/// How long a device may go on to take no report: as long as the system itself waits for a USB device.
constexpr auto kWriteLimit = 5s;
/// When it is asked again. Waiting for the node does not help: it always says that it can be written to.
constexpr auto kWritePause = 10ms;

constexpr short kGone = POLLERR | POLLHUP | POLLNVAL;

class HidrawConnection : public HidConnection {
public:
    explicit HidrawConnection(Descriptor node)
        : m_node(std::move(node))
    {
    }

    bool works() const { return m_node.isOpen() && m_interrupt.works(); }

    ReadResult read(QByteArray &report, std::chrono::milliseconds timeout) override;
    void interruptRead() override { m_interrupt.raise(); }
    bool write(const QByteArray &report) override;

private:
    ReadResult takeReport(QByteArray &report, short found);

    Descriptor m_node;
    WakeUp m_interrupt;
};

HidConnection::ReadResult HidrawConnection::read(QByteArray &report, std::chrono::milliseconds timeout)
{
    pollfd sources[] = {{m_interrupt.descriptor(), POLLIN, 0}, {m_node.get(), POLLIN, 0}};
    const int found = poll(sources, std::size(sources), timeout == kNoLimit ? -1 : int(timeout.count()));
    // A signal that interrupts the wait is no fault of the device.
    if (found == 0 || (found < 0 && errno == EINTR))
        return ReadResult::Timeout;
    if (found < 0)
        return ReadResult::Gone;
    if (sources[0].revents != 0) {
        m_interrupt.take();
        return ReadResult::Timeout;
    }
    return takeReport(report, sources[1].revents);
}

/// One read is one report, whatever its length. What a device sent before it left is still handed over.
HidConnection::ReadResult HidrawConnection::takeReport(QByteArray &report, short found)
{
    report.resize(kLargestReport);
    const ssize_t length = ::read(m_node.get(), report.data(), size_t(report.size()));
    if (length > 0) {
        report.truncate(length);
        return ReadResult::Report;
    }
    const bool nothingYet = length < 0 && (errno == EAGAIN || errno == EINTR);
    return nothingYet && !(found & kGone) ? ReadResult::Timeout : ReadResult::Gone;
}

/// One write is one report: a part of one is nothing that the device could use, and the rest of it would be
/// taken for the next.
bool HidrawConnection::write(const QByteArray &report)
{
    for (auto waited = 0ms;;) {
        const ssize_t length = ::write(m_node.get(), report.constData(), size_t(report.size()));
        if (length >= 0)
            return length == report.size();
        if (errno == EINTR)
            continue;
        if (errno != EAGAIN || waited >= kWriteLimit)
            return false;
        std::this_thread::sleep_for(kWritePause);
        waited += kWritePause;
    }
}

} // namespace

std::unique_ptr<HidConnection> connectHidraw(Descriptor node)
{
    auto connection = std::make_unique<HidrawConnection>(std::move(node));
    return connection->works() ? std::move(connection) : nullptr;
}

} // namespace HIDCommunicator
