// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// A device that repeats itself while the panel waits: replies nest inside one another, but not without end.
#include "tests/device/Chips.h"
#include "tests/support/TestProgram.h"

#include <QMessageBox>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace Chips;
using namespace std::chrono_literals;

class ReplyFloodTest : public QObject {
    Q_OBJECT

private slots:
    void repliesOfASilentServersQueriesNestToALimit();
    void anotherPanelsWaitingDoesNotCount();
    void anOpenWarningBoxDoesNotCount();
    void oneWarningBoxAtATime();
    void aBoxOfTheHostsSilencesNoWarning();
    void nextReplyAfterAFloodIsRead();
};

namespace {
constexpr int kFlood = 200;

/// Hands \a reply over \a count times as soon as an event loop of the panel's runs.
void flood(OpenPanel &panel, const QByteArray &reply, int count)
{
    for (int i = 0; i < count; ++i)
        QMetaObject::invokeMethod(&panel, "onReceiveHIDdata", Qt::QueuedConnection, Q_ARG(QByteArray, reply));
}
} // namespace

void ReplyFloodTest::repliesOfASilentServersQueriesNestToALimit()
{
    PanelStage stage;
    stage.server.answer(ServerPaths::kR2PcVersion, ScriptedHttpServer::silence());
    int deepest = 0;
    QTimer watch;
    connect(&watch, &QTimer::timeout, this,
            [&] { deepest = std::max(deepest, int(stage.log.count(u"DEVICE PC VERSION :  1.2.3"_s))); });
    watch.start(20ms);

    flood(*stage.panel, reply(Chip::Pc, {1, 2, 3}), kFlood);
    QElapsedTimer time;
    time.start();
    stage.panel->receive(reply(Chip::Pc, {1, 2, 3}));

    QVERIFY2(time.elapsed() < 5000, qPrintable(QString::number(time.elapsed())));
    QVERIFY2(deepest > 1 && deepest <= 8, qPrintable(QString::number(deepest)));
}

void ReplyFloodTest::anotherPanelsWaitingDoesNotCount()
{
    PanelStage stage;
    stage.server.answer(ServerPaths::kR2PcVersion, ScriptedHttpServer::silence());
    OpenPanel other;
    flood(*stage.panel, reply(Chip::Pc, {1, 2, 3}), kFlood);
    QTimer::singleShot(300ms, &other, [&] { other.receive(reply(Chip::Pc, {1, 2, 4})); });
    stage.panel->receive(reply(Chip::Pc, {1, 2, 3}));
    QCOMPARE(other.deviceVersion(Chip::Pc), u"1.2.4"_s);
}

void ReplyFloodTest::anOpenWarningBoxDoesNotCount()
{
    PanelStage stage;
    stage.server.answer(ServerPaths::kR2PcVersion, ScriptedHttpServer::silence());
    int deepest = 0;
    QTimer::singleShot(50ms, stage.panel.get(), [&] {
        flood(*stage.panel, reply(Chip::Pc, {1, 2, 3}), kFlood);
        QCoreApplication::sendPostedEvents(stage.panel.get());
        deepest = stage.log.count(u"DEVICE PC VERSION :  1.2.3"_s);
        for (QMessageBox *box : stage.panel->findChildren<QMessageBox *>())
            box->accept();
    });
    stage.panel->receive(DeviceReplies::mode(1));
    QCOMPARE(deepest, 8);
}

void ReplyFloodTest::oneWarningBoxAtATime()
{
    PanelStage stage;
    flood(*stage.panel, DeviceReplies::mode(1), kFlood);
    int boxes = 0;
    QTimer::singleShot(300ms, stage.panel.get(), [&] {
        const auto open = stage.panel->findChildren<QMessageBox *>();
        boxes = int(open.size());
        for (QMessageBox *box : open)
            box->accept();
    });
    stage.panel->receive(DeviceReplies::mode(1));
    QCOMPARE(boxes, 1);
    QVERIFY(stage.panel->findChildren<QMessageBox *>().isEmpty());
}

void ReplyFloodTest::aBoxOfTheHostsSilencesNoWarning()
{
    PanelStage stage;
    QMessageBox hosts(stage.panel.get()); // kept for later, not shown
    int warnings = 0;
    QTimer::singleShot(50ms, stage.panel.get(), [&] {
        for (QMessageBox *box : stage.panel->findChildren<QMessageBox *>()) {
            warnings += box == &hosts ? 0 : 1;
            box->accept();
        }
    });
    stage.panel->receive(DeviceReplies::mode(1));
    QCOMPARE(warnings, 1);
}

void ReplyFloodTest::nextReplyAfterAFloodIsRead()
{
    PanelStage stage;
    stage.server.answer(ServerPaths::kR2PcVersion, ScriptedHttpServer::silence());
    flood(*stage.panel, reply(Chip::Pc, {1, 2, 3}), kFlood);
    stage.panel->receive(reply(Chip::Pc, {1, 2, 3}));

    stage.server.answer(ServerPaths::kR2PcVersion, ScriptedHttpServer::version("1.3.0"));
    stage.panel->receive(reply(Chip::Pc, {1, 2, 4}));
    QCOMPARE(stage.panel->deviceVersion(Chip::Pc), u"1.2.4"_s);
    QCOMPARE(stage.panel->serverVersion(Chip::Pc), u"1.3.0"_s);
}

QUILLON_TEST(ReplyFloodTest)
#include "tst_reply_flood.moc"
