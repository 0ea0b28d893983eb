// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// A trace played as a bus, looked at as the HID library looks at it.
#include "probe/trace/ReplayTransport.h"
#include "tests/support/TestProgram.h"

#include <QElapsedTimer>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace probe;
using namespace std::chrono_literals;
using HIDCommunicator::HidConnection;
using HIDCommunicator::HidDeviceInfo;

namespace {

using ReadResult = HidConnection::ReadResult;

constexpr int kVendor = 0x352F;
constexpr auto kPatience = 20s;

Bus play(const QByteArray &lines, Pace pace = Pace::WaitsForQuestions)
{
    QString error;
    const auto trace = Trace::parse("quillon-trace 1\n" + lines, QStringLiteral("trace"), &error);
    if (!trace)
        qFatal("%s", qPrintable(error));
    return replay(*trace, pace);
}

QByteArray bytes(const char *hex)
{
    return QByteArray::fromHex(hex);
}

/// What comes next; empty when the device left, "-" when it keeps silent for \a limit.
QByteArray next(HidConnection &connection, std::chrono::milliseconds limit = kPatience)
{
    QByteArray report;
    switch (connection.read(report, limit)) {
    case ReadResult::Report:
        return report;
    case ReadResult::Timeout:
        return "-";
    case ReadResult::Gone:
        break;
    }
    return {};
}

QList<int> productIds(const Bus &bus)
{
    QList<int> ids;
    const auto devices = bus.transport->enumerate(kVendor).value();
    for (const HidDeviceInfo &device : devices)
        ids.append(device.productId);
    return ids;
}

std::unique_ptr<HidConnection> openFirst(const Bus &bus)
{
    const auto devices = bus.transport->enumerate(kVendor).value();
    return devices.isEmpty() ? nullptr : bus.transport->open(devices.first().path);
}

} // namespace

class ReplayTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void questionsGetTheirAnswers_data();
    void questionsGetTheirAnswers();
    void answersTakeTheirTime();
    void reportsBeforeAnyQuestionFollowTheOpening();
    void devicesComeAndGoAsTheyDid();
    void theFirstPlugIsAtOnce();
    void aDeviceWaitsForTheQuestionsToCome();
    void aDeviceLeavesWithoutBeingAskedAtTheRecordedPace();
    void openingEndsAsItDid();
    void otherVendorsAreNotListed();
    void pathsSayWhoTheyAre();
    void anEmptyTraceIsAnEmptyBus();
    void interruptingEndsTheWaitAndHidesNoPlug();
};

