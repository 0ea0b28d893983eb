// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/FaultBoard.h"
#include "rig/Journal.h"
#include "rig/RunPermission.h"

#include <QObject>
#include <QString>

#include <memory>

namespace rig {

/// Lets the file of the flashing tool vanish or lose its permission to run while such a fault is armed. What
/// it did is undone when the fault is cleared and by the destructor; what a killed process left behind, when
/// the path is set. Lives on the thread that made it and follows the board from there.
class ToolFile : public QObject {
    Q_OBJECT

public:
    ToolFile(FaultBoard &faults, Journal &journal);
    ~ToolFile() override;

    /// The tool as the panel looks for it; initially the one beside this executable. Nobody else may use the
    /// same file at the same time: tests that run together need a copy each.
    void setPath(const QString &path);
    QString path() const { return m_path; }

private:
    void follow();
    void setMissing(bool missing);
    void setExecutable(bool executable);
    QString asidePath() const;

    FaultBoard &m_faults;
    Journal &m_journal;
    QString m_path;
    std::unique_ptr<RunPermission> m_permission;
};

} // namespace rig
