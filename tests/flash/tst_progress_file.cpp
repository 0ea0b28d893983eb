// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// The rules of the progress file: which line counts, and what a line says.
#include "flash/ProgressFile.h"
#include "tests/support/Sandbox.h"
#include "tests/support/Sizes.h"
#include "tests/support/TestProgram.h"

#include <QBuffer>
#include <QFileInfo>
#include <QTest>

using namespace Qt::StringLiterals;
using ProgressFile::Report;

namespace {
/// Counts what is read of it.
class CountingBuffer : public QBuffer {
public:
    using QBuffer::QBuffer;
    qint64 bytesRead = 0;
    qint64 bytesAsked = 0;

protected:
    qint64 readData(char *data, qint64 length) override
    {
        bytesAsked += length;
        const qint64 read = QBuffer::readData(data, length);
        bytesRead += std::max<qint64>(read, 0);
        return read;
    }
};
} // namespace

Q_DECLARE_METATYPE(Report::Kind)

class ProgressFileTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void liesBelowTheHome();
    void lastLineCounts_data();
    void lastLineCounts();
    void aFileWithoutALineHasNone();
    void aSmallFileTakesASmallBuffer();
    void aLineSays_data();
    void aLineSays();
    void aLargeFileIsReadFromItsEnd_data();
    void aLargeFileIsReadFromItsEnd();
};

void ProgressFileTest::liesBelowTheHome()
{
    const Sandbox sandbox;
    QCOMPARE(ProgressFile::path(), sandbox.progressFile());
    QVERIFY(!QFileInfo::exists(QFileInfo(sandbox.progressFile()).path()));
    QCOMPARE(ProgressFile::pathWithFolder(), sandbox.progressFile());
    QVERIFY(QFileInfo(QFileInfo(sandbox.progressFile()).path()).isDir());
    QVERIFY(!QFileInfo::exists(sandbox.progressFile()));
}

void ProgressFileTest::lastLineCounts_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("line");
    QTest::newRow("one line without an end") << "37%"_ba << u"37%"_s;
    QTest::newRow("one line with LF") << "37%\n"_ba << u"37%"_s;
    QTest::newRow("one line with CR LF") << "37%\r\n"_ba << u"37%"_s;
    QTest::newRow("the last of two") << "10%\n55%"_ba << u"55%"_s;
    QTest::newRow("the last of two with LF") << "10%\n55%\n"_ba << u"55%"_s;
    QTest::newRow("the last of two with CR LF") << "10%\r\n55%\r\n"_ba << u"55%"_s;
    QTest::newRow("the last of many") << QByteArray("12%\n").repeated(500) + "success 1\n" << u"success 1"_s;
    QTest::newRow("blanks and tabulators around it") << "10%\n \t 55% \t \n"_ba << u"55%"_s;
    QTest::newRow("a blank last line") << "55%\n\n"_ba << u""_s;
    QTest::newRow("a blank last line with CR LF") << "55%\r\n\r\n"_ba << u""_s;
    QTest::newRow("a last line of blanks") << "55%\n   "_ba << u""_s;
    QTest::newRow("nothing but a line end") << "\n"_ba << u""_s;
    QTest::newRow("nothing but blanks") << "  "_ba << u""_s;
    QTest::newRow("blanks inside it stay") << "success   1  2"_ba << u"success   1  2"_s;
}

void ProgressFileTest::lastLineCounts()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, line);
    QBuffer file(&content);
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
    const auto last = ProgressFile::lastLine(file);
    QVERIFY(last.has_value());
    QCOMPARE(*last, line);
}

void ProgressFileTest::aFileWithoutALineHasNone()
{
    QBuffer file;
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
    QVERIFY(!ProgressFile::lastLine(file).has_value());
}

void ProgressFileTest::aSmallFileTakesASmallBuffer()
{
    CountingBuffer file;
    file.setData("12%\n55%\n");
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text | QIODevice::Unbuffered));
    QCOMPARE(ProgressFile::lastLine(file), u"55%"_s);
    QVERIFY2(file.bytesAsked < 200, qPrintable(QString::number(file.bytesAsked)));
}

