// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/Weights.h"

#include "rig/Belongings.h"

#include <QObject>

namespace rig {

namespace {

constexpr double kMebibyte = 1024.0 * 1024.0;

QString bytes(qint64 count)
{
    return QString::number(double(count) / kMebibyte, 'f', 2) + QStringLiteral(" MiB");
}

QString number(qint64 count)
{
    return QString::number(count);
}

struct Scale {
    const char *name;
    qint64 Weights::*weight;
    QString (*toText)(qint64 weight);
    int width;
};

constexpr Scale kScales[]{{"resident", &Weights::resident, bytes, 10},
                          {"heap", &Weights::heap, bytes, 10},
                          {"handles", &Weights::handles, number, 3},
                          {"threads", &Weights::threads, number, 3},
                          {"objects", &Weights::objects, number, 4}};

} // namespace

Weights Weights::now(const QObject *panel)
{
    const MemoryInUse memory = memoryOfThisProcess();
    return {memory.resident, memory.heap, Belongings::handlesOfThisProcess().size(),
            Belongings::threadsOfThisProcess().size(), panel ? panel->findChildren<QObject *>().size() : 0};
}

QString Weights::line() const
{
    QStringList columns;
    for (const Scale &scale : kScales)
        columns.append(QLatin1StringView(scale.name) + QLatin1Char(' ')
                       + scale.toText(this->*scale.weight).rightJustified(scale.width));
    return columns.join(QStringLiteral("  "));
}

QStringList Weights::growthBeyond(const Weights &limits, const Weights &former) const
{
    QStringList grown;
    for (const Scale &scale : kScales) {
        const qint64 more = this->*scale.weight - former.*scale.weight;
        if (more > limits.*scale.weight)
            grown.append(
                QStringLiteral("%1 grew by %2").arg(QLatin1StringView(scale.name), scale.toText(more)));
    }
    return grown;
}

bool Weights::countsAs(const Weights &other) const
{
    return handles == other.handles && threads == other.threads && objects == other.objects;
}

} // namespace rig
