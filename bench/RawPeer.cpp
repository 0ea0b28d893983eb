// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "bench/Peer.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {
constexpr int kPatienceMs = 5000;

/// One thread, and no more calls of the system than it takes.
class RawPeer : public Peer {
public:
    explicit RawPeer(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    ~RawPeer() override { ::close(m_descriptor); }
    Q_DISABLE_COPY_MOVE(RawPeer)

    bool ask(const QByteArray &report) override
    {
        if (::write(m_descriptor, report.constData(), size_t(report.size())) != report.size())
            return false;
        char answer[4096]; // as the library's: umockdev carries all of it over
        pollfd readable{m_descriptor, POLLIN, 0};
        return ::poll(&readable, 1, kPatienceMs) > 0 && ::read(m_descriptor, answer, sizeof answer) > 0;
    }

private:
    int m_descriptor;
};
} // namespace

std::unique_ptr<Peer> openRawPeer(const QByteArray &deviceFile)
{
    const int descriptor = ::open(deviceFile.constData(), O_RDWR | O_CLOEXEC);
    return descriptor >= 0 ? std::make_unique<RawPeer>(descriptor) : nullptr;
}
