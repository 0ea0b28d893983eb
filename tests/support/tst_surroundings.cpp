// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/TestProgram.h"

#include <QDir>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QLocale>
#include <QNetworkProxyFactory>
#include <QProcessEnvironment>
#include <QScreen>
#include <QStandardPaths>
#include <QStyle>
#include <QTemporaryDir>
#include <QTimeZone>

using namespace Qt::StringLiterals;

/// What a test finds around it, on a machine whose owner has set everything otherwise: this one is started
/// with another locale, time zone, home, scale, style and proxy.
class SurroundingsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void homeIsEmptyAndItsOwn();
    void temporaryFilesHaveAFolderOfTheirOwn();
    void textsAndTimesAreNobodysInParticular();
    void screenIsTheSame();
    void familiesAreTheSameHoweverManyAreInstalled();
    void noProxyStandsInBetween();
    void callersVariablesAreLeftOut();
};

void SurroundingsTest::homeIsEmptyAndItsOwn()
{
    const QDir home = QDir::home();
    QVERIFY2(home.path().startsWith(u"/tmp/quillon-"), qPrintable(home.path()));
    QVERIFY(QFileInfo(home.path()).isWritable());
    QCOMPARE(home.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), QStringList());
    QVERIFY(QStandardPaths::writableLocation(QStandardPaths::ConfigLocation).startsWith(home.path()));
}

void SurroundingsTest::temporaryFilesHaveAFolderOfTheirOwn()
{
    const QTemporaryDir folder;
    QVERIFY(folder.isValid());
    QCOMPARE(QFileInfo(folder.path()).dir(), QDir(QDir::homePath() + u"/../tmp"_s));
}

void SurroundingsTest::textsAndTimesAreNobodysInParticular()
{
    QCOMPARE(QLocale::system().language(), QLocale::C);
    QCOMPARE(QString::fromLocal8Bit("ü"), u"ü"_s);
    QCOMPARE(QDateTime::currentDateTime().offsetFromUtc(), 0);
}

void SurroundingsTest::screenIsTheSame()
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    QCOMPARE(QGuiApplication::platformName(), u"offscreen"_s);
    QCOMPARE(screen->geometry(), QRect(0, 0, 3840, 2160));
    QCOMPARE(screen->devicePixelRatio(), 1);
    QCOMPARE(screen->logicalDotsPerInch(), 96);
    QCOMPARE(QApplication::style()->name(), u"fusion"_s);
}

void SurroundingsTest::familiesAreTheSameHoweverManyAreInstalled()
{
    const QStringList namedByUse{u"Monospace"_s, u"Sans Serif"_s, u"Serif"_s};
    for (const QString &family : QFontDatabase::families()) {
        const bool isOurs = family.startsWith(u"Roboto") || family.startsWith(u"Noto Sans");
        QVERIFY2(isOurs || namedByUse.contains(family), qPrintable(family));
    }
    QVERIFY(QFontDatabase::hasFamily(u"Roboto"_s));
    QVERIFY(QFontDatabase::hasFamily(u"Noto Sans CJK SC"_s));
    QCOMPARE(QFontInfo(QFont(u"monospace"_s)).family(), u"Noto Sans Mono CJK SC"_s);
    QCOMPARE(QFontInfo(QFont(u"DejaVu Sans"_s)).family(), u"Noto Sans CJK SC"_s);
}

void SurroundingsTest::noProxyStandsInBetween()
{
    const QNetworkProxyQuery query(QUrl(u"http://update.quillon.example"_s));
    const QList<QNetworkProxy> proxies = QNetworkProxyFactory::systemProxyForQuery(query);
    QCOMPARE(proxies, QList<QNetworkProxy>{QNetworkProxy(QNetworkProxy::NoProxy)});
}

void SurroundingsTest::callersVariablesAreLeftOut()
{
    QVERIFY(!QProcessEnvironment::systemEnvironment().contains(u"QUILLON_LEAK"_s));
    QCOMPARE(qEnvironmentVariable("USER"), u"tester"_s);
}

QUILLON_TEST(SurroundingsTest)
#include "tst_surroundings.moc"