void ReplayTest::questionsGetTheirAnswers_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QByteArrayList>("questions");
    QTest::addColumn<QByteArrayList>("answers");
    const QByteArray plug = "0.000 plug 1 352f 000e\n0.001 open 1\n";
    const auto list = [](std::initializer_list<const char *> hex) {
        QByteArrayList result;
        for (const char *one : hex)
            result.append(bytes(one));
        return result;
    };
    const QByteArray one = "0.002 out 1 51 c4 09 00 00 04 08 10\n0.003 in 1 51 c4 0b 00 00 04 08 10 01\n";
    const QByteArray two = "0.004 out 1 51 c4 0b 00 00 06 0b 00\n0.005 in 1 51 c4 11 00 00 06 0b 00 02\n";
    const char *const askOne = "51c4090000040810";
    const char *const askTwo = "51c40b0000060b00";
    const char *const tellOne = "51c40b000004081001";
    const char *const tellTwo = "51c4110000060b0002";

    QTest::newRow("one") << plug + one << list({askOne}) << list({tellOne});
    QTest::newRow("zeros behind make no difference")
        << plug + one << list({"51c409000004081000000000"}) << list({tellOne});
    QTest::newRow("in order") << plug + one + two << list({askOne, askTwo}) << list({tellOne, tellTwo});
    QTest::newRow("in another order")
        << plug + one + two << list({askTwo, askOne}) << list({tellTwo, tellOne});
    QTest::newRow("one left out") << plug + one + two << list({askTwo}) << list({tellTwo});
    QTest::newRow("asked again, the answer is repeated")
        << plug + one << list({askOne, askOne}) << list({tellOne, tellOne});
    QTest::newRow("a question nobody asked then")
        << plug + one << list({"51c4090000042000", askOne}) << list({tellOne});
    QTest::newRow("the same question with two answers, then the last one again")
        << plug + one + "0.004 out 1 51 c4 09 00 00 04 08 10\n0.005 in 1 51 c4 0b 00 00 04 08 10 09\n"
        << list({askOne, askOne, askOne}) << list({tellOne, "51c40b000004081009", "51c40b000004081009"});
    QTest::newRow("asked in one breath, each has its own answer")
        << plug
            + "0.002 out 1 51 c4 09 00 00 04 08 10\n0.002 out 1 51 c4 0b 00 00 06 0b 00\n"
              "0.003 in 1 51 c4 0b 00 00 04 08 10 01\n0.003 in 1 51 c4 11 00 00 06 0b 00 02\n"
        << list({askTwo, askOne}) << list({tellTwo, tellOne});
    QTest::newRow("two reports to one question") << plug + one + "0.004 in 1 51 c4 0b 00 00 04 08 10 02\n"
                                                 << list({askOne}) << list({tellOne, "51c40b000004081002"});
    QTest::newRow("what answers no question belongs to the last one") << plug + one
            + "0.004 in 1 ff\n" << list({askOne}) << list({tellOne, "ff"});
}

void ReplayTest::questionsGetTheirAnswers()
{
    QFETCH(QByteArray, lines);
    QFETCH(QByteArrayList, questions);
    QFETCH(QByteArrayList, answers);
    const Bus bus = play(lines);
    const auto connection = openFirst(bus);
    QVERIFY(connection);
    // One after the other: answers to questions asked at once may come in the order of their delays.
    QByteArrayList heard;
    for (const QByteArray &question : questions) {
        QVERIFY(connection->write(question));
        for (QByteArray report = next(*connection, 300ms); report != "-"; report = next(*connection, 300ms))
            heard.append(report);
    }
    QCOMPARE(heard, answers);
}

void ReplayTest::answersTakeTheirTime()
{
    const Bus bus = play("0.000 plug 1 352f 000e\n0.100 out 1 51\n0.600 in 1 52\n");
    const auto connection = openFirst(bus);
    QElapsedTimer time;
    time.start();
    QVERIFY(connection->write(bytes("51")));
    QCOMPARE(next(*connection), bytes("52"));
    QVERIFY2(time.elapsed() >= 500, qPrintable(QString::number(time.elapsed())));
}

void ReplayTest::reportsBeforeAnyQuestionFollowTheOpening()
{
    const Bus bus
        = play("0.000 plug 1 352f 000e\n0.100 open 1\n0.101 in 1 51 01\n0.200 out 1 51\n0.201 in 1 51 02\n");
    const auto connection = openFirst(bus);
    QCOMPARE(next(*connection), bytes("5101"));
    QVERIFY(connection->write(bytes("51")));
    QCOMPARE(next(*connection), bytes("5102"));
}

void ReplayTest::devicesComeAndGoAsTheyDid()
{
    const Bus bus = play("5.000 plug 1 352f 000e\n5.300 plug 2 352f 001f\n5.600 unplug 1\n");
    QElapsedTimer time;
    time.start();
    QCOMPARE(productIds(bus), QList<int>({0x0E}));
    while (!productIds(bus).contains(0x1F))
        QVERIFY(bus.transport->waitForHotplug(kPatience));
    QVERIFY(time.elapsed() >= 300);
    while (productIds(bus).contains(0x0E))
        QVERIFY(bus.transport->waitForHotplug(kPatience));
    QVERIFY(time.elapsed() >= 600);
    QCOMPARE(productIds(bus), QList<int>({0x1F}));
}