void ProgressFileTest::aLineSays_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<Report::Kind>("kind");
    QTest::addColumn<int>("value");
    const auto percentage = Report::Kind::Percentage;
    const auto result = Report::Kind::Result;
    const auto unknown = Report::Kind::Unknown;

    QTest::newRow("a percentage") << u"37%"_s << percentage << 37;
    QTest::newRow("0 %") << u"0%"_s << percentage << 0;
    QTest::newRow("100 %") << u"100%"_s << percentage << 100;
    QTest::newRow("leading zeros") << u"007%"_s << percentage << 7;
    QTest::newRow("more than everything") << u"250%"_s << percentage << 250;

    QTest::newRow("no number before the %") << u"%"_s << unknown << 0;
    QTest::newRow("a word before the %") << u"half%"_s << unknown << 0;
    QTest::newRow("a fraction") << u"5.5%"_s << unknown << 0;
    QTest::newRow("two %") << u"55%%"_s << unknown << 0;
    QTest::newRow("a number in hexadecimal") << u"0x10%"_s << unknown << 0;
    QTest::newRow("a number beyond all numbers") << u"99999999999%"_s << unknown << 0;
    QTest::newRow("words before the number") << u"written 55%"_s << unknown << 0;
    QTest::newRow("words behind the %") << u"55% written"_s << unknown << 0;
    QTest::newRow("a number without %") << u"55"_s << unknown << 0;
    QTest::newRow("full-width digits' percent sign") << u"55％"_s << unknown << 0;
    QTest::newRow("nothing") << u""_s << unknown << 0;

    QTest::newRow("success 1") << u"success 1"_s << result << 1;
    QTest::newRow("several blanks") << u"success    1"_s << result << 1;
    QTest::newRow("a third field") << u"success 1 7"_s << result << 1;
    QTest::newRow("a third field that is a word") << u"success 1 done"_s << result << 1;
    QTest::newRow("a status with a zero before it") << u"success 01"_s << result << 1;
    QTest::newRow("success 0") << u"success 0"_s << result << 0;
    QTest::newRow("another status") << u"success 2"_s << result << 2;
    QTest::newRow("a negative status") << u"success -1"_s << result << -1;
    QTest::newRow("no status") << u"success"_s << result << 0;
    QTest::newRow("a status that is a word") << u"success x"_s << result << 0;
    QTest::newRow("a status that is a fraction") << u"success 1.0"_s << result << 0;
    QTest::newRow("a status in hexadecimal") << u"success 0x1"_s << result << 0;
    QTest::newRow("a status with a word behind it") << u"success 1ok"_s << result << 0;
    QTest::newRow("a status beyond all numbers") << u"success 4294967297"_s << result << 0;
    QTest::newRow("a tabulator does not split") << u"success\t1"_s << result << 0;
    QTest::newRow("the status stuck to the word") << u"success1"_s << result << 0;
    QTest::newRow("a longer word") << u"successful 1"_s << result << 1;
    QTest::newRow("a % at the end of a result") << u"success 1%"_s << result << 0;
    QTest::newRow("a % behind the word") << u"success%"_s << result << 0;
    QTest::newRow("a lone % behind the status") << u"success 1 %"_s << result << 1;

    QTest::newRow("upper case") << u"SUCCESS 1"_s << unknown << 0;
    QTest::newRow("a capital") << u"Success 1"_s << unknown << 0;
    QTest::newRow("half a word") << u"succ"_s << unknown << 0;
    QTest::newRow("the word in second place") << u"no success 1"_s << unknown << 0;
    QTest::newRow("another word") << u"failed 1"_s << unknown << 0;
}

void ProgressFileTest::aLineSays()
{
    QFETCH(QString, line);
    const Report report = ProgressFile::judge(line);
    QTEST(report.kind, "kind");
    QTEST(report.value, "value");
}

void ProgressFileTest::aLargeFileIsReadFromItsEnd_data()
{
    QTest::addColumn<QByteArray>("end");
    QTest::addColumn<QString>("line");
    QTest::newRow("a report behind a lot of text") << "\nsuccess 1\n"_ba << u"success 1"_s;
    QTest::newRow("a percentage behind a lot of text") << "\r\n55%"_ba << u"55%"_s;
    QTest::newRow("one line longer than any report") << "55%"_ba << u""_s;
    QTest::newRow("a blank line at the end") << "\n55%\n\n"_ba << u""_s;
}

void ProgressFileTest::aLargeFileIsReadFromItsEnd()
{
    QFETCH(QByteArray, end);
    QFETCH(QString, line);
    QByteArray content = QByteArray(16 * kMiB, 'x') + end;
    CountingBuffer file(&content);
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
    const auto last = ProgressFile::lastLine(file);
    QVERIFY(last.has_value());
    QCOMPARE(*last, line);
    QVERIFY2(file.bytesRead <= kMiB, qPrintable(QString::number(file.bytesRead)));
}

QUILLON_TEST_CORE(ProgressFileTest)
#include "tst_progress_file.moc"
