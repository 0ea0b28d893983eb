// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/Rig.h"
#include "rig/Weights.h"
#include "tests/rig/PlayedText.h"
#include "tests/support/TestProgram.h"

#include <QFile>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>

using namespace rig;

namespace {
constexpr qsizetype kBlock = qsizetype(8) * 1024 * 1024;
// The memory of a process that does nothing but play a scenario may come and go by that much.
const QString kExpect = QStringLiteral(
    "weigh later\nexpect growth since first resident 3MiB heap 1MiB handles 0 threads 0 objects 0");
} // namespace

class RigWeightsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void whatGrowsIsNamed_data();
    void whatGrowsIsNamed();
    void aFewMoreMayBeAllowed();
    void whatBecomesLessIsNoGrowth();
    void weighingWaitsForWhatIsStillEnding();
    void whatWasNotWeighedCannotBeCompared();
    void weightsAreTheLinesOfACurve();
    void withoutAPanelThereAreNoObjects();

private:
    QString play(const QString &text);

    Rig m_rig;
    std::unique_ptr<QWidget> m_panel;
    std::unique_ptr<ScenarioPlayer> m_player;
    QStringList m_said;
};

void RigWeightsTest::initTestCase()
{
    QString error;
    QVERIFY2(m_rig.start(&error), qPrintable(error));
}

void RigWeightsTest::init()
{
    m_panel = std::make_unique<QWidget>();
    m_player = std::make_unique<ScenarioPlayer>(m_rig, PanelControls());
    m_player->setPanel(m_panel.get());
    m_said.clear();
    connect(m_player.get(), &ScenarioPlayer::progressed, this,
            [this](const QString &line) { m_said.append(line); });
}

// A player remembers weights from one scenario to the next.
QString RigWeightsTest::play(const QString &text)
{
    QSignalSpy finished(m_player.get(), &ScenarioPlayer::finished);
    m_player->play(scenario(text));
    return verdictOf(finished);
}

void RigWeightsTest::whatGrowsIsNamed_data()
{
    QTest::addColumn<std::function<std::function<void()>(QObject *)>>("take"); // gives what gives it back
    QTest::addColumn<QString>("named");
    using Give = std::function<void()>;
    using Take = std::function<Give(QObject *)>;
    const Take block([](QObject *) -> Give {
        auto bytes = std::make_shared<QByteArray>(kBlock, 'x');
        return [bytes] { *bytes = {}; };
    });
    const Take texts([](QObject *) -> Give {
        auto all = std::make_shared<QStringList>();
        for (int number = 0; number < 100000; ++number)
            all->append(QString::number(number));
        return [all] { *all = QStringList(); };
    });
    QTest::newRow("memory") << block << QStringLiteral("resident grew by ");
    QTest::newRow("a large block") << block << QStringLiteral("heap grew by 8.");
    QTest::newRow("small things") << texts << QStringLiteral("heap grew by ");
    QTest::newRow("a handle") << Take([](QObject *) -> Give {
        auto file = std::make_shared<QFile>(QStringLiteral("/dev/null"));
        return file->open(QIODevice::ReadOnly) ? [file] { file->close(); } : Give();
    }) << QStringLiteral("handles grew by 1");
    QTest::newRow("a thread") << Take([](QObject *) -> Give {
        auto *thread = new QThread;
        thread->start();
        return [thread] {
            thread->quit();
            thread->wait();
            delete thread;
        };
    }) << QStringLiteral("threads grew by 1");
    QTest::newRow("objects") << Take([](QObject *panel) -> Give {
        auto *child = new QObject(panel);
        new QObject(child);
        return [child] { delete child; };
    }) << QStringLiteral("objects grew by 2");
}

void RigWeightsTest::whatGrowsIsNamed()
{
    QFETCH(std::function<std::function<void()>(QObject *)>, take);
    QFETCH(QString, named);
    QCOMPARE(play(QStringLiteral("weigh first\n") + kExpect), QString());
    const std::function<void()> giveBack = take(m_panel.get());
    QVERIFY(giveBack);
    const QString verdict = play(kExpect);
    giveBack();
    QVERIFY2(verdict.contains(named), qPrintable(verdict));
    QCOMPARE(play(kExpect), QString());
}

void RigWeightsTest::aFewMoreMayBeAllowed()
{
    const QString allowing = QStringLiteral(
        "weigh later\nexpect growth since first resident 3MiB heap 1MiB handles 0 threads 0 objects %1");
    QCOMPARE(play(QStringLiteral("weigh first")), QString());
    new QObject(m_panel.get());
    new QObject(m_panel.get());
    QCOMPARE(play(allowing.arg(2)), QString());
    QVERIFY(play(allowing.arg(1)).endsWith(QStringLiteral(": objects grew by 2")));
}

void RigWeightsTest::whatBecomesLessIsNoGrowth()
{
    auto *child = new QObject(m_panel.get());
    QCOMPARE(play(QStringLiteral("weigh first")), QString());
    delete child;
    QCOMPARE(play(kExpect), QString());
}

void RigWeightsTest::weighingWaitsForWhatIsStillEnding()
{
    auto *ending = new QObject(m_panel.get());
    QCOMPARE(play(QStringLiteral("weigh first")), QString());
    new QObject(m_panel.get());
    QTimer::singleShot(std::chrono::milliseconds(500), ending, &QObject::deleteLater);
    QCOMPARE(play(kExpect), QString());
}

void RigWeightsTest::whatWasNotWeighedCannotBeCompared()
{
    QVERIFY(play(kExpect).endsWith(QStringLiteral(": nothing was weighed under this name")));
}

void RigWeightsTest::weightsAreTheLinesOfACurve()
{
    new QObject(m_panel.get());
    QCOMPARE(play(QStringLiteral("weigh 50\nweigh 1000")), QString());
    const QStringList curve = m_said.filter(QStringLiteral("resident"));
    QCOMPARE(curve.size(), 2);
    static const QRegularExpression line(
        QStringLiteral("^ *(50|1000)  resident +\\d+\\.\\d\\d MiB  heap +\\d+\\.\\d\\d MiB  handles +\\d+  "
                       "threads +\\d+  objects +1$"));
    for (const QString &weights : curve)
        QVERIFY2(line.match(weights).hasMatch(), qPrintable(weights));
    QCOMPARE(curve.first().size(), curve.last().size());
}

void RigWeightsTest::withoutAPanelThereAreNoObjects()
{
    m_panel.reset();
    QCOMPARE(play(QStringLiteral("weigh 1")), QString());
    QVERIFY2(m_said.last().endsWith(QStringLiteral("objects    0")), qPrintable(m_said.last()));
    QCOMPARE(Weights::now(nullptr).objects, 0);
}

QUILLON_TEST(RigWeightsTest)
#include "tst_rig_weights.moc"