void ReplayTest::theFirstPlugIsAtOnce()
{
    const Bus bus = play("3600.000 plug 1 352f 000e\n");
    QCOMPARE(productIds(bus), QList<int>({0x0E}));
}

void ReplayTest::aDeviceWaitsForTheQuestionsToCome()
{
    const Bus bus = play("0.000 plug 1 352f 000e\n0.001 out 1 51\n0.002 in 1 52\n0.010 unplug 1\n");
    const auto connection = openFirst(bus);
    QCOMPARE(next(*connection, 500ms), QByteArray("-"));
    QVERIFY(connection->write(bytes("51")));
    QVERIFY(next(*connection) == bytes("52") || productIds(bus).isEmpty());
    QCOMPARE(next(*connection), QByteArray()); // now it leaves
    QVERIFY(!connection->write(bytes("51")));
    QCOMPARE(productIds(bus), QList<int>());
}

void ReplayTest::aDeviceLeavesWithoutBeingAskedAtTheRecordedPace()
{
    const QByteArray lines = "0.000 plug 1 352f 000e\n0.001 out 1 51\n0.050 unplug 1\n";
    const Bus patient = play(lines);
    const Bus asRecorded = play(lines, Pace::AsRecorded);
    QCOMPARE(productIds(patient).size(), 1);
    QCOMPARE(productIds(asRecorded).size(), 1);
    QTRY_VERIFY(productIds(asRecorded).isEmpty());
    QCOMPARE(productIds(patient).size(), 1); // for seconds to come
}

void ReplayTest::openingEndsAsItDid()
{
    const Bus bus = play("0.000 plug 1 352f 000e\n0.001 denied 1\n0.002 refused 1\n0.003 open 1\n");
    const QString path = bus.transport->enumerate(kVendor)->first().path;
    QVERIFY(bus.isDenied(path));
    QVERIFY(!bus.transport->open(path));
    QVERIFY(!bus.isDenied(path));
    QVERIFY(!bus.transport->open(path));
    QVERIFY(bus.transport->open(path));
    QVERIFY(bus.transport->open(path)); // as the last time
    QVERIFY(!bus.isDenied(path));
    QVERIFY(!bus.isDenied(u"elsewhere"_s));
    QVERIFY(!bus.transport->open(u"elsewhere"_s));
}

void ReplayTest::otherVendorsAreNotListed()
{
    const Bus bus = play("0.000 plug 1 046d c31c\n0.000 plug 2 352f 0001\n");
    QCOMPARE(productIds(bus), QList<int>({0x01}));
}

void ReplayTest::pathsSayWhoTheyAre()
{
    const Bus bus = play("0.000 plug 1 352f 000e\n0.000 plug 2 352f 000e\n");
    const auto devices = bus.transport->enumerate(kVendor).value();
    QCOMPARE(devices.size(), 2);
    QVERIFY(devices.at(0).path != devices.at(1).path);
    for (const HidDeviceInfo &device : devices)
        QVERIFY2(device.path.contains(u"vid_352f&pid_000e"_s), qPrintable(device.path));
}

void ReplayTest::anEmptyTraceIsAnEmptyBus()
{
    const Bus bus = replay({});
    QCOMPARE(productIds(bus), QList<int>());
    QVERIFY(!bus.transport->waitForHotplug(10ms));
}

void ReplayTest::interruptingEndsTheWaitAndHidesNoPlug()
{
    const Bus bus = play("0.000 plug 1 352f 000e\n");
    bus.transport->interruptHotplugWait();
    QVERIFY(!bus.transport->waitForHotplug(kPatience));
    QVERIFY(bus.transport->waitForHotplug(kPatience));
    QVERIFY(!bus.transport->waitForHotplug(10ms));
}

QUILLON_TEST_CORE(ReplayTest)
#include "tst_replay.moc"
