// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// The reports that go to the device, byte for byte.
#include "device/ControlMessages.h"
#include "tests/support/TestProgram.h"

#include <QMetaMethod>
#include <QRegularExpression>
#include <QTest>

#include <atomic>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

namespace {
using Builder = QByteArray (*)(const QList<quint16> &);

constexpr int kReportSize = 65;
constexpr int kLengthOffset = 2;

ControlMessages *messages()
{
    return ControlMessages::getInstance();
}

/// The shown bytes and zeros up to the report's size.
QByteArray wholeReport(const char *shown)
{
    const QByteArray used = QByteArray::fromHex(shown);
    return used + QByteArray(kReportSize - used.size(), '\0');
}

QList<quint16> numbers(int count, int first, int step)
{
    QList<quint16> list;
    for (int i = 0; i < count; ++i)
        list.append(quint16(first + i * step));
    return list;
}
} // namespace

class ControlMessagesTest : public QObject {
    Q_OBJECT

private slots:
    void isOneInstanceForAllThreads();
    void hasTheSendSignal();

    void reports_data();
    void reports();
    void lengthGrowsWithThePayload_data();
    void lengthGrowsWithThePayload();
    void everyReportSumsUpToZero();
    void surplusPartnersAreLeftOut_data();
    void surplusPartnersAreLeftOut();
    void whatDoesNotFitIsNotBuilt_data();
    void whatDoesNotFitIsNotBuilt();
    void buildersAreIndependent();
    void registerValuesAreKept();
    void registerValuesAreSharedByThreads();
};

// First of all, so that the threads race for the creation.
void ControlMessagesTest::isOneInstanceForAllThreads()
{
    constexpr int kThreads = 8;
    std::atomic<int> waiting{kThreads};
    std::vector<ControlMessages *> seen(kThreads);
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            --waiting;
            while (waiting > 0)
                std::this_thread::yield();
            seen[i] = ControlMessages::getInstance();
        });
    }
    for (std::thread &thread : threads)
        thread.join();

    for (ControlMessages *one : seen)
        QCOMPARE(one, messages());
    QVERIFY(messages());
}

void ControlMessagesTest::hasTheSendSignal()
{
    const QMetaObject &meta = ControlMessages::staticMetaObject;
    QCOMPARE(QByteArray(meta.className()), QByteArray("ControlMessages"));
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
    const int index = meta.indexOfSignal("sig_hid_send(QByteArray)");
    QVERIFY(index >= 0);
    QCOMPARE(meta.method(index).methodType(), QMetaMethod::Signal);
}

