// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "probe/Commands.h"

#include "device/ControlMessages.h"
#include "hid/access/DenialWatch.h"
#include "hid/access/DeviceAccess.h"
#include "probe/Follower.h"
#include "probe/Interrupt.h"
#include "probe/Link.h"
#include "probe/Products.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QJsonArray>

namespace probe {

namespace {

/// Says why nothing can be read, in JSON as well, so that a program gets its document in any case.
int giveUp(const Output &output, int status, const QString &reason)
{
    if (output.isJson())
        output.document({{QStringLiteral("error"), reason}});
    output.complain(reason);
    if (const QString hint = DeviceAccess::hint(); status == kStatusDenied && !hint.isEmpty())
        output.remark(hint);
    return status;
}

int giveUp(const Output &output, Link::Reach reach)
{
    switch (reach) {
    case Link::Reach::Open:
    case Link::Reach::NoDevice:
        break;
    case Link::Reach::NoInterface:
        return giveUp(
            output, kStatusNoDevice,
            QStringLiteral("no PC interface is plugged in, only that answers; \"list\" shows what is"));
    case Link::Reach::Denied:
        return giveUp(output, kStatusDenied, QStringLiteral("no permission to open the device"));
    case Link::Reach::Refused:
        return giveUp(output, kStatusNoDevice,
                      QStringLiteral("the device cannot be opened: it is busy or not ready"));
    }
    return giveUp(output, kStatusNoDevice, QStringLiteral("no device is plugged in"));
}

int silence(const Output &output)
{
    return giveUp(output, kStatusNoDevice, QStringLiteral("the device does not answer"));
}

int list(const Output &output, const DenialCheck &isDenied)
{
    const QList<Device> devices = attachedDevices(isDenied);
    QJsonArray array;
    bool denied = false;
    for (const Device &device : devices) {
        denied = denied || device.denied;
        array.append(jsonOf(device));
        if (!output.isJson())
            output.line(QStringLiteral("%1  %2%3\n      %4")
                            .arg(idText(device.productId), roleText(device.productId),
                                 device.denied ? QStringLiteral(" (no permission to open it)") : QString(),
                                 device.path));
    }
    if (output.isJson())
        output.document({{QStringLiteral("devices"), array}});
    if (devices.isEmpty())
        output.complain(QStringLiteral("no device is plugged in"));
    if (denied && !DeviceAccess::hint().isEmpty())
        output.remark(DeviceAccess::hint());
    return denied ? kStatusDenied : devices.isEmpty() ? kStatusNoDevice : kStatusDone;
}

/// Each part is a signed number, as on the panel.
std::optional<QString> readVersion(Link &link, quint16 start)
{
    const auto parts = link.read(start, DeviceRegister::kVersionLength);
    if (!parts)
        return std::nullopt;
    QStringList texts;
    for (const quint16 part : *parts)
        texts.append(QString::number(qint16(part)));
    return texts.join(u'.');
}

QString modeText(const std::optional<QList<quint16>> &mode)
{
    return mode->first() == 0 ? QStringLiteral("normal") : QStringLiteral("upgrade");
}

int versions(const Output &output, const DenialCheck &isDenied)
{
    Link link(isDenied);
    if (const Link::Reach reach = link.open(); reach != Link::Reach::Open)
        return giveUp(output, reach);
    const auto mode = link.read(DeviceRegister::kUpgradeMode, 1);
    const auto pc = readVersion(link, DeviceRegister::kPcVersion);
    const auto otg = readVersion(link, DeviceRegister::kOtgVersion);
    if (!mode && !pc && !otg)
        return silence(output);

    const struct {
        const char *label;
        const char *key;
        std::optional<QString> value;
    } rows[] = {
        {"mode        ", "mode", mode ? std::optional(modeText(mode)) : std::nullopt},
        {"PC version  ", "pcVersion", pc},
        {"OTG version ", "otgVersion", otg},
    };
    QJsonObject document{{QStringLiteral("device"), jsonOf(link.device())}};
    QString words = QStringLiteral("device       %1  %2")
                        .arg(idText(link.device().productId), roleText(link.device().productId));
    for (const auto &row : rows) {
        document.insert(QLatin1String(row.key), row.value ? QJsonValue(*row.value) : QJsonValue());
        words += u'\n' + QLatin1String(row.label) + u' ' + row.value.value_or(QStringLiteral("no answer"));
    }
    if (output.isJson())
        output.document(document);
    else
        output.line(words);
    return kStatusDone;
}

int read(const Options &options, const Output &output, const DenialCheck &isDenied)
{
    Link link(isDenied);
    if (const Link::Reach reach = link.open(); reach != Link::Reach::Open)
        return giveUp(output, reach);
    const auto values = link.read(options.address, options.count);
    if (!values)
        return silence(output);
    QJsonArray array;
    for (qsizetype i = 0; i < values->size(); ++i) {
        const int address = options.address + int(i);
        const quint16 value = values->at(i);
        array.append(QJsonObject{{QStringLiteral("address"), address}, {QStringLiteral("value"), value}});
        if (!output.isJson())
            output.line(QStringLiteral("%1  %2  %3").arg(idText(address), idText(value)).arg(value));
    }
    if (output.isJson())
        output.document(
            {{QStringLiteral("device"), jsonOf(link.device())}, {QStringLiteral("registers"), array}});
    return kStatusDone;
}

/// Until it is interrupted or the time is over. True: a device was there that may not be opened.
bool last(const Options &options, const Output &output, const DenialCheck &isDenied)
{
    const DenialWatch denials(isDenied, [&](const QString &hint) { output.remark(hint); });
    waitForInterrupt(options.duration);
    return denials.hasTold();
}

int watch(const Options &options, const Output &output, const DenialCheck &isDenied)
{
    // Before anything is shown: who reads it may interrupt at once.
    catchInterrupts();
    HIDCommunicator::OrvikHIDManager *const manager = HIDCommunicator::OrvikHIDManager::instance();
    manager->acquire();
    const bool denied = last(options, output, isDenied);
    manager->release();
    return denied ? kStatusDenied : kStatusDone;
}

int trace(const Options &options, const Output &output, const DenialCheck &isDenied)
{
    catchInterrupts();
    const Follower follower(options.listen ? Follower::Manner::Listening : Follower::Manner::Asking);
    const bool denied = last(options, output, isDenied);
    if (follower.hasOpened())
        return kStatusDone;
    if (denied)
        return kStatusDenied;
    output.complain(QStringLiteral("there was no device that could be opened"));
    return kStatusNoDevice;
}

} // namespace

int run(const Options &options, const Output &output, const DenialCheck &isDenied)
{
    switch (options.command) {
    case Options::Command::List:
        return list(output, isDenied);
    case Options::Command::Versions:
        return versions(output, isDenied);
    case Options::Command::Watch:
        return watch(options, output, isDenied);
    case Options::Command::Read:
        return read(options, output, isDenied);
    case Options::Command::Trace:
        return trace(options, output, isDenied);
    }
    return kStatusWrong;
}

} // namespace probe
