// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/Fault.h"

#include <chrono>

namespace faults {

enum class Plan { PcOnly, OtgOnly, Both };

/// What the panel shows of a device that is plugged in while the fault is there.
enum class Sight {
    Offer,
    PartialOffer, ///< of the OTG firmware alone, until the query for the PC firmware is answered as well
    Searching,
    UpToDate,
    TooOld,
    Warning
};

/// Which flashing the fault meets in a run over both chips. In any other run there is only one.
enum class Meets {
    EveryChip,
    LastChip ///< the PC firmware is through by then
};

enum class Screen { Offer, WaitingOtg, Starting, Flashing, Failure, Completed };

/// What stands in the flash of a chip that the fault met.
enum class Flash {
    Kept, ///< the image it had
    Served, ///< what the server sent, and the chip runs it
    ServedInVain, ///< what the server sent, which is nothing that the chip can run
    Partial, ///< the beginning of the image
    Damaged, ///< the image with errors
    Empty
};

struct Course {
    Sight sight;
    Meets meets;
    Screen pcOnly; ///< where the run ends, by plan
    Screen otgOnly;
    Screen both;
    Flash flash;
    std::chrono::seconds holds; ///< how long the panel has to show that screen
};

// A run that is over stays as it ended.
constexpr std::chrono::seconds kOver{5};
// A chip that cannot run its new image is found in its boot loader a second later, and its recovery begins.
constexpr std::chrono::seconds kUntilRecovery{0};
// Nothing judges the run: the screen that it has come to outlasts every delay of the sequence...
constexpr std::chrono::seconds kUnjudged{20};
// ...and the watchdog that ends the flashing tool after a minute.
constexpr std::chrono::seconds kUnjudgedByWatchdog{80};

/// The course of a whole run with \a fault: what the panel offers, where a run ends that the fault meets
/// behind the click, and what is in the flash then. Both models go the same way. One row for a fault; a fault
/// without one does not compile.
///
/// Three rules are behind the rows. A download that brought anything is flashed, whatever it is, and one that
/// brought nothing ends the run without a word. What the tool reports is believed. Without a report, a
/// percentage above 0 that stands fails the run, as does a tool that leaves nothing; at 0 %, or behind words
/// that say nothing, the run is not judged, and the screen is the one before: in the second half of a run
/// over both chips that which asks for the cable.
constexpr Course courseOf(rig::Fault fault)
{
    using F = rig::Fault;
    using Si = Sight;
    using M = Meets;
    using S = Screen;
    // clang-format off
    // NOLINTBEGIN(bugprone-branch-clone): a table with one row for each fault
    switch (fault) {
    //                                     sight of it       meets         PC only       OTG only      both           flash                holds
    case F::ServerRefused:         return {Si::Searching,    M::EveryChip, S::Offer,     S::Offer,     S::Offer,      Flash::Kept,         kUnjudged};
    case F::ServerSilent:          return {Si::Searching,    M::EveryChip, S::Offer,     S::Offer,     S::Offer,      Flash::Kept,         kUnjudged};
    case F::ServerSlow:            return {Si::PartialOffer, M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::ServerLate:            return {Si::Searching,    M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::ServerDripping:        return {Si::Searching,    M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::ServerDropped:         return {Si::Searching,    M::EveryChip, S::Offer,     S::Offer,     S::Offer,      Flash::Kept,         kUnjudged};
    case F::ServerCutShort:        return {Si::Searching,    M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::ServedInVain, kUntilRecovery};
    case F::ServerNotFound:        return {Si::Searching,    M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::ServedInVain, kUntilRecovery};
    case F::ServerBroken:          return {Si::Searching,    M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::ServedInVain, kUntilRecovery};
    case F::ServerRedirects:       return {Si::Searching,    M::EveryChip, S::Offer,     S::Offer,     S::Offer,      Flash::Kept,         kUnjudged};
    case F::ServerGarbage:         return {Si::Searching,    M::EveryChip, S::Offer,     S::Offer,     S::Offer,      Flash::Kept,         kUnjudged};
    case F::ServerEmptyBody:       return {Si::Searching,    M::EveryChip, S::Offer,     S::Offer,     S::Offer,      Flash::Kept,         kUnjudged};
    case F::ServerMalformedJson:   return {Si::Searching,    M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::ServerEmptyList:       return {Si::Searching,    M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::ServerObject:          return {Si::Searching,    M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::ServerNoVersion:       return {Si::UpToDate,     M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::ServerNoObject:        return {Si::UpToDate,     M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::ServerHugeNotes:       return {Si::PartialOffer, M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::ServerDamagedImage:    return {Si::Offer,        M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::ServedInVain, kUntilRecovery};
    case F::ServerForeignImage:    return {Si::Offer,        M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::ServedInVain, kUntilRecovery};
    // The tool finds that its end does not fit.
    case F::ServerHugeImage:       return {Si::Offer,        M::LastChip,  S::Failure,   S::Failure,   S::Failure,    Flash::Partial,      kOver};

    case F::ToolMissing:           return {Si::Offer,        M::EveryChip, S::Starting,  S::Starting,  S::Starting,   Flash::Kept,         kUnjudged};
    case F::ToolNotExecutable:     return {Si::Offer,        M::EveryChip, S::Starting,  S::Starting,  S::Starting,   Flash::Kept,         kUnjudged};
    case F::ToolCrashesAtStart:    return {Si::Offer,        M::LastChip,  S::Failure,   S::Failure,   S::Failure,    Flash::Kept,         kOver};
    case F::ToolCrashes:           return {Si::Offer,        M::LastChip,  S::Failure,   S::Failure,   S::Failure,    Flash::Partial,      kOver};
    case F::ToolNoFile:            return {Si::Offer,        M::LastChip,  S::Failure,   S::Failure,   S::Failure,    Flash::Kept,         kOver};
    case F::ToolEmptyFile:         return {Si::Offer,        M::LastChip,  S::Failure,   S::Failure,   S::Failure,    Flash::Kept,         kOver};
    case F::ToolSlowStart:         return {Si::Offer,        M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::ToolStallsAt0:         return {Si::Offer,        M::LastChip,  S::Flashing,  S::Flashing,  S::WaitingOtg, Flash::Kept,         kUnjudgedByWatchdog};
    case F::ToolStallsAt42:        return {Si::Offer,        M::LastChip,  S::Failure,   S::Failure,   S::Failure,    Flash::Partial,      kOver};
    case F::ToolStallsAt100:       return {Si::Offer,        M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::ToolNoResult:          return {Si::Offer,        M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::ToolFails:             return {Si::Offer,        M::LastChip,  S::Failure,   S::Failure,   S::Failure,    Flash::Partial,      kOver};
    case F::ToolBareSuccess:       return {Si::Offer,        M::LastChip,  S::Failure,   S::Failure,   S::Failure,    Flash::Served,       kOver};
    case F::ToolOddStatus:         return {Si::Offer,        M::LastChip,  S::Failure,   S::Failure,   S::Failure,    Flash::Served,       kOver};
    case F::ToolStaysAfterSuccess: return {Si::Offer,        M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::ToolHalfLines:         return {Si::Offer,        M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::ToolGarbage:           return {Si::Offer,        M::LastChip,  S::Flashing,  S::Flashing,  S::WaitingOtg, Flash::Kept,         kUnjudged};
    case F::ToolBinary:            return {Si::Offer,        M::LastChip,  S::Flashing,  S::Flashing,  S::WaitingOtg, Flash::Kept,         kUnjudged};
    case F::ToolHugeFile:          return {Si::Offer,        M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::ToolIgnoresTerminate:  return {Si::Offer,        M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::ToolChatty:            return {Si::Offer,        M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};

    case F::DevicePulledAtErase:   return {Si::Offer,        M::LastChip,  S::Failure,   S::Failure,   S::Failure,    Flash::Empty,        kOver};
    case F::DevicePulledAtHalf:    return {Si::Offer,        M::LastChip,  S::Failure,   S::Failure,   S::Failure,    Flash::Partial,      kOver};
    case F::DevicePulledAtRestart: return {Si::Offer,        M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::DeviceNeverReturns:    return {Si::Offer,        M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::DeviceReturnsLate:     return {Si::Offer,        M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kUnjudged};
    case F::DeviceZeroVersions:    return {Si::TooOld,       M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::DeviceSaysDfu:         return {Si::Warning,      M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::DeviceSilent:          return {Si::Searching,    M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::DeviceShortReplies:    return {Si::Searching,    M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::DeviceGarbledReplies:  return {Si::Searching,    M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::DeviceBadChecksum:     return {Si::Offer,        M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::DeviceHostileLengths:  return {Si::Offer,        M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::DeviceRefusesOpen:     return {Si::Searching,    M::EveryChip, S::Completed, S::Completed, S::Completed,  Flash::Served,       kOver};
    case F::DeviceDamagedTransfer: return {Si::Offer,        M::LastChip,  S::Failure,   S::Failure,   S::Failure,    Flash::Damaged,      kOver};
    }
    // NOLINTEND(bugprone-branch-clone)
    // clang-format on
    return {};
}

} // namespace faults
