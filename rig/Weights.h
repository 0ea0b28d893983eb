// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>
#include <QStringList>
#include <QtGlobal>

class QObject;

namespace rig {

/// How much this process takes of the system, and how many objects a panel consists of, so that what grows
/// with each upgrade can be seen. Linux tells all of it. Windows tells no heap, and gives the memory that the
/// process has for itself in its place; other systems tell the objects alone.
struct Weights {
    qint64 resident = 0; ///< bytes in memory, what is shared with others included
    qint64 heap = 0; ///< bytes that were allocated and not given back
    qint64 handles = 0;
    qint64 threads = 0;
    qint64 objects = 0; ///< below the panel, at any depth

    /// Gives what is free of the heap back to the system first. \a panel may be null.
    static Weights now(const QObject *panel);

    /// The same in columns: weights one below the other are a curve.
    QString line() const;
    /// What exceeds \a former by more than \a limits say, for people: "heap grew by 3.41 MiB".
    QStringList growthBeyond(const Weights &limits, const Weights &former) const;
    /// That anything comes and goes; memory may always do so.
    bool countsAs(const Weights &other) const;
};

/// The part that each system tells in its own way.
struct MemoryInUse {
    qint64 resident = 0;
    qint64 heap = 0;
};
MemoryInUse memoryOfThisProcess();

} // namespace rig
