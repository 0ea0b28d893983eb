// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/BootLoaderResponder.h"
#include "rig/FirmwareImage.h"
#include "rig/LittleEndian.h"
#include "rig/RegisterReports.h"
#include "tests/support/TestProgram.h"

#include <QTest>

using namespace rig;

namespace {

constexpr int kPatience = 60000; // of the sped-up clock

QByteArray size(int number)
{
    return bytesOf(quint32(number));
}

const QByteArray yes(1, '\1');
const QByteArray no(1, '\0');

} // namespace

// What a flashing tool and a chip say to each other.
class RigBootLoaderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void aReportIsReadAsItWasMeant_data();
    void aReportIsReadAsItWasMeant();
    void whatIsNoReportIsIgnored_data();
    void whatIsNoReportIsIgnored();
    void anImageTakenInReportsRuns();
    void onlyTheReportThatCompletesABlockIsAnswered();
    void onlyErasingTakesItsTime();
    void whatMakesNoSenseIsRefused_data();
    void whatMakesNoSenseIsRefused();
    void aRunningChipTakesNoImage_data();
    void aRunningChipTakesNoImage();
    void onlyImagesTakenToTheEndAreCounted();

private:
    void waitInBootLoader();
    QByteArray ask(BootLoaderCommand command, const QByteArray &payload = {});
    QByteArray sendBlock(int offset, const QByteArray &block);

    Journal m_journal;
    FaultBoard m_faults;
    RigThread m_thread;
    std::unique_ptr<SimulatedDevice> m_device;
    std::unique_ptr<BootLoader> m_chip;
    std::unique_ptr<BootLoaderResponder> m_responder;
};

void RigBootLoaderTest::init()
{
    m_device = std::make_unique<SimulatedDevice>(m_thread, m_faults, m_journal);
    m_chip = std::make_unique<BootLoader>(*m_device, m_faults, Chip::Pc);
    m_responder = std::make_unique<BootLoaderResponder>(*m_chip);
    m_device->plug(Chip::Pc);
    QTRY_COMPARE_WITH_TIMEOUT(m_device->interfaces().size(), 1, kPatience);
}

// The payload of the answer; empty when there is none.
QByteArray RigBootLoaderTest::ask(BootLoaderCommand command, const QByteArray &payload)
{
    const QByteArray report = m_responder->answer(encode({command, payload})).report;
    if (report.isEmpty())
        return {};
    const auto answer = decodeBootLoaderReport(report);
    const bool fits = answer && answer->command == command;
    return fits ? answer->payload : QByteArray("not an answer to this");
}

QByteArray RigBootLoaderTest::sendBlock(int offset, const QByteArray &block)
{
    QByteArray last = ask(BootLoaderCommand::Block, size(offset) + size(int(block.size())));
    for (qsizetype at = 0; last.isEmpty() && at < block.size(); at += kMaxBootLoaderPayload)
        last = ask(BootLoaderCommand::Data, block.mid(at, kMaxBootLoaderPayload));
    return last;
}

void RigBootLoaderTest::waitInBootLoader()
{
    QCOMPARE(ask(BootLoaderCommand::Enter, no), yes);
    QTRY_COMPARE_WITH_TIMEOUT(ask(BootLoaderCommand::Ready), yes, kPatience);
}

void RigBootLoaderTest::aReportIsReadAsItWasMeant_data()
{
    QTest::addColumn<BootLoaderCommand>("command");
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("the first command") << BootLoaderCommand::Enter << yes;
    QTest::newRow("the last command, nothing with it") << BootLoaderCommand::Restart << QByteArray();
    QTest::newRow("as much as fits") << BootLoaderCommand::Data
                                     << QByteArray(kMaxBootLoaderPayload, char(0xFF));
    QTest::newRow("zeros at the end") << BootLoaderCommand::Data << QByteArray("a\0\0", 3);
}

void RigBootLoaderTest::aReportIsReadAsItWasMeant()
{
    QFETCH(BootLoaderCommand, command);
    QFETCH(QByteArray, payload);
    const QByteArray report = encode({command, payload});
    QCOMPARE(report.size(), kReportSize);
    QVERIFY(report.at(0) != kReportId);
    const auto read = decodeBootLoaderReport(report);
    QVERIFY(read);
    QCOMPARE(read->command, command);
    QCOMPARE(read->payload, payload);
}

void RigBootLoaderTest::whatIsNoReportIsIgnored_data()
{
    QTest::addColumn<QByteArray>("report");
    const QByteArray sound = encode({BootLoaderCommand::Ready, {}});
    const auto with = [&sound](int at, int value) {
        return QByteArray(sound).replace(at, 1, QByteArray(1, char(value)));
    };
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("one byte short") << sound.chopped(1);
    QTest::newRow("one byte more") << QByteArray(sound + '\0');
    QTest::newRow("the register protocol's ID") << with(0, kReportId);
    QTest::newRow("no command") << with(1, 0);
    QTest::newRow("a command that is none") << with(1, int(BootLoaderCommand::Restart) + 1);
    QTest::newRow("longer than a report") << with(2, kMaxBootLoaderPayload + 1);
}

