// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QStringList>

#include <chrono>

namespace tool {

constexpr int kNever = -1;

/// In what ways this run of the tool is not as it should be. The defaults are those of a sound run.
struct ToolBehaviour {
    enum class Fake { None, NoFile, EmptyFile, Garbage, Binary };

    Fake fake = Fake::None; ///< in place of any flashing, leaves this behind and ends
    bool crashesAtStart = false;
    std::chrono::milliseconds startDelay{0};
    int crashesAt = kNever; ///< percentages
    int standsAt = kNever;
    int failsAt = kNever;
    QByteArray result = "success 1"; ///< what a complete run reports; empty: no result line
    bool staysAfterResult = false;
    bool halfLines = false;
    bool hugeFile = false;
    bool ignoresTerminate = false;
    bool chatty = false;
};

/// The behaviour that the rig asks for by the names of its faults.
ToolBehaviour behaviourFor(const QStringList &faultNames);

} // namespace tool
