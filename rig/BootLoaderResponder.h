#pragma once

#include "rig/BootLoader.h"
#include "rig/BootLoaderReports.h"

#include <QByteArray>
#include <QList>

namespace rig {

/// Answers a flashing tool's reports for one chip. Not thread-safe.
class BootLoaderResponder {
public:
    explicit BootLoaderResponder(BootLoader &chip);

    /// The reports that answer \a report, ID first; none for a report that is no boot loader's. Takes as long
    /// as the chip does: an erase most of a second.
    QList<QByteArray> answer(const QByteArray &report);

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
