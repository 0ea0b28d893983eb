// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What the panel does with a report: the log line, what is dropped, who handles it, the answer to the mode
// query.
#include "tests/panel/PanelTest.h"
#include "tests/support/DeviceReplies.h"
#include "tests/support/TestProgram.h"

#include <QAbstractButton>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {
const QString kPcRead = u"hid: DC_AddSendData(65: 51 c4 0b 00 00 06 0b 00 03 00 1d ff)"_s;
const QString kOtgRead = u"hid: DC_AddSendData(65: 51 c4 0b 00 00 06 10 00 03 00 18 ff)"_s;
const QString kPlanStep = u"[Upgrade] 不需要升级"_s; ///< logged when all versions are known and equal
constexpr quint16 kMode = 0x1008;

QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

/// A random-read reply whose length byte says something else than is there.
QByteArray randomRead(const QList<quint16> &words, int statedLength)
{
    QByteArray report = DeviceReplies::reply(4, words);
    report[1] = char(statedLength);
    return report;
}

/// What the warning box looked like, and how often there was one.
struct Boxes {
    int count = 0;
    QString title;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons;
    QWidget *parent = nullptr;
    bool isModal = false;
    QString button; ///< what stands on it
};
} // namespace

class ReportsTest : public PanelTest {
    Q_OBJECT

private slots:
    void init() override;
    void cleanup() override;

    void logLine_data();
    void logLine();
    void reportsWithoutEffect_data();
    void reportsWithoutEffect();
    void dispatch_data();
    void dispatch();

    void normalModeAsksForBothVersions();
    void modeEntries_data();
    void modeEntries();
    void upgradeModeShowsAWarning_data();
    void upgradeModeShowsAWarning();
    void theWarningsButtonFollowsTheLanguage();
    void hostileReportsAreSurvived_data();
    void hostileReportsAreSurvived();

private:
    QStringList commands() const { return stage().log.startingWith(u"hid: "_s); }
    void makeAllVersionsEqual();
    void lookAtTheBox();
    Boxes m_boxes;
    QTimer m_boxWatch;
};

void ReportsTest::init()
{
    PanelTest::init();
    m_boxes = {};
    connect(&m_boxWatch, &QTimer::timeout, this, &ReportsTest::lookAtTheBox);
    m_boxWatch.start(5ms);
}

void ReportsTest::cleanup()
{
    m_boxWatch.stop();
    disconnect(&m_boxWatch, nullptr, this, nullptr);
    PanelTest::cleanup();
}

/// From here on every step of the plan leaves its line in the log.
void ReportsTest::makeAllVersionsEqual()
{
    panel().pretendVersions(u"2.0.0"_s, u"2.0.0"_s, u"2.0.0"_s, u"2.0.0"_s);
}

/// Writes down the warning box, if one is open, and presses its button.
void ReportsTest::lookAtTheBox()
{
    auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    if (!box)
        return;
    m_boxes
        = {m_boxes.count + 1,      box->windowTitle(),  box->text(),    box->icon(),
           box->standardButtons(), box->parentWidget(), box->isModal(), box->button(QMessageBox::Ok)->text()};
    box->button(QMessageBox::Ok)->click();
}

void ReportsTest::logLine_data()
{
    QTest::addColumn<QByteArray>("report");
    QTest::addColumn<QStringList>("lines");
    const QByteArray counted = hex("c440000000000708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f20");
    const QString first25 = u" c4 40 00 00 00 00 07 08 09 0a 0b 0c 0d 0e 0f 10 11 12 13 14 15 16 17 18 19"_s;
    const auto line = [](int size, const QString &content) {
        return QStringList(u"[HID接收] 数据长度: %1  内容:%2"_s.arg(QString::number(size), content));
    };
    QTest::newRow("empty") << QByteArray() << QStringList();
    QTest::newRow("one byte has no byte 1") << hex("c4") << QStringList();
    QTest::newRow("byte 1 is 0") << hex("c400000000ff07") << QStringList();
    QTest::newRow("all zeros") << QByteArray(64, '\0') << QStringList();
    QTest::newRow("two bytes") << hex("0001") << line(2, u" 00 01"_s);
    QTest::newRow("24 bytes") << counted.left(24) << line(24, first25.left(qsizetype(24) * 3));
    QTest::newRow("25 bytes are shown whole") << counted.left(25) << line(25, first25);
    QTest::newRow("26 bytes are cut") << counted.left(26) << line(26, first25 + u"..."_s);
    QTest::newRow("30 bytes are cut") << counted.left(30) << line(30, first25 + u"..."_s);
    QTest::newRow("high bytes") << hex("ff80fe7f") << line(4, u" ff 80 fe 7f"_s);
}

