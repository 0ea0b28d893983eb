// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/SimulatedDevice.h"

#include "rig/DeviceReplies.h"
#include "rig/SimulatedDeviceBody.h"

namespace rig {

using std::chrono::milliseconds;

namespace {
// Until the chip runs again; it takes a moment more to be found.
constexpr milliseconds kBootLoaderEntryTime{400};
constexpr milliseconds kRestartTime{700};
constexpr milliseconds kLateRestartTime{12000};

const QVersionNumber &factoryVersion()
{
    static const QVersionNumber version(1, 1, 1);
    return version;
}
} // namespace

SimulatedDevice::SimulatedDevice(RigThread &thread, FaultBoard &faults, Journal &journal)
    : m_body(std::make_shared<Body>(*this, thread, faults, journal))
{
    for (const Chip chip : {Chip::Pc, Chip::Otg})
        setVersion(chip, factoryVersion());
}

SimulatedDevice::~SimulatedDevice()
{
    Q_EMIT vanishing();
    // On the rig's thread, so that no start that is due can be under way.
    m_body->thread.runAndWait([this] { m_body.reset(); });
}

void SimulatedDevice::setModel(Model model)
{
    m_body->change([&] {
        for (const Chip which : {Chip::Pc, Chip::Otg}) {
            m_body->leave(m_body->at(which));
            m_body->at(which) = SimulatedChip(identityOf(model, which));
        }
        m_body->written.clear();
        m_body->reads = {};
        m_body->model = model;
        return true;
    });
    for (const Chip chip : {Chip::Pc, Chip::Otg})
        setVersion(chip, factoryVersion());
}

Model SimulatedDevice::model() const
{
    const QMutexLocker lock(&m_body->mutex);
    return m_body->model;
}

void SimulatedDevice::setVersion(Chip chip, const QVersionNumber &version)
{
    m_body->install(chip, buildImage({model(), chip, version}));
}

void SimulatedDevice::brick(Chip chip)
{
    m_body->install(chip, {});
}

void SimulatedDevice::plug(Chip port)
{
    m_body->change([&] {
        SimulatedChip &chip = m_body->at(port);
        if (chip.isPlugged())
            return false;
        const bool wasDark = !m_body->at(Chip::Pc).isPlugged() && !m_body->at(Chip::Otg).isPlugged();
        chip.setPlugged(true);
        m_body->powerUp(chip, wasDark);
        return true;
    });
}

void SimulatedDevice::unplug(Chip port)
{
    m_body->change([&] {
        m_body->at(port).setPlugged(false);
        m_body->leave(m_body->at(port));
        return true;
    });
}

bool SimulatedDevice::isPlugged(Chip port) const
{
    const QMutexLocker lock(&m_body->mutex);
    return m_body->at(port).isPlugged();
}

ChipState SimulatedDevice::state(Chip chip) const
{
    const QMutexLocker lock(&m_body->mutex);
    return m_body->at(chip).state();
}

QVersionNumber SimulatedDevice::runningVersion(Chip chip) const
{
    const QMutexLocker lock(&m_body->mutex);
    return m_body->at(chip).runningVersion();
}

QByteArray SimulatedDevice::flash(Chip chip) const
{
    const QMutexLocker lock(&m_body->mutex);
    return m_body->at(chip).flash();
}

QList<BusInterface> SimulatedDevice::interfaces() const
{
    const QMutexLocker lock(&m_body->mutex);
    QList<BusInterface> faces;
    for (const SimulatedChip &chip : m_body->chips) {
        if (chip.isOnBus())
            faces.append(chip.face());
    }
    return faces;
}

QList<BusInterface> SimulatedDevice::appearances() const
{
    const QMutexLocker lock(&m_body->mutex);
    return m_body->appearances;
}

std::optional<VersionRead> SimulatedDevice::lastRead(Chip chip) const
{
    const QMutexLocker lock(&m_body->mutex);
    return m_body->reads[std::size_t(chip)];
}

QList<QByteArray> SimulatedDevice::answer(const QString &path, const QByteArray &report)
{
    QMutexLocker lock(&m_body->mutex);
    const SimulatedChip *chip = m_body->atPath(path);
    // Only the PC interface speaks the register protocol; it answers for both chips.
    if (!chip || chip->identity().chip != Chip::Pc)
        return {};
    Registers registers{chip->state() == ChipState::BootLoader,
                        chip->runningVersion(),
                        m_body->at(Chip::Otg).runningVersion(),
                        m_body->written,
                        {}};
    if (registers.inBootLoader)
        registers.otgVersion = {};
    lock.unlock();
    const QList<QByteArray> replies = repliesTo(report, registers, m_body->faults);
    lock.relock();
    m_body->written = registers.written;
    if (registers.told)
        m_body->reads[std::size_t(registers.told->first)]
            = VersionRead{registers.told->second, m_body->journal.now()};
    return replies;
}

bool SimulatedDevice::isOnBus(const QString &path) const
{
    const QMutexLocker lock(&m_body->mutex);
    return m_body->atPath(path) != nullptr;
}

bool SimulatedDevice::mayBeOpened(const QString &path)
{
    return isOnBus(path) && !m_body->faults.strikes(Fault::DeviceRefusesOpen);
}

bool SimulatedDevice::enterBootLoader(Chip which)
{
    return m_body->change([&] {
        SimulatedChip &chip = m_body->at(which);
        if (!chip.isOnBus())
            return false;
        m_body->leave(chip);
        m_body->restartIntoBootLoader(chip, kBootLoaderEntryTime);
        return true;
    });
}

bool SimulatedDevice::erase(Chip which)
{
    const QMutexLocker lock(&m_body->mutex);
    SimulatedChip &chip = m_body->at(which);
    if (chip.canBeFlashed())
        chip.setFlash({});
    return chip.canBeFlashed();
}

bool SimulatedDevice::write(Chip which, int offset, const QByteArray &bytes)
{
    const bool damage = !bytes.isEmpty() && m_body->faults.strikes(Fault::DeviceDamagedTransfer, which);
    QByteArray arrived = bytes;
    if (damage)
        arrived[0] = char(arrived.at(0) ^ 0x10);
    const QMutexLocker lock(&m_body->mutex);
    SimulatedChip &chip = m_body->at(which);
    return chip.canBeFlashed() && chip.program(offset, arrived);
}

bool SimulatedDevice::restart(Chip which)
{
    const bool lost = m_body->faults.strikes(Fault::DeviceNeverReturns, which);
    const bool late = m_body->faults.strikes(Fault::DeviceReturnsLate, which);
    return m_body->change([&] {
        SimulatedChip &chip = m_body->at(which);
        if (!chip.canBeFlashed())
            return false;
        m_body->leave(chip);
        if (lost)
            chip.stop();
        else
            m_body->restart(chip, late ? kLateRestartTime : kRestartTime);
        return true;
    });
}

} // namespace rig
