// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Comparing versions, and the rules that follow from version strings alone.
#include "panel/VersionRules.h"
#include "tests/panel/OpenPanel.h"
#include "tests/support/Sandbox.h"
#include "tests/support/ScriptedTransport.h"
#include "tests/support/TestProgram.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace QuillonFirmwareUpgrade;

namespace {
constexpr int kOlder = -1;
constexpr int kEqual = 0;
constexpr int kNewer = 1;
} // namespace

class VersionsTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();

    void compare_data();
    void compare();
    void panelComparesByTheSameRule();
    void planLogNames_data();
    void planLogNames();
    void tooOld_data();
    void tooOld();
    void upToDate_data();
    void upToDate();
};

void VersionsTest::initTestCase()
{
    ScriptedBus::install();
}

void VersionsTest::compare_data()
{
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<int>("order");
    QTest::newRow("the same") << u"1.1.1"_s << u"1.1.1"_s << kEqual;
    QTest::newRow("patch") << u"1.1.1"_s << u"1.1.2"_s << kOlder;
    QTest::newRow("minor counts before patch") << u"1.1.9"_s << u"1.2.0"_s << kOlder;
    QTest::newRow("major counts before minor") << u"1.9.9"_s << u"2.0.0"_s << kOlder;
    QTest::newRow("by number, not by letter: 1.10 is newer than 1.9") << u"1.10"_s << u"1.9"_s << kNewer;
    QTest::newRow("a missing part is 0: 1.2 equals 1.2.0") << u"1.2"_s << u"1.2.0"_s << kEqual;
    QTest::newRow("a missing part is 0: 1.2 is older than 1.2.1") << u"1.2"_s << u"1.2.1"_s << kOlder;
    QTest::newRow("a fourth part counts") << u"1.2.3.1"_s << u"1.2.3"_s << kNewer;
    QTest::newRow("letters are 0: 1.x.3 equals 1.0.3") << u"1.x.3"_s << u"1.0.3"_s << kEqual;
    QTest::newRow("a number with letters behind it is 0") << u"1.2a.3"_s << u"1.0.3"_s << kEqual;
    QTest::newRow("an empty part is kept and is 0: 1..2 equals 1.0.2") << u"1..2"_s << u"1.0.2"_s << kEqual;
    QTest::newRow("an empty part is kept: 1..2 is not 1.2") << u"1..2"_s << u"1.2"_s << kOlder;
    QTest::newRow("a leading dot is an empty part") << u".1"_s << u"0.1"_s << kEqual;
    QTest::newRow("a trailing dot is an empty part") << u"1.1."_s << u"1.1.0"_s << kEqual;
    QTest::newRow("only dots") << u"..."_s << u"0"_s << kEqual;
    QTest::newRow("both empty") << QString() << u""_s << kEqual;
    QTest::newRow("empty is 0") << QString() << u"0.0.0"_s << kEqual;
    QTest::newRow("empty is older than anything above 0") << QString() << u"0.0.1"_s << kOlder;
    QTest::newRow("leading zeros do not count") << u"01.002.3"_s << u"1.2.03"_s << kEqual;
    QTest::newRow("not octal") << u"1.010.0"_s << u"1.8.0"_s << kNewer;
    QTest::newRow("not hexadecimal") << u"1.0x10.0"_s << u"1.0.0"_s << kEqual;
    QTest::newRow("signed: -1.0.0 is older than 0.0.0") << u"-1.0.0"_s << u"0.0.0"_s << kOlder;
    QTest::newRow("signed: -2 is older than -1") << u"-2.9"_s << u"-1.0"_s << kOlder;
    QTest::newRow("the largest number") << u"2147483647.0"_s << u"2147483646.9"_s << kNewer;
    QTest::newRow("lowest against largest does not wrap around")
        << u"-2147483648"_s << u"2147483647"_s << kOlder;
    QTest::newRow("beyond an int is no number") << u"99999999999.1"_s << u"0.1"_s << kEqual;
    QTest::newRow("the first difference decides") << u"2.0.0"_s << u"1.9.9"_s << kNewer;
    QTest::newRow("text without a number") << u"abc"_s << u"0.0"_s << kEqual;
    QTest::newRow("other digits are no digits") << u"１.２"_s << u"0.0"_s << kEqual;
    QTest::newRow("thousands of parts") << QString(5000, u'.') << QString(4999, u'.') << kEqual;
}

