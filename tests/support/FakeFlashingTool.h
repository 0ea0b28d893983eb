// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "tests/support/HeldFile.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <memory>

/// Lays the stand-in for the flashing tool beside the test's executable, where the panel looks for it, and
/// takes it away again. A test that uses it is registered with quillon_give_flashing_tool(), so that it has
/// that folder for itself, and has a Sandbox, whose home folder the tool writes into.
///
///     FakeFlashingTool tool;
///     tool.obeys("write 55%\nhang");
class FakeFlashingTool {
public:
    FakeFlashingTool();
    ~FakeFlashingTool();
    FakeFlashingTool(const FakeFlashingTool &) = delete;
    FakeFlashingTool &operator=(const FakeFlashingTool &) = delete;

    static QString path(); ///< "…/OrvikFirmwareUpdata.exe"

    /// What the runs to come do: the instructions are listed in fake_flashing_tool.cpp.
    void obeys(const QByteArray &script);
    /// Lets a run go on that awaits the file \a name.
    static void signal(const QString &name);

    void remove(); ///< there is no tool
    void forbid(); ///< there is one that nobody may execute
    void replaceBy(const QByteArray &content); ///< there is a file of that name which is no program

    struct Run {
        QString workingDirectory;
        QStringList arguments;
    };
    /// The runs in this home folder, in order.
    static QList<Run> runs();

private:
    std::unique_ptr<HeldFile> m_forbidden;
};
