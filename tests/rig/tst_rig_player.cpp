// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/FirmwareImage.h"
#include "tests/rig/FakePanel.h"
#include "tests/rig/PlayedText.h"
#include "tests/support/TestProgram.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QMessageBox>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace rig;
using namespace std::chrono_literals;

namespace {

// Notes which widget gets a press, and passes it on.
class PressWatch : public QObject {
public:
    QStringList pressed;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonRelease)
            pressed.append(watched->objectName());
        return false;
    }
};

} // namespace

class RigPlayerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void aScenarioEndsInAVerdict_data();
    void aScenarioEndsInAVerdict();
    void aWaitEndsWhenItsTimeIsUp();
    void aPauseTakesItsTime();
    void aHeldScreenMustStay();
    void theWholeScenarioHasALimit();
    void whatIsOnlyTriedFailsNothing();
    void progressNamesEachStatement();
    void theDeviceAndTheServerDoAsTold();
    void aFaultIsArmedAsWritten();
    void whatThePanelReadsIsSeen();
    void aClickMeetsTheWidgetUnderThePointer();
    void aClickOnWhatCannotBeSeenFails();
    void theApplicationIsAskedForTheRest();
    void severalPanelsAreToldApart();
    void anApplicationThatCannotIsNamed_data();
    void anApplicationThatCannotIsNamed();
    void aDestroyedPanelIsMissed();
    void aStatementThatRunsAnEventLoopIsNotEnteredAgain();
    void aStatementThatWaitsForTheUserIsPassedBy();
    void theScenarioGoesOnWhileAClickBlocks();
    void aWarningIsSeenAndDismissed();
    void downloadsAndTheFlashAreCompared();
    void whatTheFlashHoldsIsTold_data();
    void whatTheFlashHoldsIsTold();
    void delaysAreMeasured();

private:
    QString play(const QString &text);
    void startPlaying(const QString &text);

    Rig m_rig;
    PanelControls m_controls;
    std::unique_ptr<FakePanel> m_panel;
    std::unique_ptr<ScenarioPlayer> m_player;
    std::unique_ptr<QSignalSpy> m_finished;
    QStringList m_asked;
};

void RigPlayerTest::initTestCase()
{
    QString error;
    QVERIFY2(m_rig.start(&error), qPrintable(error));
}

void RigPlayerTest::init()
{
    m_rig.device().setModel(Model::R2);
    m_rig.faults().clearAll();
    m_rig.server().forgetRequests();
    m_controls = {};
    m_asked.clear();
    m_panel = std::make_unique<FakePanel>();
    m_panel->show();
    m_panel->showScreen(QStringLiteral("up-to-date"));
    m_panel->bar()->setValue(27);
    m_panel->label("m_doneLb")->setText(QStringLiteral("升级完成"));
}

void RigPlayerTest::startPlaying(const QString &text)
{
    m_player = std::make_unique<ScenarioPlayer>(m_rig, m_controls);
    m_player->setPanel(m_panel.get());
    m_finished = std::make_unique<QSignalSpy>(m_player.get(), &ScenarioPlayer::finished);
    m_player->play(scenario(text));
}

// The verdict of a scenario; empty when it passed.
QString RigPlayerTest::play(const QString &text)
{
    startPlaying(text);
    return verdictOf(*m_finished);
}

void RigPlayerTest::aScenarioEndsInAVerdict_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("verdict");
    const auto row = [](const char *text, const char *verdict) {
        QTest::newRow(text) << QString::fromUtf8(text)
                            << (*verdict ? QStringLiteral("x.scn:1: ") + QString::fromUtf8(text)
                                        + QStringLiteral(": ") + QString::fromUtf8(verdict)
                                         : QString());
    };
#ifndef Q_OS_WIN // where the path holds no program that both Wine and Windows know
    row("run \"cmake -E true\"", "");
    row("run \"cmake -E false\"", "status 1");
