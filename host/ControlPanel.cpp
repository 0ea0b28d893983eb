// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/ControlPanel.h"

#include "host/Caption.h"
#include "host/FirmwareBox.h"
#include "host/PanelHolder.h"
#include "rig/Rig.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>

namespace host {

using rig::Chip;
using rig::Model;

namespace {

struct ChipTexts {
    Text firmware;
    Text erase;
    Text cable;
    const char *name;
};

const ChipTexts &textsOf(Chip chip)
{
    static constexpr ChipTexts kPc{Text::PcFirmware, Text::ErasePc, Text::PcCable, "pc"};
    static constexpr ChipTexts kOtg{Text::OtgFirmware, Text::EraseOtg, Text::OtgCable, "otg"};
    return chip == Chip::Pc ? kPc : kOtg;
}

constexpr int kColumnGap = 18;
constexpr Chip kChips[]{Chip::Pc, Chip::Otg};

QString nameFor(Chip chip, const char *what)
{
    return QLatin1StringView(textsOf(chip).name) + QLatin1StringView(what);
}

} // namespace

ControlPanel::ControlPanel(rig::Rig &rig, PanelHolder &holder, QWidget *parent)
    : QWidget(parent)
    , m_rig(rig)
    , m_holder(holder)
{
    setObjectName(QStringLiteral("side"));
    setAttribute(Qt::WA_StyledBackground);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeDeviceGroup());
    for (QWidget *group : {makeServerGroup(), makeFaultGroup()}) {
        column->addStretch();
        column->addWidget(group);
    }
    m_panelGroup = makePanelGroup();
    connect(&m_rig.device(), &rig::SimulatedDevice::changed, this, &ControlPanel::followDevice,
            Qt::QueuedConnection);
    connect(&m_rig.faults(), &rig::FaultBoard::changed, this, &ControlPanel::followFaults,
            Qt::QueuedConnection);
    setEnglish(false);
    followDevice();
}

QWidget *ControlPanel::makeGroup(Text title, QLayout *layout)
{
    auto *group = new QGroupBox(this);
    group->setLayout(layout);
    m_texts.append({group, title});
    return group;
}

void ControlPanel::addRow(QFormLayout *form, Text label, QWidget *field, QWidget *buddy)
{
    auto *caption = new Caption(this);
    caption->setBuddy(buddy);
    m_texts.append({caption, label});
    form->addRow(caption, field);
}

void ControlPanel::addColumn(QHBoxLayout *row, Text label, QWidget *field)
{
    auto *form = new QFormLayout;
    addRow(form, label, field, field);
    row->addLayout(form, 1);
}

QComboBox *ControlPanel::makeModelBox(void (ControlPanel::*chosen)(Model))
{
    auto *box = new QComboBox(this);
    box->addItems(rig::modelNames());
    connect(box, &QComboBox::activated, this, [this, chosen](int index) { (this->*chosen)(Model(index)); });
    return box;
}

QWidget *ControlPanel::makeDeviceGroup()
{
    auto *form = new QFormLayout;
    m_deviceModel = makeModelBox(&ControlPanel::replaceDevice);
    m_deviceModel->setObjectName(QStringLiteral("deviceModel"));
    addRow(form, Text::Model, m_deviceModel, m_deviceModel);
    for (const Chip chip : kChips)
        addFirmwareRow(form, chip);
    for (const Chip chip : kChips)
        addCable(form, chip);
    return makeGroup(Text::Device, form);
}

void ControlPanel::addFirmwareRow(QFormLayout *form, Chip chip)
{
    auto *field = new QWidget(this);
    auto *row = new QHBoxLayout(field);
    row->setContentsMargins(0, 0, 0, 0);
    FirmwareBox *&box = of(chip).firmware;
    box = new FirmwareBox(this);
    box->setObjectName(nameFor(chip, "Firmware"));
    auto *erase = new QPushButton(this);
    erase->setObjectName(nameFor(chip, "Erase"));
    m_texts.append({erase, textsOf(chip).erase});
    row->addWidget(box, 1);
    row->addWidget(erase);
    addRow(form, textsOf(chip).firmware, field, box);
    connect(box, &FirmwareBox::versionEntered, this,
            [this, chip](const QVersionNumber &version) { m_rig.device().setVersion(chip, version); });
    connect(erase, &QPushButton::clicked, this, [this, chip] { m_rig.device().brick(chip); });
}

