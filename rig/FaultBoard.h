// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/Fault.h"
#include "rig/Identity.h"

#include <QMap>
#include <QMutex>
#include <QObject>

#include <optional>

namespace rig {

enum class RequestKind { VersionQuery, Download };

/// Where and how often an armed fault strikes. The default: everywhere, until it is cleared.
struct FaultScope {
    std::optional<Chip> chip; ///< only this chip's requests, flashing runs or replies
    std::optional<RequestKind> requests; ///< server faults: only requests of this kind
    int times = 0; ///< strikes this often and is then cleared by itself; 0: until cleared
};

/// The faults that are armed at this moment; one board serves the whole rig. Every function is thread-safe.
class FaultBoard : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// Arms \a fault, in place of an earlier arming of the same fault.
    void arm(Fault fault, const FaultScope &scope = {});
    void clear(Fault fault);
    void clearAll();

    QList<Fault> armed() const;
    bool isArmed(Fault fault) const;

    /// True when \a fault strikes now; one of its times is used up.
    bool strikes(Fault fault, std::optional<Chip> chip = {}, std::optional<RequestKind> request = {});
    /// The faults of \a place that strike now, each of them counted.
    QList<Fault> strikesOf(FaultPlace place, std::optional<Chip> chip = {},
                           std::optional<RequestKind> request = {});

Q_SIGNALS:
    /// Something was armed, cleared or used up. Emitted by the thread that did it.
    void changed();

private:
    bool countStrike(Fault fault, std::optional<Chip> chip, std::optional<RequestKind> request, bool &usedUp);

    mutable QMutex m_mutex;
    QMap<Fault, FaultScope> m_armed;
};

} // namespace rig
