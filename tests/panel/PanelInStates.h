// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "tests/panel/PanelStage.h"
#include "tests/support/DeviceReplies.h"
#include "tests/support/FakeFlashingTool.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QTest>

#include <utility>

/// A panel, child of a plain widget, that can be brought into each of its states; a server that answers
/// everything and a flashing tool that never gets further than 0 %. For tests that lay a flashing tool and
/// whose clock runs ahead.
class PanelInStates {
public:
    using State = void (PanelInStates::*)();

    /// Milliseconds of the faster clock.
    static constexpr int kPatience = 60'000;

    PanelInStates();
    ~PanelInStates() { delete parent; }

    static QList<std::pair<const char *, State>> states();

    void isNew() { }
    void isShown();
    void hasADeviceOpen();
    void knowsThePlan();
    void downloadsThePcImage();
    void downloadsTheOtgImage();
    void waitsBeforeThePcChip();
    void flashesThePcChip();
    void waitsForTheOtgChip();
    void waitsBeforeTheOtgChip();
    void flashesTheOtgChip();
    void isCompleted();
    void hasFailed();
    void recovers();
    void refreshes();
    void hasChangedTheModel();

    PanelStage stage;
    FakeFlashingTool tool;
    QPointer<QWidget> parent;
    QPointer<OpenPanel> panel;

private:
    void answerEverything();
    void click();
    void startTool();
};

inline PanelInStates::PanelInStates()
{
    stage.panel.reset();
    tool.obeys("write 0%\nhang");
    parent = new QWidget;
    panel = new OpenPanel(parent);
    answerEverything();
    stage.log.clear();
}

inline QList<std::pair<const char *, PanelInStates::State>> PanelInStates::states()
{
    return {
        {"new", &PanelInStates::isNew},
        {"shown", &PanelInStates::isShown},
        {"a device is open", &PanelInStates::hasADeviceOpen},
        {"the plan is known", &PanelInStates::knowsThePlan},
        {"the PC image is being downloaded", &PanelInStates::downloadsThePcImage},
        {"the OTG image is being downloaded", &PanelInStates::downloadsTheOtgImage},
        {"the delay before the PC chip runs", &PanelInStates::waitsBeforeThePcChip},
        {"the PC chip is being flashed", &PanelInStates::flashesThePcChip},
        {"the OTG chip is waited for", &PanelInStates::waitsForTheOtgChip},
        {"the delay before the OTG chip runs", &PanelInStates::waitsBeforeTheOtgChip},
        {"the OTG chip is being flashed", &PanelInStates::flashesTheOtgChip},
        {"completed, the versions not read again yet", &PanelInStates::isCompleted},
        {"failed", &PanelInStates::hasFailed},
        {"a recovery runs", &PanelInStates::recovers},
        {"a refresh runs", &PanelInStates::refreshes},
        {"the model has just changed", &PanelInStates::hasChangedTheModel},
    };
}