void RigBootLoaderTest::whatIsNoReportIsIgnored()
{
    QFETCH(QByteArray, report);
    QVERIFY(!decodeBootLoaderReport(report));
    QVERIFY(m_responder->answer(report).report.isEmpty());
}

void RigBootLoaderTest::anImageTakenInReportsRuns()
{
    const QByteArray image = buildImage({Model::R2, Chip::Pc, QVersionNumber(1, 9, 0)});
    waitInBootLoader();
    QCOMPARE(ask(BootLoaderCommand::Erase, size(int(image.size()))), yes);
    for (qsizetype at = 0; at < image.size(); at += 1000)
        QCOMPARE(sendBlock(int(at), image.mid(at, 1000)), yes);
    QCOMPARE(ask(BootLoaderCommand::Digest).toHex(), sha256(image));
    QCOMPARE(ask(BootLoaderCommand::Restart), yes);
    QTRY_COMPARE_WITH_TIMEOUT(m_device->runningVersion(Chip::Pc), QVersionNumber(1, 9, 0), kPatience);
}

void RigBootLoaderTest::onlyTheReportThatCompletesABlockIsAnswered()
{
    waitInBootLoader();
    QCOMPARE(ask(BootLoaderCommand::Block, size(0) + size(3)), QByteArray());
    QCOMPARE(ask(BootLoaderCommand::Data, "ab"), QByteArray());
    QCOMPARE(ask(BootLoaderCommand::Data, "c"), yes);
    QVERIFY(m_device->flash(Chip::Pc).startsWith("abc"));
}

void RigBootLoaderTest::onlyErasingTakesItsTime()
{
    waitInBootLoader();
    const auto time = [this](BootLoaderCommand command, const QByteArray &payload) {
        return m_responder->answer(encode({command, payload})).after;
    };
    QCOMPARE(time(BootLoaderCommand::Ready, {}), std::chrono::milliseconds(0));
    QCOMPARE(time(BootLoaderCommand::Erase, size(1000)), BootLoader::kEraseTime);
    QCOMPARE(time(BootLoaderCommand::Digest, {}), std::chrono::milliseconds(0));
}

void RigBootLoaderTest::whatMakesNoSenseIsRefused_data()
{
    QTest::addColumn<QByteArray>("place");
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("data without a block") << QByteArray() << QByteArray("abc");
    QTest::newRow("a block without its size") << size(0) << QByteArray("abc");
    QTest::newRow("more than the block") << size(0) + size(2) << QByteArray("abc");
    QTest::newRow("behind the flash") << size(512 * 1024) + size(3) << QByteArray("abc");
    QTest::newRow("before the flash") << size(-1) + size(3) << QByteArray("abc");
}

void RigBootLoaderTest::whatMakesNoSenseIsRefused()
{
    QFETCH(QByteArray, place);
    QFETCH(QByteArray, data);
    waitInBootLoader();
    const QByteArray before = m_device->flash(Chip::Pc);
    if (!place.isEmpty())
        QCOMPARE(ask(BootLoaderCommand::Block, place), QByteArray());
    QCOMPARE(ask(BootLoaderCommand::Data, data), no);
    QCOMPARE(m_device->flash(Chip::Pc), before);
}

void RigBootLoaderTest::aRunningChipTakesNoImage_data()
{
    QTest::addColumn<BootLoaderCommand>("command");
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("enter, said to be there") << BootLoaderCommand::Enter << yes;
    QTest::newRow("ready") << BootLoaderCommand::Ready << QByteArray();
    QTest::newRow("erase") << BootLoaderCommand::Erase << size(1000);
    QTest::newRow("data") << BootLoaderCommand::Data << QByteArray("abc");
    QTest::newRow("restart") << BootLoaderCommand::Restart << QByteArray();
}

void RigBootLoaderTest::aRunningChipTakesNoImage()
{
    QFETCH(BootLoaderCommand, command);
    QFETCH(QByteArray, payload);
    if (command == BootLoaderCommand::Data)
        ask(BootLoaderCommand::Block, size(0) + size(int(payload.size())));
    QCOMPARE(ask(command, payload), no);
    QCOMPARE(m_device->state(Chip::Pc), ChipState::Running);
}

void RigBootLoaderTest::onlyImagesTakenToTheEndAreCounted()
{
    QCOMPARE(m_chip->restarts(), 0);
    QVERIFY(!m_chip->restart());
    QCOMPARE(m_chip->restarts(), 0);
    waitInBootLoader();
    QVERIFY(m_chip->restart());
    QCOMPARE(m_chip->restarts(), 1);
}

QUILLON_TEST_CORE(RigBootLoaderTest)
#include "tst_rig_boot_loader.moc"
