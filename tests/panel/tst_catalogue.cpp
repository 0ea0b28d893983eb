// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/TestProgram.h"

#include <QFile>
#include <QResource>
#include <QTest>
#include <QTranslator>
#include <QtEndian>

using namespace Qt::StringLiterals;

namespace {

const QString kCatalogue = QStringLiteral(":/QUILLON/Translate/QuillonFirmwareUpgrade_en.qm");
constexpr char kContext[] = "QuillonFirmwareUpgrade::FirmwareUpgradeWidget";

struct Message {
    const char *source;
    const char *english;
};

constexpr Message kMessages[] = {
    {"--", "--"},
    {"前往官网下载>>", "Download>>"},
    {"升级中，请勿关闭设备...", "Updating... Do not turn off the device."},
    {"升级失败！请拔插设备后重新开始升级", "Update failed. Please replug the device and try again."},
    {"升级完成", "Update Completed"},
    {"固件升级", "Firmware Update"},
    {"固件版本过低，无法升级", "Firmware version is too low to update."},
    {"当前版本", "Current Version"},
    {"待USB线接入图示口...", "Connect to the indicated USB ports. "},
    {"我已拔插设备，重新升级", "I've replugged the device. Restart update."},
    {"新版本", "New Version"},
    {"新版概述", "What's New"},
    {"无新版固件", "Firmware is up to \ndate"},
    {"正在检测OTG接入...", "Detecting OTG connection..."},
    {"正在检测USB接入...", "Detecting USB connection..."},
    {"立即升级", "Update Now"},
    {"请使用USB线连接图示USB口和电脑，\n接入后自动完成升级。",
     "Please use a USB cable to connect the illustrated \nUSB port to the computer. The upgrade will be\n "
     "completed automatically upon connection."},
    {"请使用配件附带USB线接入图示DC-5V和OTG口,\n继续完成升级。",
     "To continue and complete the update, use the provided\nUSB cables to connect the DC-5V and OTG ports "
     "as\nshown."},
    {"请使用配件附带USB线接入图示DC-5V和USB-C口，\n开始固件升级。",
     "To start the firmware update, use the provided USB\n cables to connect the DC-5V and USB-C ports "
     "as\nshown."},
    {"请使用配件附带的USB线，接入并保持USB-C和OTG口\n与电脑的连接。",
     "Please use the USB cable provided with the \naccessory to connect and maintain the connection\n "
     "between "
     "the USB-C and OTG port to the computer."},
    {"需使用离线升级工具进行更新，", "Update requires offline tool ,"},
};

/// A compiled catalogue as it lies in the file: sections of a tag, a length and so many bytes; numbers in
/// network order.
class CompiledCatalogue {
public:
    explicit CompiledCatalogue(const QByteArray &data)
    {
        constexpr qsizetype kMagicSize = 16;
        for (qsizetype at = kMagicSize; at + 5 <= data.size();) {
            const auto length = qFromBigEndian<quint32>(data.constData() + at + 1);
            m_sections.insert(quint8(data.at(at)), data.mid(at + 5, length));
            at += 5 + length;
        }
    }

    /// One entry a message: the hash of its key and where it lies.
    qsizetype messageCount() const { return m_sections.value(0x42).size() / 8; }

    /// Every text that is stored under \a tag: 6 the source texts, 7 their contexts, 8 their comments.
    QList<QByteArray> texts(quint8 tag) const
    {
        const QByteArray messages = m_sections.value(0x69);
        QList<QByteArray> found;
        for (qsizetype at = 0; at < messages.size();) {
            const auto current = quint8(messages.at(at++));
            if (current == kEnd)
                continue;
            const auto length = qFromBigEndian<quint32>(messages.constData() + at);
            if (current == tag)
                found.append(messages.mid(at + 4, length));
            at += 4 + length;
        }
        return found;
    }

private:
    static constexpr quint8 kEnd = 1;
    QHash<quint8, QByteArray> m_sections;
};

CompiledCatalogue compiledCatalogue()
{
    return CompiledCatalogue(QResource(kCatalogue).uncompressedData());
}

QString translated(const char *source, const char *context = kContext)
{
    QTranslator translator;
    return translator.load(kCatalogue) ? translator.translate(context, source) : u"(no catalogue)"_s;
}

} // namespace

class CatalogueTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void translates_data();
    void translates();
    void holdsNoOtherMessage();
    void keepsTheKeysByteForByte();
    void hasOneContextAndNoComments();
    void knowsNothingAbout_data();
    void knowsNothingAbout();
};

void CatalogueTest::translates_data()
{
    QTest::addColumn<QByteArray>("source");
    QTest::addColumn<QByteArray>("english");
    for (const Message &message : kMessages)
        QTest::newRow(message.english) << QByteArray(message.source) << QByteArray(message.english);
}

void CatalogueTest::translates()
{
    QFETCH(QByteArray, source);
    QFETCH(QByteArray, english);
    QCOMPARE(translated(source.constData()), QString::fromUtf8(english));
}

void CatalogueTest::holdsNoOtherMessage()
{
    QCOMPARE(std::size(kMessages), size_t(21));
    QCOMPARE(compiledCatalogue().messageCount(), 21);
}

void CatalogueTest::keepsTheKeysByteForByte()
{
    QList<QByteArray> expected;
    for (const Message &message : kMessages)
        expected.append(message.source);
    QList<QByteArray> stored = compiledCatalogue().texts(6);
    std::sort(expected.begin(), expected.end());
    std::sort(stored.begin(), stored.end());
    QCOMPARE(stored, expected);
}

void CatalogueTest::hasOneContextAndNoComments()
{
    QCOMPARE(compiledCatalogue().texts(7), QList<QByteArray>(21, kContext));
    const QList<QByteArray> comments = compiledCatalogue().texts(8);
    for (const QByteArray &comment : comments)
        QCOMPARE(comment, QByteArray());
}

void CatalogueTest::knowsNothingAbout_data()
{
    QTest::addColumn<QByteArray>("source");
    QTest::addColumn<QByteArray>("context");
    QTest::newRow("the title of the warning box") << QByteArrayLiteral("提示") << QByteArray(kContext);
    QTest::newRow("the text of the warning box")
        << QByteArrayLiteral("当前设备是固件升级模式") << QByteArray(kContext);
    QTest::newRow("a full-width comma where the key has a plain one")
        << QByteArrayLiteral("请使用配件附带USB线接入图示DC-5V和OTG口，\n继续完成升级。")
        << QByteArray(kContext);
    QTest::newRow("another context") << QByteArrayLiteral("升级完成")
                                     << QByteArrayLiteral("FirmwareUpgradeWidget");
}

void CatalogueTest::knowsNothingAbout()
{
    QFETCH(QByteArray, source);
    QFETCH(QByteArray, context);
    QCOMPARE(translated(source.constData(), context.constData()), QString());
}

QUILLON_TEST(CatalogueTest)
#include "tst_catalogue.moc"
