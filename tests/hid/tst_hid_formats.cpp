// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "DevicePath.h"
#include "ReportDescriptor.h"
#include "ReportFraming.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

using namespace HIDCommunicator;

/// The parts of the HID library that only look at bytes and texts.
class HidFormatsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void outputReportIsPaddedOrRefused_data();
    void outputReportIsPaddedOrRefused();
    void inputPayloadLosesTheReportId_data();
    void inputPayloadLosesTheReportId();
    void reportIdIsFoundInDescriptor_data();
    void reportIdIsFoundInDescriptor();
    void pathIsBuiltFromIdentityAndNode_data();
    void pathIsBuiltFromIdentityAndNode();
    void strangePathIsRefused_data();
    void strangePathIsRefused();
};

void HidFormatsTest::outputReportIsPaddedOrRefused_data()
{
    QTest::addColumn<QByteArray>("report");
    QTest::addColumn<bool>("accepted");

    QTest::newRow("report ID alone") << QByteArray::fromHex("51") << true;
    QTest::newRow("ten bytes") << QByteArray::fromHex("51c4090000040810 17ff") << true;
    QTest::newRow("64 bytes") << QByteArray(64, 'Q') << true;
    QTest::newRow("65 bytes") << QByteArray(65, 'Q') << true;
    QTest::newRow("66 bytes") << QByteArray(66, 'Q') << false;
    QTest::newRow("empty") << QByteArray() << false;
    QTest::newRow("without report ID") << QByteArray::fromHex("c409000004081017ff") << false;
    QTest::newRow("another report ID") << QByteArray(65, 'R') << false;
}

void HidFormatsTest::outputReportIsPaddedOrRefused()
{
    QFETCH(QByteArray, report);
    QFETCH(bool, accepted);

    const auto whole = outputReport(report);
    QCOMPARE(whole.has_value(), accepted);
    if (!accepted)
        return;
    QCOMPARE(whole->size(), 65);
    QCOMPARE(whole->first(report.size()), report);
    QCOMPARE(whole->sliced(report.size()), QByteArray(65 - report.size(), '\0'));
}

void HidFormatsTest::inputPayloadLosesTheReportId_data()
{
    QTest::addColumn<QByteArray>("report");
    QTest::addColumn<bool>("passedOn");

    QTest::newRow("whole report") << QByteArray::fromHex("51c40b00000408100000") << true;
    QTest::newRow("report ID alone") << QByteArray::fromHex("51") << true;
    QTest::newRow("report ID twice") << QByteArray::fromHex("5151") << true;
    QTest::newRow("huge") << QByteArray(4096, 'Q') << true;
    QTest::newRow("empty") << QByteArray() << false;
    QTest::newRow("another report ID") << QByteArray::fromHex("01c40b00") << false;
    QTest::newRow("start mark first") << QByteArray::fromHex("c40b00") << false;
}

void HidFormatsTest::inputPayloadLosesTheReportId()
{
    QFETCH(QByteArray, report);
    QFETCH(bool, passedOn);

    const auto payload = inputPayload(report);
    QCOMPARE(payload.has_value(), passedOn);
    if (passedOn)
        QCOMPARE(*payload, report.sliced(1));
}

void HidFormatsTest::reportIdIsFoundInDescriptor_data()
{
    QTest::addColumn<QByteArray>("descriptor");
    QTest::addColumn<bool>("found");

    const auto row = [](const char *name, const char *hex, bool found) {
        QTest::newRow(name) << QByteArray::fromHex(hex) << found;
    };
    row("vendor collection with the ID", "0600ff0901a1018551150026ff0075089540090181020901910 2c0", true);
    row("no report ID at all", "0600ff0901a101150026ff00750895400901810209019102c0", false);
    row("another report ID", "050c0901a10185010a23028101c0", false);
    row("the ID is the last of three", "8501850285 51", true);
    row("two-byte report ID", "865100", true);
    row("four-byte report ID", "8751000000", true);
    row("the byte is the data of another item", "1551255126855185", false);
    row("a usage of two bytes that ends in the item's bytes", "0a85518501", false);
    row("behind a long item", "fe02aa85518551", true);
    row("inside a long item", "fe02aa8551", false);
    row("long item cut short", "fe", false);
    row("long item longer than the descriptor", "feffaa8551", false);
    row("cut short before the ID", "060085", false);
    row("report ID item without its data", "85", false);
    row("report ID item with data size 0", "8451", false);
    row("empty", "", false);
}

