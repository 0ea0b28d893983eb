// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/BootLoaderResponder.h"

#include "rig/LittleEndian.h"

namespace rig {

namespace {

QByteArray verdict(bool yes)
{
    return QByteArray(1, char(yes));
}

} // namespace

BootLoaderResponder::BootLoaderResponder(BootLoader &chip)
    : m_chip(chip)
{
}

BootLoaderAnswer BootLoaderResponder::answer(const QByteArray &report)
{
    const auto request = decodeBootLoaderReport(report);
    const QByteArray payload = request ? take(*request) : QByteArray();
    if (payload.isEmpty())
        return {};
    BootLoaderAnswer answer{encode({request->command, payload})};
    if (request->command == BootLoaderCommand::Erase)
        answer.after = BootLoader::kEraseTime;
    return answer;
}

QByteArray BootLoaderResponder::take(const BootLoaderReport &request)
{
    switch (request.command) {
    case BootLoaderCommand::Enter:
        return verdict(m_chip.enter(request.payload == verdict(true)));
    case BootLoaderCommand::Ready:
        return verdict(m_chip.isReady());
    case BootLoaderCommand::Erase: {
        const bool whole = request.payload.size() == 4;
        return verdict(whole && m_chip.erase(int(numberAt<quint32>(request.payload, 0))));
    }
    case BootLoaderCommand::Block:
        return beginBlock(request.payload);
    case BootLoaderCommand::Data:
        return continueBlock(request.payload);
    case BootLoaderCommand::Digest:
        return QByteArray::fromHex(m_chip.digest());
    case BootLoaderCommand::Restart:
        return verdict(m_chip.restart());
    }
    return {};
}

// A block that makes no sense is told of at its end, as one that cannot be written is.
QByteArray BootLoaderResponder::beginBlock(const QByteArray &payload)
{
    m_block.clear();
    const bool whole = payload.size() == 8;
    m_offset = whole ? int(numberAt<quint32>(payload, 0)) : -1;
    m_blockSize = whole ? int(qMin<quint32>(numberAt<quint32>(payload, 4), kMaxBootLoaderBlock)) : 0;
    return {};
}

QByteArray BootLoaderResponder::continueBlock(const QByteArray &payload)
{
    m_block += payload;
    if (m_block.size() < m_blockSize)
        return {};
    const bool written = m_block.size() == m_blockSize && m_chip.write(m_offset, m_block);
    m_blockSize = 0;
    m_block.clear();
    return verdict(written);
}

} // namespace rig
