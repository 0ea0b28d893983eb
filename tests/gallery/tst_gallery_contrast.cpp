// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/gallery/Contrast.h"
#include "tests/gallery/Views.h"
#include "tests/gallery/WidgetFacts.h"
#include "tests/support/TestProgram.h"

#include <QPainter>
#include <QTest>

using namespace Qt::StringLiterals;
using Gallery::View;

namespace {
const QString kGallery = QStringLiteral(QUILLON_GALLERY "/");

constexpr double kReadable = 4.5;
constexpr double kReadableWhenLarge = 3; // and bold
constexpr int kLarge = 16; // pixels

/// A text whose fixed colours give it less.
struct Known {
    const char *screen;
    const char *widget;
    double contrast; ///< what they give it; less is a mistake
    const char *reason;
};

constexpr Known kKnown[]{
    {"too-old", "m_offlineToolLinkLb", 3.8, "the family's blue, on the panel's ground"},
    {"waiting-otg", "m_upgradingLb", 2.8,
     "white that lets 15 % through, on the red of the half that is still to come"},
};

/// Thin strokes show their own colour only in the larger pictures.
QList<View> largeViews()
{
    return Gallery::viewsAt(2);
}

double needed(const WidgetFacts &widget)
{
    return widget.isBold && widget.fontSize >= kLarge ? kReadableWhenLarge : kReadable;
}

struct Text {
    WidgetFacts widget;
    double contrast = 0;
};

QList<Text> textsOf(const View &view, const QString &screen)
{
    const QImage picture(kGallery + Gallery::picturePath(view, screen));
    QList<Text> texts;
    for (const WidgetFacts &widget : readFacts(kGallery + Gallery::factsPath(view, screen))) {
        const QRect ink = Gallery::devicePixels(widget.ink & widget.place, view.scale);
        if (!widget.ink.isNull() && !picture.isNull())
            texts.append({widget, Contrast::ofText(picture, ink)});
    }
    return texts;
}

const Known *knownOf(const QString &screen, const QString &widget)
{
    const auto known = std::find_if(std::begin(kKnown), std::end(kKnown), [&](const Known &one) {
        return screen == QLatin1StringView(one.screen) && widget == QLatin1StringView(one.widget);
    });
    return known == std::end(kKnown) ? nullptr : known;
}
} // namespace

/// Every text stands out from what is painted under it.
class GalleryContrastTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyTextCanBeRead_data();
    void everyTextCanBeRead();
    void everyKnownWeaknessIsStillThere();
    void contrastIsMeasured_data();
    void contrastIsMeasured();
    void theHarderHalfCounts();
    void nothingBeyondTheGroundCounts();
};

void GalleryContrastTest::everyTextCanBeRead_data()
{
    QTest::addColumn<View>("view");
    QTest::addColumn<QString>("screen");
    for (const View &view : largeViews()) {
        for (const Gallery::Screen &screen : Gallery::screens()) {
            const QString name = QLatin1StringView(screen.name);
            QTest::newRow(qPrintable(view.folder() + u' ' + name)) << view << name;
        }
    }
}

void GalleryContrastTest::everyTextCanBeRead()
{
    QFETCH(View, view);
    QFETCH(QString, screen);
    const QList<Text> texts = textsOf(view, screen);
    QVERIFY(!texts.isEmpty());
    for (const Text &text : texts) {
        const Known *known = knownOf(screen, text.widget.name);
        const double least = known ? known->contrast : needed(text.widget);
        QVERIFY2(text.contrast >= least,
                 qPrintable(u"%1: %2 of %3"_s.arg(text.widget.name).arg(text.contrast).arg(least)));
    }
}

void GalleryContrastTest::everyKnownWeaknessIsStillThere()
{
    for (const Known &known : kKnown) {
        bool isNeeded = false;
        for (const View &view : largeViews()) {
            for (const Text &text : textsOf(view, QLatin1StringView(known.screen))) {
                const bool isIt = text.widget.name == QLatin1StringView(known.widget);
                isNeeded |= isIt && text.contrast < needed(text.widget);
            }
        }
        QVERIFY2(isNeeded, known.widget);
    }
}

void GalleryContrastTest::contrastIsMeasured_data()
{
    QTest::addColumn<QColor>("text");
    QTest::addColumn<QColor>("ground");
    QTest::addColumn<double>("contrast");
    QTest::newRow("black on white") << QColor(Qt::black) << QColor(Qt::white) << 21.0;
    QTest::newRow("white on black") << QColor(Qt::white) << QColor(Qt::black) << 21.0;
    QTest::newRow("nothing to be seen") << QColor(31, 32, 40) << QColor(31, 32, 40) << 1.0;
    QTest::newRow("grey on white") << QColor(118, 118, 118) << QColor(Qt::white) << 4.54;
}

void GalleryContrastTest::contrastIsMeasured()
{
    QFETCH(QColor, text);
    QFETCH(QColor, ground);
    QFETCH(double, contrast);
    QImage picture(60, 30, QImage::Format_RGB32);
    picture.fill(ground);
    QPainter(&picture).fillRect(QRect(20, 10, 20, 3), text);
    const double measured = Contrast::ofText(picture, QRect(20, 8, 20, 10));
    QVERIFY2(std::abs(measured - contrast) < 0.01, qPrintable(QString::number(measured)));
}

void GalleryContrastTest::theHarderHalfCounts()
{
    QImage picture(60, 30, QImage::Format_RGB32);
    picture.fill(Qt::black);
    QPainter painter(&picture);
    painter.fillRect(QRect(30, 0, 30, 30), QColor(180, 180, 180));
    painter.fillRect(QRect(10, 10, 40, 3), Qt::white);
    painter.end();
    const double measured = Contrast::ofText(picture, QRect(10, 8, 40, 10));
    QVERIFY2(measured > 1.9 && measured < 2.2, qPrintable(QString::number(measured)));
}

/// A selected line, right above and below whose strokes the selection ends.
void GalleryContrastTest::nothingBeyondTheGroundCounts()
{
    const QRect line(0, 10, 60, 10);
    QImage picture(60, 30, QImage::Format_RGB32);
    picture.fill(Qt::black);
    QPainter painter(&picture);
    painter.fillRect(line, QColor(118, 118, 118));
    painter.fillRect(QRect(10, 10, 1, 10), Qt::white);
    painter.fillRect(QRect(10, 14, 40, 2), Qt::white);
    painter.end();
    const QRect ink(10, 10, 40, 10);
    const double measured = Contrast::ofText(picture, ink, line);
    QVERIFY2(std::abs(measured - 4.54) < 0.01, qPrintable(QString::number(measured)));
    QVERIFY(Contrast::ofText(picture, ink) > 20);
}

QUILLON_TEST_CORE(GalleryContrastTest)
#include "tst_gallery_contrast.moc"