inline void PanelInStates::answerEverything()
{
    for (const QString &path : {ServerPaths::kR2PcVersion, ServerPaths::kR2OtgVersion})
        stage.server.answer(path, ScriptedHttpServer::version("1.3.0"));
    for (const QString &path : {ServerPaths::kR2PcImage, ServerPaths::kR2OtgImage})
        stage.server.answer(path, ScriptedHttpServer::page(QByteArray(100'000, 'x')));
}

inline void PanelInStates::click()
{
    panel->pretendVersions(QStringLiteral("1.2.0"), QStringLiteral("1.3.0"), QStringLiteral("1.2.0"),
                           QStringLiteral("1.3.0"));
    panel->pretendPlan(UpgradePlan::Both);
    panel->click();
}

/// The tool runs, with an image that exists, and has reported something.
inline void PanelInStates::startTool()
{
    const QString image = QDir(stage.sandbox.home()).filePath(QStringLiteral("image.bin"));
    writeFile(image, "image");
    panel->pretendUpgrading(true);
    panel->flash(image, 14);
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(stage.sandbox.progressFile()).size() > 0, kPatience);
    QCOMPARE(panel->tool()->state(), QProcess::Running);
}

inline void PanelInStates::isShown()
{
    parent->show();
    panel->show();
    QVERIFY(QTest::qWaitForWindowExposed(parent, kPatience));
}

inline void PanelInStates::hasADeviceOpen()
{
    PanelStage::bus().setResponder(DeviceReplies::device({1, 2, 0}, {1, 2, 0}));
    PanelStage::bus().plug(0x000E);
    QTRY_COMPARE_WITH_TIMEOUT(PanelStage::bus().openConnections(), 1, kPatience);
}

inline void PanelInStates::knowsThePlan()
{
    hasADeviceOpen();
    QTRY_COMPARE_WITH_TIMEOUT(panel->plan(), UpgradePlan::Both, kPatience);
}

inline void PanelInStates::downloadsThePcImage()
{
    ScriptedHttpServer::Answer held = ScriptedHttpServer::page(QByteArray(100'000, 'x'));
    held.holdAfter = 1000;
    stage.server.answer(ServerPaths::kR2PcImage, held);
    click();
    QTRY_VERIFY_WITH_TIMEOUT(stage.server.bytesSent(ServerPaths::kR2PcImage) >= 1000, kPatience);
}

inline void PanelInStates::downloadsTheOtgImage()
{
    ScriptedHttpServer::Answer held = ScriptedHttpServer::page(QByteArray(100'000, 'x'));
    held.holdAfter = 1000;
    stage.server.answer(ServerPaths::kR2OtgImage, held);
    click();
    QTRY_VERIFY_WITH_TIMEOUT(stage.server.bytesSent(ServerPaths::kR2OtgImage) >= 1000, kPatience);
    QVERIFY(panel->hasImage(Chip::Pc));
}

inline void PanelInStates::waitsBeforeThePcChip()
{
    click();
    QTRY_VERIFY_WITH_TIMEOUT(stage.log.contains(QStringLiteral("[Upgrade] 先升 PC 再升 OTG")), kPatience);
}

inline void PanelInStates::flashesThePcChip()
{
    panel->pretendPlan(UpgradePlan::Both);
    startTool();
}

inline void PanelInStates::waitsForTheOtgChip()
{
    waitsBeforeThePcChip();
    QVERIFY(panel->handOverToOtg());
}

inline void PanelInStates::waitsBeforeTheOtgChip()
{
    waitsForTheOtgChip();
    panel->seeDevices({QStringLiteral("pid_001f")});
    QTRY_VERIFY_WITH_TIMEOUT(stage.log.contains(QStringLiteral("[OTG] OTG设备已就绪，延迟后启动OTG升级")),
                             kPatience);
}

inline void PanelInStates::flashesTheOtgChip()
{
    panel->pretendPlan(UpgradePlan::Both);
    panel->pretendPcDone(true);
    startTool();
}

inline void PanelInStates::isCompleted()
{
    panel->pretendUpgrading(true);
    panel->completeRun();
    QVERIFY(panel->awaitsNewVersions());
}

inline void PanelInStates::hasFailed()
{
    panel->pretendPlan(UpgradePlan::Both);
    panel->fail();
    QVERIFY(panel->offersRetry());
}

inline void PanelInStates::recovers()
{
    panel->seeDevices({QStringLiteral("pid_00ff")});
    QVERIFY(panel->isRecovering());
    QVERIFY(stage.server.paths().contains(ServerPaths::kR2OtgVersion));
}

inline void PanelInStates::refreshes()
{
    panel->pretendVersions(QStringLiteral("1.2.0"), QStringLiteral("1.3.0"), QStringLiteral("1.2.0"),
                           QStringLiteral("1.3.0"));
    panel->refreshVersions(5);
}

inline void PanelInStates::hasChangedTheModel()
{
    hasADeviceOpen();
    PanelStage::bus().plug(0x0001);
    panel->setDeviceModel(DeviceModel::R1);
}
