// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/usb/UsbBus.h"

#include "rig/BootLoaderResponder.h"
#include "rig/ToolWire.h"
#include "rig/usb/UsbGadget.h"

#include <QCoreApplication>
#include <QDir>
#include <QThread>

#include <array>

namespace rig {

namespace {

constexpr char kControllers[] = "/sys/class/udc";

/// One port: the chip behind it and the USB device that it shows.
class UsbPort {
public:
    UsbPort(SimulatedDevice &device, BootLoader &bootLoader, Chip chip, const QString &controller)
        : m_device(device)
        , m_chip(chip)
        , m_controller(controller)
        , m_bootLoader(bootLoader)
        , m_gadget(QStringLiteral("quillon-%1-%2").arg(QCoreApplication::applicationPid()).arg(nameOf(chip)),
                   controller, [this](const QByteArray &report) { return answer(report); })
    {
    }

    bool create(QString *error) { return m_gadget.create(error); }
    QString controller() const { return m_controller; }

    /// Follows the chip; what was done about it, if anything.
    QString update()
    {
        const BusInterface face = currentFace();
        if (face.path == m_shown)
            return {};
        m_gadget.unplug();
        m_shown = face.path;
        if (face.path.isEmpty())
            return QStringLiteral("unplugged");
        const bool plugged = m_gadget.plug(
            face.productId, QStringLiteral("%1 %2").arg(nameOf(m_device.model()), nameOf(m_chip).toUpper()));
        return plugged ? QStringLiteral("plugged, %1:%2")
                             .arg(kVendorId, 4, 16, QLatin1Char('0'))
                             .arg(face.productId, 4, 16, QLatin1Char('0'))
                       : QStringLiteral("refused by the controller");
    }

private:
    BusInterface currentFace() const
    {
        for (const BusInterface &face : m_device.interfaces()) {
            if (face.chip == m_chip)
                return face;
        }
        return {m_chip, 0, {}};
    }

    QList<QByteArray> answer(const QByteArray &report)
    {
        if (!report.startsWith(kBootLoaderReportId))
            return m_device.answer(currentFace().path, report);
        const BootLoaderAnswer answer = m_bootLoader.answer(report);
        QThread::msleep(answer.after.count());
        return answer.report.isEmpty() ? QList<QByteArray>() : QList{answer.report};
    }

    SimulatedDevice &m_device;
    Chip m_chip;
    QString m_controller;
    QString m_shown; // the path of the interface that is on the bus; empty: none
    BootLoaderResponder m_bootLoader;
    usb::UsbGadget m_gadget;
};

} // namespace

class UsbBus::Mirror {
public:
    Mirror(SimulatedDevice &device, BootLoaderPort &bootLoaders, Journal &journal)
        : m_device(device)
        , m_bootLoaders(bootLoaders)
        , m_journal(journal)
    {
    }

    bool start(QString *error)
    {
        const QStringList controllers
            = QDir(QLatin1StringView(kControllers)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
        if (controllers.size() < int(m_ports.size())) {
            *error
                = QStringLiteral("there are not two USB device controllers here: load dummy_hcd with num=2");
            return false;
        }
        for (const Chip chip : {Chip::Pc, Chip::Otg}) {
            auto &port = m_ports[std::size_t(chip)];
            port = std::make_unique<UsbPort>(m_device, m_bootLoaders.at(chip), chip,
                                             controllers.at(int(chip)));
            if (!port->create(error))
                return false;
        }
        m_bootLoaders.takeGreetingsOnly();
        return true;
    }

    void update()
    {
        for (const auto &port : m_ports) {
            if (const QString done = port->update(); !done.isEmpty())
                m_journal.record(QStringLiteral("usb"), port->controller() + QStringLiteral(": ") + done);
        }
    }

private:
    SimulatedDevice &m_device;
    BootLoaderPort &m_bootLoaders;
    Journal &m_journal;
    std::array<std::unique_ptr<UsbPort>, 2> m_ports;
};

UsbBus::UsbBus(SimulatedDevice &device, BootLoaderPort &bootLoaders, Journal &journal)
    : m_device(device)
    , m_mirror(std::make_unique<Mirror>(device, bootLoaders, journal))
{
}

UsbBus::~UsbBus()
{
    qunsetenv(wire::kBusVariable);
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
    qputenv(wire::kBusVariable, wire::kUsb);
    return true;
}

} // namespace rig
