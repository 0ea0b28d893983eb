// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/FaultBoard.h"

#include <QMutexLocker>

namespace rig {

namespace {
template <typename T> bool inScope(const std::optional<T> &wanted, const std::optional<T> &actual)
{
    return !wanted || wanted == actual;
}
} // namespace

void FaultBoard::arm(Fault fault, const FaultScope &scope)
{
    {
        const QMutexLocker lock(&m_mutex);
        m_armed.insert(fault, scope);
    }
    Q_EMIT changed();
}

void FaultBoard::clear(Fault fault)
{
    bool cleared = false;
    {
        const QMutexLocker lock(&m_mutex);
        cleared = m_armed.remove(fault) > 0;
    }
    if (cleared)
        Q_EMIT changed();
}

void FaultBoard::clearAll()
{
    {
        const QMutexLocker lock(&m_mutex);
        m_armed.clear();
    }
    Q_EMIT changed();
}

QList<Fault> FaultBoard::armed() const
{
    const QMutexLocker lock(&m_mutex);
    return m_armed.keys();
}

bool FaultBoard::isArmed(Fault fault) const
{
    const QMutexLocker lock(&m_mutex);
    return m_armed.contains(fault);
}

bool FaultBoard::strikes(Fault fault, std::optional<Chip> chip, std::optional<RequestKind> request)
{
    bool usedUp = false;
    const bool struck = countStrike(fault, chip, request, usedUp);
    if (usedUp)
        Q_EMIT changed();
    return struck;
}

bool FaultBoard::countStrike(Fault fault, std::optional<Chip> chip, std::optional<RequestKind> request,
                             bool &usedUp)
{
    const QMutexLocker lock(&m_mutex);
    const auto found = m_armed.find(fault);
    if (found == m_armed.end() || !inScope(found->chip, chip) || !inScope(found->requests, request))
        return false;
    usedUp = found->times > 0 && --found->times == 0;
    if (usedUp)
        m_armed.erase(found);
    return true;
}

QList<Fault> FaultBoard::strikesOf(FaultPlace place, std::optional<Chip> chip,
                                   std::optional<RequestKind> request)
{
    QList<Fault> striking;
    for (const Fault fault : armed()) {
        if (infoOf(fault).place == place && strikes(fault, chip, request))
            striking.append(fault);
    }
    return striking;
}

} // namespace rig
