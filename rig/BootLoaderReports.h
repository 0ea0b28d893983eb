// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>

#include <optional>

namespace rig {

/// What a flashing tool says to a chip, over USB and over the rig's socket alike. Every request but Block and
/// an incomplete Data is answered with a report of the same command; unless stated its payload is one byte, 1
/// for yes and 0 for no.
enum class BootLoaderCommand : quint8 {
    Enter = 1, ///< go into the boot loader; payload: 1 when the chip is said to be there
    Ready, ///< is the chip in its boot loader?
    Erase, ///< payload: size of the image to come (4); answered when the flash is erased
    Block, ///< what is to be written next; payload: offset (4), size (4)
    Data, ///< bytes of the block; the report that completes it is answered
    Digest, ///< answered with the SHA-256 of what the flash holds (32)
    Restart ///< run what is in the flash
};

struct BootLoaderReport {
    BootLoaderCommand command = BootLoaderCommand::Ready;
    QByteArray payload; ///< kMaxBootLoaderPayload bytes at most
};

/// These reports have an ID of their own, so that neither side takes them for the register protocol's. They
/// are as long as those: ID, command, length, payload, zeros.
constexpr char kBootLoaderReportId = 0x52;
constexpr int kMaxBootLoaderPayload = 62;
constexpr int kMaxBootLoaderBlock = 64 * 1024;

QByteArray encode(const BootLoaderReport &report);
/// Nothing for a report of another ID or size, an unknown command, or a length that does not fit.
std::optional<BootLoaderReport> decodeBootLoaderReport(const QByteArray &bytes);

} // namespace rig
