// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/BootLoaderReports.h"
#include "rig/Identity.h"
#include "rig/tool/ChipWire.h"

#include <QByteArray>

#include <optional>

namespace tool {

/// What the tool asks of one chip, whichever wire leads there. Every call waits for its answer, a few seconds
/// at most.
class ChipLink {
public:
    explicit ChipLink(ChipWire &wire)
        : m_wire(wire)
    {
    }

    bool attach(int productId, bool alreadyInBootLoader); ///< talk to this chip
    bool isReady(); ///< is it on the bus in its boot loader?
    bool erase(qsizetype imageSize);
    bool write(qsizetype offset, const QByteArray &block);
    QByteArray digest(); ///< SHA-256 of what the flash holds, hexadecimal
    bool restart();

private:
    bool send(rig::BootLoaderCommand command, const QByteArray &payload = {});
    std::optional<QByteArray> receive(rig::BootLoaderCommand command);
    bool isAgreedTo(rig::BootLoaderCommand command);
    bool agree(rig::BootLoaderCommand command, const QByteArray &payload = {});

    ChipWire &m_wire;
    const rig::ChipIdentity *m_identity = nullptr;
};

} // namespace tool
