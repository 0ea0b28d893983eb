// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/panel/PanelStage.h"
#include "tests/support/TestProgram.h"
#include "widgets/ClickableProgressBar.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString kExhausted = QStringLiteral("[Refresh] version refresh retries exhausted");
const QString kUpToDate = QStringLiteral("[Refresh] versions are up-to-date, refresh UI");
const QString kModeQuery = QStringLiteral("hid: DC_AddSendData(65: 51 c4 09 00 00 04 08 10 17 ff)");

/// Four known versions; the plan and the screen are of another time, so that a refresh shows.
struct Known : PanelStage {
    explicit Known(const QStringList &versions = {u"1.2.0"_s, u"1.2.3"_s, u"1.0.4"_s, u"1.0.4"_s})
    {
        // The query that every panel sends shortly after its start is not one of a refresh.
        const auto queries = [this] { return log.count(kModeQuery); };
        const bool sent = QTest::qWaitFor([&queries] { return queries() == 1; });
        Q_ASSERT(sent);
        Q_UNUSED(sent)
        panel->pretendDeviceVersion(Chip::Pc, versions.value(0));
        panel->pretendServerVersion(Chip::Pc, versions.value(1));
        panel->pretendDeviceVersion(Chip::Otg, versions.value(2));
        panel->pretendServerVersion(Chip::Otg, versions.value(3));
        panel->pretendPlan(UpgradePlan::OtgOnly);
        panel->bar()->setBackgroundColor(Qt::black);
        panel->show();
        log.clear();
    }

    int queries() const { return log.count(kModeQuery); }
    bool isRepainted() const { return panel->barBackground() != QColor(Qt::black); }
};

} // namespace

class RefreshTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void endsAtOnceWithoutAttempts_data();
    void endsAtOnceWithoutAttempts();
    void endsSilentlyWithoutTheLibrary();
    void endsWhenBothSidesAreUpToDate_data();
    void endsWhenBothSidesAreUpToDate();
    void triesAgainUntilNothingIsLeft();
    void logsWhatItSees();
    void seesWhatHasArrivedMeanwhile();
    void asksBeforeItWaits();
    void endsWithThePanel();
};

void RefreshTest::endsAtOnceWithoutAttempts_data()
{
    QTest::addColumn<int>("retries");
    QTest::newRow("none left") << 0;
    QTest::newRow("fewer than none") << -3;
}

void RefreshTest::endsAtOnceWithoutAttempts()
{
    QFETCH(int, retries);
    const Known stage;
    const QSignalSpy decided(stage.panel.get(), &FirmwareUpgradeWidget::upgradeDisplayMsg);
    stage.panel->refreshVersions(retries);
    QCOMPARE(stage.log.startingWith(u"[Refresh]"_s), QStringList{kExhausted});
    QCOMPARE(stage.panel->plan(), UpgradePlan::PcOnly);
    QVERIFY(stage.isRepainted());
    QCOMPARE(decided.size(), 1);
    QCOMPARE(stage.queries(), 0);
}

void RefreshTest::endsSilentlyWithoutTheLibrary()
{
    const Known stage;
    const Without withoutLibrary(*stage.panel, Part::Library);
    stage.panel->refreshVersions(3);
    QTest::qWait(700);
    QCOMPARE(stage.log.startingWith(u"[Refresh]"_s), QStringList());
    QCOMPARE(stage.panel->plan(), UpgradePlan::OtgOnly);
    QVERIFY(!stage.isRepainted());
}

void RefreshTest::endsWhenBothSidesAreUpToDate_data()
{
    QTest::addColumn<QStringList>("versions");
    QTest::addColumn<bool>("upToDate");
    const auto row = [](const char *name, const QStringList &versions, bool upToDate) {
        QTest::newRow(name) << versions << upToDate;
    };
    row("all equal", {u"1.2.3"_s, u"1.2.3"_s, u"1.0.4"_s, u"1.0.4"_s}, true);
    row("the device is newer", {u"1.3.0"_s, u"1.2.3"_s, u"2.0"_s, u"1.0.4"_s}, true);
    row("equal in other words", {u"1.2"_s, u"1.2.0"_s, u"1.0.4"_s, u"1.0.4"_s}, true);
    row("PC is older", {u"1.2.2"_s, u"1.2.3"_s, u"1.0.4"_s, u"1.0.4"_s}, false);
    row("OTG is older", {u"1.2.3"_s, u"1.2.3"_s, u"1.0.3"_s, u"1.0.4"_s}, false);
    row("the device's PC version is unknown", {QString(), u"1.2.3"_s, u"1.0.4"_s, u"1.0.4"_s}, false);
    row("the server's PC version is unknown", {u"1.2.3"_s, QString(), u"1.0.4"_s, u"1.0.4"_s}, false);
    row("the device's OTG version is unknown", {u"1.2.3"_s, u"1.2.3"_s, QString(), u"1.0.4"_s}, false);
    row("the server's OTG version is unknown", {u"1.2.3"_s, u"1.2.3"_s, u"1.0.4"_s, QString()}, false);
    row("nothing is known", {}, false);
}