void ReportsTest::logLine()
{
    QFETCH(QByteArray, report);

    panel().receive(report);
    QTEST(stage().log.startingWith(u"[HID接收]"_s), "lines");
}

void ReportsTest::reportsWithoutEffect_data()
{
    QTest::addColumn<QByteArray>("report");
    const QByteArray pcVersion = DeviceReplies::pcVersion({1, 2, 3});
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("five bytes of a read") << pcVersion.left(5);
    QTest::newRow("byte 5 is 2: a continuous read from 0x0002") << DeviceReplies::version(0x0002, {1, 2, 3});
    QTest::newRow("byte 5 is 2: a random read of 0x1002") << DeviceReplies::reply(4, {0x1002, 0, kMode, 0});
    QTest::newRow("byte 5 is 2: a write's acknowledgement") << DeviceReplies::reply(3, {0x0002, 1});
    QTest::newRow("a write's acknowledgement") << DeviceReplies::reply(3, {kMode, 0});
    QTest::newRow("a continuous write's reply") << DeviceReplies::reply(5, {0x000B, 3, 1, 2, 3});
    QTest::newRow("operation 0") << DeviceReplies::reply(0, {kMode, 0});
    QTest::newRow("operation 7") << DeviceReplies::reply(7, {kMode, 0});
    QTest::newRow("operation 255") << DeviceReplies::reply(255, {kMode, 0});
}

void ReportsTest::reportsWithoutEffect()
{
    QFETCH(QByteArray, report);
    makeAllVersionsEqual();
    const QStringList before = panel().state();

    panel().receive(report);
    QCOMPARE(panel().state(), before);
    QCOMPARE(commands(), QStringList());
    QVERIFY(!stage().log.contains(kPlanStep));
    QCOMPARE(stage().server.paths(), QStringList());
    QCOMPARE(m_boxes.count, 0);
}

void ReportsTest::dispatch_data()
{
    QTest::addColumn<QByteArray>("report");
    QTest::addColumn<QString>("reaction");
    QByteArray wrongMarks = DeviceReplies::mode(0);
    wrongMarks[0] = 0x11; // start mark
    wrongMarks[9] = 0x22; // checksum
    QTest::newRow("4 is a random read") << DeviceReplies::mode(0) << u" receive dfu mode is:  off"_s;
    QTest::newRow("6 is a continuous read; another start still takes the plan step")
        << DeviceReplies::version(0x0033, {1, 2, 3}) << kPlanStep;
    QTest::newRow("start mark and checksum are not looked at")
        << wrongMarks << u" receive dfu mode is:  off"_s;
    QTest::newRow("the log does not decide: length 0 is dispatched")
        << randomRead({kMode, 0}, 0) << QString();
}

void ReportsTest::dispatch()
{
    QFETCH(QByteArray, report);
    QFETCH(QString, reaction);
    makeAllVersionsEqual();

    panel().receive(report);
    if (reaction.isEmpty())
        QCOMPARE(stage().log.lines(), QStringList());
    else
        QCOMPARE(stage().log.count(reaction), 1);
}

void ReportsTest::normalModeAsksForBothVersions()
{
    panel().receive(DeviceReplies::mode(0));

    QCOMPARE(stage().log.lines().mid(1), QStringList({u" receive dfu mode is:  off"_s, kPcRead, kOtgRead}));
}

void ReportsTest::modeEntries_data()
{
    QTest::addColumn<QByteArray>("report");
    QTest::addColumn<QStringList>("modes");
    const QStringList off{u" receive dfu mode is:  off"_s};
    const QStringList on{u" receive dfu mode is:  on"_s};
    QTest::newRow("off") << DeviceReplies::mode(0) << off;
    QTest::newRow("on") << DeviceReplies::mode(1) << on;
    QTest::newRow("any value but 0 is on") << DeviceReplies::mode(0xFFFF) << on;
    QTest::newRow("the high byte counts") << DeviceReplies::mode(0x0100) << on;
    QTest::newRow("other addresses are not acted on")
        << DeviceReplies::reply(4, {0x0810, 1, 0x1009, 1}) << QStringList();
    QTest::newRow("the second entry") << DeviceReplies::reply(4, {0x1009, 7, kMode, 0}) << off;
    QTest::newRow("every entry of the address") << DeviceReplies::reply(4, {kMode, 0, kMode, 1}) << off + on;
    QTest::newRow("length 10 has no entry") << randomRead({kMode, 0}, 10) << QStringList();
    QTest::newRow("length 7 has no entry") << randomRead({kMode, 0}, 7) << QStringList();
    QTest::newRow("a length below the header has no entry") << randomRead({kMode, 0}, 1) << QStringList();
    QTest::newRow("length 11 has one entry") << randomRead({kMode, 0, kMode, 0}, 11) << off;
    QTest::newRow("length 14 has one entry") << randomRead({kMode, 0, kMode, 0}, 14) << off;
    QTest::newRow("length 15 has two entries") << randomRead({kMode, 0, kMode, 0}, 15) << off + off;
    QTest::newRow("entries that are not there are not read") << randomRead({kMode, 0}, 255).left(9) << off;
    QTest::newRow("a half entry is not read") << randomRead({kMode, 0}, 255).left(8) << QStringList();
}