void ControlMessagesTest::reports_data()
{
    QTest::addColumn<QByteArray>("report");
    QTest::addColumn<QByteArray>("expected");
    const auto row = [](const char *name, const QByteArray &report, const char *shown) {
        QTest::newRow(name) << report << wholeReport(shown);
    };

    row("the mode query", messages()->randomRead(0x1008), "51 c4 09 00 00 04 08 10 17 ff");
    row("the PC version read", messages()->continuousRead(0x000B, 3), "51 c4 0b 00 00 06 0b 00 03 00 1d ff");
    row("the OTG version read", messages()->continuousRead(0x0010, 3), "51 c4 0b 00 00 06 10 00 03 00 18 ff");

    row("random read of address 0", messages()->randomRead(0), "51 c4 09 00 00 04 00 00 2f ff");
    row("random read of the last address", messages()->randomRead(0xFFFF), "51 c4 09 00 00 04 ff ff 31 fd");
    row("random read of a list of one is the random read of the one",
        messages()->randomRead(QList<quint16>{0x1008}), "51 c4 09 00 00 04 08 10 17 ff");
    row("random read of two addresses", messages()->randomRead(QList<quint16>{0x1008, 0x000B}),
        "51 c4 0b 00 00 04 08 10 0b 00 0a ff");
    row("random read of nothing", messages()->randomRead(QList<quint16>{}), "51 c4 07 00 00 04 31 ff");
    row("random read of as much as fits", messages()->randomRead(numbers(28, 0x0100, 1)),
        "51 c4 3f 00 00 04 00 01 01 01 02 01 03 01 04 01 05 01 06 01 07 01 08 01 09 01 0a 01 0b 01 0c 01 "
        "0d 01 0e 01 0f 01 10 01 11 01 12 01 13 01 14 01 15 01 16 01 17 01 18 01 19 01 1a 01 1b 01 63 fd");

    row("random write of one register", messages()->randomWrite(0x1008, 1),
        "51 c4 0b 00 00 03 08 10 01 00 15 ff");
    row("random write, both halves of both words", messages()->randomWrite(0xABCD, 0x1234),
        "51 c4 0b 00 00 03 cd ab 34 12 70 fd");
    row("random write of two pairs", messages()->randomWrite(QList<quint16>{1, 3}, QList<quint16>{2, 4}),
        "51 c4 0f 00 00 03 01 00 02 00 03 00 04 00 20 ff");
    row("random write of nothing", messages()->randomWrite(QList<quint16>{}, QList<quint16>{}),
        "51 c4 07 00 00 03 32 ff");
    row("random write of as much as fits",
        messages()->randomWrite(numbers(14, 0xFF00, 1), numbers(14, 0xFFFF, 0)),
        "51 c4 3f 00 00 03 00 ff ff ff 01 ff ff ff 02 ff ff ff 03 ff ff ff 04 ff ff ff 05 ff ff ff "
        "06 ff ff ff 07 ff ff ff 08 ff ff ff 09 ff ff ff 0a ff ff ff 0b ff ff ff 0c ff ff ff 0d ff ff ff "
        "c9 d4");

    row("continuous read from 0", messages()->continuousRead(0, 0), "51 c4 0b 00 00 06 00 00 00 00 2b ff");
    row("continuous read, largest numbers", messages()->continuousRead(0xFFFF, 0xFFFF),
        "51 c4 0b 00 00 06 ff ff ff ff 2f fb");

    row("continuous write of no values holds start and count only",
        messages()->continuousWrite(0x000B, 0, {}), "51 c4 0b 00 00 05 0b 00 00 00 21 ff");
    row("continuous write of three values", messages()->continuousWrite(0x000B, 3, {1, 2, 0xFFFE}),
        "51 c4 11 00 00 05 0b 00 03 00 01 00 02 00 fe ff 18 fd");
    row("continuous write with a count of its own", messages()->continuousWrite(0x0020, 9, {0x8001}),
        "51 c4 0d 00 00 05 20 00 09 00 01 80 80 fe");
    row("continuous write of as much as fits", messages()->continuousWrite(0, 26, numbers(26, 0xFFFF, 0)),
        "51 c4 3f 00 00 05 00 00 1a 00 ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff "
        "ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff 12 cb");
}

void ControlMessagesTest::reports()
{
    QFETCH(QByteArray, report);
    QFETCH(QByteArray, expected);

    QCOMPARE(report.toHex(' '), expected.toHex(' '));
    QCOMPARE(report.size(), kReportSize);
}

void ControlMessagesTest::lengthGrowsWithThePayload_data()
{
    QTest::addColumn<QByteArray>("report");
    QTest::addColumn<int>("length");
    for (int n : {0, 1, 2, 13, 14}) {
        QTest::addRow("random read of %d", n) << messages()->randomRead(numbers(n, 0, 1)) << 7 + 2 * n;
        QTest::addRow("random write of %d", n)
            << messages()->randomWrite(numbers(n, 0, 1), numbers(n, 0, 1)) << 7 + 4 * n;
        QTest::addRow("continuous write of %d", n)
            << messages()->continuousWrite(0, quint16(n), numbers(n, 0, 1)) << 11 + 2 * n;
        QTest::addRow("continuous read of %d", n) << messages()->continuousRead(0, quint16(n)) << 11;
    }
}

void ControlMessagesTest::lengthGrowsWithThePayload()
{
    QFETCH(QByteArray, report);

    QTEST(int(quint8(report.at(kLengthOffset))), "length");
}