void RefreshTest::endsWhenBothSidesAreUpToDate()
{
    QFETCH(QStringList, versions);
    QFETCH(bool, upToDate);
    const Known stage(versions);
    stage.panel->refreshVersions(2);
    QCOMPARE(stage.queries(), 1);
    QVERIFY(!stage.isRepainted());
    QTRY_VERIFY(!stage.log.startingWith(u"[Refresh]"_s).isEmpty());
    QCOMPARE(stage.log.contains(kUpToDate), upToDate);
    QCOMPARE(stage.isRepainted(), upToDate);
    QCOMPARE(stage.panel->plan(), upToDate ? UpgradePlan::None : UpgradePlan::OtgOnly);
    QCOMPARE(stage.queries(), upToDate ? 1 : 2);
    if (upToDate) {
        QTest::qWait(700);
        QCOMPARE(stage.log.startingWith(u"[Refresh]"_s), QStringList{kUpToDate});
    }
}

void RefreshTest::triesAgainUntilNothingIsLeft()
{
    const Known stage;
    QElapsedTimer clock;
    clock.start();
    stage.panel->refreshVersions(3);
    QTRY_VERIFY(stage.log.contains(kExhausted));
    QVERIFY2(clock.elapsed() >= qint64(3) * 490, "half a second between two attempts");
    const QString seen = u"pc= 1.2.0 / 1.2.3 otg= 1.0.4 / 1.0.4"_s;
    QCOMPARE(stage.log.startingWith(u"[Refresh]"_s),
             (QStringList{u"[Refresh] not ready yet, retry left: 2 "_s + seen,
                          u"[Refresh] not ready yet, retry left: 1 "_s + seen,
                          u"[Refresh] not ready yet, retry left: 0 "_s + seen, kExhausted}));
    QCOMPARE(stage.queries(), 3);
    QCOMPARE(stage.panel->plan(), UpgradePlan::PcOnly);
    QVERIFY(stage.isRepainted());
}

void RefreshTest::logsWhatItSees()
{
    const Known stage({u"1.2.0"_s, QString(), u"0.0.0"_s, u"104"_s});
    stage.panel->refreshVersions(1);
    QTRY_VERIFY(
        stage.log.contains(u"[Refresh] not ready yet, retry left: 0 pc= 1.2.0 /  otg= 0.0.0 / 104"_s));
}

void RefreshTest::seesWhatHasArrivedMeanwhile()
{
    const Known stage;
    stage.panel->refreshVersions(5);
    QTRY_COMPARE(stage.log.startingWith(u"[Refresh] not ready yet"_s).size(), 1);
    stage.panel->pretendDeviceVersion(Chip::Pc, u"1.2.3"_s);
    QTRY_VERIFY(stage.log.contains(kUpToDate));
    QCOMPARE(stage.log.startingWith(u"[Refresh] not ready yet"_s).size(), 1);
    QCOMPARE(stage.queries(), 2);
}

void RefreshTest::asksBeforeItWaits()
{
    const Known stage;
    stage.panel->refreshVersions(1);
    QCOMPARE(stage.queries(), 1);
    QCOMPARE(stage.log.startingWith(u"[Refresh]"_s), QStringList());
}

void RefreshTest::endsWithThePanel()
{
    Known stage;
    stage.panel->refreshVersions(5);
    stage.panel.reset();
    stage.log.clear();
    QTest::qWait(700);
    QCOMPARE(stage.log.startingWith(u"[Refresh]"_s), QStringList());
}

QUILLON_TEST(RefreshTest)
#include "tst_refresh.moc"