void ReportsTest::modeEntries()
{
    QFETCH(QByteArray, report);
    QFETCH(QStringList, modes);

    panel().receive(report);
    QCOMPARE(stage().log.startingWith(u" receive dfu mode is: "_s), modes);
    QCOMPARE(commands().count(kPcRead), modes.count(u" receive dfu mode is:  off"_s));
    QCOMPARE(m_boxes.count, int(modes.count(u" receive dfu mode is:  on"_s)));
}

void ReportsTest::upgradeModeShowsAWarning_data()
{
    QTest::addColumn<Language>("language");
    QTest::addColumn<QString>("button");
    QTest::newRow("Chinese") << Language::Chinese << u"确定"_s;
    QTest::newRow("English: the box stays Chinese") << Language::English << u"OK"_s;
}

void ReportsTest::upgradeModeShowsAWarning()
{
    QFETCH(Language, language);
    QFETCH(QString, button);
    QuillonFirmwareUpgrade::setLanguage(language);
    stage().log.clear();

    panel().receive(DeviceReplies::mode(1));
    QCOMPARE(m_boxes.count, 1);
    QCOMPARE(m_boxes.button, button);
    QCOMPARE(m_boxes.title, u"提示"_s);
    QCOMPARE(m_boxes.text, u"当前设备是固件升级模式"_s);
    QCOMPARE(m_boxes.icon, QMessageBox::Warning);
    QCOMPARE(m_boxes.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QCOMPARE(m_boxes.parent, &panel());
    QVERIFY(m_boxes.isModal);
    QCOMPARE(commands(), QStringList()); // no version is read
    QVERIFY(panel().findChildren<QMessageBox *>().isEmpty()); // and nothing of it stays
}

void ReportsTest::theWarningsButtonFollowsTheLanguage()
{
    m_boxWatch.stop();
    QStringList words;
    QTimer::singleShot(0, &panel(), [&words] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        for (const Language language : {Language::English, Language::Chinese, Language::Chinese}) {
            QuillonFirmwareUpgrade::setLanguage(language);
            QCoreApplication::processEvents();
            words.append(box->button(QMessageBox::Ok)->text());
        }
        box->button(QMessageBox::Ok)->click();
    });
    panel().receive(DeviceReplies::mode(1));
    QCOMPARE(words, (QStringList{u"OK"_s, u"确定"_s, u"确定"_s}));
}

void ReportsTest::hostileReportsAreSurvived_data()
{
    QTest::addColumn<int>("operation");
    QTest::addColumn<QString>("version"); // by the last one, which is whole
    QTest::newRow("operation 3") << 3 << QString();
    QTest::newRow("operation 4") << 4 << QString();
    QTest::newRow("operation 6") << 6 << u"1.2.3"_s;
}

void ReportsTest::hostileReportsAreSurvived()
{
    QFETCH(int, operation);
    QFETCH(QString, version);
    constexpr int kLastSize = 18; // all that is said, and one byte more
    // A slow machine is not done before the question that a new panel asks by itself.
    QTRY_COMPARE(commands().size(), 1);
    stage().log.clear();
    const QByteArray full = DeviceReplies::reply(quint8(operation), {0x000B, 0xFFFF, 1, 2, 3});
    for (int size = 0; size <= kLastSize; ++size) {
        for (int length : {0, 1, 6, 7, 11, 127, 128, 255}) {
            QByteArray report = full.left(size);
            if (size > 1)
                report[1] = char(length);
            panel().pretendDeviceVersion(Chip::Pc, {});
            panel().receive(report);
        }
    }
    QCOMPARE(m_boxes.count, 0);
    QCOMPARE(commands(), QStringList());
    QCOMPARE(panel().deviceVersion(Chip::Pc), version);
}

QUILLON_TEST(ReportsTest)
#include "tst_reports.moc"
