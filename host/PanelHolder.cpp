// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/PanelHolder.h"

#include <QuillonFirmwareUpgrade/FirmwareUpgradeWidget.h>

#include <QTimer>

using QuillonFirmwareUpgrade::DeviceModel;
using QuillonFirmwareUpgrade::FirmwareUpgradeWidget;
using QuillonFirmwareUpgrade::Language;

namespace host {

namespace {
// Both enumerations count the models alike.
static_assert(int(DeviceModel::R1) == int(rig::Model::R1) && int(DeviceModel::R2) == int(rig::Model::R2));

DeviceModel panelModel(rig::Model model)
{
    return DeviceModel(int(model));
}
} // namespace

PanelHolder::PanelHolder(rig::Model model)
    : m_model(model)
{
}

PanelHolder::~PanelHolder()
{
    delete m_panel;
}

QWidget *PanelHolder::panel() const
{
    return m_panel;
}

QWidget *PanelHolder::create()
{
    destroy();
    m_panel = new FirmwareUpgradeWidget(m_frame);
    if (m_frame) {
        // The panel makes itself a frameless window; inside another window it is an ordinary part of it.
        m_panel->move(0, 0);
    }
    connect(m_panel, &FirmwareUpgradeWidget::upgradeDisplayMsg, this, &PanelHolder::versionsCompared);
    m_panel->setDeviceModel(panelModel(m_model));
    m_panel->show();
    Q_EMIT panelChanged(m_panel);
    return m_panel;
}

void PanelHolder::destroy()
{
    if (!m_panel)
        return;
    Q_EMIT panelChanged(nullptr);
    // The panel's destructor lets the application handle events, and one of them may come here again.
    FirmwareUpgradeWidget *going = m_panel;
    m_panel = nullptr;
    delete going;
}

void PanelHolder::destroyAfter(std::chrono::milliseconds time)
{
    if (m_panel)
        QTimer::singleShot(time, Qt::PreciseTimer, m_panel, [this] { destroy(); });
}

void PanelHolder::setModel(rig::Model model)
{
    m_model = model;
    if (m_panel)
        m_panel->setDeviceModel(panelModel(model));
}

void PanelHolder::startRecovery()
{
    if (m_panel)
        m_panel->startAutoRecoverUpgrade();
}

void PanelHolder::setEnglish(bool english)
{
    QuillonFirmwareUpgrade::setLanguage(english ? Language::English : Language::Chinese);
}

} // namespace host