#endif
    row("expect screen up-to-date", "");
    row("expect screen failure", "up-to-date");
    row("wait screen up-to-date 1s", "");
    row("expect bar 27", "");
    row("expect bar 28", "27");
    row("wait bar 27 1s", "");
    row("wait bar 28 1s", "bar at 27");
    row("expect text m_doneLb 升级完成", "");
    row("expect text m_doneLb done", "升级完成");
    row("expect text m_progressBar 27%", "no text");
    row("expect text m_nothing x", "no text");
    row("expect visible m_noNewFirmwareLb", "");
    row("expect visible m_doneLb", "it cannot be seen");
    row("expect visible m_nothing", "it cannot be seen");
    row("expect hidden m_doneLb", "");
    row("expect hidden m_noNewFirmwareLb", "it can be seen");
    row("expect hidden m_nothing", "there is no such widget");
    row("expect device pc 1.1.1", "");
    row("expect device pc 1.2.0", "1.1.1");
    row("expect device otg bricked", "1.1.1");
    row("wait device otg 2.0.0 1s", "1.1.1");
    row("wait read pc 1.1.1 1s", "never read");
    row("wait interface 000e 1s", "on the bus: ");
    row("wait flashing pc 1s", "tool starts so far: 0");
    row("wait tool ended", "");
    row("wait download pc 1s", "asked for so far: ");
    row("wait warning 1s", "no warning box");
    row("dismiss warning", "no warning box is up");
    row("expect downloads none", "");
    row("expect downloads pc", "nothing");
    row("expect queries none", "");
    row("expect flashed none", "");
    row("expect flashed pc", "nothing");
    row("expect tools 0", "");
    row("expect tools 1", "0");
    row("expect tool pid 000e", "no tool was started");
    row("expect pc-tool 6s after otg-image within 1s", "these two have not happened in this order");
    row("say \"hello there\"", "");
}

void RigPlayerTest::aScenarioEndsInAVerdict()
{
    QFETCH(QString, text);
    QFETCH(QString, verdict);
    QCOMPARE(play(text), verdict);
    QVERIFY(!m_player->isPlaying());
}

void RigPlayerTest::aWaitEndsWhenItsTimeIsUp()
{
    QElapsedTimer time;
    time.start();
    QCOMPARE(play(QStringLiteral("wait screen failure 5s")),
             QStringLiteral("x.scn:1: wait screen failure 5s: up-to-date"));
    QVERIFY2(time.elapsed() >= 5000, qPrintable(QString::number(time.elapsed())));
    startPlaying(QStringLiteral("wait screen failure 30s"));
    QTest::qWait(2000);
    QVERIFY(m_player->isPlaying());
    m_panel->showScreen(QStringLiteral("failure"));
    QTRY_COMPARE_WITH_TIMEOUT(m_finished->size(), 1, kPatience);
    QVERIFY(m_finished->first().at(0).toBool());
}

void RigPlayerTest::aPauseTakesItsTime()
{
    QElapsedTimer time;
    time.start();
    QCOMPARE(play(QStringLiteral("pause 3s")), QString());
    QVERIFY2(time.elapsed() >= 3000, qPrintable(QString::number(time.elapsed())));
}

void RigPlayerTest::aHeldScreenMustStay()
{
    QCOMPARE(play(QStringLiteral("hold screen up-to-date 3s")), QString());
    startPlaying(QStringLiteral("hold screen up-to-date 100s"));
    QTest::qWait(2000);
    QVERIFY(m_player->isPlaying());
    m_panel->showScreen(QStringLiteral("completed"));
    QTRY_COMPARE_WITH_TIMEOUT(m_finished->size(), 1, kPatience);
    QVERIFY(m_finished->first().at(1).toString().contains(QStringLiteral("completed after ")));
}

void RigPlayerTest::theWholeScenarioHasALimit()
{
    QCOMPARE(play(QStringLiteral("timeout 2s\npause 1s\npause 50s\nexpect screen failure")),
             QStringLiteral("x.scn:3: pause 50s: the scenario takes too long"));
    QCOMPARE(play(QStringLiteral("timeout 2s\ntry pause 50s\nexpect screen failure")),
             QStringLiteral("x.scn:2: try pause 50s: the scenario takes too long"));
}

