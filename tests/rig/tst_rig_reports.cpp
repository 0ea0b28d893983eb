// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/DeviceReplies.h"
#include "rig/RegisterReports.h"
#include "tests/support/TestProgram.h"

#include <QTest>

using namespace rig;

namespace {

// A report as it stands on the wire: the first bytes in hexadecimal, zeros up to the end.
QByteArray report(const char *hex)
{
    return QByteArray::fromHex(hex).leftJustified(kReportSize, '\0');
}

constexpr char kModeQuery[] = "51 C4 09 00 00 04 08 10 17 FF";
constexpr char kPcRead[] = "51 C4 0B 00 00 06 0B 00 03 00 1D FF";
constexpr char kOtgRead[] = "51 C4 0B 00 00 06 10 00 03 00 18 FF";

} // namespace

class RigReportsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aRequestIsAnsweredByteForByte_data();
    void aRequestIsAnsweredByteForByte();
    void whatIsNoRequestIsIgnored_data();
    void whatIsNoRequestIsIgnored();
    void theLargestRequestsStillFit_data();
    void theLargestRequestsStillFit();
    void aBootLoaderSaysSo();
    void writtenRegistersAreReadBack();
    void modeAndVersionsCannotBeWritten();
    void faultsBendTheReplies_data();
    void faultsBendTheReplies();
    void garbledRepliesAreOfFullSizeAndKeepTheirId();
    void zeroVersionsConcernOneChip();
};

void RigReportsTest::aRequestIsAnsweredByteForByte_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("mode of a running device")
        << report(kModeQuery) << report("51 C4 0B 00 00 04 08 10 00 00 15 FF");
    QTest::newRow("PC version") << report(kPcRead)
                                << report("51 C4 11 00 00 06 0B 00 03 00 01 00 02 00 03 00 11 FF");
    QTest::newRow("OTG version") << report(kOtgRead)
                                 << report("51 C4 11 00 00 06 10 00 03 00 04 00 00 00 2C 01 E1 FE");
    QTest::newRow("PC version, one by one")
        << report("51 C4 0D 00 00 04 0B 00 0C 00 0D 00 07 FF")
        << report("51 C4 13 00 00 04 0B 00 01 00 0C 00 02 00 0D 00 03 00 FB FE");
    QTest::newRow("a register without meaning")
        << report("51 C4 09 00 00 04 34 12 E9 FE") << report("51 C4 0B 00 00 04 34 12 00 00 E7 FE");
    QTest::newRow("a run over both versions")
        << report("51 C4 0B 00 00 06 0D 00 04 00 1A FF")
        << report("51 C4 13 00 00 06 0D 00 04 00 03 00 00 00 00 00 04 00 0B FF");
    QTest::newRow("a write is answered with what was written")
        << report("51 C4 0B 00 00 03 34 12 78 56 1A FE") << report("51 C4 0B 00 00 03 34 12 78 56 1A FE");
    QTest::newRow("a run of writes is answered with its start and count")
        << report("51 C4 0F 00 00 05 00 20 02 00 01 00 02 00 03 FF")
        << report("51 C4 0B 00 00 05 00 20 02 00 0A FF");
}

void RigReportsTest::aRequestIsAnsweredByteForByte()
{
    QFETCH(QByteArray, request);
    FaultBoard faults;
    Registers registers{false, QVersionNumber(1, 2, 3), QVersionNumber(4, 0, 300), {}};
    const QList<QByteArray> replies = repliesTo(request, registers, faults);
    QCOMPARE(replies.size(), 1);
    QFETCH(QByteArray, reply);
    QCOMPARE(replies.first().toHex(' '), reply.toHex(' '));
}

