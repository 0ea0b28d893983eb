// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/panel/PanelStage.h"
#include "tests/support/LogHook.h"
#include "tests/support/TestProgram.h"
#include "widgets/ClickableProgressBar.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QTest>
#include <QTextEdit>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

using Server = ScriptedHttpServer;

constexpr char kChineseNotes[] = "1. 修复若干问题\n2. 提升稳定性";
constexpr char kEnglishNotes[] = "1. Fixes\n2. Stability";
const QString kFormer = QStringLiteral("what stood there");

/// An upgrade from 1.2.0 to 2.0.0 is planned; the notes box holds kFormer.
struct Planned : PanelStage {
    explicit Planned(const QString &pcVersion = QStringLiteral("1.2.0"))
    {
        server.answer(ServerPaths::kR2PcVersion, Server::version("2.0.0", kChineseNotes, kEnglishNotes));
        panel->show();
        panel->pretendPlan(UpgradePlan::Both);
        panel->pretendDeviceVersion(Chip::Pc, pcVersion);
        panel->pretendServerVersion(Chip::Pc, u"2.0.0"_s);
        panel->notes()->setPlainText(kFormer);
    }

    QString notes() const { return panel->notes()->toPlainText(); }
};

/// Runs \a action once the server has been asked, while the panel still waits for the answer.
void whileTheServerIsAsked(const PanelStage &stage, const std::function<void()> &action)
{
    auto *timer = new QTimer;
    QObject::connect(timer, &QTimer::timeout, timer, [&stage, timer, action] {
        if (stage.server.paths().isEmpty())
            return;
        timer->stop();
        timer->deleteLater();
        action();
    });
    timer->start(5);
}

Server::Answer late(Server::Answer answer)
{
    answer.delay = std::chrono::milliseconds(300);
    return answer;
}

} // namespace

class ReleaseNotesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void comeFromTheServer_data();
    void comeFromTheServer();
    void areAskedForByModel_data();
    void areAskedForByModel();
    void areShownInTheLanguage_data();
    void areShownInTheLanguage();
    void leaveTheVersionsAlone();
    void areLoggedBeforeTheyAreShown_data();
    void areLoggedBeforeTheyAreShown();
    void areNotLoggedForADeviceThatIsTooOld();
    void areFetchedAfterTheRestIsPainted_data();
    void areFetchedAfterTheRestIsPainted();
    void mayBeFetchedTwiceAtOnce();
    void mayFindThePanelGone();
    void mayFindTheLanguageChanged();
    void doNotKeepAPanelWaiting();
};

void ReleaseNotesTest::comeFromTheServer_data()
{
    QTest::addColumn<Server::Answer>("answer");
    QTest::addColumn<QString>("formerAnswer");
    QTest::addColumn<QString>("shown");
    const QString chinese = QString::fromUtf8(kChineseNotes);
    QTest::newRow("notes") << Server::version("2.0.0", kChineseNotes, kEnglishNotes) << QString() << chinese;
    QTest::newRow("notes after other notes") << Server::version("2.0.0", kChineseNotes) << u"旧"_s << chinese;
    QTest::newRow("an answer without notes") << Server::version("2.0.0") << u"旧"_s << kFormer;
    QTest::newRow("no version but notes")
        << Server::page(R"([{"f_remark": "只有说明"}])") << QString() << u"只有说明"_s;
    QTest::newRow("an error page, nothing known") << Server::page("no", 500) << QString() << kFormer;
    QTest::newRow("an error page, notes known from before") << Server::page("no", 500) << u"旧"_s << u"旧"_s;
    QTest::newRow("a connection that breaks") << Server::hangUp() << u"旧"_s << u"旧"_s;
}

void ReleaseNotesTest::comeFromTheServer()
{
    QFETCH(Server::Answer, answer);
    QFETCH(QString, formerAnswer);
    QFETCH(QString, shown);
    Planned stage;
    stage.server.answer(ServerPaths::kR2PcVersion, answer);
    networking_class::getInstance()->f_remark = formerAnswer;
    stage.panel->updateScreen();
    QCOMPARE(stage.notes(), shown);
}

