// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "bench/Peer.h"

std::unique_ptr<Peer> openPeer(const QByteArray &)
{
    return nullptr;
}

bool hasPeer()
{
    return false;
}
