// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/Pixels.h"
#include "tests/support/TestProgram.h"

#include <QIcon>
#include <QImage>
#include <QPainter>
#include <QResource>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
const QColor kPanel(31, 32, 40);
/// Of an edge's opacity: fainter ones are rounded too coarsely, denser ones may belong to a stroke that is
/// meant so.
constexpr int kSoftFrom = 24;
constexpr int kSoftTo = 200;
constexpr int kDenser = 24;
constexpr int kSameColour = 24;
/// Of the artwork's pixels, of which three make one of the panel's: wider than any line.
constexpr int kSolid = 9;
constexpr int kOpaque = 178;

QString pathOf(const QString &name)
{
    return u":/new/prefix1/image/"_s + name;
}

/// The icon as a label of that size shows it on the panel.
QImage shown(const QString &name, int size)
{
    QImage image(size, size, QImage::Format_RGB32);
    image.fill(kPanel);
    QPainter painter(&image);
    QIcon(pathOf(name)).paint(&painter, image.rect());
    return image;
}

bool isOpaque(const QImage &image, const QRect &part)
{
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            if (qAlpha(image.pixel(x, y)) < kOpaque)
                return false;
        }
    }
    return true;
}

/// How many pixels stand out from the panel.
int visiblePixels(const QImage &image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += largestDifference(image.pixel(x, y), kPanel.rgb()) > 60;
    }
    return count;
}

/// How far the colour at a place is from the nearest one among its neighbours that are more opaque; 0: none
/// is.
int distanceToStroke(const QImage &image, int x, int y)
{
    const QRgb edge = image.pixel(x, y);
    int nearest = 255;
    bool isEdge = false;
    for (int dy = -2; dy <= 2; ++dy) {
        for (int dx = -2; dx <= 2; ++dx) {
            if (!image.valid(x + dx, y + dy))
                continue;
            const QRgb other = image.pixel(x + dx, y + dy);
            if (qAlpha(other) < qAlpha(edge) + kDenser)
                continue;
            isEdge = true;
            nearest = std::min(nearest, largestDifference(edge, other));
        }
    }
    return isEdge ? nearest : 0;
}

/// How many pixels of a row are neither ground nor stroke.
int pixelsBetween(const QImage &image, int y, int low, int high)
{
    int count = 0;
    for (int x = 0; x < image.width(); ++x) {
        const int value = qRed(image.pixel(x, y));
        count += value > low && value < high;
    }
    return count;
}
} // namespace

/// The still pictures, read as the panel reads them.
class IconsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keepClearOfTheirBorder_data();
    void keepClearOfTheirBorder();
    void haveTransparentGround_data() { keepClearOfTheirBorder_data(); }
    void haveTransparentGround();
    void haveNoFringe_data() { keepClearOfTheirBorder_data(); }
    void haveNoFringe();
    void haveOneOpticalWeight_data();
    void haveOneOpticalWeight();
    void areDrawnInLines_data() { haveOneOpticalWeight_data(); }
    void areDrawnInLines();
    void fallOnWholePixels();
    void answerThePointer();
    void keepTheCrossInPlaceUnderThePointer();
    void fadeAroundTheWheel();
    void fitTheCardsCorners();
    void areStoredPlain_data() { keepClearOfTheirBorder_data(); }
    void areStoredPlain();
    void storeTheBarSmall();
};

void IconsTest::keepClearOfTheirBorder_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"rocket.png", "green_circle.png", "waitting.png", "check_mark.png", "book.png",
                             "close.png", "close_h.png", "exclamation_mark.png"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void IconsTest::keepClearOfTheirBorder()
{
    QFETCH(QString, name);
    const QImage image(pathOf(name));
    QVERIFY(!image.isNull());
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const bool atBorder = x == 0 || y == 0 || x == image.width() - 1 || y == image.height() - 1;
            if (atBorder && qAlpha(image.pixel(x, y)) > 0)
                QFAIL(qPrintable(u"cut at %1,%2"_s.arg(x).arg(y)));
        }
    }
}

void IconsTest::haveTransparentGround()
{
    QFETCH(QString, name);
    const QImage image(pathOf(name));
    QVERIFY(image.hasAlphaChannel());
    QVERIFY(visiblePixels(shown(name, 72)) > 0);
}

/// The colours of soft edges are those of the strokes: what was drawn on another ground would carry a rim of
/// it.
void IconsTest::haveNoFringe()
{
    QFETCH(QString, name);
    const QImage image = QImage(pathOf(name)).convertToFormat(QImage::Format_ARGB32);
    int soft = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb edge = image.pixel(x, y);
            if (qAlpha(edge) < kSoftFrom || qAlpha(edge) > kSoftTo)
                continue;
            ++soft;
            QVERIFY2(distanceToStroke(image, x, y) <= kSameColour, qPrintable(u"at %1,%2"_s.arg(x).arg(y)));
        }
    }
    QVERIFY(soft > 0);
}

