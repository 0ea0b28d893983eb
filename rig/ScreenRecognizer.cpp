// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/ScreenRecognizer.h"

#include <QLabel>
#include <QMovie>
#include <QWidget>

#include <algorithm>

namespace rig {

const QList<ScreenSigns> &screenTable()
{
    // clang-format off
    static const QList<ScreenSigns> table {
        {"searching", {"verCompLb", "m_notesEdit"},
         {"m_noNewFirmwareLb", "m_newVerLb", "m_upgradeTextLb", "m_tooOldLb", "m_upgradingLb", "m_doneLb", "m_failTextLb", "tipMoiveLb"}, nullptr},
        {"up-to-date", {"verCompLb", "m_noNewFirmwareLb", "m_upgradeTextLb"},
         {"m_newVerLb", "m_rocketLb", "m_tooOldLb", "m_upgradingLb", "m_doneLb", "tipMoiveLb"}, nullptr},
        {"upgrade-available", {"verCompLb", "m_newVerLb", "m_rocketLb", "m_upgradeTextLb"},
         {"m_noNewFirmwareLb", "m_tooOldLb", "m_upgradingLb", "m_doneLb", "m_failTextLb", "tipMoiveLb"}, nullptr},
        {"too-old", {"verCompLb", "m_newVerLb", "m_tooOldLb", "m_offlineToolTipLb", "m_offlineToolLinkLb"},
         {"m_noNewFirmwareLb", "m_rocketLb", "m_upgradeTextLb", "m_upgradingLb", "m_doneLb", "tipMoiveLb"}, nullptr},
        {"recovering", {"verCompLb", "m_newVerLb"},
         {"m_rocketLb", "m_upgradeTextLb", "m_tooOldLb", "m_upgradingLb", "m_doneLb", "tipMoiveLb"}, nullptr},
        {"waiting-pc", {"tipMoiveLb", "m_detectingUsbLb", "m_connectHintLb", "m_waitingIconLb", "m_upgradingLb"},
         {"verCompLb", "m_notesEdit", "m_upgradeTextLb"}, "pc.gif"},
        {"waiting-otg", {"tipMoiveLb", "m_detectingUsbLb", "m_connectHintLb", "m_waitingIconLb", "m_upgradingLb"},
         {"verCompLb", "m_notesEdit", "m_upgradeTextLb"}, "otg.gif"},
        {"starting", {"verCompLb", "m_waitingIconLb", "m_upgradingLb"},
         {"upgradeProgDisPlay", "m_upgradeTextLb", "m_doneLb", "tipMoiveLb"}, nullptr},
        {"flashing", {"verCompLb", "m_waitingIconLb", "m_upgradingLb", "upgradeProgDisPlay"},
         {"m_upgradeTextLb", "m_doneLb", "m_failTextLb", "tipMoiveLb"}, nullptr},
        {"completed", {"m_doneIconLb", "m_doneLb"},
         {"m_waitingIconLb", "m_upgradingLb", "upgradeProgDisPlay", "m_tooOldLb", "m_upgradeTextLb", "tipMoiveLb"}, nullptr},
        {"failure", {"verCompLb", "m_failIconLb", "m_failTextLb", "m_upgradeTextLb"},
         {"m_noNewFirmwareLb", "m_rocketLb", "m_tooOldLb", "m_waitingIconLb", "m_upgradingLb", "m_doneLb", "upgradeProgDisPlay", "tipMoiveLb"}, nullptr},
    };
    // clang-format on
    return table;
}

QStringList screenNames()
{
    QStringList names;
    for (const ScreenSigns &screen : screenTable())
        names.append(QLatin1StringView(screen.name));
    return names;
}

namespace {

bool isVisible(const QWidget &panel, const char *name)
{
    const auto *widget = panel.findChild<QWidget *>(QLatin1StringView(name));
    return widget && widget->isVisibleTo(&panel);
}

bool plays(const QWidget &panel, const char *movie)
{
    const auto *label = panel.findChild<QLabel *>(QStringLiteral("tipMoiveLb"));
    return label && label->movie() && label->movie()->fileName().endsWith(QLatin1StringView(movie));
}

} // namespace

bool shows(const QWidget &panel, const ScreenSigns &screen)
{
    const auto seen = [&panel](const char *name) { return isVisible(panel, name); };
    return std::all_of(screen.visible.begin(), screen.visible.end(), seen)
        && std::none_of(screen.hidden.begin(), screen.hidden.end(), seen)
        && (!screen.movie || plays(panel, screen.movie));
}

QString recognizeScreen(const QWidget &panel)
{
    const QList<ScreenSigns> &table = screenTable();
    const auto shown = std::find_if(table.begin(), table.end(),
                                    [&panel](const ScreenSigns &screen) { return shows(panel, screen); });
    return shown == table.end() ? QString() : QLatin1StringView(shown->name);
}

} // namespace rig
