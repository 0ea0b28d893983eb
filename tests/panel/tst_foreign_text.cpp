// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Texts from outside: what of them is shown, and that no text keeps the GUI thread.
#include "panel/ForeignText.h"
#include "tests/panel/PanelStage.h"
#include "tests/support/GuiHold.h"
#include "tests/support/TestProgram.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QTest>
#include <QTextEdit>

using namespace Qt::StringLiterals;
using namespace QuillonFirmwareUpgrade;

class ForeignTextTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void notesAreShown_data();
    void notesAreShown();
    void longNotesAreCut_data();
    void longNotesAreCut();
    void versionsAreShown_data();
    void versionsAreShown();
    void nothingThatIsShownHoldsTheGuiThread_data();
    void nothingThatIsShownHoldsTheGuiThread();
    void noAnswerHoldsTheGuiThread_data();
    void noAnswerHoldsTheGuiThread();
    void endlessVersionsAreNotShown();
};

namespace {
constexpr int kMillion = 1'000'000;
/// In both languages together that makes a million.
constexpr int kHugeNotes = kMillion / 2;
constexpr int kLongestAnswer = 4'000'000;

QString mostOf(const QString &piece, qsizetype length)
{
    return piece.repeated(length / piece.size());
}

/// Notes of which \a inside is the last that could be shown, and \a outside is too much.
QString toTheLimit(const QString &inside, const QString &outside)
{
    QString notes(ForeignText::kLongestNotes - inside.size(), u'x');
    notes += inside;
    notes += outside;
    return notes;
}

QByteArray listOfNotes(const QString &notes)
{
    const QJsonObject newest{{u"f_ver"_s, u"2.0.0"_s}, {u"f_remark"_s, notes}, {u"f_remark_en"_s, notes}};
    return QJsonDocument(QJsonArray{newest}).toJson(QJsonDocument::Compact);
}

/// An upgrade is planned, so that the panel asks for notes and shows them.
struct Planned : PanelStage {
    Planned()
    {
        panel->show();
        panel->pretendPlan(UpgradePlan::Both);
        panel->pretendVersions(u"1.2.0"_s, u"2.0.0"_s, u"1.2.0"_s, u"2.0.0"_s);
        QCoreApplication::processEvents();
    }
};
} // namespace

void ForeignTextTest::notesAreShown_data()
{
    QTest::addColumn<QString>("notes");
    QTest::addColumn<QString>("shown");
    const auto asTheyAre
        = [](const char *row, const QString &notes) { QTest::newRow(row) << notes << notes; };
    asTheyAre("none", QString());
    asTheyAre("lines", u"1. 修复若干问题\n2. Stability\n\n\tindented"_s);
    asTheyAre("what looks like markup", u"<b>a</b> &amp; <img src=x>"_s);
    asTheyAre("Hebrew and Arabic", u"שָׁלוֹם مرحبًا"_s);
    asTheyAre("joined letters", u"می\u200cخواهم क्\u200dष"_s);
    asTheyAre("marks of a direction", u"C++\u200e, \u200fא"_s);
    asTheyAre("pictures", u"👩\u200d👩\u200d👧 🇨🇳 ☺\ufe0f"_s);
    asTheyAre("Vietnamese in pieces", u"e\u0302\u0323\u0301"_s);
    asTheyAre("the longest word", QString(100, u'x'));
    asTheyAre("the longest notes", mostOf(QString(99, u'x') + u' ', ForeignText::kLongestNotes));

    QTest::newRow("a longer word") << QString(102, u'x') << QString(100, u'x') + u"\u200bxx"_s;
    QTest::newRow("a longer one that no line should begin behind")
        << QString(100, u'固') + u"。b"_s << QString(100, u'固') + u"。\u200bb"_s;
    QTest::newRow("lines of Windows") << u"a\r\nb\r\n"_s << u"a\nb\n"_s;
    QTest::newRow("other ends of a line") << u"a\rb\u2028c\u2029d\fe\vf\u0085g"_s << u"a\nb\nc\nd\ne\nf\ng"_s;
    QTest::newRow("controls") << u"a\u0000b\u0007c\u001bd\u007fe\u009cf"_s << u"abcdef"_s;
    QTest::newRow("overrides") << u"\u202etxe.\u202cexe \u202da\u202ab\u202bc"_s << u"txe.exe abc"_s;
    QTest::newRow("isolates") << u"\u2066a\u2067b\u2068c\u2069"_s << u"abc"_s;
    QTest::newRow("what is never seen") << u"\ufeffa\u2060b\u2063c\U000e0041d"_s << u"abcd"_s;
    QTest::newRow("objects, and a document's own marks") << u"a\ufffcb\ufdd0c\ufdd1d\uffffe"_s << u"abcde"_s;
    QTest::newRow("half a character") << u"a"_s + QChar(0xd83d) + u"b"_s << u"a\ufffdb"_s;
    QTest::newRow("marks heaped on a letter") << u"a"_s + QString(500, QChar(0x0301)) + u"b\u0301"_s
                                              << u"a"_s + QString(4, QChar(0x0301)) + u"b\u0301"_s;
    QTest::newRow("marks heaped by means of joiners")
        << u"a"_s + mostOf(u"\u0301\u200d"_s, 20) << u"a"_s + mostOf(u"\u0301\u200d"_s, 8);
}

