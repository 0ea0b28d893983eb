// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Makes the table of the rows that the measuring programs left:
//     bench_table ROWS JSON
// prints it, as it stands in docs/performance.md, and writes it with machine and date into the file JSON.
#include "bench/Results.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QStringList>
#include <QSysInfo>
#include <QThread>

#include <cstdio>

namespace {
QString number(double value)
{
    return value < 1000 ? QString::number(value, 'g', 3) : QString::number(value, 'f', 0);
}

Samples samplesOf(const QJsonValue &array)
{
    Samples samples;
    const QJsonArray values = array.toArray();
    for (const auto &value : values)
        samples.values.append(value.toDouble());
    return samples;
}

/// "1.96 (1.88 to 2.08)"; a single value has no spread.
QString withSpread(const Samples &samples)
{
    if (samples.isEmpty())
        return QString();
    if (samples.values.size() == 1)
        return number(samples.median());
    return QStringLiteral("%1 (%2 to %3)")
        .arg(number(samples.median()), number(samples.percentile(10)), number(samples.percentile(90)));
}

QJsonObject summary(const Samples &samples)
{
    return {{QStringLiteral("median"), samples.median()},
            {QStringLiteral("tenth"), samples.percentile(10)},
            {QStringLiteral("ninetieth"), samples.percentile(90)},
            {QStringLiteral("times"), int(samples.values.size())}};
}

/// Prints the row and gives what the file says of it.
QJsonObject take(const QJsonObject &row)
{
    const auto text = [&row](const char *name) { return row.value(QLatin1String(name)).toString(); };
    const Samples ours = samplesOf(row.value(QStringLiteral("ours")));
    const Samples peers = samplesOf(row.value(QStringLiteral("peers")));
    QJsonObject summed{{QStringLiteral("what"), text("what")},
                       {QStringLiteral("unit"), text("unit")},
                       {QStringLiteral("wanted"), text("limit")},
                       {QStringLiteral("ours"), summary(ours)}};
    QString ratio;
    if (!peers.isEmpty()) {
        summed.insert(QStringLiteral("peer"), text("peer"));
        summed.insert(QStringLiteral("peers"), summary(peers));
        // A peer that costs nothing can be compared with, but not divided by.
        if (peers.median() > 0) {
            ratio = QString::number(ours.median() / peers.median(), 'f', 2);
            summed.insert(QStringLiteral("ratio"), ours.median() / peers.median());
        }
    }
    std::printf("| %s | %s | %s | %s | %s | %s | %s |\n", qPrintable(text("what")), qPrintable(text("unit")),
                qPrintable(withSpread(ours)), qPrintable(peers.isEmpty() ? QString() : text("peer")),
                qPrintable(withSpread(peers)), qPrintable(ratio), qPrintable(text("limit")));
    return summed;
}

QString processorName()
{
    QFile file(QStringLiteral("/proc/cpuinfo"));
    const bool isOpen = file.open(QIODevice::ReadOnly);
    const QList<QByteArray> lines = isOpen ? file.readAll().split('\n') : QList<QByteArray>();
    for (const QByteArray &line : lines) {
        if (line.startsWith("model name"))
            return QString::fromUtf8(line.mid(line.indexOf(':') + 1)).trimmed();
    }
    return QSysInfo::currentCpuArchitecture();
}
} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    QFile rows(arguments.value(1));
    QFile json(arguments.value(2));
    if (!rows.open(QIODevice::ReadOnly) || !json.open(QIODevice::WriteOnly))
        giveUp("usage: bench_table ROWS JSON");
    const QString machine = QStringLiteral("%1, %2 cores, %3, Qt %4")
                                .arg(processorName())
                                .arg(QThread::idealThreadCount())
                                .arg(QSysInfo::prettyProductName(), QLatin1String(qVersion()));
    const QString date = QDateTime::currentDateTimeUtc().toString(Qt::ISODate);
    std::printf("\n%s; %s\n\n", qPrintable(machine), qPrintable(date));
    std::printf(
        "| what | unit | median (tenth to ninetieth percentile) | peer | its | ratio | wanted, at most |\n"
        "|---|---|---|---|---|---|---|\n");
    QJsonArray table;
    while (!rows.atEnd())
        table.append(take(QJsonDocument::fromJson(rows.readLine()).object()));
    json.write(QJsonDocument(QJsonObject{{QStringLiteral("machine"), machine},
                                         {QStringLiteral("date"), date},
                                         {QStringLiteral("rows"), table}})
                   .toJson());
    return 0;
}