void IconsTest::haveOneOpticalWeight_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("size");
    QTest::newRow("rocket.png") << u"rocket.png"_s << 20;
    QTest::newRow("book.png") << u"book.png"_s << 20;
    QTest::newRow("waitting.png") << u"waitting.png"_s << 24;
    QTest::newRow("check_mark.png") << u"check_mark.png"_s << 24;
    QTest::newRow("exclamation_mark.png") << u"exclamation_mark.png"_s << 24;
}

void IconsTest::haveOneOpticalWeight()
{
    QFETCH(QString, name);
    QFETCH(int, size);
    const int pixels = visiblePixels(shown(name, size));
    QVERIFY2(pixels > 60 && pixels < 190, qPrintable(QString::number(pixels)));
}

/// A filled part would stand out from the icons beside it.
void IconsTest::areDrawnInLines()
{
    QFETCH(QString, name);
    const QImage image(pathOf(name));
    QVERIFY(!image.isNull());
    for (int y = 0; y + kSolid <= image.height(); ++y) {
        for (int x = 0; x + kSolid <= image.width(); ++x)
            QVERIFY2(!isOpaque(image, QRect(x, y, kSolid, kSolid)), qPrintable(u"at %1,%2"_s.arg(x).arg(y)));
    }
}

void IconsTest::fallOnWholePixels()
{
    const QImage book = shown(u"book.png"_s, 20);
    // Halfway down there are three upright strokes of two pixels each: none of them may smear over three.
    QVERIFY2(pixelsBetween(book, 10, 90, 215) <= 1, "the strokes of the book are blurred");
    const QImage exclamation = shown(u"exclamation_mark.png"_s, 24);
    const int middle = pixelsBetween(exclamation.copy(8, 0, 8, 24), 9, 90, 215);
    QVERIFY2(middle == 0, "the exclamation mark is blurred");
}

void IconsTest::answerThePointer()
{
    const QImage idle = shown(u"close.png"_s, 24);
    const QImage hovered = shown(u"close_h.png"_s, 24);
    int changed = 0;
    for (int y = 0; y < 24; ++y) {
        for (int x = 0; x < 24; ++x)
            changed += largestDifference(idle.pixel(x, y), hovered.pixel(x, y)) > 30;
    }
    QVERIFY2(changed > 24 * 24 / 2, qPrintable(QString::number(changed)));
}

void IconsTest::keepTheCrossInPlaceUnderThePointer()
{
    const QImage idle(pathOf(u"close.png"_s));
    const QImage hovered(pathOf(u"close_h.png"_s));
    for (int y = 0; y < idle.height(); ++y) {
        for (int x = 0; x < idle.width(); ++x) {
            if (qAlpha(idle.pixel(x, y)) > 160)
                QVERIFY2(qRed(hovered.pixel(x, y)) > 200, qPrintable(u"jumps at %1,%2"_s.arg(x).arg(y)));
        }
    }
}

void IconsTest::fadeAroundTheWheel()
{
    const QImage wheel(pathOf(u"waitting.png"_s));
    // Against the clock from the top: where a spoke is in the middle of its length.
    const QPoint spokes[] = {{36, 12}, {19, 19}, {12, 36}, {19, 52}, {36, 59}, {52, 52}, {59, 36}, {52, 19}};
    int former = 300;
    for (const QPoint &spoke : spokes) {
        const int alpha = qAlpha(wheel.pixel(spoke));
        QVERIFY2(alpha > 30 && alpha < former - 10, qPrintable(u"%1 after %2"_s.arg(alpha).arg(former)));
        former = alpha;
    }
}

void IconsTest::fitTheCardsCorners()
{
    const QImage bar(pathOf(u"blue_rect.png"_s));
    const QRgb blue = qRgb(87, 110, 246);
    QCOMPARE(bar.pixel(0, 120), blue);
    QCOMPARE(bar.pixel(11, 120), blue);
    // It runs to the edges of its label; only the card's round corners on the left stay free.
    for (int y : {0, 239}) {
        QCOMPARE(qAlpha(bar.pixel(0, y)), 0);
        QVERIFY(qAlpha(bar.pixel(11, y)) > 200);
    }
}

void IconsTest::areStoredPlain()
{
    QFETCH(QString, name);
    const QResource resource(pathOf(name));
    QVERIFY(resource.isValid());
    QCOMPARE(resource.compressionAlgorithm(), QResource::NoCompression);
}

void IconsTest::storeTheBarSmall()
{
    const QResource bar(pathOf(u"blue_rect.png"_s));
    QCOMPARE(bar.compressionAlgorithm(), QResource::ZlibCompression);
    QVERIFY2(bar.size() * 10 < bar.uncompressedSize(), qPrintable(QString::number(bar.size())));
}

QUILLON_TEST(IconsTest)
#include "tst_icons.moc"