void ForeignTextTest::notesAreShown()
{
    QFETCH(QString, notes);
    QTEST(ForeignText::shownNotes(notes), "shown");
}

void ForeignTextTest::longNotesAreCut_data()
{
    QTest::addColumn<QString>("notes");
    QTest::addColumn<QString>("end");
    QTest::newRow("in a word without end") << QString(kMillion, u'x') << u"xxx…"_s;
    QTest::newRow("behind a word") << toTheLimit(u" one two"_s, u"three four"_s) << u" one…"_s;
    QTest::newRow("behind a line") << toTheLimit(u" one\n\n  two"_s, u"three"_s) << u" one…"_s;
    QTest::newRow("behind a whole character")
        << u"x"_s + mostOf(u"\U0001f600"_s, kMillion) << u"\U0001f600…"_s;
    QTest::newRow("behind a whole character, the line end being shorter")
        << u"\r\nx"_s + mostOf(u"\U0001f600"_s, kMillion) << u"\U0001f600…"_s;
    QTest::newRow("where nothing can be seen") << QString(kMillion, QChar(0x202e)) << u"…"_s;
    QTest::newRow("where there are line ends only") << u"x"_s + QString(kMillion, u'\n') << u"x…"_s;
}

void ForeignTextTest::longNotesAreCut()
{
    QFETCH(QString, notes);
    QFETCH(QString, end);
    const QString shown = ForeignText::shownNotes(notes);
    QVERIFY2(shown.endsWith(end), qPrintable(shown.right(20)));
    QVERIFY(QString(shown).remove(QChar(0x200b)).size() <= ForeignText::kLongestNotes);
    QVERIFY(QStringView(shown).isValidUtf16());
    QCOMPARE(shown.count(u'…'), 1);
}

void ForeignTextTest::versionsAreShown_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("shown");
    QTest::newRow("a plain one") << u"1.2.3"_s << u"1.2.3"_s;
    QTest::newRow("words") << u" v1.2-β 测试"_s << u" v1.2-β 测试"_s;
    QTest::newRow("several lines") << u"1\n2\t3\r\n4"_s << u"1 2 3 4"_s;
    QTest::newRow("turned around") << u"\u202e3.2.1"_s << u"3.2.1"_s;
    QTest::newRow("the longest") << QString(24, u'1') << QString(24, u'1');
    QTest::newRow("a longer one") << QString(25, u'1') << QString(23, u'1') + u'…';
}

void ForeignTextTest::versionsAreShown()
{
    QFETCH(QString, version);
    QFETCH(QString, shown);
    QCOMPARE(ForeignText::shownVersion(version), shown);
    Planned stage;
    stage.server.answer(ServerPaths::kR2PcVersion, ScriptedHttpServer::version("2.0.0"));
    stage.panel->pretendServerVersion(Chip::Pc, version);
    stage.panel->pretendDeviceVersion(Chip::Pc, version);
    stage.panel->updateScreen();
    QCOMPARE(stage.panel->newVersion()->text(), u'V' + shown);
    QCOMPARE(stage.panel->currentVersion()->text(), u'V' + shown);
}

