// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/tool/ChipLink.h"

#include "rig/LittleEndian.h"

namespace tool {

using rig::BootLoaderCommand;
using rig::bytesOf;

namespace {
constexpr std::chrono::milliseconds kPatience{5000};
} // namespace

bool ChipLink::attach(int productId, bool alreadyInBootLoader)
{
    m_identity = rig::identityWith(productId);
    return m_identity && m_wire.open(productId)
        && agree(BootLoaderCommand::Enter, QByteArray(1, char(alreadyInBootLoader)));
}

// The boot loader is another device on the bus than the firmware was, also where they share an ID.
bool ChipLink::isReady()
{
    return m_wire.open(m_identity->bootLoaderPid) && agree(BootLoaderCommand::Ready);
}

bool ChipLink::erase(qsizetype imageSize)
{
    return agree(BootLoaderCommand::Erase, bytesOf(quint32(imageSize)));
}

bool ChipLink::write(qsizetype offset, const QByteArray &block)
{
    if (block.size() > rig::kMaxBootLoaderBlock
        || !send(BootLoaderCommand::Block, bytesOf(quint32(offset)) + bytesOf(quint32(block.size()))))
        return false;
    for (qsizetype at = 0; at < block.size(); at += rig::kMaxBootLoaderPayload) {
        if (!send(BootLoaderCommand::Data, block.mid(at, rig::kMaxBootLoaderPayload)))
            return false;
    }
    return isAgreedTo(BootLoaderCommand::Data);
}

QByteArray ChipLink::digest()
{
    if (!send(BootLoaderCommand::Digest))
        return {};
    return receive(BootLoaderCommand::Digest).value_or(QByteArray()).toHex();
}

bool ChipLink::restart()
{
    return agree(BootLoaderCommand::Restart);
}

bool ChipLink::send(BootLoaderCommand command, const QByteArray &payload)
{
    return m_wire.send(rig::encode({command, payload}));
}

// Over USB there are also the answers to the panel, which may have the same interface open.
std::optional<QByteArray> ChipLink::receive(BootLoaderCommand command)
{
    const QDeadlineTimer deadline(kPatience);
    for (QByteArray bytes = m_wire.receive(deadline); !bytes.isEmpty(); bytes = m_wire.receive(deadline)) {
        const auto answer = rig::decodeBootLoaderReport(bytes);
        if (answer && answer->command == command)
            return answer->payload;
    }
    return {};
}

bool ChipLink::isAgreedTo(BootLoaderCommand command)
{
    return receive(command) == QByteArray(1, '\1');
}

bool ChipLink::agree(BootLoaderCommand command, const QByteArray &payload)
{
    return send(command, payload) && isAgreedTo(command);
}

} // namespace tool
