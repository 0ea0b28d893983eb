// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "net/networking_class.h"
#include "tests/panel/OpenPanel.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Sandbox.h"
#include "tests/support/Screen.h"
#include "tests/support/ScriptedHttpServer.h"
#include "tests/support/ScriptedTransport.h"

#include <QApplication>

#include <memory>

/// A panel with all that it meets: fresh folders, a bus without devices, an update server that knows no path,
/// the log. Ends with the language back at Chinese and no device left.
class PanelStage {
public:
    static ScriptedBus &bus()
    {
        static ScriptedBus *const installed = ScriptedBus::install();
        return *installed;
    }

    PanelStage()
    {
        QApplication::setQuitOnLastWindowClosed(false);
        bus().clear();
        networking_class::getInstance()->f_remark.clear();
        networking_class::getInstance()->f_remark_en.clear();
        panel = std::make_unique<OpenPanel>();
    }

    ~PanelStage()
    {
        panel.reset();
        bus().unplugAll();
        QuillonFirmwareUpgrade::setLanguage(Language::Chinese);
    }

    Sandbox sandbox;
    ScriptedHttpServer server;
    LogCapture log;
    std::unique_ptr<OpenPanel> panel;
};

namespace ServerPaths {
inline const QString kR1PcVersion = QStringLiteral("/upinfo_test.aspx?proj_name=R1MCU");
inline const QString kR2PcVersion = QStringLiteral("/upinfo_test.aspx?proj_name=R2MCU");
inline const QString kR1OtgVersion = QStringLiteral("/upinfo_test.aspx?proj_name=R1OTG");
inline const QString kR2OtgVersion = QStringLiteral("/upinfo_test.aspx?proj_name=R2OTG");
inline const QString kR1PcImage = QStringLiteral("/dnfile_test.aspx?f_sn=153");
inline const QString kR1OtgImage = QStringLiteral("/dnfile_test.aspx?f_sn=154");
inline const QString kR2PcImage = QStringLiteral("/dnfile_test.aspx?f_sn=155");
inline const QString kR2OtgImage = QStringLiteral("/dnfile_test.aspx?f_sn=156");
} // namespace ServerPaths
