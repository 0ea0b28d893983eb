// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "probe/Link.h"

#include "device/ControlMessages.h"
#include "device/ModelTable.h"
#include "device/RegisterReport.h"
#include "device/Report.h"
#include "probe/Products.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace probe {

namespace {

using namespace std::chrono_literals;
using HIDCommunicator::OrvikHIDManager;

constexpr auto kAnswerLimit = 1s;
constexpr int kAttempts = 2;
constexpr auto kSettleLimit = 1s;
constexpr auto kSettleStep = 100ms;

/// Registers whose values fit into one reply.
constexpr int kLongestRun = 26;

OrvikHIDManager &manager()
{
    return *OrvikHIDManager::instance();
}

void wait(std::chrono::milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

std::optional<QList<quint16>> singleValue(const QByteArray &reply, quint16 address)
{
    if (Report::operation(reply) != quint8(ControlOperation::RandomRead))
        return std::nullopt;
    for (const Report::RegisterValue &entry : Report::randomReadEntries(reply)) {
        if (entry.address == address)
            return QList<quint16>{entry.value};
    }
    return std::nullopt;
}

std::optional<QList<quint16>> runOfValues(const QByteArray &reply, quint16 start, int count)
{
    constexpr int kHead = 2; // start and count come before the values
    const auto decoded = RegisterReport::decode(reply);
    if (!decoded || decoded->operation != quint8(ControlOperation::ContinuousRead)
        || decoded->words.value(0) != start || decoded->words.size() < kHead + count)
        return std::nullopt;
    return decoded->words.mid(kHead, count);
}

} // namespace

Link::Link(DenialCheck isDenied)
    : m_isDenied(std::move(isDenied))
{
    manager().acquire();
}

Link::~Link()
{
    manager().release();
}

Link::Reach Link::open()
{
    const QDeadlineTimer settled(kSettleLimit);
    Reach reach = tryToOpen();
    // The permission, too, comes a moment after the device.
    while ((reach == Reach::Refused || reach == Reach::Denied) && !settled.hasExpired()) {
        wait(kSettleStep);
        reach = tryToOpen();
    }
    return reach;
}

Link::Reach Link::tryToOpen()
{
    QList<Device> devices = attachedDevices(m_isDenied);
    if (devices.isEmpty())
        return Reach::NoDevice;
    devices.removeIf([](const Device &device) { return !productOf(device.productId).answers; });
    if (devices.isEmpty())
        return Reach::NoInterface;
    // Of several interfaces of one device those that can be used come last.
    std::reverse(devices.begin(), devices.end());
    for (const Device &device : std::as_const(devices)) {
        if (!manager().openHIDHandle(device.path, QuillonFirmwareUpgrade::kVendorId, device.productId, 0))
            continue;
        manager().createOrvikSendDataThread();
        manager().createOrvikReceiveDataThread();
        m_device = device;
        return Reach::Open;
    }
    const bool denied
        = std::any_of(devices.cbegin(), devices.cend(), [](const Device &device) { return device.denied; });
    return denied ? Reach::Denied : Reach::Refused;
}

std::optional<QList<quint16>> Link::read(quint16 start, int count)
{
    QList<quint16> values;
    while (values.size() < count) {
        const Values some
            = readSome(quint16(start + values.size()), std::min(kLongestRun, count - int(values.size())));
        if (!some)
            return std::nullopt;
        values += *some;
    }
    return values;
}

Link::Values Link::readSome(quint16 start, int count)
{
    const ControlMessages *const messages = ControlMessages::getInstance();
    if (count == 1)
        return ask(messages->randomRead(start),
                   [=](const QByteArray &reply) { return singleValue(reply, start); });
    return ask(messages->continuousRead(start, quint16(count)),
               [=](const QByteArray &reply) { return runOfValues(reply, start, count); });
}

/// Other programs may have the device open too, and everybody hears every answer: what answers something else
/// is passed over.
Link::Values Link::ask(const QByteArray &request, const std::function<Values(const QByteArray &)> &valuesIn)
{
    constexpr int kGone = 1;
    Values values;
    for (int attempt = 0; attempt < kAttempts && !values && manager().getConnected(); ++attempt) {
        QEventLoop loop;
        QTimer::singleShot(kAnswerLimit, &loop, &QEventLoop::quit);
        connect(&manager(), &OrvikHIDManager::blockReceiveData, &loop, [&](const QByteArray &reply) {
            if (!values && (values = valuesIn(reply)))
                loop.quit();
        });
        connect(&manager(), &OrvikHIDManager::blockHidConnetStatus, &loop, [&](int status) {
            if (status == kGone)
                loop.quit();
        });
        manager().DC_AddSendData(request);
        loop.exec();
    }
    return values;
}

} // namespace probe
