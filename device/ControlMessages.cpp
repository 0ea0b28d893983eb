// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "device/ControlMessages.h"

#include "device/RegisterFrame.h"

#include <QLoggingCategory>
#include <QMutexLocker>

#include <algorithm>

using namespace RegisterFrame;

namespace {

Q_LOGGING_CATEGORY(hidCategory, "quillon.hid")

constexpr int kReportSize = 65;
constexpr char kReportId = 0x51;
constexpr int kIdSize = 1;

QByteArray buildReport(ControlOperation operation, const QList<quint16> &words)
{
    const qsizetype used = kIdSize + kPayloadAt + 2 * words.size() + kChecksumSize;
    if (used > kReportSize) {
        qCWarning(hidCategory, "ControlMessages: %d words do not fit into one report", int(words.size()));
        return {};
    }
    QByteArray report;
    report.reserve(kReportSize);
    report.append(kReportId)
        .append(kStartMark)
        .append(char(used - kIdSize))
        .append('\0')
        .append('\0')
        .append(char(operation));
    for (const quint16 word : words)
        appendWord(report, word);
    appendWord(report, checksumOf(QByteArrayView(report).sliced(kIdSize)));
    report.append(kReportSize - report.size(), '\0');
    return report;
}

} // namespace

ControlMessages *ControlMessages::getInstance()
{
    static auto *instance = new ControlMessages;
    return instance;
}

QByteArray ControlMessages::randomRead(quint16 address) const
{
    return randomRead(QList<quint16>{address});
}

QByteArray ControlMessages::randomRead(const QList<quint16> &addresses) const
{
    return buildReport(ControlOperation::RandomRead, addresses);
}

QByteArray ControlMessages::randomWrite(quint16 address, quint16 value) const
{
    return randomWrite(QList<quint16>{address}, QList<quint16>{value});
}

QByteArray ControlMessages::randomWrite(const QList<quint16> &addresses, const QList<quint16> &values) const
{
    QList<quint16> words;
    for (qsizetype i = 0; i < std::min(addresses.size(), values.size()); ++i)
        words << addresses[i] << values[i];
    return buildReport(ControlOperation::RandomWrite, words);
}

QByteArray ControlMessages::continuousRead(quint16 start, quint16 count) const
{
    return buildReport(ControlOperation::ContinuousRead, {start, count});
}

QByteArray ControlMessages::continuousWrite(quint16 start, quint16 count, const QList<quint16> &values) const
{
    return buildReport(ControlOperation::ContinuousWrite, QList<quint16>{start, count} + values);
}

QVariant ControlMessages::registerValue(quint16 address) const
{
    const QMutexLocker lock(&m_mutex);
    return m_registerValues.value(address);
}

void ControlMessages::setRegisterValue(quint16 address, const QVariant &value)
{
    const QMutexLocker lock(&m_mutex);
    m_registerValues.insert(address, value);
}
