// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "tests/panel/PanelStage.h"
#include "tests/support/Files.h"
#include "widgets/ClickableProgressBar.h"

#include <QTest>

inline constexpr char kPcImage[] = "the PC image";
inline constexpr char kOtgImage[] = "the OTG image";

/// A server that has everything, and a panel that knows both of its versions. The plan is None, so that a run
/// ends once both images are there.
struct ReadyToUpgrade : PanelStage {
    explicit ReadyToUpgrade(DeviceModel model = DeviceModel::R2)
    {
        const bool r1 = model == DeviceModel::R1;
        using Server = ScriptedHttpServer;
        server.answer(r1 ? ServerPaths::kR1PcVersion : ServerPaths::kR2PcVersion, Server::version("1.2.3"));
        server.answer(r1 ? ServerPaths::kR1OtgVersion : ServerPaths::kR2OtgVersion, Server::version("1.0.4"));
        server.answer(r1 ? ServerPaths::kR1PcImage : ServerPaths::kR2PcImage, Server::page(kPcImage));
        server.answer(r1 ? ServerPaths::kR1OtgImage : ServerPaths::kR2OtgImage, Server::page(kOtgImage));
        panel->pretendModel(model);
        panel->pretendServerVersion(Chip::Pc, QStringLiteral("1.2.3"));
        panel->pretendServerVersion(Chip::Otg, QStringLiteral("1.0.4"));
        panel->show();
        log.clear();
    }

    void click() const { QTest::mousePress(panel->bar(), Qt::LeftButton, {}, {200, 20}); }
    QString image(const QString &name) const { return sandbox.downloadFolder() + u'/' + name; }
};
