// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/tool/ChipLink.h"
#include "rig/tool/ProgressFile.h"
#include "rig/tool/RigLink.h"
#include "rig/tool/ToolBehaviour.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace tool {

/// The command line: an image, "--pid" and a product ID in hexadecimal, and perhaps "--already-in-dfu".
struct ToolOptions {
    QString imagePath;
    int productId = 0;
    bool alreadyInBootLoader = false;

    static std::optional<ToolOptions> from(const QStringList &arguments);
};

/// One run of the tool: takes an image to one chip and reports in the progress file.
class FlashRun {
public:
    enum ExitCode { Done = 0, Failed = 1, Usage = 2, NoProgressFile = 3 };

    FlashRun(const ToolOptions &options, const QStringList &arguments);

    /// Takes several seconds, or for ever where the rig wants it so.
    ExitCode execute();

private:
    ExitCode fake();
    bool reachBootLoader();
    bool program(const QByteArray &image);
    bool programPercent(const QByteArray &image, int percent);
    ExitCode conclude(bool complete);
    void showPercent(int percent);
    void stand();

    ToolOptions m_options;
    QStringList m_arguments;
    RigLink m_rig;
    std::unique_ptr<ChipWire> m_usb;
    ChipWire &m_wire; // one of the two
    ChipLink m_chip;
    ProgressFile m_progress;
    ToolBehaviour m_behaviour;
};

} // namespace tool