void RigPlayerTest::whatIsOnlyTriedFailsNothing()
{
    QElapsedTimer time;
    time.start();
    startPlaying(QStringLiteral(
        "try expect screen failure\ntry wait screen failure 3s\ntry expect bar 27\nexpect bar 28"));
    QSignalSpy progress(m_player.get(), &ScenarioPlayer::progressed);
    QCOMPARE(verdictOf(*m_finished), QStringLiteral("x.scn:4: expect bar 28: 27"));
    QVERIFY2(time.elapsed() >= 3000, qPrintable(QString::number(time.elapsed())));
    QStringList passedOver;
    for (const QList<QVariant> &line : progress) {
        if (line.first().toString().contains(QStringLiteral("passed over")))
            passedOver.append(line.first().toString());
    }
    QCOMPARE(passedOver,
             (QStringList{QStringLiteral("x.scn:1: try expect screen failure: passed over: up-to-date"),
                          QStringLiteral("x.scn:2: try wait screen failure 3s: passed over: up-to-date")}));
}

void RigPlayerTest::progressNamesEachStatement()
{
    startPlaying(QStringLiteral("# a comment\nexpect bar 27\nsay \"half way\"\nexpect screen up-to-date"));
    QSignalSpy progress(m_player.get(), &ScenarioPlayer::progressed);
    QTRY_COMPARE_WITH_TIMEOUT(m_finished->size(), 1, kPatience);
    QStringList lines;
    for (const QList<QVariant> &line : progress)
        lines.append(line.first().toString());
    QCOMPARE(
        lines,
        (QStringList{QStringLiteral("x.scn:2: expect bar 27"), QStringLiteral("x.scn:3: say \"half way\""),
                     QStringLiteral("half way"), QStringLiteral("x.scn:4: expect screen up-to-date")}));
}

void RigPlayerTest::theDeviceAndTheServerDoAsTold()
{
    QCOMPARE(play(QStringLiteral("device R1 pc 1.4.2 otg bricked\n"
                                 "server pc 1.5.0 otg 1.6.0\n"
                                 "plug pc\nwait interface 0001\n"
                                 "plug otg\nwait interface 0012\n"
                                 "expect device pc 1.4.2\nexpect device otg bricked\n"
                                 "unplug otg\nbrick pc\nwait interface 0010\nexpect device pc bricked")),
             QString());
    QCOMPARE(m_rig.device().model(), Model::R1);
    QVERIFY(m_rig.device().isPlugged(Chip::Pc));
    QVERIFY(!m_rig.device().isPlugged(Chip::Otg));
    QCOMPARE(m_rig.server().version(Model::R1, Chip::Pc), QVersionNumber(1, 5, 0));
    QCOMPARE(m_rig.server().version(Model::R2, Chip::Otg), QVersionNumber(1, 6, 0));
}

void RigPlayerTest::aFaultIsArmedAsWritten()
{
    QCOMPARE(
        play(QStringLiteral(
            "fault server-404 otg downloads 2x\nfault device-silent\nfault tool-fails\nclear tool-fails")),
        QString());
    FaultBoard &faults = m_rig.faults();
    QCOMPARE(faults.armed(), (QList{Fault::ServerNotFound, Fault::DeviceSilent}));
    QVERIFY(!faults.strikes(Fault::ServerNotFound, Chip::Pc, RequestKind::Download));
    QVERIFY(!faults.strikes(Fault::ServerNotFound, Chip::Otg, RequestKind::VersionQuery));
    QVERIFY(faults.strikes(Fault::ServerNotFound, Chip::Otg, RequestKind::Download));
    QVERIFY(faults.strikes(Fault::ServerNotFound, Chip::Otg, RequestKind::Download));
    QVERIFY(!faults.isArmed(Fault::ServerNotFound));
    QCOMPARE(play(QStringLiteral("clear faults")), QString());
    QVERIFY(faults.armed().isEmpty());
}

