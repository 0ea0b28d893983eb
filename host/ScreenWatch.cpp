// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/ScreenWatch.h"

#include "rig/ScreenRecognizer.h"

#include <QProgressBar>

namespace host {

namespace {
constexpr std::chrono::milliseconds kLookInterval{20};
} // namespace

ScreenWatch::ScreenWatch()
{
    m_timer.setInterval(kLookInterval);
    connect(&m_timer, &QTimer::timeout, this, &ScreenWatch::look);
    m_timer.start();
}

void ScreenWatch::setPanel(QWidget *panel)
{
    m_panel = panel;
    m_screen.clear();
}

void ScreenWatch::look()
{
    if (!m_panel)
        return;
    const QString screen = rig::recognizeScreen(*m_panel);
    if (!screen.isEmpty() && screen != m_screen) {
        m_screen = screen;
        Q_EMIT screenShown(screen);
    }
    const auto *bar = m_panel->findChild<QProgressBar *>();
    if (!bar || m_screen != u"flashing" || bar->value() == m_percent)
        return;
    m_percent = bar->value();
    Q_EMIT percentShown(m_percent);
}

} // namespace host
