// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/BootLoaderReports.h"
#include "rig/LittleEndian.h"
#include "rig/RegisterReports.h"
#include "rig/usb/UsbDescriptors.h"
#include "tests/support/TestProgram.h"

#include <QTest>

#include <linux/usb/functionfs.h>

using namespace rig;

namespace {

constexpr int kHead = 5 * 4; // mark, length, flags, and how many descriptors for either speed
constexpr int kInterface = 4; // descriptor types
constexpr int kEndpoint = 5;
constexpr int kHid = 0x21;

// The descriptors one after the other; the last is empty when they do not end where the bytes do.
QList<QByteArray> descriptorsIn(const QByteArray &bytes)
{
    QList<QByteArray> found;
    for (qsizetype at = 0; at < bytes.size(); at += found.last().size()) {
        const int length = quint8(bytes.at(at));
        found.append(length >= 2 && at + length <= bytes.size() ? bytes.mid(at, length) : QByteArray());
        if (found.last().isEmpty())
            break;
    }
    return found;
}

} // namespace

// What a host is told of the device. The kernel refuses a part that does not fit without saying which.
class RigUsbDescriptorsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theHeadCountsWhatFollows();
    void eachSpeedHasTheSameInterface();
    void theReportDescriptorIsAsLongAsAnnounced();
    void bothReportsAreDeclared_data();
    void bothReportsAreDeclared();
    void thereAreNoStrings();
};

void RigUsbDescriptorsTest::theHeadCountsWhatFollows()
{
    const QByteArray all = usb::interfaceDescriptors();
    QCOMPARE(numberAt<quint32>(all, 0), quint32(FUNCTIONFS_DESCRIPTORS_MAGIC_V2));
    QCOMPARE(numberAt<quint32>(all, 4), quint32(all.size()));
    const QList<QByteArray> descriptors = descriptorsIn(all.sliced(kHead));
    QVERIFY(!descriptors.last().isEmpty());
    QCOMPARE(numberAt<quint32>(all, 12) + numberAt<quint32>(all, 16), quint32(descriptors.size()));
}

void RigUsbDescriptorsTest::eachSpeedHasTheSameInterface()
{
    const QList<QByteArray> all = descriptorsIn(usb::interfaceDescriptors().sliced(kHead));
    QList<int> types;
    for (const QByteArray &descriptor : all)
        types.append(descriptor.at(1));
    const QList<int> oneSpeed{kInterface, kHid, kEndpoint, kEndpoint};
    QCOMPARE(types, oneSpeed + oneSpeed);
    QCOMPARE(quint8(all.at(2).at(2)), quint8(0x81)); // IN comes first
    QCOMPARE(quint8(all.at(3).at(2)), quint8(0x02));
    for (const int endpoint : {2, 3, 6, 7})
        QCOMPARE(numberAt<quint16>(all.at(endpoint), 4), quint16(64));
}

void RigUsbDescriptorsTest::theReportDescriptorIsAsLongAsAnnounced()
{
    const QByteArray hid = descriptorsIn(usb::interfaceDescriptors().sliced(kHead)).at(1);
    QCOMPARE(numberAt<quint16>(hid, 7), quint16(usb::reportDescriptor().size()));
}

void RigUsbDescriptorsTest::bothReportsAreDeclared_data()
{
    QTest::addColumn<char>("id");
    QTest::newRow("register protocol") << kReportId;
    QTest::newRow("boot loader") << kBootLoaderReportId;
}

void RigUsbDescriptorsTest::bothReportsAreDeclared()
{
    QFETCH(char, id);
    const QByteArray &descriptor = usb::reportDescriptor();
    QVERIFY(descriptor.contains(QByteArray::fromHex("75089540"))); // 64 bytes
    const qsizetype at = descriptor.indexOf(QByteArray("\x85").append(id));
    QVERIFY(at >= 0);
    const QByteArray items = descriptor.mid(at + 2, 8);
    QVERIFY(items.contains(QByteArray::fromHex("8102")) && items.contains(QByteArray::fromHex("9102")));
}

void RigUsbDescriptorsTest::thereAreNoStrings()
{
    const QByteArray strings = usb::interfaceStrings();
    QCOMPARE(strings.size(), 16);
    QCOMPARE(numberAt<quint32>(strings, 0), quint32(FUNCTIONFS_STRINGS_MAGIC));
    QCOMPARE(numberAt<quint32>(strings, 4), quint32(16));
}

QUILLON_TEST_CORE(RigUsbDescriptorsTest)
#include "tst_rig_usb_descriptors.moc"