// Whatever is sent: start mark to checksum, the checksum as a word, add up to 0 modulo 0x10000.
void ControlMessagesTest::everyReportSumsUpToZero()
{
    for (int address = 0; address <= 0xFFFF; address += 7) {
        const QByteArray report = messages()->randomWrite(quint16(address), quint16(0xFFFF - address));
        QCOMPARE(report.size(), kReportSize);
        const int length = quint8(report.at(kLengthOffset)); // counts from the byte behind the report ID
        const int checksumAt = length - 1;
        unsigned sum = quint8(report.at(checksumAt)) + 256u * quint8(report.at(checksumAt + 1));
        for (int i = 1; i < checksumAt; ++i)
            sum += quint8(report.at(i));
        QCOMPARE(sum % 0x10000, 0u);
        QCOMPARE(report.mid(length + 1), QByteArray(kReportSize - length - 1, '\0'));
    }
}

void ControlMessagesTest::surplusPartnersAreLeftOut_data()
{
    QTest::addColumn<QList<quint16>>("addresses");
    QTest::addColumn<QList<quint16>>("values");
    QTest::newRow("an address without a value") << QList<quint16>{1, 3, 5} << QList<quint16>{2, 4};
    QTest::newRow("a value without an address") << QList<quint16>{1, 3} << QList<quint16>{2, 4, 6};
}

void ControlMessagesTest::surplusPartnersAreLeftOut()
{
    QFETCH(QList<quint16>, addresses);
    QFETCH(QList<quint16>, values);

    QCOMPARE(messages()->randomWrite(addresses, values).toHex(' '),
             wholeReport("51 c4 0f 00 00 03 01 00 02 00 03 00 04 00 20 ff").toHex(' '));
}

void ControlMessagesTest::whatDoesNotFitIsNotBuilt_data()
{
    QTest::addColumn<Builder>("build");
    QTest::addColumn<int>("count");
    const Builder read = [](const QList<quint16> &list) { return messages()->randomRead(list); };
    const Builder writePairs = [](const QList<quint16> &list) { return messages()->randomWrite(list, list); };
    const Builder write = [](const QList<quint16> &list) { return messages()->continuousWrite(0, 0, list); };
    QTest::newRow("29 addresses") << read << 29;
    QTest::newRow("15 pairs") << writePairs << 15;
    QTest::newRow("27 values") << write << 27;
    QTest::newRow("more than the length byte can say") << read << 1000;
}

void ControlMessagesTest::whatDoesNotFitIsNotBuilt()
{
    QFETCH(Builder, build);
    QFETCH(int, count);
    const QList<quint16> list = numbers(count, 0, 1);

    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"do not fit into one report$"_s));
    QCOMPARE(build(list), QByteArray());
}

void ControlMessagesTest::buildersAreIndependent()
{
    const QByteArray query = messages()->randomRead(0x1008);
    QByteArray changed = query;
    changed[6] = 0x55;
    messages()->randomWrite(0x1008, 7);

    QCOMPARE(messages()->randomRead(0x1008), query);
}

void ControlMessagesTest::registerValuesAreKept()
{
    QVERIFY(!messages()->registerValue(0x000B).isValid());
    messages()->setRegisterValue(0x000B, 7);
    messages()->setRegisterValue(0x000C, u"text"_s);

    QCOMPARE(messages()->registerValue(0x000B), QVariant(7));
    QCOMPARE(messages()->registerValue(0x000C), QVariant(u"text"_s));
    QVERIFY(!messages()->registerValue(0x000D).isValid());
}

void ControlMessagesTest::registerValuesAreSharedByThreads()
{
    constexpr int kThreads = 4;
    constexpr int kRegisters = 500;
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([i] {
            for (int n = 0; n < kRegisters; ++n) {
                messages()->setRegisterValue(quint16(0x2000 + i * kRegisters + n), n);
                messages()->registerValue(quint16(0x2000 + n));
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();

    for (int i = 0; i < kThreads * kRegisters; ++i)
        QCOMPARE(messages()->registerValue(quint16(0x2000 + i)), QVariant(i % kRegisters));
}

QUILLON_TEST_CORE(ControlMessagesTest)
#include "tst_control_messages.moc"
