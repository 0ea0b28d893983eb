// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QList>
#include <QString>
#include <QStringView>

#include <optional>

namespace rig {

/// Everything the rig can be told to do wrong. The table in FaultTable.cpp names and describes each one.
enum class Fault {
    ServerRefused,
    ServerSilent,
    ServerSlow,
    ServerLate,
    ServerDripping,
    ServerDropped,
    ServerCutShort,
    ServerNotFound,
    ServerBroken,
    ServerRedirects,
    ServerGarbage,
    ServerEmptyBody,
    ServerMalformedJson,
    ServerEmptyList,
    ServerObject,
    ServerNoVersion,
    ServerNoObject,
    ServerHugeNotes,
    ServerDamagedImage,
    ServerForeignImage,
    ServerHugeImage,

    ToolMissing,
    ToolNotExecutable,
    ToolCrashesAtStart,
    ToolCrashes,
    ToolNoFile,
    ToolEmptyFile,
    ToolSlowStart,
    ToolStallsAt0,
    ToolStallsAt42,
    ToolStallsAt100,
    ToolNoResult,
    ToolFails,
    ToolBareSuccess,
    ToolOddStatus,
    ToolStaysAfterSuccess,
    ToolHalfLines,
    ToolGarbage,
    ToolBinary,
    ToolHugeFile,
    ToolIgnoresTerminate,
    ToolChatty,

    DevicePulledAtErase,
    DevicePulledAtHalf,
    DevicePulledAtRestart,
    DeviceNeverReturns,
    DeviceReturnsLate,
    DeviceZeroVersions,
    DeviceSaysDfu,
    DeviceSilent,
    DeviceShortReplies,
    DeviceGarbledReplies,
    DeviceBadChecksum,
    DeviceHostileLengths,
    DeviceRefusesOpen,
    DeviceDamagedTransfer,
};

/// Who misbehaves.
enum class FaultPlace {
    Server, ///< the update server, while it answers a request
    Tool, ///< the flashing tool, while it runs
    ToolFile, ///< the flashing tool's file on disk, as long as the fault is armed
    Device ///< the device and its bus
};

struct FaultInfo {
    Fault fault;
    FaultPlace place;
    const char *name; ///< how command lines, scenarios and tests call it
    const char *english; ///< one line for people
    const char *chinese;
};

/// Every fault once, in the order of the enumeration.
const QList<FaultInfo> &faultTable();
const FaultInfo &infoOf(Fault fault);
std::optional<Fault> faultNamed(QStringView name);
QString nameOf(Fault fault);
QString nameOf(FaultPlace place); ///< "server", "tool", "tool file", "device"

} // namespace rig
