// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/net/ClientTest.h"
#include "tests/support/Sizes.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

using namespace Qt::StringLiterals;

/// What a version query makes of the server's answer.
class VersionAnswerTest : public ClientTest {
    Q_OBJECT

private Q_SLOTS:
    void init() override
    {
        ClientTest::init();
        stage().rememberOldNotes();
    }
    void answersEveryKindOfBody_data();
    void answersEveryKindOfBody();
    void readsTheBodyWhateverTheStatus_data();
    void readsTheBodyWhateverTheStatus();
    void followsARedirect();
    void keepsTheNotesOfTheLastGoodQuery();

private:
};

void VersionAnswerTest::answersEveryKindOfBody_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("notes");
    QTest::addColumn<QString>("englishNotes");
    const QString none;
    const QString failed = u"104"_s;
    const QString oldNotes = u"旧说明"_s;
    const QString oldEnglish = u"old notes"_s;

    QTest::newRow("a list of one complete object")
        << R"([{"f_ver":"1.2.3","f_remark":"新","f_remark_en":"new"}])"_ba << u"1.2.3"_s << u"新"_s
        << u"new"_s;
    QTest::newRow("only a version empties both notes")
        << R"([{"f_ver":"1.2.3"}])"_ba << u"1.2.3"_s << none << none;
    QTest::newRow("no version") << R"([{"f_remark":"新","f_remark_en":"new"}])"_ba << none << u"新"_s
                                << u"new"_s;
    QTest::newRow("a version that is a number")
        << R"([{"f_ver":1.2,"f_remark":"新"}])"_ba << none << u"新"_s << none;
    QTest::newRow("a version that is null") << R"([{"f_ver":null}])"_ba << none << none << none;
    QTest::newRow("a version that is a list") << R"([{"f_ver":["1.2.3"]}])"_ba << none << none << none;
    QTest::newRow("notes that are no strings")
        << R"([{"f_ver":"1.2.3","f_remark":7,"f_remark_en":{"a":"b"}}])"_ba << u"1.2.3"_s << none << none;
    QTest::newRow("keys in another case")
        << R"([{"F_VER":"1.2.3","F_Remark":"新"}])"_ba << none << none << none;
    QTest::newRow("further keys")
        << R"([{"f_id":9,"f_ver":"1.2.3","f_remark":"新","f_remark_en":"new","x":[]}])"_ba << u"1.2.3"_s
        << u"新"_s << u"new"_s;
    QTest::newRow("further elements")
        << R"([{"f_ver":"1.2.3"},{"f_ver":"9.9.9","f_remark":"新"}])"_ba << u"1.2.3"_s << none << none;
    QTest::newRow("a version in any wording")
        << R"([{"f_ver":" v1.2-β "}])"_ba << u" v1.2-β "_s << none << none;
    QTest::newRow("the longest version")
        << "[{\"f_ver\":\""_ba + QByteArray(40, '1') + "\"}]" << QString(40, u'1') << none << none;
    QTest::newRow("a version that is too long to be one")
        << "[{\"f_ver\":\""_ba + QByteArray(41, '1') + "\",\"f_remark\":\"x\"}]" << failed << oldNotes
        << oldEnglish;
    QTest::newRow("a version of two lines")
        << R"([{"f_ver":"1.2.3\n[Upgrade]"}])"_ba << failed << oldNotes << oldEnglish;
    QTest::newRow("a version that turns the text around")
        << R"([{"f_ver":"1.2.3\u202e"}])"_ba << failed << oldNotes << oldEnglish;
    QTest::newRow("notes of a million characters")
        << "[{\"f_ver\":\"1.2.3\",\"f_remark\":\""_ba + QByteArray(1'000'000, 'W') + "\"}]" << u"1.2.3"_s
        << QString(1'000'000, u'W') << none;
    QTest::newRow("an empty object") << "[{}]"_ba << none << none << none;
    QTest::newRow("a first element that is a string") << R"(["1.2.3"])"_ba << none << none << none;
    QTest::newRow("a first element that is a number") << "[104]"_ba << none << none << none;
    QTest::newRow("a first element that is null") << "[null]"_ba << none << none << none;
    QTest::newRow("a first element that is a list") << R"([[{"f_ver":"1.2.3"}]])"_ba << none << none << none;
    QTest::newRow("an object only in second place") << R"([1,{"f_ver":"1.2.3"}])"_ba << none << none << none;
    QTest::newRow("white space around the list")
        << " \r\n\t[{\"f_ver\":\"1.2.3\"}]\n\n"_ba << u"1.2.3"_s << none << none;
    QTest::newRow("notes of several lines")
        << R"([{"f_ver":"1","f_remark":"一\n二","f_remark_en":"1\n\"2\""}])"_ba << u"1"_s << u"一\n二"_s
        << u"1\n\"2\""_s;

    QTest::newRow("an empty list") << "[]"_ba << failed << oldNotes << oldEnglish;
    QTest::newRow("an object in place of the list")
        << R"({"f_ver":"1.2.3"})"_ba << failed << oldNotes << oldEnglish;
    QTest::newRow("a string in place of the list") << R"("1.2.3")"_ba << failed << oldNotes << oldEnglish;
    QTest::newRow("null in place of the list") << "null"_ba << failed << oldNotes << oldEnglish;
    QTest::newRow("an empty body") << ""_ba << failed << oldNotes << oldEnglish;
    QTest::newRow("only white space") << " \n "_ba << failed << oldNotes << oldEnglish;
    QTest::newRow("a page") << "<html><body>It works!</body></html>"_ba << failed << oldNotes << oldEnglish;
    QTest::newRow("a list that breaks off")
        << R"([{"f_ver":"1.2.3","f_rem)"_ba << failed << oldNotes << oldEnglish;
    QTest::newRow("a list with words behind it")
        << R"([{"f_ver":"1.2.3"}] end)"_ba << failed << oldNotes << oldEnglish;
    QTest::newRow("single quotes") << "[{'f_ver':'1.2.3'}]"_ba << failed << oldNotes << oldEnglish;
    QTest::newRow("a string that is no UTF-8")
        << "[{\"f_ver\":\"\xff\xfe\"}]"_ba << failed << oldNotes << oldEnglish;
    QTest::newRow("binary") << QByteArray::fromHex("0000ffd8ffe000104a464946") << failed << oldNotes
                            << oldEnglish;
    QTest::newRow("lists within lists without end")
        << QByteArray(100'000, '[') + QByteArray(100'000, ']') << failed << oldNotes << oldEnglish;
}

