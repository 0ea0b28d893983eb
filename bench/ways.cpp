// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "bench/Peer.h"

QList<OtherWay> otherWays()
{
    return {{QStringLiteral("write, poll and read alone"), QString(), openRawPeer}};
}