void RigReportsTest::whatIsNoRequestIsIgnored_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("only the ID") << QByteArray(1, kReportId);
    QTest::newRow("not padded") << QByteArray::fromHex(kModeQuery);
    QTest::newRow("one byte too long") << report(kModeQuery) + '\0';
    QTest::newRow("without its ID") << report("C4 09 00 00 04 08 10 17 FF");
    QTest::newRow("another ID") << report("52 C4 09 00 00 04 08 10 17 FF");
    QTest::newRow("another mark") << report("51 C5 09 00 00 04 08 10 16 FF");
    QTest::newRow("checksum low byte") << report("51 C4 09 00 00 04 08 10 18 FF");
    QTest::newRow("checksum high byte") << report("51 C4 09 00 00 04 08 10 17 FE");
    QTest::newRow("length 0") << report("51 C4 00 00 00 04 08 10 20 FF");
    QTest::newRow("length below a frame") << report("51 C4 06 00 00 36 FF");
    QTest::newRow("length beyond the report") << report("51 C4 41 00 00 04 08 10");
    QTest::newRow("length 255") << report("51 C4 FF 00 00 04 08 10");
    QTest::newRow("the byte behind the length is set") << report("51 C4 09 01 00 04 08 10 16 FF");
    QTest::newRow("the next one is") << report("51 C4 09 00 01 04 08 10 16 FF");
    QTest::newRow("an address and a half") << report("51 C4 0A 00 00 04 08 10 0B 0B FF");
    QTest::newRow("a pair and a half") << report("51 C4 0D 00 00 03 34 12 01 00 35 12 9E FE");
    QTest::newRow("no address") << report("51 C4 07 00 00 04 31 FF");
    QTest::newRow("half an address") << report("51 C4 08 00 00 04 08 28 FF");
    QTest::newRow("a pair without its value") << report("51 C4 09 00 00 03 08 10 18 FF");
    QTest::newRow("operation 0") << report("51 C4 09 00 00 00 08 10 1B FF");
    QTest::newRow("operation 7") << report("51 C4 09 00 00 07 08 10 14 FF");
    QTest::newRow("a run without its count") << report("51 C4 09 00 00 06 0B 00 22 FF");
    QTest::newRow("a run of none") << report("51 C4 0B 00 00 06 0B 00 00 00 20 FF");
    QTest::newRow("a run too long for one reply") << report("51 C4 0B 00 00 06 0B 00 1B 00 05 FF");
    QTest::newRow("a run of 65535") << report("51 C4 0B 00 00 06 0B 00 FF FF 22 FD");
    QTest::newRow("a run of writes that lacks one") << report("51 C4 0D 00 00 05 00 20 02 00 01 00 07 FF");
    QTest::newRow("all ones") << QByteArray(kReportSize, char(0xFF));
}

void RigReportsTest::whatIsNoRequestIsIgnored()
{
    QFETCH(QByteArray, request);
    FaultBoard faults;
    Registers registers;
    QVERIFY(repliesTo(request, registers, faults).isEmpty());
}

void RigReportsTest::theLargestRequestsStillFit_data()
{
    QTest::addColumn<RegisterRequest>("request");
    QList<quint16> addresses;
    for (quint16 address = 0; address < 26; ++address)
        addresses.append(quint16(address + 0x4000));
    QTest::newRow("14 single registers") << RegisterRequest{Operation::RandomRead, addresses.first(14), {}};
    QTest::newRow("a run of 26") << RegisterRequest{Operation::ContinuousRead, addresses, {}};
}

void RigReportsTest::theLargestRequestsStillFit()
{
    QFETCH(RegisterRequest, request);
    const QByteArray reply = encodeReply(request, [](quint16 address) { return address; });
    QCOMPARE(reply.size(), kReportSize);
    const int length = quint8(reply.at(2));
    QVERIFY(length <= kReportSize - 1);
    quint16 sum = 0;
    for (int at = 1; at < length - 1; ++at)
        sum = quint16(sum + quint8(reply.at(at)));
    QCOMPARE(quint16(sum + quint8(reply.at(length - 1)) + (quint8(reply.at(length)) << 8)), quint16(0));
}

void RigReportsTest::aBootLoaderSaysSo()
{
    FaultBoard faults;
    Registers registers{true, {}, {}, {}};
    QCOMPARE(repliesTo(report(kModeQuery), registers, faults).value(0),
             report("51 C4 0B 00 00 04 08 10 01 00 14 FF"));
    QCOMPARE(repliesTo(report(kPcRead), registers, faults).value(0),
             report("51 C4 11 00 00 06 0B 00 03 00 00 00 00 00 00 00 17 FF"));
}

void RigReportsTest::writtenRegistersAreReadBack()
{
    FaultBoard faults;
    Registers registers;
    repliesTo(report("51 C4 0F 00 00 05 00 20 02 00 01 00 02 00 03 FF"), registers, faults);
    QCOMPARE(repliesTo(report("51 C4 0B 00 00 06 00 20 03 00 08 FF"), registers, faults).value(0),
             report("51 C4 11 00 00 06 00 20 03 00 01 00 02 00 00 00 FF FE"));
}

