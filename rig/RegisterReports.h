// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QList>

#include <functional>
#include <optional>

namespace rig {

constexpr int kReportSize = 65; ///< the report ID included
constexpr char kReportId = 0x51;

constexpr quint16 kModeRegister = 0x1008; ///< 0: the firmware runs
constexpr quint16 kPcVersionRegister = 0x000B; ///< the first of three: major, minor, patch
constexpr quint16 kOtgVersionRegister = 0x0010; ///< likewise

enum class Operation : quint8 { RandomWrite = 3, RandomRead = 4, ContinuousWrite = 5, ContinuousRead = 6 };

/// What a host asks of the registers. In a continuous operation the addresses follow each other.
struct RegisterRequest {
    Operation operation;
    QList<quint16> addresses;
    QList<quint16> values; ///< write operations: one for each address
};

/// A report, ID first, with \a words behind the operation. Makes nonsense too, when that is what is asked
/// for.
QByteArray encodeReport(quint8 operation, const QList<quint16> &words);

/// Reads an output report, ID first. Nothing for one that a device ignores: wrong size, ID, mark, length or
/// checksum, an unknown operation, or more registers than fit into one reply.
std::optional<RegisterRequest> decodeRequest(const QByteArray &report);

/// The input report, ID first, that answers \a request. \a valueOf is asked for each register read. A random
/// write is answered with what was written, a continuous write with its start and count.
QByteArray encodeReply(const RegisterRequest &request, const std::function<quint16(quint16)> &valueOf);

} // namespace rig