void VersionsTest::compare()
{
    QFETCH(QString, a);
    QFETCH(QString, b);
    QFETCH(int, order);

    QCOMPARE(VersionRules::compare(a, b), order);
    QCOMPARE(VersionRules::compare(b, a), -order);
    QCOMPARE(VersionRules::compare(a, a), kEqual);
}

void VersionsTest::panelComparesByTheSameRule()
{
    const Sandbox sandbox;
    OpenPanel panel;

    QCOMPARE(panel.compareVersions(u"1.9"_s, u"1.10"_s), kOlder);
    QCOMPARE(panel.compareVersions(u"1.10"_s, u"1.9"_s), kNewer);
    QCOMPARE(panel.compareVersions(u"1.x.3"_s, u"1.0.3"_s), kEqual);
    QCOMPARE(panel.compareVersions(QString(), QString()), kEqual);
}

void VersionsTest::planLogNames_data()
{
    QTest::addColumn<UpgradePlan>("plan");
    QTest::addColumn<QString>("name");
    QTest::newRow("None reads OtgOnly") << UpgradePlan::None << u"OtgOnly"_s;
    QTest::newRow("PcOnly") << UpgradePlan::PcOnly << u"PcOnly"_s;
    QTest::newRow("OtgOnly") << UpgradePlan::OtgOnly << u"OtgOnly"_s;
    QTest::newRow("Both") << UpgradePlan::Both << u"Both"_s;
    QTest::newRow("4 reads OtgOnly") << UpgradePlan(4) << u"OtgOnly"_s;
    QTest::newRow("-1 reads OtgOnly") << UpgradePlan(-1) << u"OtgOnly"_s;
}

void VersionsTest::planLogNames()
{
    QFETCH(UpgradePlan, plan);

    QTEST(VersionRules::planLogName(plan), "name");
}

void VersionsTest::tooOld_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<bool>("isTooOld");
    QTest::newRow("1.0.9") << u"1.0.9"_s << true;
    QTest::newRow("1.1.0") << u"1.1.0"_s << true;
    QTest::newRow("1.1 is 1.1.0") << u"1.1"_s << true;
    QTest::newRow("1.1.1 is allowed") << u"1.1.1"_s << false;
    QTest::newRow("1.1.1.0 is 1.1.1") << u"1.1.1.0"_s << false;
    QTest::newRow("1.1.10") << u"1.1.10"_s << false;
    QTest::newRow("a device without firmware") << u"0.0.0"_s << true;
    QTest::newRow("negative registers") << u"-1.0.0"_s << true;
    QTest::newRow("not known yet never blocks") << QString() << false;
}

void VersionsTest::tooOld()
{
    QFETCH(QString, version);

    QTEST(VersionRules::isTooOld(version), "isTooOld");
}

void VersionsTest::upToDate_data()
{
    QTest::addColumn<QString>("device");
    QTest::addColumn<QString>("remote");
    QTest::addColumn<bool>("isUpToDate");
    QTest::newRow("equal") << u"1.2.3"_s << u"1.2.3"_s << true;
    QTest::newRow("device newer") << u"1.2.4"_s << u"1.2.3"_s << true;
    QTest::newRow("device older") << u"1.2.2"_s << u"1.2.3"_s << false;
    QTest::newRow("device not known") << QString() << u"1.2.3"_s << false;
    QTest::newRow("server not known") << u"1.2.3"_s << QString() << false;
    QTest::newRow("neither known") << QString() << QString() << false;
}

void VersionsTest::upToDate()
{
    QFETCH(QString, device);
    QFETCH(QString, remote);

    QTEST(VersionRules::isUpToDate(device, remote), "isUpToDate");
}

QUILLON_TEST(VersionsTest)
#include "tst_versions.moc"
