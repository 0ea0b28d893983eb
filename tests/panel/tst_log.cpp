// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// The panel's log lines as a host gets them: with a category each, which it can filter.
#include "system/Log.h"
#include "tests/panel/ReadyToUpgrade.h"
#include "tests/support/TestProgram.h"

#include <QLoggingCategory>
#include <QMultiMap>
#include <QScopeGuard>

#include <functional>

using namespace Qt::StringLiterals;

namespace {
QMultiMap<QString, QString> linesByCategory;

void sortIn(QtMsgType, const QMessageLogContext &context, const QString &line)
{
    linesByCategory.insert(QString::fromUtf8(context.category), line);
}

/// Sorts every line of the process by its category while it lives.
class Sorter {
public:
    Sorter()
    {
        linesByCategory.clear();
        m_former = qInstallMessageHandler(sortIn);
    }
    ~Sorter() { qInstallMessageHandler(m_former); }
    Sorter(const Sorter &) = delete;
    Sorter &operator=(const Sorter &) = delete;

private:
    QtMessageHandler m_former;
};
} // namespace

class LogTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachLineHasItsCategory_data();
    void eachLineHasItsCategory();
    void everyLineOfAPlayHasOne();
    void aHostCanFilter();
    void piecesAreSeparatedByOneBlank();
    void aLineThatNobodyHearsIsNotMade_data();
    void aLineThatNobodyHearsIsNotMade();
};

namespace {
/// Counts how often it was made a text.
struct Piece {
    int &times;
};

QDebug operator<<(QDebug line, const Piece &piece)
{
    ++piece.times;
    return line << "piece";
}
} // namespace

void LogTest::aLineThatNobodyHearsIsNotMade_data()
{
    QTest::addColumn<QString>("category");
    QTest::addColumn<std::function<Log::Line()>>("line");
    using Make = std::function<Log::Line()>;
    QTest::newRow("the panel") << u"quillon.panel.debug"_s << Make(Log::panel);
    QTest::newRow("a warning of the panel's") << u"quillon.panel.warning"_s << Make(Log::panelWarning);
    QTest::newRow("the bus") << u"quillon.hid.debug"_s << Make(Log::hid);
    QTest::newRow("the update server") << u"quillon.net.debug"_s << Make(Log::net);
    QTest::newRow("the flashing tool") << u"quillon.flash.debug"_s << Make(Log::flash);
}

void LogTest::aLineThatNobodyHearsIsNotMade()
{
    QFETCH(QString, category);
    QFETCH(std::function<Log::Line()>, line);
    const Sorter sorter;
    const auto allOn = qScopeGuard([] { QLoggingCategory::setFilterRules({}); });
    int times = 0;
    line() << Piece{times};
    QCOMPARE(times, 1);
    QCOMPARE(linesByCategory.size(), 1);
    QLoggingCategory::setFilterRules(category + u"=false"_s);
    line() << Piece{times};
    QCOMPARE(times, 1);
    QCOMPARE(linesByCategory.size(), 1);
}

namespace {
/// A little of everything: a panel comes up, looks at the bus, downloads, fails to flash.
void playALittle()
{
    ReadyToUpgrade stage;
    stage.server.answer(ServerPaths::kR2PcImage, ScriptedHttpServer::page("image"));
    stage.panel->seeDevices({u"hid#vid_352f&pid_000e"_s});
    stage.panel->setDeviceModel(DeviceModel::R1);
    stage.panel->setDeviceModel(DeviceModel::R2);
    stage.click();
    QTRY_VERIFY(linesByCategory.values(u"quillon.net"_s).contains(u"22222xxxxxxxxx 5 5"_s));
    stage.panel->flash(QString(), 14);
}
} // namespace

void LogTest::eachLineHasItsCategory_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("category");
    QTest::newRow("the panel") << u"setDeviceModel: R1"_s << u"quillon.panel"_s;
    QTest::newRow("the bus") << u"2pid is:  000e"_s << u"quillon.hid"_s;
    QTest::newRow("the update server") << u"22222xxxxxxxxx 5 5"_s << u"quillon.net"_s;
    QTest::newRow("the flashing tool") << u"OrvikFirmwareUpdata.exe isn't exit."_s << u"quillon.flash"_s;
}

void LogTest::eachLineHasItsCategory()
{
    QFETCH(QString, line);
    const Sorter sorter;
    playALittle();
    QTEST(linesByCategory.key(line), "category");
}

void LogTest::everyLineOfAPlayHasOne()
{
    const Sorter sorter;
    playALittle();
    QCOMPARE(linesByCategory.uniqueKeys(),
             (QStringList{u"quillon.flash"_s, u"quillon.hid"_s, u"quillon.net"_s, u"quillon.panel"_s}));
}

void LogTest::aHostCanFilter()
{
    const Sorter sorter;
    QLoggingCategory::setFilterRules(u"quillon.hid.debug=false\nquillon.flash.debug=false"_s);
    playALittle();
    QLoggingCategory::setFilterRules(QString());
    QCOMPARE(linesByCategory.uniqueKeys(), (QStringList{u"quillon.net"_s, u"quillon.panel"_s}));
}

void LogTest::piecesAreSeparatedByOneBlank()
{
    const Sorter sorter;
    playALittle();
    QVERIFY(
        linesByCategory.values(u"quillon.panel"_s)
            .contains(u"[Constructor] Initial state: m_isUpgrading= false  m_autoRecoverRunning= false"_s));
}

QUILLON_TEST(LogTest)
#include "tst_log.moc"
