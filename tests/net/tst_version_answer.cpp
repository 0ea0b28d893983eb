#include "tests/net/NetworkingFixture.h"

#include <QtTest>

/// What a version query makes of the server's answer.
class VersionAnswerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m = std::make_unique<NetworkingFixture>();
        m->client->f_remark = u"旧说明"_qs;
        m->client->f_remark_en = u"old notes"_qs;
    }
    void cleanup() { m.reset(); }
    void answersEveryKindOfBody_data();
    void answersEveryKindOfBody();
    void readsTheBodyWhateverTheStatus_data();
    void readsTheBodyWhateverTheStatus();
    void followsARedirect();
    void keepsTheNotesOfTheLastGoodQuery();

private:
    std::unique_ptr<NetworkingFixture> m;
};

void VersionAnswerTest::answersEveryKindOfBody_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("notes");
    QTest::addColumn<QString>("englishNotes");
    const QString none;
    const QString failed = u"104"_qs;
    const QString oldNotes = u"旧说明"_qs;
    const QString oldEnglish = u"old notes"_qs;

    QTest::newRow("a list of one complete object")
        << R"([{"f_ver":"1.2.3","f_remark":"新","f_remark_en":"new"}])"_qba << u"1.2.3"_qs << u"新"_qs
        << u"new"_qs;
    QTest::newRow("only a version empties both notes")
        << R"([{"f_ver":"1.2.3"}])"_qba << u"1.2.3"_qs << none << none;
    QTest::newRow("no version") << R"([{"f_remark":"新","f_remark_en":"new"}])"_qba << none << u"新"_qs
                                << u"new"_qs;
    QTest::newRow("a version that is a number")
        << R"([{"f_ver":1.2,"f_remark":"新"}])"_qba << none << u"新"_qs << none;
    QTest::newRow("a version that is null") << R"([{"f_ver":null}])"_qba << none << none << none;
    QTest::newRow("a version that is a list") << R"([{"f_ver":["1.2.3"]}])"_qba << none << none << none;
    QTest::newRow("notes that are no strings")
        << R"([{"f_ver":"1.2.3","f_remark":7,"f_remark_en":{"a":"b"}}])"_qba << u"1.2.3"_qs << none << none;
    QTest::newRow("keys in another case")
        << R"([{"F_VER":"1.2.3","F_Remark":"新"}])"_qba << none << none << none;
    QTest::newRow("further keys")
        << R"([{"f_id":9,"f_ver":"1.2.3","f_remark":"新","f_remark_en":"new","x":[]}])"_qba << u"1.2.3"_qs
        << u"新"_qs << u"new"_qs;
    QTest::newRow("further elements")
        << R"([{"f_ver":"1.2.3"},{"f_ver":"9.9.9","f_remark":"新"}])"_qba << u"1.2.3"_qs << none << none;
    QTest::newRow("a version in any wording")
        << R"([{"f_ver":" v1.2-β "}])"_qba << u" v1.2-β "_qs << none << none;
    QTest::newRow("an empty object") << "[{}]"_qba << none << none << none;
    QTest::newRow("a first element that is a string") << R"(["1.2.3"])"_qba << none << none << none;
    QTest::newRow("a first element that is a number") << "[104]"_qba << none << none << none;
    QTest::newRow("a first element that is null") << "[null]"_qba << none << none << none;
    QTest::newRow("a first element that is a list") << R"([[{"f_ver":"1.2.3"}]])"_qba << none << none << none;
    QTest::newRow("an object only in second place") << R"([1,{"f_ver":"1.2.3"}])"_qba << none << none << none;
    QTest::newRow("white space around the list")
        << " \r\n\t[{\"f_ver\":\"1.2.3\"}]\n\n"_qba << u"1.2.3"_qs << none << none;
    QTest::newRow("notes of several lines")
        << R"([{"f_ver":"1","f_remark":"一\n二","f_remark_en":"1\n\"2\""}])"_qba << u"1"_qs << u"一\n二"_qs
        << u"1\n\"2\""_qs;

    QTest::newRow("an empty list") << "[]"_qba << failed << oldNotes << oldEnglish;
    QTest::newRow("an object in place of the list")
        << R"({"f_ver":"1.2.3"})"_qba << failed << oldNotes << oldEnglish;
    QTest::newRow("a string in place of the list") << R"("1.2.3")"_qba << failed << oldNotes << oldEnglish;
    QTest::newRow("null in place of the list") << "null"_qba << failed << oldNotes << oldEnglish;
    QTest::newRow("an empty body") << ""_qba << failed << oldNotes << oldEnglish;
    QTest::newRow("only white space") << " \n "_qba << failed << oldNotes << oldEnglish;
    QTest::newRow("a page") << "<html><body>It works!</body></html>"_qba << failed << oldNotes << oldEnglish;
    QTest::newRow("a list that breaks off")
        << R"([{"f_ver":"1.2.3","f_rem)"_qba << failed << oldNotes << oldEnglish;
    QTest::newRow("a list with words behind it")
        << R"([{"f_ver":"1.2.3"}] end)"_qba << failed << oldNotes << oldEnglish;
    QTest::newRow("single quotes") << "[{'f_ver':'1.2.3'}]"_qba << failed << oldNotes << oldEnglish;
    QTest::newRow("a string that is no UTF-8")
        << "[{\"f_ver\":\"\xff\xfe\"}]"_qba << failed << oldNotes << oldEnglish;
    QTest::newRow("binary") << QByteArray::fromHex("0000ffd8ffe000104a464946") << failed << oldNotes
                            << oldEnglish;
    QTest::newRow("lists within lists without end")
        << QByteArray(100'000, '[') + QByteArray(100'000, ']') << failed << oldNotes << oldEnglish;
}

