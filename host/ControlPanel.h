// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "host/HostTexts.h"
#include "rig/Identity.h"

#include <QList>
#include <QWidget>

#include <array>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QHBoxLayout;

namespace rig {
class Rig;
}

namespace host {

class FirmwareBox;
class PanelHolder;

/// What a tester can set: the simulated device, its cables, the server, the faults, and the panel. Every
/// control follows what a scenario or the device itself does.
class ControlPanel : public QWidget {
    Q_OBJECT

public:
    ControlPanel(rig::Rig &rig, PanelHolder &holder, QWidget *parent = nullptr);

    void setEnglish(bool english);

    /// The controls of the panel, for a place below it; the others are this widget's.
    QWidget *panelGroup() const { return m_panelGroup; }

Q_SIGNALS:
    void languageChosen(bool english);

private:
    struct ChipControls {
        FirmwareBox *firmware = nullptr;
        FirmwareBox *newest = nullptr;
        QCheckBox *cable = nullptr;
    };

    QWidget *makeDeviceGroup();
    QWidget *makeServerGroup();
    QWidget *makePanelGroup();
    QWidget *makeFaultGroup();
    QWidget *makeGroup(Text title, QLayout *layout);
    QComboBox *makeModelBox(void (ControlPanel::*chosen)(rig::Model));
    void addRow(QFormLayout *form, Text label, QWidget *field, QWidget *buddy);
    void addColumn(QHBoxLayout *row, Text label, QWidget *field);
    void addFirmwareRow(QFormLayout *form, rig::Chip chip);
    void addCable(QFormLayout *form, rig::Chip chip);
    void addNewestRow(QFormLayout *form, rig::Chip chip);

    void replaceDevice(rig::Model model);
    void setPanelModel(rig::Model model);
    void chooseFault(int index);
    void followDevice();
    void followFaults();
    void fillFaults();
    ChipControls &of(rig::Chip chip) { return m_chips[std::size_t(chip)]; }

    rig::Rig &m_rig;
    PanelHolder &m_holder;
    bool m_english = false;
    QList<std::pair<QWidget *, Text>> m_texts; // what says what, in either language
    std::array<ChipControls, 2> m_chips;
    QWidget *m_panelGroup = nullptr;
    QComboBox *m_deviceModel = nullptr;
    QComboBox *m_panelModel = nullptr;
    QComboBox *m_language = nullptr;
    QComboBox *m_fault = nullptr;
};

} // namespace host