void ReleaseNotesTest::areAskedForByModel_data()
{
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<QString>("pcVersion");
    QTest::addColumn<QString>("path");
    QTest::newRow("R1") << DeviceModel::R1 << u"1.2.0"_s << ServerPaths::kR1PcVersion;
    QTest::newRow("R2") << DeviceModel::R2 << u"1.2.0"_s << ServerPaths::kR2PcVersion;
    QTest::newRow("any other model") << DeviceModel(9) << u"1.2.0"_s << ServerPaths::kR2PcVersion;
    QTest::newRow("R1, too old") << DeviceModel::R1 << u"1.0.0"_s << ServerPaths::kR1PcVersion;
    QTest::newRow("R2, too old") << DeviceModel::R2 << u"1.0.0"_s << ServerPaths::kR2PcVersion;
}

void ReleaseNotesTest::areAskedForByModel()
{
    QFETCH(DeviceModel, model);
    QFETCH(QString, pcVersion);
    QFETCH(QString, path);
    const Planned stage(pcVersion);
    stage.panel->pretendModel(model);
    stage.panel->pretendPlan(UpgradePlan::OtgOnly);
    stage.panel->updateScreen();
    QCOMPARE(stage.server.paths(), QStringList{path});
}

void ReleaseNotesTest::areShownInTheLanguage_data()
{
    QTest::addColumn<Language>("language");
    QTest::addColumn<QString>("pcVersion");
    QTest::addColumn<QString>("shown");
    const QString chinese = QString::fromUtf8(kChineseNotes);
    const QString english = QString::fromUtf8(kEnglishNotes);
    QTest::newRow("available, Chinese") << Language::Chinese << u"1.2.0"_s << chinese;
    QTest::newRow("available, English") << Language::English << u"1.2.0"_s << english;
    QTest::newRow("too old, Chinese") << Language::Chinese << u"1.0.0"_s << chinese;
    QTest::newRow("too old, English") << Language::English << u"1.0.0"_s << english;
}

void ReleaseNotesTest::areShownInTheLanguage()
{
    QFETCH(Language, language);
    QFETCH(QString, pcVersion);
    QFETCH(QString, shown);
    const Planned stage(pcVersion);
    QuillonFirmwareUpgrade::setLanguage(language);
    stage.panel->updateScreen();
    QCOMPARE(stage.notes(), shown);
}

void ReleaseNotesTest::leaveTheVersionsAlone()
{
    Planned stage;
    stage.server.answer(ServerPaths::kR2PcVersion, Server::version("9.9.9", kChineseNotes));
    const QStringList before = stage.panel->state();
    stage.panel->updateScreen();
    QCOMPARE(stage.panel->state(), before);
    QCOMPARE(stage.panel->newVersion()->text(), u"V2.0.0"_s);
}

void ReleaseNotesTest::areLoggedBeforeTheyAreShown_data()
{
    QTest::addColumn<Language>("language");
    QTest::addColumn<QString>("line");
    QTest::newRow("Chinese") << Language::Chinese
                             << u"######22222 isChinese is:  true  current notes is:  "_s
            + QString::fromUtf8(kChineseNotes);
    QTest::newRow("English") << Language::English
                             << u"######22222 isChinese is:  false  current notes is:  "_s
            + QString::fromUtf8(kEnglishNotes);
}

void ReleaseNotesTest::areLoggedBeforeTheyAreShown()
{
    QFETCH(Language, language);
    QFETCH(QString, line);
    const Planned stage;
    QuillonFirmwareUpgrade::setLanguage(language);
    stage.panel->notes()->setPlainText(kFormer);
    QString shownThen;
    {
        const LogHook hook(u"######22222"_s, [&](const QString &) { shownThen = stage.notes(); });
        stage.panel->updateScreen();
    }
    QCOMPARE(stage.log.startingWith(u"######22222"_s), QStringList{line});
    QCOMPARE(shownThen, kFormer);
}

