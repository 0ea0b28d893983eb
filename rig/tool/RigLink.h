// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/tool/ChipWire.h"

#include <QByteArray>
#include <QLocalSocket>
#include <QStringList>

namespace tool {

/// The tool's connection to the rig, which leads to the chips too. After a failed call it is of no further
/// use.
class RigLink : public ChipWire {
public:
    bool connectToRig();

    QStringList greet(const QStringList &arguments); ///< the names of this run's faults

    std::chrono::milliseconds patience() const override { return std::chrono::seconds(4); }
    bool find(int productId) override;
    /// The rig knows from the greeting which chip is meant.
    bool open(int productId) override { return find(productId); }
    bool send(const QByteArray &report) override;
    QByteArray receive(const QDeadlineTimer &deadline) override;

    void waitForEnd(); ///< returns when the other side has gone

private:
    QStringList ask(const QStringList &words);
    QStringList readWords(const QDeadlineTimer &deadline);

    QLocalSocket m_socket;
};

} // namespace tool
