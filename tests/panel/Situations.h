// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "tests/panel/PanelStage.h"
#include "tests/support/DeviceReplies.h"
#include "widgets/ClickableProgressBar.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QMessageBox>
#include <QMouseEvent>

#include <functional>

/// Every place where one of the panel's functions waits in a nested event loop.
namespace Situations {

using Step = std::function<void(OpenPanel &)>;

/// Where the panel is when something happens to it.
struct Situation {
    QString name;
    QString blockedPath; ///< the query that the server is slow to answer; empty: the warning box
    Step step; ///< what makes the panel wait
};

inline const QString kBrick = QStringLiteral("hid#vid_352f&pid_00ff");

inline void pressBar(OpenPanel &panel)
{
    const QPointF middle = QRectF(panel.bar()->rect()).center();
    QMouseEvent press(QEvent::MouseButtonPress, middle, panel.bar()->mapToGlobal(middle), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(panel.bar(), &press);
}

inline void readWith(OpenPanel &panel, const QString &devicePc)
{
    panel.pretendVersions(devicePc, QStringLiteral("1.3.0"), QStringLiteral("1.2.0"),
                          QStringLiteral("1.3.0"));
    panel.receive(DeviceReplies::version(0x0033, {1, 1, 1}));
}

inline QList<Situation> all()
{
    const QString pc = ServerPaths::kR2PcVersion;
    const QString otg = ServerPaths::kR2OtgVersion;
    const auto receive
        = [](const QByteArray &reply) -> Step { return [reply](auto &panel) { panel.receive(reply); }; };
    return {
        {QStringLiteral("the PC version's query"), pc, receive(DeviceReplies::pcVersion({1, 2, 3}))},
        {QStringLiteral("the OTG version's query"), otg, receive(DeviceReplies::otgVersion({1, 2, 3}))},
        {QStringLiteral("the query of a reply that came through the link"), pc,
         [](auto &) {
             Q_EMIT HIDCommunicator::OrvikHIDManager::instance()->blockReceiveData(
                 DeviceReplies::pcVersion({1, 2, 3}));
         }},
        {QStringLiteral("the notes of an upgrade"), pc,
         [](auto &panel) { readWith(panel, QStringLiteral("1.2.0")); }},
        {QStringLiteral("the notes for a device that is too old"), pc,
         [](auto &panel) { readWith(panel, QStringLiteral("1.0.9")); }},
        {QStringLiteral("the click's first query"), pc, pressBar},
        {QStringLiteral("the click's second query"), otg, pressBar},
        {QStringLiteral("the query of a recovery that discovery started"), pc,
         [](auto &panel) { panel.seeDevices({kBrick}, {0x00FF}); }},
        {QStringLiteral("the second query of a recovery"), otg,
         [](auto &panel) { panel.startAutoRecoverUpgrade(); }},
        {QStringLiteral("the notes of a recovery"), pc,
         [](auto &panel) {
             panel.pretendServerVersion(Chip::Pc, QStringLiteral("1.3.0"));
             panel.startAutoRecoverUpgrade();
         }},
        {QStringLiteral("a recovery that the change of the model found"), ServerPaths::kR1PcVersion,
         [](auto &panel) {
             PanelStage::bus().plug(0x0010);
             panel.setDeviceModel(DeviceModel::R1);
         }},
        {QStringLiteral("the last refresh"), pc,
         [](auto &panel) {
             panel.pretendVersions(QStringLiteral("1.2.0"), QStringLiteral("1.3.0"), QStringLiteral("1.2.0"),
                                   QStringLiteral("1.3.0"));
             panel.refreshVersions(1);
         }},
        {QStringLiteral("the warning box"), QString(), receive(DeviceReplies::mode(1))},
        {QStringLiteral("the first of two warning boxes"), QString(),
         receive(DeviceReplies::reply(4, {0x1008, 1, 0x1008, 1}))},
    };
}

/// A server that answers everything, and the query that \a situation waits for only after a while.
inline void slowDown(const Situation &situation, ScriptedHttpServer &server)
{
    server.answer(ServerPaths::kR2PcVersion, ScriptedHttpServer::version("1.3.0"));
    ScriptedHttpServer::Answer slow = ScriptedHttpServer::version("1.3.0", "说明", "notes");
    slow.delay = std::chrono::milliseconds(150);
    server.answer(situation.blockedPath, slow);
}

/// Whether the panel has come to wait.
inline bool isWaiting(const Situation &situation, const ScriptedHttpServer &server)
{
    return situation.blockedPath.isEmpty()
        ? qobject_cast<QMessageBox *>(QApplication::activeModalWidget()) != nullptr
        : server.paths().contains(situation.blockedPath);
}

} // namespace Situations
