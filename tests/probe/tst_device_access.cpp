// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Who may open a device on Linux, how that is noticed, and the rules file that grants it.
#include "device/ModelTable.h"
#include "hid/access/DenialWatch.h"
#include "hid/access/DeviceAccess.h"
#include "tests/probe/AsOrdinaryUser.h"
#include "tests/support/ScriptedTransport.h"
#include "tests/support/TestProgram.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using HIDCommunicator::OrvikHIDManager;

namespace {

/// One "key operator value" of a rules file.
struct RuleTerm {
    QString key;
    QString sign;
    QString value;
};

QList<RuleTerm> termsOf(const QString &line)
{
    static const QRegularExpression term(
        QStringLiteral("\\s*([A-Z]+(?:\\{[A-Za-z]+\\})?)(==|\\+=|=)\"([^\"]*)\"\\s*(?:,|$)"));
    QList<RuleTerm> terms;
    qsizetype at = 0;
    while (at < line.size()) {
        const auto match = term.match(line, at, QRegularExpression::NormalMatch,
                                      QRegularExpression::AnchorAtOffsetMatchOption);
        if (!match.hasMatch())
            return {};
        terms.append({match.captured(1), match.captured(2), match.captured(3)});
        at = match.capturedEnd();
    }
    return terms;
}

} // namespace

class DeviceAccessTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void filesAreDenied_data();
    void filesAreDenied();
    void pathsThatAreNoDeviceAreNotDenied_data();
    void pathsThatAreNoDeviceAreNotDenied();
    void denialIsToldOnce();
    void rulesGrantWhatIsMissing();
    void rulesComeBeforeThoseThatActOnTheTag();
    void hintNamesTheRulesFile();
    void shellWords_data();
    void shellWords();
};

void DeviceAccessTest::filesAreDenied_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("denied");
    QTest::newRow("nobody's") << 0000 << true;
    QTest::newRow("to read only") << 0444 << true;
    QTest::newRow("to write only") << 0222 << true;
    QTest::newRow("to read and write") << 0666 << false;
}

void DeviceAccessTest::filesAreDenied()
{
    QFETCH(int, mode);
    QTemporaryDir folder;
    QVERIFY(QFile::setPermissions(folder.path(), QFile::Permissions(0x7777)));
    QFile file(folder.filePath(u"hidraw0"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    // The digits of QFile::Permissions are those of chmod, in hexadecimal, the user's twice.
    const int other = mode & 7;
    QVERIFY(file.setPermissions(QFile::Permissions(other << 12 | other << 8 | other << 4 | other)));

    const AsOrdinaryUser user;
    QTEST(DeviceAccess::isFileDenied(file.fileName()), "denied");
    QVERIFY(!DeviceAccess::isFileDenied(folder.filePath(u"hidraw1"_s))); // not there: nothing is missing
}

void DeviceAccessTest::pathsThatAreNoDeviceAreNotDenied_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("nothing") << QString();
    QTest::newRow("a file of root's") << u"/etc/shadow"_s;
    QTest::newRow("a device that is not there")
        << QStringLiteral(R"(\\?\hid#vid_352f&pid_000e#hidraw987654#{4d1e55b2-f16f-11cf-88cb-001111000030})");
    QTest::newRow("a folder up") << QStringLiteral(
        R"(\\?\hid#vid_352f&pid_000e#../etc/shadow#{4d1e55b2-f16f-11cf-88cb-001111000030})");
}

void DeviceAccessTest::pathsThatAreNoDeviceAreNotDenied()
{
    QFETCH(QString, path);
    const AsOrdinaryUser user;
    QVERIFY(!DeviceAccess::isDenied(path));
}

void DeviceAccessTest::denialIsToldOnce()
{
    ScriptedBus *const bus = ScriptedBus::install();
    const QString mine = bus->plug(0x000E, 1);
    int scans = 0;
    QStringList told;
    const DenialWatch watch([&](const QString &path) { return path != mine; },
                            [&](const QString &hint) { told.append(hint); });
    connect(
        OrvikHIDManager::instance(), &OrvikHIDManager::deviceListChanged, this, [&] { ++scans; },
        Qt::QueuedConnection);
    OrvikHIDManager::instance()->acquire();
    QTRY_VERIFY(scans >= 1);
    QVERIFY(!watch.hasTold());

    bus->plug(0x000E, 2);
    QTRY_VERIFY(watch.hasTold());
    const int before = scans;
    QTRY_VERIFY(scans >= before + 2);
    OrvikHIDManager::instance()->release();
    QCOMPARE(told, QStringList(DeviceAccess::hint()));
}

void DeviceAccessTest::rulesGrantWhatIsMissing()
{
    QFile file(QStringLiteral(QUILLON_UDEV_RULES));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QStringList rules;
    for (const QString &line : QString::fromUtf8(file.readAll()).split(u'\n')) {
        if (!line.isEmpty() && !line.startsWith(u'#'))
            rules.append(line);
    }
    QCOMPARE(rules.size(), 1);
    QStringList terms;
    for (const RuleTerm &term : termsOf(rules.first()))
        terms.append(term.key + term.sign + term.value);
    const QString vendor = QString::number(QuillonFirmwareUpgrade::kVendorId, 16);
    QCOMPARE(terms,
             QStringList({u"SUBSYSTEM==hidraw"_s, u"ATTRS{idVendor}=="_s + vendor, u"MODE=0660"_s,
                          u"GROUP=plugdev"_s, u"TAG+=uaccess"_s}));
}

void DeviceAccessTest::rulesComeBeforeThoseThatActOnTheTag()
{
    const QString name = QFileInfo(QStringLiteral(QUILLON_UDEV_RULES)).fileName();
    QVERIFY2(name < u"73-seat-late.rules"_s, qPrintable(name));
    QVERIFY2(name.endsWith(u".rules"_s), qPrintable(name));
}

void DeviceAccessTest::hintNamesTheRulesFile()
{
    const QString hint = DeviceAccess::hint();
    const QString rules = QStringLiteral(QUILLON_UDEV_RULES);
    QVERIFY2(hint.contains(u"sudo install -D -m 644 "_s + DeviceAccess::shellWord(rules)
                           + u" /etc/udev/rules.d/"_s + QFileInfo(rules).fileName()
                           + u" && sudo udevadm control --reload && sudo udevadm trigger "_s),
             qPrintable(hint));
}

void DeviceAccessTest::shellWords_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("word");
    QTest::newRow("plain") << u"/opt/a-b_c.1/x"_s << u"/opt/a-b_c.1/x"_s;
    QTest::newRow("a blank") << u"/my files/x"_s << u"'/my files/x'"_s;
    QTest::newRow("a quote") << u"/it's/x"_s << u"'/it'\\''s/x'"_s;
    QTest::newRow("what a shell would run") << u"/$(reboot)/x"_s << u"'/$(reboot)/x'"_s;
    QTest::newRow("letters of another language") << u"/音/x"_s << u"'/音/x'"_s;
}

void DeviceAccessTest::shellWords()
{
    QFETCH(QString, path);
    QTEST(DeviceAccess::shellWord(path), "word");
}

QUILLON_TEST_CORE(DeviceAccessTest)
#include "tst_device_access.moc"