void ForeignTextTest::nothingThatIsShownHoldsTheGuiThread_data()
{
    QTest::addColumn<QString>("notes");
    const auto row
        = [](const char *name, const QString &piece) { QTest::newRow(name) << mostOf(piece, kHugeNotes); };
    row("one word", u"W"_s);
    row("words", u"word "_s);
    row("line ends", u"\n"_s);
    row("tabs", u"\t"_s);
    row("an Arabic word", u"م"_s);
    row("Arabic words", u"مرحبا "_s);
    row("directions in turn", u"aم"_s);
    row("directions in turn, in ready-made shapes", u"aﻡ"_s);
    row("directions in turn, of old scripts", u"𝐚𐤀"_s);
    row("directions in turn, of marks alone", u"_\u200e_\u200f"_s);
    row("directions in turn, of full stops", u"。\u200f。\u200e"_s);
    row("underlines", u"_"_s);
    row("small kana", u"っ"_s);
    row("Chinese", u"固"_s);
    row("pictures", u"😀"_s);
    row("joined pictures", u"👩\u200d"_s);
    row("marks", u"\u0301"_s);
    row("marked letters", u"a\u0301\u0302\u0303\u0304"_s);
    row("joiners", u"\u200d"_s);
    row("overrides", u"\u202e\u202da"_s);
    row("the widest letter", u"\ufdfd"_s);
    row("soft hyphens", u"a\u00ad"_s);
}

void ForeignTextTest::nothingThatIsShownHoldsTheGuiThread()
{
    QFETCH(QString, notes);
    Planned stage;
    // The first use of a script has its font loaded, however short the text.
    stage.panel->notes()->setPlainText(notes.left(10));
    stage.panel->grab();
    stage.server.answer(ServerPaths::kR2PcVersion, ScriptedHttpServer::page(listOfNotes(notes)));

    GuiHold hold;
    stage.panel->updateScreen();
    QCoreApplication::processEvents();
    QuillonFirmwareUpgrade::setLanguage(Language::English);
    QCoreApplication::processEvents();
    QVERIFY2(hold.longest() <= kLongestHold, qPrintable(QString::number(hold.longest().count())));
    QCOMPARE(networking_class::getInstance()->f_remark.size(), notes.size());
    QCOMPARE(networking_class::getInstance()->f_remark_en.size(), notes.size());
}

void ForeignTextTest::noAnswerHoldsTheGuiThread_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("notes");
    const auto row
        = [](const char *name, const QByteArray &begin, const QByteArray &piece, const QByteArray &end) {
              QTest::newRow(name) << begin + piece.repeated(kLongestAnswer / piece.size()) + end << QString();
          };
    row("numbers", "[", "0,", "0]");
    row("lists", "[", "[],", "0]");
    row("objects", "[", "{},", "0]");
    row("names", "[{", "\"k\":0,", "\"k\":0}]");
    const QString notes(kLongestAnswer, u'W');
    QTest::newRow("notes") << "[{\"f_remark\":\"" + notes.toLatin1() + "\"}]" << notes;
    row("a version", "[{\"f_ver\":\"", "1.", "\"}]");
    row("lists in lists", "[", "[", "]");
}

void ForeignTextTest::noAnswerHoldsTheGuiThread()
{
    QFETCH(QByteArray, answer);
    Planned stage;
    stage.server.answer(ServerPaths::kR2PcVersion, ScriptedHttpServer::page(answer));
    GuiHold hold;
    stage.panel->updateScreen();
    QVERIFY2(hold.longest() <= kLongestHold, qPrintable(QString::number(hold.longest().count())));
    QCOMPARE(stage.log.startingWith(u"request"_s), QStringList());
    QTEST(networking_class::getInstance()->f_remark, "notes");
}

void ForeignTextTest::endlessVersionsAreNotShown()
{
    Planned stage;
    stage.panel->pretendVersions(QString(), QString(), QString(), QString());
    stage.server.answer(ServerPaths::kR2PcVersion, ScriptedHttpServer::version(QByteArray(kMillion, '9')));
    stage.panel->startRun();
    QCOMPARE(stage.panel->serverVersion(Chip::Pc), u"104"_s);
}

QUILLON_TEST(ForeignTextTest)
#include "tst_foreign_text.moc"
