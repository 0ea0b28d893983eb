// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/PanelSet.h"

namespace host {

namespace {
const QString kMain = QStringLiteral("main");
} // namespace

PanelSet::PanelSet(PanelHolder &main, rig::Model model)
    : m_main(main)
    , m_model(model)
    , m_chosen(&main)
{
}

PanelSet::~PanelSet() = default;

void PanelSet::choose(const QString &name)
{
    m_chosen = name == kMain ? &m_main : &other(name).holder;
}

PanelSet::Other &PanelSet::other(const QString &name)
{
    std::unique_ptr<Other> &known = m_others[name];
    if (!known) {
        known = std::make_unique<Other>(m_model);
        connect(&known->holder, &PanelHolder::panelChanged, &known->screens, &ScreenWatch::setPanel);
        connect(&known->screens, &ScreenWatch::screenShown, this,
                [this, name](const QString &screen) { Q_EMIT screenShown(name, screen); });
    }
    return *known;
}

void PanelSet::destroyAll()
{
    for (const auto &[name, other] : m_others)
        other->holder.destroy();
    m_main.destroy();
}

} // namespace host