void VersionAnswerTest::answersEveryKindOfBody()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, version);
    stage().server.answer(stage().kVersionPath, ScriptedHttpServer::page(body));
    QCOMPARE(stage().query(), version);
    QTEST(stage().client->f_remark, "notes");
    QTEST(stage().client->f_remark_en, "englishNotes");
}

void VersionAnswerTest::readsTheBodyWhateverTheStatus_data()
{
    QTest::addColumn<ScriptedHttpServer::Answer>("answer");
    QTest::addColumn<QString>("version");
    const QByteArray list = R"([{"f_ver":"1.2.3"}])"_ba;
    const QByteArray page = "<html>no</html>"_ba;

    QTest::newRow("404 with a list") << ScriptedHttpServer::page(list, 404) << u"1.2.3"_s;
    QTest::newRow("500 with a list") << ScriptedHttpServer::page(list, 500) << u"1.2.3"_s;
    QTest::newRow("404 with a page") << ScriptedHttpServer::page(page, 404) << u"104"_s;
    QTest::newRow("503 with a page") << ScriptedHttpServer::page(page, 503) << u"104"_s;
    QTest::newRow("403 with nothing") << ScriptedHttpServer::page({}, 403) << u"104"_s;
    QTest::newRow("204") << ScriptedHttpServer::page({}, 204) << u"104"_s;
    QTest::newRow("the connection is closed unanswered") << ScriptedHttpServer::hangUp() << u"104"_s;
    auto cut = ScriptedHttpServer::page(list + QByteArray(100, ' '));
    cut.cutAfter = list.size() - 3;
    QTest::newRow("cut short within the list") << cut << u"104"_s;
    cut.cutAfter = list.size();
    QTest::newRow("cut short behind the list") << cut << u"1.2.3"_s;
    QTest::newRow("compressed") << ScriptedHttpServer::compressedPage(list) << u"1.2.3"_s;
    QTest::newRow("compressed, and huge when unpacked")
        << ScriptedHttpServer::compressedPage(list + QByteArray(9 * kMiB, ' ')) << u"104"_s;
}

void VersionAnswerTest::readsTheBodyWhateverTheStatus()
{
    QFETCH(ScriptedHttpServer::Answer, answer);
    stage().server.answer(stage().kVersionPath, answer);
    QTEST(stage().query(), "version");
}

void VersionAnswerTest::followsARedirect()
{
    auto elsewhere = ScriptedHttpServer::page({}, 302);
    elsewhere.moreHead = "Location: http://update.quillon.example/new\r\n"_ba;
    stage().server.answer(stage().kVersionPath, elsewhere);
    stage().server.answer(u"/new"_s, ScriptedHttpServer::version("1.2.3"));
    QCOMPARE(stage().query(), u"1.2.3"_s);
}

void VersionAnswerTest::keepsTheNotesOfTheLastGoodQuery()
{
    stage().server.answer(stage().kVersionPath, ScriptedHttpServer::version("1.2.3", "新", "new"));
    stage().query();
    stage().server.answer(stage().kVersionPath, ScriptedHttpServer::page("[]"_ba, 404));
    QCOMPARE(stage().query(), u"104"_s);
    QCOMPARE(stage().client->f_remark, u"新"_s);
    QCOMPARE(stage().client->f_remark_en, u"new"_s);
}

QUILLON_TEST_CORE(VersionAnswerTest)
#include "tst_version_answer.moc"
