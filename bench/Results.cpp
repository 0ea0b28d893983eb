// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "bench/Results.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {
QJsonArray toJson(const Samples &samples)
{
    QJsonArray array;
    for (const double value : samples.values)
        array.append(value);
    return array;
}

void print(const Row &row)
{
    std::printf("%s: %.4g %s (%.4g to %.4g, %d times)", qPrintable(row.what), row.ours.median(),
                qPrintable(row.unit), row.ours.percentile(10), row.ours.percentile(90),
                int(row.ours.values.size()));
    if (!row.peers.isEmpty())
        std::printf("; %s: %.4g (%.4g to %.4g); ratio %.2f", qPrintable(row.peer), row.peers.median(),
                    row.peers.percentile(10), row.peers.percentile(90),
                    row.ours.median() / row.peers.median());
    std::printf("\n");
    std::fflush(stdout);
}
} // namespace

double Samples::percentile(int percent) const
{
    if (values.isEmpty())
        return 0;
    QList<double> sorted = values;
    std::sort(sorted.begin(), sorted.end());
    return sorted.at(((sorted.size() - 1) * percent + 50) / 100);
}

Results::Results(const QStringList &arguments)
    : m_isShort(arguments.contains(QStringLiteral("--short")))
{
    const qsizetype rows = arguments.indexOf(QStringLiteral("--rows"));
    if (rows >= 0)
        m_file = arguments.value(rows + 1);
}

void Results::add(const Row &row) const
{
    print(row);
    if (m_file.isEmpty())
        return;
    QFile file(m_file);
    if (!file.open(QIODevice::Append))
        giveUp("the file of the rows cannot be written");
    const QJsonObject object{
        {QStringLiteral("what"), row.what},   {QStringLiteral("unit"), row.unit},
        {QStringLiteral("limit"), row.limit}, {QStringLiteral("ours"), toJson(row.ours)},
        {QStringLiteral("peer"), row.peer},   {QStringLiteral("peers"), toJson(row.peers)}};
    file.write(QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n');
}

void giveUp(const char *what)
{
    std::fprintf(stderr, "given up: %s\n", what);
    std::exit(1);
}
