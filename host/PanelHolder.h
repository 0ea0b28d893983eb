// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/Identity.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <chrono>

namespace QuillonFirmwareUpgrade {
class FirmwareUpgradeWidget;
}

namespace host {

/// The application's one panel: made, shown and deleted here, as a customer's application does it. GUI
/// thread.
class PanelHolder : public QObject {
    Q_OBJECT

public:
    explicit PanelHolder(rig::Model model);
    ~PanelHolder() override;

    /// Panels are made as children of \a frame from now on; null: as windows of their own.
    void setFrame(QWidget *frame) { m_frame = frame; }

    QWidget *panel() const; ///< null when there is none
    QWidget *create(); ///< makes and shows a panel in place of the one there may be
    void destroy();
    void destroyAfter(std::chrono::milliseconds time); ///< the panel that is there now

    rig::Model model() const { return m_model; }
    void setModel(rig::Model model); ///< also for panels to come
    void startRecovery();

    static void setEnglish(bool english); ///< for every panel

Q_SIGNALS:
    void panelChanged(QWidget *panel); ///< null when there is none
    void versionsCompared(const QString &version, bool upgradeNeeded); ///< what the panel announced

private:
    rig::Model m_model;
    QPointer<QWidget> m_frame;
    QPointer<QuillonFirmwareUpgrade::FirmwareUpgradeWidget> m_panel;
};

} // namespace host