void RigPlayerTest::whatThePanelReadsIsSeen()
{
    QCOMPARE(play(QStringLiteral("device R2 pc 1.4.2 otg 1.0.3\nplug pc\nwait interface 000e")), QString());
    const QString path = m_rig.device().interfaces().first().path;
    m_rig.device().answer(path, QByteArray::fromHex("51C40B0000060B0003001DFF").leftJustified(65, '\0'));
    m_rig.device().answer(path, QByteArray::fromHex("51C40B00000610000300 18FF").leftJustified(65, '\0'));
    QCOMPARE(play(QStringLiteral("wait read pc 1.4.2 1s\nwait read otg 1.0.3 1s")), QString());
    m_rig.faults().arm(Fault::DeviceZeroVersions);
    m_rig.device().answer(path, QByteArray::fromHex("51C40B0000060B0003001DFF").leftJustified(65, '\0'));
    QCOMPARE(play(QStringLiteral("wait read pc 1.4.2 1s")),
             QStringLiteral("x.scn:1: wait read pc 1.4.2 1s: 0.0.0"));
}

void RigPlayerTest::aClickMeetsTheWidgetUnderThePointer()
{
    PressWatch watch;
    for (QWidget *widget : m_panel->findChildren<QWidget *>())
        widget->installEventFilter(&watch);
    m_panel->showScreen(QStringLiteral("completed"));
    QCOMPARE(play(QStringLiteral("click upgrade\npause 1s")), QString());
    QCOMPARE(watch.pressed.filter(QStringLiteral("m_progressBar")).size(), 2);
    watch.pressed.clear();
    m_panel->showScreen(QStringLiteral("up-to-date"));
    QCOMPARE(play(QStringLiteral("click retry\npause 1s")), QString());
    QCOMPARE(watch.pressed.first(), QStringLiteral("m_upgradeTextLb"));
    QVERIFY(watch.pressed.contains(QStringLiteral("m_progressBar"))); // a label passes presses on
}

void RigPlayerTest::aClickOnWhatCannotBeSeenFails()
{
    m_panel->bar()->hide();
    QCOMPARE(play(QStringLiteral("click upgrade")),
             QStringLiteral("x.scn:1: click upgrade: there is no such button"));
    QCOMPARE(play(QStringLiteral("click close")),
             QStringLiteral("x.scn:1: click close: there is no such button"));
}

void RigPlayerTest::theApplicationIsAskedForTheRest()
{
    m_controls.setModel = [this](Model model) { m_asked.append(nameOf(model)); };
    m_controls.setLanguage
        = [this](bool english) { m_asked.append(english ? QStringLiteral("en") : QStringLiteral("zh")); };
    m_controls.recover = [this] { m_asked.append(QStringLiteral("recover")); };
    m_controls.takePicture = [this](const QString &name) { m_asked.append(name); };
    m_controls.destroyPanel = [this] {
        m_asked.append(QStringLiteral("destroy"));
        m_panel.reset();
    };
    m_controls.createPanel = [this] {
        m_asked.append(QStringLiteral("create"));
        m_panel = std::make_unique<FakePanel>();
        m_panel->showScreen(QStringLiteral("failure"));
        return m_panel.get();
    };
    QCOMPARE(play(QStringLiteral("model R1\nmodel R2\nlanguage en\nlanguage zh\nrecover\npicture 01-start\n"
                                 "destroy panel\ncreate panel\nexpect screen failure")),
             QString());
    QCOMPARE(m_asked.join(u' '), QStringLiteral("R1 R2 en zh recover 01-start destroy create"));
}