void ControlPanel::addCable(QFormLayout *form, Chip chip)
{
    QCheckBox *&box = of(chip).cable;
    box = new QCheckBox(this);
    box->setObjectName(nameFor(chip, "Cable"));
    m_texts.append({box, textsOf(chip).cable});
    form->addRow(box);
    connect(box, &QCheckBox::clicked, this, [this, chip](bool in) {
        if (in)
            m_rig.device().plug(chip);
        else
            m_rig.device().unplug(chip);
    });
}

QWidget *ControlPanel::makeServerGroup()
{
    auto *form = new QFormLayout;
    for (const Chip chip : kChips)
        addNewestRow(form, chip);
    return makeGroup(Text::Server, form);
}

void ControlPanel::addNewestRow(QFormLayout *form, Chip chip)
{
    FirmwareBox *&box = of(chip).newest;
    box = new FirmwareBox(this);
    box->setObjectName(nameFor(chip, "Newest"));
    addRow(form, textsOf(chip).firmware, box, box);
    connect(box, &FirmwareBox::versionEntered, this,
            [this, chip](const QVersionNumber &version) { m_rig.server().setVersion(chip, version); });
}

QWidget *ControlPanel::makeFaultGroup()
{
    auto *column = new QVBoxLayout;
    m_fault = new QComboBox(this);
    m_fault->setObjectName(QStringLiteral("fault"));
    m_fault->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    column->addWidget(m_fault);
    connect(m_fault, &QComboBox::activated, this, &ControlPanel::chooseFault);
    return makeGroup(Text::Fault, column);
}

QWidget *ControlPanel::makePanelGroup()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(kColumnGap);
    m_panelModel = makeModelBox(&ControlPanel::setPanelModel);
    m_panelModel->setObjectName(QStringLiteral("panelModel"));
    addColumn(row, Text::Model, m_panelModel);
    m_language = new QComboBox(this);
    m_language->setObjectName(QStringLiteral("language"));
    m_language->addItems({QStringLiteral("中文"), QStringLiteral("English")});
    addColumn(row, Text::Language, m_language);
    connect(m_language, &QComboBox::activated, this,
            [this](int index) { Q_EMIT languageChosen(index == 1); });

    const auto addButton = [&](Text text, const QString &name, auto act) {
        auto *button = new QPushButton(this);
        button->setObjectName(name);
        m_texts.append({button, text});
        row->addWidget(button, 1);
        connect(button, &QPushButton::clicked, &m_holder, act);
    };
    addButton(Text::NewPanel, QStringLiteral("newPanel"), [this] { m_holder.create(); });
    addButton(Text::DeletePanel, QStringLiteral("deletePanel"), [this] { m_holder.destroy(); });
    return makeGroup(Text::Panel, row);
}

void ControlPanel::setEnglish(bool english)
{
    m_english = english;
    for (const auto &[widget, text] : std::as_const(m_texts)) {
        const char *property = qobject_cast<QGroupBox *>(widget) ? "title" : "text";
        widget->setProperty(property, textOf(text, english));
    }
    m_fault->setAccessibleName(textOf(Text::Fault, english));
    m_language->setCurrentIndex(english ? 1 : 0);
    fillFaults();
}

void ControlPanel::replaceDevice(Model model)
{
    m_rig.device().setModel(model);
}

void ControlPanel::setPanelModel(Model model)
{
    m_holder.setModel(model);
}

void ControlPanel::chooseFault(int index)
{
    m_rig.faults().clearAll();
    if (index > 0)
        m_rig.faults().arm(rig::faultTable().at(index - 1).fault);
}

void ControlPanel::followDevice()
{
    m_deviceModel->setCurrentIndex(int(m_rig.device().model()));
    m_panelModel->setCurrentIndex(int(m_holder.model()));
    for (const Chip chip : kChips) {
        of(chip).cable->setChecked(m_rig.device().isPlugged(chip));
        of(chip).firmware->setVersion(m_rig.device().runningVersion(chip));
        of(chip).newest->setVersion(m_rig.server().version(m_rig.device().model(), chip));
    }
}

void ControlPanel::followFaults()
{
    const QList<rig::Fault> armed = m_rig.faults().armed();
    m_fault->setCurrentIndex(armed.isEmpty() ? 0 : int(armed.first()) + 1);
}

void ControlPanel::fillFaults()
{
    m_fault->clear();
    m_fault->addItem(textOf(Text::NoFault, m_english));
    for (const rig::FaultInfo &fault : rig::faultTable())
        m_fault->addItem(QString::fromUtf8(m_english ? fault.english : fault.chinese));
    followFaults();
}

} // namespace host