void VersionAnswerTest::answersEveryKindOfBody()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, version);
    m->server.answer(m->kVersionPath, ScriptedHttpServer::page(body));
    QCOMPARE(m->query(), version);
    QTEST(m->client->f_remark, "notes");
    QTEST(m->client->f_remark_en, "englishNotes");
}

void VersionAnswerTest::readsTheBodyWhateverTheStatus_data()
{
    QTest::addColumn<ScriptedHttpServer::Answer>("answer");
    QTest::addColumn<QString>("version");
    const QByteArray list = R"([{"f_ver":"1.2.3"}])"_qba;
    const QByteArray page = "<html>no</html>"_qba;

    QTest::newRow("404 with a list") << ScriptedHttpServer::page(list, 404) << u"1.2.3"_qs;
    QTest::newRow("500 with a list") << ScriptedHttpServer::page(list, 500) << u"1.2.3"_qs;
    QTest::newRow("404 with a page") << ScriptedHttpServer::page(page, 404) << u"104"_qs;
    QTest::newRow("503 with a page") << ScriptedHttpServer::page(page, 503) << u"104"_qs;
    QTest::newRow("403 with nothing") << ScriptedHttpServer::page({}, 403) << u"104"_qs;
    QTest::newRow("204") << ScriptedHttpServer::page({}, 204) << u"104"_qs;
    QTest::newRow("the connection is closed unanswered") << ScriptedHttpServer::hangUp() << u"104"_qs;
    auto cut = ScriptedHttpServer::page(list + QByteArray(100, ' '));
    cut.cutAfter = list.size() - 3;
    QTest::newRow("cut short within the list") << cut << u"104"_qs;
    cut.cutAfter = list.size();
    QTest::newRow("cut short behind the list") << cut << u"1.2.3"_qs;
}

void VersionAnswerTest::readsTheBodyWhateverTheStatus()
{
    QFETCH(ScriptedHttpServer::Answer, answer);
    m->server.answer(m->kVersionPath, answer);
    QTEST(m->query(), "version");
}

void VersionAnswerTest::followsARedirect()
{
    auto elsewhere = ScriptedHttpServer::page({}, 302);
    elsewhere.moreHead = "Location: http://update.quillon.example/new\r\n"_qba;
    m->server.answer(m->kVersionPath, elsewhere);
    m->server.answer(u"/new"_qs, ScriptedHttpServer::version("1.2.3"));
    QCOMPARE(m->query(), u"1.2.3"_qs);
}

void VersionAnswerTest::keepsTheNotesOfTheLastGoodQuery()
{
    m->server.answer(m->kVersionPath, ScriptedHttpServer::version("1.2.3", "新", "new"));
    m->query();
    m->server.answer(m->kVersionPath, ScriptedHttpServer::page("[]"_qba, 404));
    QCOMPARE(m->query(), u"104"_qs);
    QCOMPARE(m->client->f_remark, u"新"_qs);
    QCOMPARE(m->client->f_remark_en, u"new"_qs);
}

QTEST_GUILESS_MAIN(VersionAnswerTest)
#include "tst_version_answer.moc"
