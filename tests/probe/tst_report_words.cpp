// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What a report says, in words.
#include "device/ControlMessages.h"
#include "probe/ReportWords.h"
#include "tests/support/DeviceReplies.h"
#include "tests/support/TestProgram.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace probe;

class ReportWordsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void requests_data();
    void requests();
    void replies_data();
    void replies();
    void noReportOfTheDevice_data();
    void noReportOfTheDevice();
    void everyLengthAndEveryStatedLengthIsBorne();
    void bytesLeaveOutZeros_data();
    void bytesLeaveOutZeros();
};

void ReportWordsTest::requests_data()
{
    QTest::addColumn<QByteArray>("report");
    QTest::addColumn<QString>("words");
    const ControlMessages *const messages = ControlMessages::getInstance();
    QTest::newRow("mode") << messages->randomRead(0x1008) << u"read 1008 (mode)"_s;
    QTest::newRow("several registers")
        << messages->randomRead({0x1008, 0x0020}) << u"read 1008 (mode), 0020"_s;
    QTest::newRow("PC version") << messages->continuousRead(0x000B, 3)
                                << u"read 3 registers from 000b (PC version)"_s;
    QTest::newRow("OTG version") << messages->continuousRead(0x0010, 3)
                                 << u"read 3 registers from 0010 (OTG version)"_s;
    QTest::newRow("one write") << messages->randomWrite(0x0020, 5) << u"write 0020 = 0005"_s;
    QTest::newRow("several writes") << messages->randomWrite({0x0020, 0x0021}, {5, 0xABCD})
                                    << u"write 0020 = 0005; 0021 = abcd"_s;
    QTest::newRow("a run of writes") << messages->continuousWrite(0x0020, 2, {1, 2})
                                     << u"write 2 registers from 0020: 0001 0002"_s;
}

void ReportWordsTest::requests()
{
    QFETCH(QByteArray, report);
    QTEST(wordsOf(report, Direction::Out), "words");
}

void ReportWordsTest::replies_data()
{
    using namespace DeviceReplies;
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("words");
    QTest::newRow("normal firmware") << mode(0) << u"1008 (mode) = 0000, normal firmware"_s;
    QTest::newRow("upgrade mode") << mode(1) << u"1008 (mode) = 0001, upgrade mode"_s;
    QTest::newRow("any register") << reply(4, {0x0020, 7}) << u"0020 = 0007"_s;
    QTest::newRow("PC version") << pcVersion({1, 2, 3})
                                << u"registers from 000b (PC version): 0001 0002 0003 = 1.2.3"_s;
    QTest::newRow("a negative version")
        << otgVersion({0xFFFF, 0, 0}) << u"registers from 0010 (OTG version): ffff 0000 0000 = -1.0.0"_s;
    QTest::newRow("a run of registers") << reply(6, {0x0200, 2, 8, 9}) << u"registers from 0200: 0008 0009"_s;
    QTest::newRow("a write acknowledged") << reply(3, {0x0020, 5}) << u"written"_s;
    QTest::newRow("a run of writes acknowledged") << reply(5, {0x0020, 2}) << u"written from 0020"_s;
    QTest::newRow("an unknown operation") << reply(9, {}) << u"unknown operation 9"_s;
    QTest::newRow("marked") << reply(4, {0x0002, 7}) << u"0002 = 0007 (marked as not to be looked at)"_s;

    QByteArray wrong = mode(0);
    wrong[9] = char(wrong.at(9) + 1);
    QTest::newRow("a wrong checksum")
        << wrong << u"1008 (mode) = 0000, normal firmware (checksum ff16, should be ff15)"_s;
    wrong = mode(0);
    wrong[0] = '\0';
    QTest::newRow("no start mark")
        << wrong << u"1008 (mode) = 0000, normal firmware (no start mark, checksum ff15, should be ffd9)"_s;
    QTest::newRow("cut short") << mode(0).left(9)
                               << u"1008 (mode) = 0000, normal firmware (states 11 bytes, has 9)"_s;
    wrong = mode(0);
    wrong[1] = '\0';
    QTest::newRow("no length") << wrong << u"nothing (states only 0 bytes)"_s;
}

void ReportWordsTest::replies()
{
    QFETCH(QByteArray, payload);
    QTEST(wordsOf(DeviceReplies::withId(payload), Direction::In), "words");
}

void ReportWordsTest::noReportOfTheDevice_data()
{
    QTest::addColumn<QByteArray>("report");
    QTest::addColumn<QString>("words");
    QTest::newRow("nothing") << QByteArray() << u"not a report of the device: its ID is not 51"_s;
    QTest::newRow("another ID") << QByteArray::fromHex("02c4090000040810")
                                << u"not a report of the device: its ID is not 51"_s;
    QTest::newRow("an ID alone") << QByteArray::fromHex("51") << u"too short to say anything: 1 bytes"_s;
    QTest::newRow("no operation") << QByteArray::fromHex("51c4090000")
                                  << u"too short to say anything: 5 bytes"_s;
}

void ReportWordsTest::noReportOfTheDevice()
{
    QFETCH(QByteArray, report);
    QTEST(wordsOf(report, Direction::In), "words");
}

void ReportWordsTest::everyLengthAndEveryStatedLengthIsBorne()
{
    for (const QByteArray &payload : {DeviceReplies::mode(0), DeviceReplies::pcVersion({1, 2, 3})}) {
        for (int size = 0; size <= payload.size(); ++size) {
            for (int stated = 0; stated < 256; ++stated) {
                QByteArray report = DeviceReplies::withId(payload.left(size));
                if (report.size() > 2)
                    report[2] = char(stated);
                QVERIFY(!wordsOf(report, Direction::In).isEmpty());
                QVERIFY(!wordsOf(report, Direction::Out).isEmpty());
            }
        }
    }
}

void ReportWordsTest::bytesLeaveOutZeros_data()
{
    QTest::addColumn<QByteArray>("report");
    QTest::addColumn<QString>("text");
    QTest::newRow("none to leave out") << QByteArray::fromHex("51c4") << u"51 c4"_s;
    QTest::newRow("one") << QByteArray::fromHex("51c400") << u"51 c4 and 1 zeros"_s;
    QTest::newRow("zeros in between stay") << QByteArray::fromHex("5100c40000") << u"51 00 c4 and 2 zeros"_s;
    QTest::newRow("nothing but zeros") << QByteArray(3, '\0') << u"00 and 2 zeros"_s;
}

void ReportWordsTest::bytesLeaveOutZeros()
{
    QFETCH(QByteArray, report);
    QTEST(bytesText(report), "text");
}

QUILLON_TEST_CORE(ReportWordsTest)
#include "tst_report_words.moc"
