// A device that answers "0.0.0": what is waited for after an upgrade, and what is taken as it is.
#include "tests/device/Chips.h"
#include "tests/support/TestProgram.h"

using namespace Qt::StringLiterals;
using namespace Chips;

namespace {
constexpr Version kNotReady{0, 0, 0};
const QString kIgnored = u"[handle_Continue_RD] 暂时忽略 0.0.0，等待设备准备好"_s;
const QString kAccepted = u"[handle_Continue_RD] 连续5次收到 0.0.0，判定为设备变砖，接受此版本号"_s;

QString countLine(const Chip &chip, int count)
{
    return u"[handle_Continue_RD] %1版本号为 0.0.0，重试计数:%2"_s.arg(chip.name).arg(count);
}
} // namespace

class NotReadyTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void notReadyOutsideTheWaitIsStored_data();
    void notReadyOutsideTheWaitIsStored();
    void fourAreIgnoredAndTheFifthIsAccepted_data();
    void fourAreIgnoredAndTheFifthIsAccepted();
    void chipsShareTheCount();
    void anotherVersionResetsTheCount_data();
    void anotherVersionResetsTheCount();
    void endOfTheWaitResetsTheCount();
    void acceptedNotReadyEndsTheWait();

private:
    FirmwareUpgradeWidget &panel() { return *m_stage->panel; }
    QStringList lines() const { return withoutScans(m_stage->log.lines()); }
    void receive(const Chip &chip, Version version) { panel().onReceiveHIDdata(chip.reply(version)); }

    std::unique_ptr<PanelStage> m_stage;
};

void NotReadyTest::init()
{
    m_stage = std::make_unique<PanelStage>();
    m_stage->log.clear();
}

void NotReadyTest::cleanup()
{
    m_stage.reset();
}

void NotReadyTest::notReadyOutsideTheWaitIsStored_data()
{
    addRows();
}

void NotReadyTest::notReadyOutsideTheWaitIsStored()
{
    QFETCH(Chip, chip);
    panel().m_zeroVersionCount = 3;

    receive(chip, kNotReady);
    QCOMPARE(panel().*chip.device, u"0.0.0"_s);
    QCOMPARE(panel().m_zeroVersionCount, 3); // neither counted nor reset
    QVERIFY(m_stage->log.contains(deviceLine(chip, u"0.0.0"_s)));
    QCOMPARE(m_stage->log.startingWith(u"[handle_Continue_RD]"_s), QStringList());
    QCOMPARE(m_stage->server.paths(), QStringList(chip.r2Path));
}

void NotReadyTest::fourAreIgnoredAndTheFifthIsAccepted_data()
{
    addRows();
}

void NotReadyTest::fourAreIgnoredAndTheFifthIsAccepted()
{
    QFETCH(Chip, chip);
    QFETCH(Chip, otherChip);
    m_stage->server.answer(chip.r2Path, ScriptedHttpServer::version("1.3.0"));
    panel().m_postUpgradeWaiting = true;
    panel().*otherChip.device = u"1.2.3"_s; // a plan step would have all it needs
    panel().*otherChip.remote = u"1.2.3"_s;
    panel().*chip.remote = u"1.2.3"_s;
    panel().*chip.device = u"1.0.0"_s;

    for (int i = 1; i <= 4; ++i) {
        m_stage->log.clear();
        receive(chip, kNotReady);
        QCOMPARE(lines().mid(1), QStringList({countLine(chip, i), kIgnored}));
        QCOMPARE(panel().m_zeroVersionCount, i);
        QCOMPARE(panel().*chip.device, u"1.0.0"_s);
        QVERIFY(panel().m_postUpgradeWaiting);
        QCOMPARE(m_stage->server.paths(), QStringList());
    }
    m_stage->log.clear();
    receive(chip, kNotReady);
    QCOMPARE(panel().*chip.device, u"0.0.0"_s);
    QCOMPARE(panel().m_zeroVersionCount, 0);
    QCOMPARE(lines().mid(1, 4),
             QStringList({countLine(chip, 5), kAccepted, deviceLine(chip, u"0.0.0"_s),
                          remoteLine(chip, u"1.3.0"_s)}));
    QCOMPARE(m_stage->server.paths(), QStringList(chip.r2Path));
}

void NotReadyTest::chipsShareTheCount()
{
    panel().m_postUpgradeWaiting = true;
    for (int i = 0; i < 2; ++i) {
        receive(kPc, kNotReady);
        receive(kOtg, kNotReady);
    }
    QCOMPARE(panel().m_zeroVersionCount, 4);
    QVERIFY(panel().m_devicePcVersion.isEmpty());

    receive(kOtg, kNotReady);
    QVERIFY(m_stage->log.contains(countLine(kOtg, 5)));
    QCOMPARE(panel().m_deviceOtgVersion, u"0.0.0"_s);
    QVERIFY(panel().m_devicePcVersion.isEmpty());
    QVERIFY(panel().m_postUpgradeWaiting); // the PC version is still to come, and is counted from the start
    QCOMPARE(panel().m_zeroVersionCount, 0);
}

void NotReadyTest::anotherVersionResetsTheCount_data()
{
    addRows();
}

void NotReadyTest::anotherVersionResetsTheCount()
{
    QFETCH(Chip, chip);
    QFETCH(Chip, otherChip);
    panel().m_postUpgradeWaiting = true;
    for (int i = 0; i < 4; ++i)
        receive(otherChip, kNotReady);

    receive(chip, {1, 0, 0});
    QCOMPARE(panel().m_zeroVersionCount, 0);
    QCOMPARE(panel().*chip.device, u"1.0.0"_s);
    receive(otherChip, kNotReady); // the first of five again
    QCOMPARE(panel().m_zeroVersionCount, 1);
    QVERIFY((panel().*otherChip.device).isEmpty());
}

void NotReadyTest::endOfTheWaitResetsTheCount()
{
    for (const Chip &chip : {kPc, kOtg})
        m_stage->server.answer(chip.r2Path, ScriptedHttpServer::version("1.2.3"));
    panel().m_postUpgradeWaiting = true;
    receive(kPc, {1, 2, 3});
    panel().m_zeroVersionCount = 2;

    receive(kOtg, {1, 2, 3});
    QVERIFY(!panel().m_postUpgradeWaiting);
    QCOMPARE(panel().m_zeroVersionCount, 0);
}

// A bricked device: the plan then sees 0.0.0 and wants it upgraded.
void NotReadyTest::acceptedNotReadyEndsTheWait()
{
    for (const Chip &chip : {kPc, kOtg})
        m_stage->server.answer(chip.r2Path, ScriptedHttpServer::version("1.2.3"));
    panel().m_postUpgradeWaiting = true;
    receive(kPc, {1, 2, 3});
    for (int i = 0; i < 5; ++i)
        receive(kOtg, kNotReady);

    QVERIFY(!panel().m_postUpgradeWaiting);
    QCOMPARE(panel().m_upgradePlan, UpgradePlan::OtgOnly);
    QCOMPARE(m_stage->log.count(u"[VersionRead] 升级后等待期，跳过UI刷新 PC:1.2.3 OTG:0.0.0"_s), 1);
}

QUILLON_TEST(NotReadyTest)
#include "tst_not_ready.moc"
