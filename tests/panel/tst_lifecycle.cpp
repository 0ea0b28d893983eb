// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// How a panel comes up: its log, the stale progress file, the window, what it connects, the first query.
#include "tests/panel/OpenPanel.h"
#include "tests/support/FakeFlashingTool.h"
#include "tests/support/HidCalls.h"
#include "tests/support/LogCapture.h"
#include "tests/support/LogOrder.h"
#include "tests/support/Sandbox.h"
#include "tests/support/ScriptedHttpServer.h"
#include "tests/support/ScriptedTransport.h"
#include "tests/support/TestProgram.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QScopeGuard>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace Qt::StringLiterals;
using namespace QuillonFirmwareUpgrade;
using namespace std::chrono_literals;

namespace {
const QString kModeQuery = u"hid: DC_AddSendData(65: 51 c4 09 00 00 04 08 10 17 ff)"_s;
const QString kRule = u"========================================"_s;
} // namespace

class LifecycleTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void logBeginsWithFourLines();
    void logEndsWithFinished();
    void stepsRunInOrder();

    void staleProgressFileGoes_data();
    void staleProgressFileGoes();
    void nothingIsCreatedInTheHomeFolder();

    void windowIsFramelessFixedAndModal();
    void windowTitle_data();
    void windowTitle();
    void mayBeAChild();

    void bricksAreRecoveredBeforeTheSignalReturns();
    void endOfTheToolIsHeard();
    void watchdogIsHeard();
    void pollIsHeard();

    void libraryIsAcquiredOnce();
    void asksForTheModeAfterHalfASecond();
    void aDeletedPanelAsksNothing();

private:
    std::unique_ptr<Sandbox> m_sandbox;
    std::unique_ptr<LogCapture> m_log;
};

void LifecycleTest::initTestCase()
{
    ScriptedBus::install();
}

void LifecycleTest::init()
{
    m_sandbox = std::make_unique<Sandbox>();
    m_log = std::make_unique<LogCapture>();
}

void LifecycleTest::cleanup()
{
    m_log.reset();
    m_sandbox.reset();
}

void LifecycleTest::logBeginsWithFourLines()
{
    const OpenPanel panel;

    QCOMPARE(m_log->lines().mid(0, 4),
             QStringList({kRule, u"[Constructor] FirmwareUpgradeWidget CREATED!"_s,
                          u"[Constructor] Initial state: m_isUpgrading= false  m_autoRecoverRunning= false"_s,
                          kRule}));
}

void LifecycleTest::logEndsWithFinished()
{
    const OpenPanel panel;

    QCOMPARE(m_log->lines().constLast(),
             u"[Constructor] Finished. m_isUpgrading= false  m_autoRecoverRunning= false"_s);
}

void LifecycleTest::stepsRunInOrder()
{
    m_sandbox->writeProgress("success 1\n");
    const OpenPanel panel;

    QCOMPARE(missingInOrder(m_log->lines(),
                            {u"[Constructor] FirmwareUpgradeWidget CREATED!"_s,
                             u"[Init] Removed stale progress file: "_s + m_sandbox->progressFile(),
                             u"Detected language switch. The language after switching is:  Chinese"_s,
                             u"hid: acquire()"_s,
                             u"[Constructor] Finished. m_isUpgrading= false  m_autoRecoverRunning= false"_s}),
             QString());
}

void LifecycleTest::staleProgressFileGoes_data()
{
    QTest::addColumn<bool>("isThere");
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("no file") << false << QByteArray();
    QTest::newRow("an empty file") << true << QByteArray();
    QTest::newRow("the success of an earlier run") << true << QByteArray("100%\nsuccess 1\n");
    QTest::newRow("a large file of garbage") << true << QByteArray(5'000'000, '\xFE');
}

void LifecycleTest::staleProgressFileGoes()
{
    QFETCH(bool, isThere);
    QFETCH(QByteArray, content);
    if (isThere)
        m_sandbox->writeProgress(content);

    const OpenPanel panel;
    QVERIFY(!QFileInfo::exists(m_sandbox->progressFile()));
    QCOMPARE(m_log->startingWith(u"[Init] "_s),
             isThere ? QStringList(u"[Init] Removed stale progress file: "_s + m_sandbox->progressFile())
                     : QStringList());
}

void LifecycleTest::nothingIsCreatedInTheHomeFolder()
{
    const OpenPanel panel;

    QCOMPARE(m_sandbox->newInHome(), QStringList());
    QVERIFY(!QFileInfo::exists(QFileInfo(m_sandbox->progressFile()).path()));
}