void HidFormatsTest::reportIdIsFoundInDescriptor()
{
    QFETCH(QByteArray, descriptor);
    QFETCH(bool, found);
    QCOMPARE(declaresReportId(descriptor, 0x51), found);
}

void HidFormatsTest::pathIsBuiltFromIdentityAndNode_data()
{
    QTest::addColumn<int>("vendorId");
    QTest::addColumn<int>("productId");
    QTest::addColumn<QString>("node");
    QTest::addColumn<QString>("path");

    QTest::newRow("leading zeros")
        << 0x352F << 0x000E << QStringLiteral("hidraw3")
        << QStringLiteral(R"(\\?\hid#vid_352f&pid_000e#hidraw3#{4d1e55b2-f16f-11cf-88cb-001111000030})");
    QTest::newRow("letters in lower case")
        << 0x352F << 0xABCD << QStringLiteral("hidraw12")
        << QStringLiteral(R"(\\?\hid#vid_352f&pid_abcd#hidraw12#{4d1e55b2-f16f-11cf-88cb-001111000030})");
}

void HidFormatsTest::pathIsBuiltFromIdentityAndNode()
{
    QFETCH(int, vendorId);
    QFETCH(int, productId);
    QFETCH(QString, node);
    QFETCH(QString, path);

    QCOMPARE((DevicePath{vendorId, productId, node}.toString()), path);
    for (const QString &spelling : {path, path.toUpper()}) {
        const auto read = DevicePath::fromString(spelling);
        QVERIFY(read.has_value());
        QCOMPARE(read->vendorId, vendorId);
        QCOMPARE(read->productId, productId);
        QCOMPARE(read->node, node);
    }
}

void HidFormatsTest::strangePathIsRefused_data()
{
    QTest::addColumn<QString>("path");

    const auto row
        = [](const char *name, const char *path) { QTest::newRow(name) << QString::fromLatin1(path); };
    row("empty", "");
    row("the node alone", "hidraw3");
    row("the device file", "/dev/hidraw3");
    row("junk in front", R"(x\\?\hid#vid_352f&pid_000e#hidraw3#{4d1e55b2-f16f-11cf-88cb-001111000030})");
    row("junk behind", R"(\\?\hid#vid_352f&pid_000e#hidraw3#{4d1e55b2-f16f-11cf-88cb-001111000030}x)");
    row("line feed behind", "\\\\?\\hid#vid_352f&pid_000e#hidraw3#{4d1e55b2-f16f-11cf-88cb-001111000030}\n");
    row("short product ID", R"(\\?\hid#vid_352f&pid_0e#hidraw3#{4d1e55b2-f16f-11cf-88cb-001111000030})");
    row("no number", R"(\\?\hid#vid_352f&pid_000e#hidraw#{4d1e55b2-f16f-11cf-88cb-001111000030})");
    row("folders in the node",
        R"(\\?\hid#vid_352f&pid_000e#hidraw3/../../etc#{4d1e55b2-f16f-11cf-88cb-001111000030})");
    row("another node", R"(\\?\hid#vid_352f&pid_000e#ttyS3#{4d1e55b2-f16f-11cf-88cb-001111000030})");
    row("a Windows path",
        R"(\\?\hid#vid_352f&pid_000e&mi_03#7&2d3f&0&0000#{4d1e55b2-f16f-11cf-88cb-001111000030})");
    row("another class", R"(\\?\hid#vid_352f&pid_000e#hidraw3#{4d1e55b2-f16f-11cf-88cb-001111000031})");
}

void HidFormatsTest::strangePathIsRefused()
{
    QFETCH(QString, path);
    QVERIFY(!DevicePath::fromString(path).has_value());
}

QUILLON_TEST_CORE(HidFormatsTest)
#include "tst_hid_formats.moc"
