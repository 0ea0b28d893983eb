// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/TestProgram.h"

#include <QDir>
#include <QImageReader>
#include <QMovie>
#include <QResource>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {
const QString kImages = QStringLiteral(":/new/prefix1/image/");
const QString kCatalogues = QStringLiteral(":/QUILLON/Translate/");

bool isOneColour(const QImage &image)
{
    QImage filled(image.size(), image.format());
    filled.fill(image.pixelColor(0, 0));
    return image == filled;
}
} // namespace

/// What the library carries with it, ready before the first panel exists.
class BundleTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void holdsImage_data();
    void holdsImage();
    void keepsTheAccentBarCompressed();
    void holdsTheEnglishCatalogue();
    void holdsNothingElse();
};

void BundleTest::holdsImage_data()
{
    QTest::addColumn<QByteArray>("kind");
    QTest::addColumn<QSize>("pixels");
    const auto row = [](const char *name, const char *kind, const QSize &pixels) {
        QTest::newRow(name) << QByteArray(kind) << pixels;
    };
    row("rocket.png", "png", {60, 61});
    row("green_circle.png", "png", {27, 27});
    row("waitting.png", "png", {72, 72});
    row("check_mark.png", "png", {72, 72});
    row("book.png", "png", {60, 61});
    row("close.png", "png", {72, 72});
    row("close_h.png", "png", {72, 72});
    row("exclamation_mark.png", "png", {72, 72});
    row("blue_rect.png", "png", {12, 240});
    row("pc.gif", "gif", {1224, 384});
    row("dc5v_pc.gif", "gif", {1224, 384});
    row("pc_otg.gif", "gif", {1224, 384});
    row("dc5v_otg.gif", "gif", {1224, 384});
}

void BundleTest::holdsImage()
{
    QFETCH(QByteArray, kind);
    QFETCH(QSize, pixels);
    QImageReader reader(kImages + QLatin1String(QTest::currentDataTag()));
    reader.setAutoDetectImageFormat(true);
    reader.setDecideFormatFromContent(true);
    QVERIFY2(reader.canRead(), qPrintable(reader.errorString()));
    QCOMPARE(reader.format(), kind);
    QCOMPARE(reader.size(), pixels);
    QCOMPARE(reader.supportsAnimation(), kind == "gif");
    if (reader.supportsAnimation())
        QVERIFY2(reader.imageCount() > 1, "an animation moves");
    const QImage image = reader.read();
    QVERIFY2(!image.isNull(), qPrintable(reader.errorString()));
    const bool isBar = image.width() * 2 < image.height();
    QVERIFY2(kind == "gif" || isBar || !isOneColour(image), "there is something to see");
}

void BundleTest::keepsTheAccentBarCompressed()
{
    QCOMPARE(QResource(kImages + u"blue_rect.png"_s).compressionAlgorithm(), QResource::ZlibCompression);
}

void BundleTest::holdsTheEnglishCatalogue()
{
    QVERIFY(QResource(kCatalogues + u"QuillonFirmwareUpgrade_en.qm"_s).uncompressedSize() > 0);
}

void BundleTest::holdsNothingElse()
{
    QCOMPARE(QDir(kImages).entryList(QDir::AllEntries).size(), 13);
    QCOMPARE(QDir(kCatalogues).entryList(QDir::AllEntries), QStringList{u"QuillonFirmwareUpgrade_en.qm"_s});
}

QUILLON_TEST(BundleTest)
#include "tst_bundle.moc"