void LifecycleTest::windowIsFramelessFixedAndModal()
{
    const OpenPanel panel;
    QWidget frameless;
    frameless.setWindowFlags(Qt::FramelessWindowHint);

    QCOMPARE(panel.minimumSize(), QSize(472, 418));
    QCOMPARE(panel.maximumSize(), QSize(472, 418));
    QCOMPARE(panel.size(), QSize(472, 418));
    QCOMPARE(panel.windowFlags(), frameless.windowFlags());
    QCOMPARE(panel.windowModality(), Qt::ApplicationModal);
    QVERIFY(panel.testAttribute(Qt::WA_StyledBackground));
    QCOMPARE(panel.objectName(), u"FirmwareUpgradeWidget"_s);
    QCOMPARE(panel.styleSheet(),
             u"#FirmwareUpgradeWidget {  border: 1px solid rgba(69, 70, 83, 1);  border-radius: 4px;"
             "  background-color: rgba(31, 32, 40, 1);}"_s);
    QVERIFY(!panel.isVisible());
}

void LifecycleTest::windowTitle_data()
{
    QTest::addColumn<Language>("language");
    QTest::addColumn<QString>("title");
    QTest::newRow("Chinese") << Language::Chinese << u"固件升级"_s;
    QTest::newRow("English") << Language::English << u"Firmware Update"_s;
}

void LifecycleTest::windowTitle()
{
    QFETCH(Language, language);
    setLanguage(language);
    const auto backToChinese = qScopeGuard([] { setLanguage(Language::Chinese); });
    const OpenPanel panel;

    QTEST(panel.windowTitle(), "title");
}

void LifecycleTest::mayBeAChild()
{
    QWidget host;
    const auto *panel = new OpenPanel(&host);

    QCOMPARE(panel->parentWidget(), &host);
    QVERIFY(!panel->isWindow());
}

void LifecycleTest::bricksAreRecoveredBeforeTheSignalReturns()
{
    const ScriptedHttpServer
        server; // answers every query with 404, so that the recovery soon has what it asks for
    OpenPanel panel;
    m_log->clear();

    Q_EMIT panel.onDeviceBrickedDetected();
    QCOMPARE(m_log->count(u"[AutoRecover] start auto recover upgrade flow."_s), 1);
    QCOMPARE(panel.plan(), UpgradePlan::Both);
}

void LifecycleTest::endOfTheToolIsHeard()
{
    FakeFlashingTool tool;
    tool.obeys("exit 7");
    OpenPanel panel;

    panel.tool()->start(FakeFlashingTool::path(), {});
    QTRY_COMPARE(m_log->count(u"OrvikFirmwareUpdata.exe process exit, exitCode= 7"_s), 1);
}

void LifecycleTest::watchdogIsHeard()
{
    FakeFlashingTool tool;
    tool.obeys("hang");
    OpenPanel panel;
    panel.tool()->start(FakeFlashingTool::path(), {});
    QVERIFY(panel.tool()->waitForStarted());

    panel.watchdog()->start(0ms);
    QTRY_COMPARE(panel.tool()->state(), QProcess::NotRunning);
    QCOMPARE(panel.tool()->exitStatus(), QProcess::CrashExit);
}

void LifecycleTest::pollIsHeard()
{
    OpenPanel panel;
    panel.pretendUpgrading(true);
    m_log->clear();

    panel.pollTimer()->start();
    QTRY_COMPARE(m_log->count(u"[状态] 进程已退出但无进度文件，判定为失败"_s), 1);
}

void LifecycleTest::libraryIsAcquiredOnce()
{
    const OpenPanel panel;

    QCOMPARE(m_log->startingWith(u"hid: "_s), QStringList(u"hid: acquire()"_s));
}

void LifecycleTest::asksForTheModeAfterHalfASecond()
{
    QElapsedTimer sinceConstruction;
    sinceConstruction.start();
    const OpenPanel panel;
    m_log->clear();

    QTRY_COMPARE(m_log->startingWith(u"hid: "_s),
                 QStringList(kModeQuery)); // no device is there, and none is missed
    const qint64 elapsed = sinceConstruction.elapsed();
    QVERIFY2(elapsed >= 450 && elapsed < 1500, qPrintable(QString::number(elapsed)));
}

void LifecycleTest::aDeletedPanelAsksNothing()
{
    std::make_unique<OpenPanel>().reset();
    const FirmwareUpgradeWidget later;

    // The deleted panel's query would have come first.
    QTRY_VERIFY(m_log->contains(kModeQuery));
    QCOMPARE(m_log->count(kModeQuery), 1);
}

QUILLON_TEST(LifecycleTest)
#include "tst_lifecycle.moc"