void RigReportsTest::modeAndVersionsCannotBeWritten()
{
    FaultBoard faults;
    Registers registers{false, QVersionNumber(1, 2, 3), QVersionNumber(4, 5, 6), {}};
    repliesTo(report("51 C4 0B 00 00 03 08 10 01 00 15 FF"), registers, faults);
    repliesTo(report("51 C4 0B 00 00 03 0B 00 09 00 1A FF"), registers, faults);
    QCOMPARE(repliesTo(report(kModeQuery), registers, faults).value(0),
             report("51 C4 0B 00 00 04 08 10 00 00 15 FF"));
    QCOMPARE(repliesTo(report(kPcRead), registers, faults).value(0),
             report("51 C4 11 00 00 06 0B 00 03 00 01 00 02 00 03 00 11 FF"));
}

void RigReportsTest::faultsBendTheReplies_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("reply");
    const QByteArray nothing;
    QTest::newRow("silent") << Fault::DeviceSilent << report(kModeQuery) << nothing;
    QTest::newRow("says it is in update mode")
        << Fault::DeviceSaysDfu << report(kModeQuery) << report("51 C4 0B 00 00 04 08 10 01 00 14 FF");
    QTest::newRow("zero PC version") << Fault::DeviceZeroVersions << report(kPcRead)
                                     << report("51 C4 11 00 00 06 0B 00 03 00 00 00 00 00 00 00 17 FF");
    QTest::newRow("zero OTG version") << Fault::DeviceZeroVersions << report(kOtgRead)
                                      << report("51 C4 11 00 00 06 10 00 03 00 00 00 00 00 00 00 12 FF");
    QTest::newRow("short") << Fault::DeviceShortReplies << report(kModeQuery)
                           << QByteArray::fromHex("51 C4 0B 00 00");
    QTest::newRow("bad checksum") << Fault::DeviceBadChecksum << report(kModeQuery)
                                  << report("51 C4 0B 00 00 04 08 10 00 00 15 A5");
    QTest::newRow("hostile length") << Fault::DeviceHostileLengths << report(kModeQuery)
                                    << report("51 C4 FF 00 00 04 08 10 00 00 15 FF");
}

void RigReportsTest::faultsBendTheReplies()
{
    QFETCH(Fault, fault);
    QFETCH(QByteArray, request);
    FaultBoard faults;
    faults.arm(fault, {{}, {}, 1});
    Registers registers{false, QVersionNumber(1, 2, 3), QVersionNumber(4, 5, 6), {}};
    const QList<QByteArray> changed = repliesTo(request, registers, faults);
    QFETCH(QByteArray, reply);
    QCOMPARE(changed.value(0).toHex(' '), reply.toHex(' '));
    QVERIFY(!faults.isArmed(fault));
    QVERIFY(repliesTo(request, registers, faults).value(0) != reply);
}

void RigReportsTest::garbledRepliesAreOfFullSizeAndKeepTheirId()
{
    FaultBoard faults;
    faults.arm(Fault::DeviceGarbledReplies);
    Registers registers;
    const QByteArray first = repliesTo(report(kModeQuery), registers, faults).value(0);
    const QByteArray second = repliesTo(report(kModeQuery), registers, faults).value(0);
    QCOMPARE(first.size(), kReportSize);
    QCOMPARE(first.at(0), kReportId);
    QVERIFY(first != second);
}

void RigReportsTest::zeroVersionsConcernOneChip()
{
    FaultBoard faults;
    faults.arm(Fault::DeviceZeroVersions, {Chip::Otg, {}, 1});
    Registers registers{false, QVersionNumber(1, 2, 3), QVersionNumber(4, 5, 6), {}};
    QCOMPARE(repliesTo(report(kPcRead), registers, faults).value(0),
             report("51 C4 11 00 00 06 0B 00 03 00 01 00 02 00 03 00 11 FF"));
    QCOMPARE(repliesTo(report(kOtgRead), registers, faults).value(0),
             report("51 C4 11 00 00 06 10 00 03 00 00 00 00 00 00 00 12 FF"));
}

QUILLON_TEST_CORE(RigReportsTest)
#include "tst_rig_reports.moc"