void RigPlayerTest::severalPanelsAreToldApart()
{
    FakePanel second;
    second.show();
    second.showScreen(QStringLiteral("failure"));
    m_controls.choosePanel = [&](const QString &name) -> QWidget * {
        m_asked.append(name);
        if (name == u"second")
            return &second;
        return name == u"main" ? m_panel.get() : nullptr;
    };
    m_controls.destroyPanelLater = [this](std::chrono::milliseconds time) {
        m_asked.append(QStringLiteral("destroy after %1").arg(time.count()));
    };
    m_controls.destroyPanels = [this] {
        m_asked.append(QStringLiteral("destroy all"));
        m_panel.reset();
    };
    QCOMPARE(play(QStringLiteral("expect screen up-to-date\npanel second\nexpect screen failure\n"
                                 "destroy panel after 2s\npanel main\nexpect screen up-to-date\npanel third\n"
                                 "destroy panels\nexpect screen failure")),
             QStringLiteral("x.scn:9: expect screen failure: no panel"));
    QCOMPARE(m_asked.join(u' '), QStringLiteral("second destroy after 2000 main third destroy all main"));
}

void RigPlayerTest::anApplicationThatCannotIsNamed_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text : {"model R1", "language en", "recover", "picture x", "destroy panel",
                             "create panel", "panel second", "destroy panels", "destroy panel after 1s"})
        QTest::newRow(text) << QString::fromLatin1(text);
}

void RigPlayerTest::anApplicationThatCannotIsNamed()
{
    QFETCH(QString, text);
    QVERIFY(play(text).startsWith(QStringLiteral("x.scn:1: %1: this application cannot ").arg(text)));
}

void RigPlayerTest::aDestroyedPanelIsMissed()
{
    startPlaying(QStringLiteral("hold screen up-to-date 100s"));
    QTest::qWait(1000);
    m_panel.reset();
    QTRY_COMPARE_WITH_TIMEOUT(m_finished->size(), 1, kPatience);
    QVERIFY(m_finished->first().at(1).toString().contains(QStringLiteral("no panel after ")));
    QVERIFY(play(QStringLiteral("click upgrade")).endsWith(QStringLiteral("there is no such button")));
    QVERIFY(play(QStringLiteral("expect bar 0")).endsWith(QStringLiteral("-1")));
}

void RigPlayerTest::aStatementThatRunsAnEventLoopIsNotEnteredAgain()
{
    m_controls.recover = [this] {
        m_asked.append(QStringLiteral("in"));
        QEventLoop loop;
        QTimer::singleShot(2000, &loop, &QEventLoop::quit);
        loop.exec();
        m_asked.append(QStringLiteral("out"));
    };
    m_controls.takePicture = [this](const QString &name) { m_asked.append(name); };
    QCOMPARE(play(QStringLiteral("recover\npicture x")), QString());
    QCOMPARE(m_asked.join(u' '), QStringLiteral("in out x"));
}

