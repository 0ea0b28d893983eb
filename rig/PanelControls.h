// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/Identity.h"

#include <chrono>
#include <functional>

class QWidget;

namespace rig {

/// What a scenario can ask of the application that holds the panel. A function that is not set makes the
/// statement that needs it fail.
struct PanelControls {
    std::function<QWidget *()> createPanel; ///< makes and shows a panel in place of a destroyed one
    std::function<void()> destroyPanel;
    std::function<void(Model)> setModel;
    std::function<void(bool english)> setLanguage;
    std::function<void()> recover; ///< the panel's public recovery entry
    std::function<void(const QString &name)> takePicture;
    /// From now on the functions above are about the panel of this name; null when there is none of it. It is
    /// the one called "main" at first.
    std::function<QWidget *(const QString &name)> choosePanel;
    std::function<void()> destroyPanels; ///< all of them
    std::function<void(std::chrono::milliseconds)> destroyPanelLater; ///< returns at once
};

} // namespace rig