void ReleaseNotesTest::areNotLoggedForADeviceThatIsTooOld()
{
    const Planned stage(u"1.0.0"_s);
    stage.panel->updateScreen();
    QCOMPARE(stage.log.startingWith(u"######22222"_s), QStringList());
}

void ReleaseNotesTest::areFetchedAfterTheRestIsPainted_data()
{
    QTest::addColumn<QString>("pcVersion");
    QTest::newRow("available") << u"1.2.0"_s;
    QTest::newRow("too old") << u"1.0.0"_s;
}

void ReleaseNotesTest::areFetchedAfterTheRestIsPainted()
{
    QFETCH(QString, pcVersion);
    Planned stage(pcVersion);
    OpenPanel &panel = *stage.panel;
    panel.notes()->hide();
    stage.server.answer(ServerPaths::kR2PcVersion, late(Server::version("2.0.0", kChineseNotes)));
    QStringList screen;
    QStringList logThen;
    whileTheServerIsAsked(stage, [&] {
        screen = Screen::everything(panel);
        logThen = stage.log.startingWith(u"[VersionCheck]"_s);
    });
    panel.updateScreen();
    QStringList changed;
    for (const QString &line : Screen::everything(panel)) {
        if (!screen.contains(line))
            changed.append(line.section(u' ', 0, 0));
    }
    QCOMPARE(changed, QStringList{u"m_notesEdit"_s});
    QVERIFY(!screen.filter(u"m_notesEdit shown"_s).isEmpty());
    QVERIFY2(logThen.isEmpty(), "the line about a device that is too old comes last");
}

void ReleaseNotesTest::mayBeFetchedTwiceAtOnce()
{
    Planned stage;
    OpenPanel &panel = *stage.panel;
    stage.server.answer(ServerPaths::kR2PcVersion, late(Server::version("2.0.0", kChineseNotes)));
    whileTheServerIsAsked(stage, [&panel] { panel.updateScreen(); });
    panel.updateScreen();
    QCOMPARE(stage.server.paths().size(), 2);
    QCOMPARE(stage.notes(), QString::fromUtf8(kChineseNotes));
    QVERIFY(panel.bar()->isClickable());
}

void ReleaseNotesTest::mayFindThePanelGone()
{
    Planned stage;
    OpenPanel *panel = stage.panel.get();
    stage.server.answer(ServerPaths::kR2PcVersion, late(Server::version("2.0.0", kChineseNotes)));
    whileTheServerIsAsked(stage, [&stage] { stage.panel.reset(); });
    panel->updateScreen();
    QVERIFY(!stage.panel);
    QCOMPARE(stage.log.startingWith(u"######22222"_s), QStringList());
}

void ReleaseNotesTest::mayFindTheLanguageChanged()
{
    Planned stage;
    stage.server.answer(ServerPaths::kR2PcVersion,
                        late(Server::version("2.0.0", kChineseNotes, kEnglishNotes)));
    whileTheServerIsAsked(stage, [] { QuillonFirmwareUpgrade::setLanguage(Language::English); });
    stage.panel->updateScreen();
    QCOMPARE(stage.notes(), QString::fromUtf8(kEnglishNotes));
}

void ReleaseNotesTest::doNotKeepAPanelWaiting()
{
    Planned stage;
    stage.server.answer(ServerPaths::kR2PcVersion, Server::silence());
    QElapsedTimer clock;
    clock.start();
    stage.panel->updateScreen();
    QVERIFY2(clock.elapsed() >= 1900 && clock.elapsed() < 3500, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(stage.notes(), kFormer);
    QVERIFY(stage.panel->bar()->isClickable());
}

QUILLON_TEST(ReleaseNotesTest)
#include "tst_release_notes.moc"
