// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/BootLoader.h"
#include "rig/BootLoaderReports.h"

#include <QByteArray>

#include <chrono>

namespace rig {

struct BootLoaderAnswer {
    QByteArray report; ///< ID first; empty: there is no answer
    std::chrono::milliseconds after{0}; ///< how long the chip takes for it
};

/// Answers a flashing tool's reports for one chip. Not thread-safe.
class BootLoaderResponder {
public:
    explicit BootLoaderResponder(BootLoader &chip);

    /// Nothing for a report that is no boot loader's, or that needs another one to complete it.
    BootLoaderAnswer answer(const QByteArray &report);

private:
    QByteArray take(const BootLoaderReport &request); // the answer's payload; empty: none
    QByteArray beginBlock(const QByteArray &payload);
    QByteArray continueBlock(const QByteArray &payload);

    BootLoader &m_chip;
    int m_offset = 0;
    int m_blockSize = 0;
    QByteArray m_block;
};

} // namespace rig
