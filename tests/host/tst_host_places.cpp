// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// quillon-host in folders whose names are not made of Latin letters alone, with the user's folders there,
// too: the paths reach the flashing tool, and a whole upgrade succeeds.
#include "tests/support/TestProgram.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class HostPlacesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anUpgradeSucceeds_data();
    void anUpgradeSucceeds();

private:
    /// A copy of the host with what has to lie beside it: the path of its program.
    static QString copyHostTo(const QString &folder);
};

QString HostPlacesTest::copyHostTo(const QString &folder)
{
    const QFileInfo host(QStringLiteral(QUILLON_HOST));
    QStringList names = host.dir().entryList({u"*.dll"_s}, QDir::Files);
    names << host.fileName() << u"OrvikFirmwareUpdata.exe"_s;
    for (const QString &name : std::as_const(names)) {
        if (!QFile::copy(host.dir().filePath(name), folder + u'/' + name))
            qFatal("cannot copy %s", qPrintable(name));
    }
    return folder + u'/' + host.fileName();
}

void HostPlacesTest::anUpgradeSucceeds_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("a German name") << u"Jörg Müller"_s;
    QTest::newRow("a Chinese name") << u"用户 一"_s;
    QTest::newRow("a company with signs") << u"O'Brien & Söhne 100%"_s;
    QTest::newRow("brackets and blanks at both ends of a word") << u"a (x86)  b;c"_s;
}

void HostPlacesTest::anUpgradeSucceeds()
{
    QFETCH(QString, name);
    const QTemporaryDir folder;
    const QDir place(folder.filePath(name));
    QVERIFY(place.mkpath(u"temporary files"_s));
    const QString scenario = place.filePath(u"升级 – one.scn"_s);
    QVERIFY(QFile::copy(QStringLiteral(QUILLON_SCENARIO_DIR "/pc-only.scn"), scenario));
    // The home and the folder for images are made among the temporary files.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *variable : {"TMPDIR", "TMP", "TEMP"})
        environment.insert(QString::fromLatin1(variable), place.filePath(u"temporary files"_s));

    QProcess host;
    host.setProcessEnvironment(environment);
    host.setProcessChannelMode(QProcess::MergedChannels);
    host.start(copyHostTo(place.path()),
               {u"--simulate"_s, u"--headless"_s, u"--scenario"_s, scenario, u"--record"_s,
                place.filePath(u"记录 1"_s)});
    constexpr int kPatience = 600'000;
    QVERIFY(host.waitForFinished(kPatience));
    const QByteArray said = host.readAll();
    QVERIFY2(host.exitCode() == 0 && host.exitStatus() == QProcess::NormalExit, said.constData());

    QFile log(place.filePath(u"记录 1/log.txt"_s));
    QVERIFY(log.open(QIODevice::ReadOnly));
    const QByteArray image = place.filePath(u"temporary files"_s).toUtf8();
    QVERIFY2(log.readAll().contains(image), "the tool got its image from somewhere else");
}

QUILLON_TEST_CORE(HostPlacesTest)
#include "tst_host_places.moc"
