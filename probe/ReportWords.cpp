// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "probe/ReportWords.h"

#include "device/ControlMessages.h"
#include "device/RegisterReport.h"
#include "device/Report.h"
#include "probe/Products.h"

#include <QStringList>

namespace probe {

namespace {

/// The ID that the panel's own reports begin with.
char reportId()
{
    static const char id = ControlMessages::getInstance()->randomRead(DeviceRegister::kUpgradeMode).at(0);
    return id;
}

struct NamedRegister {
    quint16 address;
    const char *name;
};
constexpr NamedRegister kNames[] = {
    {DeviceRegister::kUpgradeMode, "mode"},
    {DeviceRegister::kPcVersion, "PC version"},
    {DeviceRegister::kOtgVersion, "OTG version"},
};

QString registerText(quint16 address)
{
    for (const NamedRegister &named : kNames) {
        if (named.address == address)
            return QStringLiteral("%1 (%2)").arg(idText(address), QLatin1String(named.name));
    }
    return idText(address);
}

QString valuesText(const QList<quint16> &values)
{
    QStringList texts;
    for (const quint16 value : values)
        texts.append(idText(value));
    return texts.join(u' ');
}

QString addressesText(const QList<quint16> &words)
{
    QStringList texts;
    for (const quint16 address : words)
        texts.append(registerText(address));
    return texts.join(QStringLiteral(", "));
}

QString pairsText(const QList<quint16> &words)
{
    QStringList texts;
    for (qsizetype i = 0; i + 1 < words.size(); i += 2) {
        QString text = registerText(words.at(i)) + QStringLiteral(" = ") + idText(words.at(i + 1));
        if (words.at(i) == DeviceRegister::kUpgradeMode)
            text += words.at(i + 1) == 0 ? QStringLiteral(", normal firmware")
                                         : QStringLiteral(", upgrade mode");
        texts.append(text);
    }
    return texts.isEmpty() ? QStringLiteral("nothing") : texts.join(QStringLiteral("; "));
}

bool isVersion(quint16 start)
{
    return start == DeviceRegister::kPcVersion || start == DeviceRegister::kOtgVersion;
}

QString requestText(const RegisterReport &report)
{
    const QList<quint16> &words = report.words;
    const QString count = QString::number(words.value(1));
    switch (ControlOperation(report.operation)) {
    case ControlOperation::RandomRead:
        return QStringLiteral("read ") + (words.isEmpty() ? QStringLiteral("nothing") : addressesText(words));
    case ControlOperation::RandomWrite:
        return QStringLiteral("write ") + pairsText(words);
    case ControlOperation::ContinuousRead:
        return QStringLiteral("read %1 registers from %2").arg(count, registerText(words.value(0)));
    case ControlOperation::ContinuousWrite:
        return QStringLiteral("write %1 registers from %2: %3")
            .arg(count, registerText(words.value(0)), valuesText(words.mid(2)));
    }
    return QStringLiteral("unknown operation %1").arg(report.operation);
}

QString replyText(const RegisterReport &report, const QByteArray &payload)
{
    const QList<quint16> &words = report.words;
    switch (ControlOperation(report.operation)) {
    case ControlOperation::RandomRead:
        return pairsText(words);
    case ControlOperation::RandomWrite:
        return QStringLiteral("written");
    case ControlOperation::ContinuousWrite:
        return QStringLiteral("written from ") + registerText(words.value(0));
    case ControlOperation::ContinuousRead:
        break;
    default:
        return QStringLiteral("unknown operation %1").arg(report.operation);
    }
    if (words.isEmpty())
        return QStringLiteral("nothing");
    QString text
        = QStringLiteral("registers from %1: %2").arg(registerText(words.at(0)), valuesText(words.mid(2)));
    const auto version = Report::versionReply(payload);
    if (version && isVersion(version->start) && !version->version.isEmpty())
        text += QStringLiteral(" = ") + version->version;
    return text;
}

QStringList oddities(const RegisterReport &report, const QByteArray &payload, Direction direction)
{
    QStringList odd;
    if (!report.hasStartMark)
        odd += QStringLiteral("no start mark");
    if (report.stated > payload.size())
        odd += QStringLiteral("states %1 bytes, has %2").arg(report.stated).arg(payload.size());
    else if (!report.checksum)
        odd += QStringLiteral("states only %1 bytes").arg(report.stated);
    else if (*report.checksum != report.rightChecksum)
        odd += QStringLiteral("checksum %1, should be %2")
                   .arg(idText(*report.checksum), idText(report.rightChecksum));
    if (direction == Direction::In && Report::isDropped(payload))
        odd += QStringLiteral("marked as not to be looked at");
    return odd;
}

} // namespace

QString wordsOf(const QByteArray &report, Direction direction)
{
    if (!report.startsWith(reportId()))
        return QStringLiteral("not a report of the device: its ID is not 51");
    const QByteArray payload = report.sliced(1);
    const auto decoded = RegisterReport::decode(payload);
    if (!decoded)
        return QStringLiteral("too short to say anything: %1 bytes").arg(report.size());
    const QString text = direction == Direction::Out ? requestText(*decoded) : replyText(*decoded, payload);
    const QStringList odd = oddities(*decoded, payload, direction);
    return odd.isEmpty() ? text : text + QStringLiteral(" (") + odd.join(QStringLiteral(", ")) + u')';
}

QString bytesText(const QByteArray &report)
{
    qsizetype used = report.size();
    while (used > 1 && report.at(used - 1) == '\0')
        --used;
    QString text = QString::fromLatin1(report.first(used).toHex(' '));
    if (used < report.size())
        text += QStringLiteral(" and %1 zeros").arg(report.size() - used);
    return text;
}

} // namespace probe
