// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Which of a device's top-level collections the panel takes on Windows.
#include "CollectionOrder.h"
#include "tests/support/TestProgram.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace HIDCommunicator;

namespace {
const QString kMouse = u"\\\\?\\hid#vid_352f&pid_000e&mi_03&col01#8&1a2b&0&0000#{4d1e55b2}"_s;
const QString kFamily = u"\\\\?\\hid#vid_352f&pid_000e&mi_03&col02#8&1a2b&0&0001#{4d1e55b2}"_s;
const QString kOther = u"\\\\?\\hid#vid_352f&pid_000e&mi_03&col03#8&1a2b&0&0002#{4d1e55b2}"_s;
const QString kTwin = u"\\\\?\\hid#vid_352f&pid_000e&mi_03&col02#8&ffff&0&0001#{4d1e55b2}"_s;
const QString kAlone = u"\\\\?\\hid#vid_352f&pid_000e#7&77&0&0000#{4d1e55b2}"_s;

const CollectionReports kFamilyReports{{0x51}, {0x51}};
const CollectionReports kMouseReports{{0x01, 0x01, 0x02}, {}};
const std::optional<CollectionReports> kNoAnswer;

HidCollection collection(const QString &path, const std::optional<CollectionReports> &reports)
{
    return {{path, 0x352F, 0x000E}, reports};
}
} // namespace

Q_DECLARE_METATYPE(HidCollection)
Q_DECLARE_METATYPE(FamilyReports)

class HidCollectionsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void familyReportsGoBothWays_data();
    void familyReportsGoBothWays();
    void withoutAnAnswerItMayBeSo();
    void theOneWithFamilyReportsIsLast_data();
    void theOneWithFamilyReportsIsLast();
    void theIdentityStaysWithItsPath();
};

void HidCollectionsTest::familyReportsGoBothWays_data()
{
    QTest::addColumn<QList<quint8>>("input");
    QTest::addColumn<QList<quint8>>("output");
    QTest::addColumn<FamilyReports>("carries");
    using Ids = QList<quint8>;
    QTest::newRow("in and out") << Ids{0x51} << Ids{0x51} << FamilyReports::Yes;
    QTest::newRow("in and out, among others")
        << Ids{0x01, 0x51, 0x51} << Ids{0x51, 0xFF} << FamilyReports::Yes;
    QTest::newRow("in alone") << Ids{0x51} << Ids{} << FamilyReports::No;
    QTest::newRow("out alone") << Ids{} << Ids{0x51} << FamilyReports::No;
    QTest::newRow("another ID out") << Ids{0x51} << Ids{0x52} << FamilyReports::No;
    QTest::newRow("without IDs") << Ids{0x00} << Ids{0x00} << FamilyReports::No;
    QTest::newRow("no IDs at all") << Ids{} << Ids{} << FamilyReports::No;
}

void HidCollectionsTest::familyReportsGoBothWays()
{
    QFETCH(QList<quint8>, input);
    QFETCH(QList<quint8>, output);
    QTEST(familyReports(CollectionReports{input, output}), "carries");
}

void HidCollectionsTest::withoutAnAnswerItMayBeSo()
{
    QCOMPARE(familyReports(kNoAnswer), FamilyReports::Unknown);
}

void HidCollectionsTest::theOneWithFamilyReportsIsLast_data()
{
    QTest::addColumn<QList<HidCollection>>("collections");
    QTest::addColumn<QStringList>("paths");
    using Collections = QList<HidCollection>;
    const HidCollection mouse = collection(kMouse, kMouseReports);
    const HidCollection family = collection(kFamily, kFamilyReports);
    const HidCollection other = collection(kOther, CollectionReports{{0x51}, {}});
    const HidCollection twin = collection(kTwin, kFamilyReports);

    QTest::newRow("no collection") << Collections{} << QStringList{};
    QTest::newRow("first of three") << Collections{family, mouse, other}
                                    << QStringList{kMouse, kOther, kFamily};
    QTest::newRow("in the middle") << Collections{mouse, family, other}
                                   << QStringList{kMouse, kOther, kFamily};
    QTest::newRow("last already") << Collections{mouse, other, family}
                                  << QStringList{kMouse, kOther, kFamily};
    // The panel still has to see that the device is there.
    QTest::newRow("none of them") << Collections{other, mouse} << QStringList{kOther, kMouse};
    QTest::newRow("two of them, in the system's order")
        << Collections{family, mouse, twin} << QStringList{kMouse, kFamily, kTwin};
    QTest::newRow("the same device twice") << Collections{twin, family} << QStringList{kTwin, kFamily};
    QTest::newRow("a device with one collection")
        << Collections{collection(kAlone, kFamilyReports)} << QStringList{kAlone};
    QTest::newRow("in capitals") << Collections{collection(kFamily.toUpper(), kFamilyReports), mouse}
                                 << QStringList{kMouse, kFamily};
    QTest::newRow("a keyboard that the system keeps to itself")
        << Collections{family, collection(kMouse, kNoAnswer)} << QStringList{kMouse, kFamily};
    QTest::newRow("one that does not tell, before one that does")
        << Collections{family, collection(kTwin, kNoAnswer), mouse} << QStringList{kMouse, kTwin, kFamily};
    QTest::newRow("a path that says nothing")
        << Collections{family, collection(QString(), kNoAnswer)} << QStringList{QString(), kFamily};
}

void HidCollectionsTest::theOneWithFamilyReportsIsLast()
{
    QFETCH(QList<HidCollection>, collections);
    QStringList paths;
    const auto devices = inOrderForThePanel(collections);
    for (const HidDeviceInfo &device : devices)
        paths.append(device.path);
    QTEST(paths, "paths");
}

void HidCollectionsTest::theIdentityStaysWithItsPath()
{
    const auto devices = inOrderForThePanel(
        {{{kFamily, 0x352F, 0x000E}, kFamilyReports}, {{kMouse, 0x352F, 0x00FF}, kMouseReports}});
    QCOMPARE(devices.size(), 2);
    QCOMPARE(devices.at(0).productId, 0x00FF);
    QCOMPARE(devices.at(1).productId, 0x000E);
    QCOMPARE(devices.at(1).vendorId, 0x352F);
}

QUILLON_TEST_CORE(HidCollectionsTest)
#include "tst_hid_collections.moc"
