// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QWidget>

class QLabel;
class QPlainTextEdit;

namespace rig {
class Rig;
}

namespace host {

class ControlPanel;
class EventLog;
class PanelFrame;
class PanelHolder;

/// The window of a simulation: the panel, the controls beside it, the log below.
class HostWindow : public QWidget {
    Q_OBJECT

public:
    HostWindow(rig::Rig &rig, PanelHolder &holder, EventLog &log);

    QWidget *panelFrame() const; ///< where panels are to be made
    void setEnglish(bool english);

Q_SIGNALS:
    void languageChosen(bool english);

private:
    void setUpLog(EventLog &log);
    void appendToLog(const QString &line);
    void arrange();

    PanelFrame *m_frame;
    ControlPanel *m_controls;
    QLabel *m_logTitle;
    QPlainTextEdit *m_log;
};

} // namespace host
