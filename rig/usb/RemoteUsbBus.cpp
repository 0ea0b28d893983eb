// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Where the system offers no way to be a USB device, another process may: under Wine the one that plays the
// hidraw nodes. Flashing tools reach the chips over the rig's socket, as without USB.
#include "rig/usb/RemoteBus.h"
#include "rig/usb/UsbBus.h"

#include "rig/RegisterReports.h"

#include <QHash>

#include <algorithm>
#include <mutex>
#include <optional>

namespace rig {

class UsbBus::Mirror {
public:
    Mirror(SimulatedDevice &device, Journal &journal)
        : m_device(device)
        , m_journal(journal)
        , m_remote([this](int number, const QByteArray &report) { answer(number, report); })
    {
    }

    bool start(QString *error)
    {
        if (!usb::RemoteBus::isOffered()) {
            *error = QStringLiteral("only Linux can be a USB device");
            return false;
        }
        return m_remote.connectToIt(error);
    }

    /// Follows the device. Every interface has a number of its own, which is never used again.
    void update()
    {
        const QList<BusInterface> faces = m_device.interfaces();
        while (const auto gone = takeGone(faces)) {
            m_remote.unplug(*gone);
            tell(QStringLiteral("unplugged"));
        }
        for (const BusInterface &face : faces) {
            if (const auto number = addNew(face)) {
                m_remote.plug(*number, kVendorId, face.productId, kReportId);
                tell(QStringLiteral("plugged, %1:%2")
                         .arg(kVendorId, 4, 16, QLatin1Char('0'))
                         .arg(face.productId, 4, 16, QLatin1Char('0')));
            }
        }
    }

private:
    /// Takes one that is no longer among \a faces; nothing when there is none.
    std::optional<int> takeGone(const QList<BusInterface> &faces)
    {
        const std::lock_guard lock(m_mutex);
        for (auto shown = m_shown.begin(); shown != m_shown.end(); ++shown) {
            const auto isIt = [&](const BusInterface &face) { return face.path == shown.value(); };
            if (std::none_of(faces.begin(), faces.end(), isIt)) {
                const int number = shown.key();
                m_shown.erase(shown);
                return number;
            }
        }
        return std::nullopt;
    }

    /// The number of one that is not shown yet.
    std::optional<int> addNew(const BusInterface &face)
    {
        const std::lock_guard lock(m_mutex);
        if (m_shown.key(face.path, -1) >= 0)
            return std::nullopt;
        m_shown.insert(++m_plugs, face.path);
        return m_plugs;
    }

    /// On the remote bus's thread.
    void answer(int number, const QByteArray &report)
    {
        QString path;
        {
            const std::lock_guard lock(m_mutex);
            path = m_shown.value(number);
        }
        const QList<QByteArray> answers = m_device.answer(path, report);
        for (const QByteArray &answer : answers)
            m_remote.send(number, answer);
    }

    void tell(const QString &done) { m_journal.record(QStringLiteral("usb"), done); }

    SimulatedDevice &m_device;
    Journal &m_journal;
    std::mutex m_mutex;
    QHash<int, QString> m_shown; // the interfaces' paths
    int m_plugs = 0;
    usb::RemoteBus m_remote; // goes first: it still hears
};

UsbBus::UsbBus(SimulatedDevice &device, BootLoaderPort &, Journal &journal)
    : m_device(device)
    , m_mirror(std::make_unique<Mirror>(device, journal))
{
}

UsbBus::~UsbBus()
{
    m_thread.runAndWait([this] { m_mirror.reset(); });
}

bool UsbBus::start(QString *error)
{
    bool started = false;
    m_thread.runAndWait([&] { started = m_mirror->start(error); });
    if (!started)
        return false;
    // A signal may still arrive when the mirror is gone.
    const auto update = [this] {
        if (m_mirror)
            m_mirror->update();
    };
    for (const auto signal : {&SimulatedDevice::interfaceAppeared, &SimulatedDevice::interfaceLeft})
        QObject::connect(&m_device, signal, m_thread.context(), update);
    return true;
}

} // namespace rig
