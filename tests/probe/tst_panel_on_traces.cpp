// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// The panel on devices that traces play: what a customer sends with a bug report becomes a row here.
#include "tests/panel/OpenPanel.h"
#include "tests/probe/TraceBus.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Sandbox.h"
#include "tests/support/ScriptedHttpServer.h"
#include "tests/support/TestProgram.h"

#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class PanelOnTracesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void versionsAreRead_data();
    void versionsAreRead();
    void aDevicePulledInTheMiddleLeavesNoVersion();
    void upgradeModeIsToldAndNoVersionRead();
};

namespace {
QString traceFile(const QString &name)
{
    return QStringLiteral(QUILLON_TRACES "/%1.trace").arg(name);
}
} // namespace

void PanelOnTracesTest::initTestCase()
{
    QApplication::setQuitOnLastWindowClosed(false);
}

void PanelOnTracesTest::versionsAreRead_data()
{
    QTest::addColumn<QString>("trace");
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<QString>("pcVersion");
    QTest::addColumn<QString>("otgVersion");
    const auto row = [](const char *name, const QString &trace, DeviceModel model, const QString &pc,
                        const QString &otg) { QTest::newRow(name) << trace << model << pc << otg; };
    row("an R2", u"r2"_s, DeviceModel::R2, u"1.1.1"_s, u"1.4.2"_s);
    row("an R1", u"r1"_s, DeviceModel::R1, u"1.2.0"_s, u"0.9.9"_s);
    row("a checksum is not looked at", u"wrong-checksum"_s, DeviceModel::R2, u"1.2.3"_s, u"1.2.4"_s);
    row("half an answer is none", u"malformed-reply"_s, DeviceModel::R2, QString(), u"1.4.2"_s);
}

void PanelOnTracesTest::versionsAreRead()
{
    QFETCH(QString, trace);
    QFETCH(DeviceModel, model);
    QFETCH(QString, otgVersion);
    const Sandbox sandbox;
    const ScriptedHttpServer server;
    TraceBus::play(traceFile(trace));
    OpenPanel panel;
    panel.pretendModel(model);

    // The OTG chip's answer is the last one of each trace.
    QTRY_COMPARE(panel.deviceVersion(Chip::Otg), otgVersion);
    QTEST(panel.deviceVersion(Chip::Pc), "pcVersion");
}

void PanelOnTracesTest::aDevicePulledInTheMiddleLeavesNoVersion()
{
    const Sandbox sandbox;
    const ScriptedHttpServer server;
    LogCapture log;
    TraceBus::play(traceFile(u"pulled"_s));
    OpenPanel panel;

    QTRY_COMPARE(log.count(u"\n[状态] 设备已断开！定时器应该切换到1秒快速扫描"_s), 1);
    QCOMPARE(log.count(u" receive dfu mode is:  off"_s), 1);
    QCOMPARE(panel.deviceVersion(Chip::Pc), QString());
    QCOMPARE(panel.deviceVersion(Chip::Otg), QString());
}

void PanelOnTracesTest::upgradeModeIsToldAndNoVersionRead()
{
    const Sandbox sandbox;
    const ScriptedHttpServer server;
    TraceBus::play(traceFile(u"upgrade-mode"_s));
    OpenPanel panel;
    // The box keeps whoever delivered the report, this test included, until it is answered.
    int boxes = 0;
    QTimer user;
    connect(&user, &QTimer::timeout, this, [&] {
        if (auto *const box = panel.findChild<QMessageBox *>()) {
            box->accept();
            ++boxes;
        }
    });
    user.start(20ms);

    QTRY_COMPARE(boxes, 1);
    QCOMPARE(panel.deviceVersion(Chip::Pc), QString());
}

QUILLON_TEST(PanelOnTracesTest)
#include "tst_panel_on_traces.moc"