void RigPlayerTest::aStatementThatWaitsForTheUserIsPassedBy()
{
    QEventLoop box;
    m_controls.recover = [this, &box] {
        m_asked.append(QStringLiteral("in"));
        box.exec();
        m_asked.append(QStringLiteral("out"));
    };
    m_controls.takePicture = [this, &box](const QString &name) {
        m_asked.append(name);
        box.quit();
    };
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(play(QStringLiteral("recover\npicture x\npicture y")), QString());
    QCOMPARE(m_asked.join(u' '), QStringLiteral("in x out y"));
    QVERIFY2(clock.elapsed() >= 15'000, "the panel blocks for some seconds by itself");
}

void RigPlayerTest::theScenarioGoesOnWhileAClickBlocks()
{
    auto *close = new QPushButton(m_panel.get());
    close->setObjectName(QStringLiteral("m_closeBtn"));
    close->show();
    connect(close, &QPushButton::clicked, this, [this] {
        m_asked.append(QStringLiteral("in"));
        QEventLoop loop;
        QTimer::singleShot(5000, &loop, &QEventLoop::quit);
        loop.exec();
        m_asked.append(QStringLiteral("out"));
    });
    m_controls.takePicture = [this](const QString &name) { m_asked.append(name); };
    QCOMPARE(play(QStringLiteral("click close\npause 1s\npicture x\npause 10s")), QString());
    QCOMPARE(m_asked.join(u' '), QStringLiteral("in x out"));
}

void RigPlayerTest::aWarningIsSeenAndDismissed()
{
    QTimer::singleShot(1000, m_panel.get(), [this] {
        QMessageBox::warning(m_panel.get(), QStringLiteral("t"), QStringLiteral("u"));
        m_asked.append(QStringLiteral("gone"));
    });
    QCOMPARE(play(QStringLiteral("wait warning 10s\ndismiss warning\npause 1s")), QString());
    QCOMPARE(m_asked, QStringList{QStringLiteral("gone")});
}

void RigPlayerTest::downloadsAndTheFlashAreCompared()
{
    QCOMPARE(play(QStringLiteral(
                 "device R2 pc bricked otg 1.1.1\nserver pc 1.5.0 otg 1.6.0\nplug pc\nwait interface 00ff")),
             QString());
    QNetworkAccessManager manager;
    for (const int number : {155, 156})
        manager.get(QNetworkRequest(
            QUrl(QStringLiteral("http://update.example/dnfile_test.aspx?f_sn=%1").arg(number))));
    QTRY_COMPARE_WITH_TIMEOUT(m_rig.server().requests().size(), 2, kPatience);
    QCOMPARE(play(QStringLiteral("wait download otg 1s")), QString());
    QVERIFY(play(QStringLiteral("expect flash pc served")).contains(QStringLiteral(": served ")));
    m_rig.device().write(Chip::Pc, 0, buildImage({Model::R2, Chip::Pc, QVersionNumber(1, 5, 0)}));
    QCOMPARE(play(QStringLiteral("expect flash pc served\nforget\nexpect downloads none")), QString());
    QVERIFY(play(QStringLiteral("expect flash pc served")).contains(QStringLiteral(": served , flash ")));
}

void RigPlayerTest::whatTheFlashHoldsIsTold_data()
{
    QTest::addColumn<QByteArray>("flash");
    QTest::addColumn<QString>("contents");
    const QByteArray image = buildImage({Model::R2, Chip::Pc, QVersionNumber(1, 5, 0)});
    QTest::newRow("nothing") << QByteArray() << QStringLiteral("empty");
    QTest::newRow("an image of this chip") << image << QStringLiteral("1.5.0");
    QTest::newRow("most of it") << image.chopped(1) << QStringLiteral("partial");
    QTest::newRow("less than its header") << image.left(kImageHeaderSize - 1) << QStringLiteral("damaged");
    QTest::newRow("one with an error")
        << QByteArray(image.chopped(1) + char(image.back() ^ 1)) << QStringLiteral("damaged");
    QTest::newRow("the other chip's image")
        << buildImage({Model::R2, Chip::Otg, QVersionNumber(1, 5, 0)}) << QStringLiteral("damaged");
    QTest::newRow("the other model's image")
        << buildImage({Model::R1, Chip::Pc, QVersionNumber(1, 5, 0)}) << QStringLiteral("damaged");
}

void RigPlayerTest::whatTheFlashHoldsIsTold()
{
    QFETCH(QByteArray, flash);
    QFETCH(QString, contents);
    QCOMPARE(play(QStringLiteral("device R2 pc bricked otg 1.1.1\nplug pc\nwait interface 00ff")), QString());
    m_rig.device().write(Chip::Pc, 0, flash);
    QCOMPARE(play(QStringLiteral("expect flash pc ") + contents), QString());
    QVERIFY(play(QStringLiteral("expect flash pc 1.9.9")).endsWith(QStringLiteral(": ") + contents));
}

void RigPlayerTest::delaysAreMeasured()
{
    QCOMPARE(play(QStringLiteral("plug otg\nwait interface 001f\npause 5s\nplug pc\nwait interface 000e\n"
                                 "expect pc-appeared 5s after otg-appeared within 3s")),
             QString());
    const QString wrong = play(QStringLiteral("expect pc-appeared 30s after otg-appeared within 3s"));
    QVERIFY2(wrong.endsWith(QStringLiteral(" ms")), qPrintable(wrong));
    QVERIFY(play(QStringLiteral("expect otg-read 5s after otg-appeared within 3s"))
                .endsWith(QStringLiteral("in this order")));
}

QUILLON_TEST(RigPlayerTest)
#include "tst_rig_player.moc"
