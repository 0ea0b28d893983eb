// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/TestProgram.h"
#include "tests/widgets/BarInside.h"
#include "tests/widgets/Pointer.h"

#include <QImage>
#include <QPainter>
#include <QSet>
#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;
using Pointer::enter;
using Pointer::leave;

namespace {

constexpr QSize kSize{408, 48};
const QColor kBackground{87, 110, 246};
const QColor kProgress{73, 74, 86};
const QColor kBorder{47, 212, 179};
const QColor kFaintBorder{47, 212, 179, 1};
const QColor kHovered{36, 95, 89};
const QColor kNothing{0, 0, 0, 0};

/// What a bar is set to before its picture is taken.
struct Look {
    QSize size = kSize;
    int minimum = 0;
    int maximum = 100;
    int value = 0;
    QColor border = Qt::transparent;
    double borderWidth = 0;
    bool hovered = false;

    Look sized(const QSize &newSize) const
    {
        Look look = *this;
        look.size = newSize;
        return look;
    }
    Look ranging(int newMinimum, int newMaximum) const
    {
        Look look = *this;
        look.minimum = newMinimum;
        look.maximum = newMaximum;
        return look;
    }
    Look at(int newValue) const
    {
        Look look = *this;
        look.value = newValue;
        return look;
    }
    Look outlined(const QColor &colour, double width) const
    {
        Look look = *this;
        look.border = colour;
        look.borderWidth = width;
        return look;
    }
    Look underThePointer() const
    {
        Look look = *this;
        look.hovered = true;
        return look;
    }
};

struct Pixel {
    QPoint at;
    QColor colour;
};

void dress(ClickableProgressBar &bar, const Look &look)
{
    bar.setFixedSize(look.size);
    bar.setRange(look.minimum, look.maximum);
    bar.setValue(look.value);
    bar.setBackgroundColor(kBackground);
    bar.setProgressColor(kProgress);
    bar.setBorderColor(look.border);
    bar.setBorderWidth(look.borderWidth);
    if (look.hovered)
        enter(bar);
}

/// The bar alone, on transparent ground.
QImage picture(ClickableProgressBar &bar)
{
    QImage image(bar.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    bar.render(&painter, QPoint(), QRegion(), QWidget::RenderFlags());
    return image;
}

QString shown(const QColor &colour)
{
    return u"%1,%2,%3,%4"_s.arg(colour.red()).arg(colour.green()).arg(colour.blue()).arg(colour.alpha());
}

} // namespace

Q_DECLARE_METATYPE(Look)
Q_DECLARE_METATYPE(QList<Pixel>)

class ProgressBarPaintingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void paints_data();
    void paints();
    void neverPaintsText();
    void followsThePointer();
    void clearsItsBorder();
    void showsNoProgressAfterReset();
    void hasSmoothEdges();
};

void ProgressBarPaintingTest::paints_data()
{
    QTest::addColumn<Look>("look");
    QTest::addColumn<QList<Pixel>>("pixels");

    constexpr int kLowest = std::numeric_limits<int>::min();
    constexpr int kHighest = std::numeric_limits<int>::max();
    const auto row = [](const char *name, const Look &look, const QList<Pixel> &pixels) {
        QTest::newRow(name) << look << pixels;
    };
    const QList<Pixel> plain{{{204, 24}, kBackground},
                             {{204, 0}, kBackground},
                             {{204, 47}, kBackground},
                             {{1, 24}, kBackground},
                             {{406, 24}, kBackground}};
    const QList<Pixel> half{{{203, 24}, kProgress}, {{204, 24}, kBackground}};

    row("a pill whose corners stay free", Look(),
        plain
            + QList<Pixel>{{{0, 0}, kNothing},
                           {{407, 0}, kNothing},
                           {{0, 47}, kNothing},
                           {{407, 47}, kNothing},
                           {{5, 5}, kNothing},
                           {{402, 42}, kNothing}});
    row("a radius of half the height", Look().sized({200, 100}),
        {{{100, 50}, kBackground},
         {{12, 12}, kNothing},
         {{17, 17}, kBackground},
         {{187, 87}, kNothing},
         {{182, 82}, kBackground}});
    row("no progress at the minimum", Look().at(0), plain);
    row("half of the width at half of the range", Look().at(50), half);
    row("a straight right end", Look().at(50),
        {{{203, 1}, kProgress}, {{203, 46}, kProgress}, {{204, 1}, kBackground}, {{204, 46}, kBackground}});
    row("a left end that follows the pill", Look().at(50),
        {{{5, 5}, kNothing}, {{0, 0}, kNothing}, {{5, 42}, kNothing}, {{1, 24}, kProgress}});
    row("one per cent", Look().at(1), {{{2, 24}, kProgress}, {{5, 24}, kBackground}});
    row("a width that is not rounded", Look().sized({150, 48}).ranging(0, 4).at(1),
        {{{36, 24}, kProgress}, {{38, 24}, kBackground}});
    row("everything at the maximum", Look().at(100),
        {{{1, 24}, kProgress}, {{204, 0}, kProgress}, {{406, 24}, kProgress}, {{407, 47}, kNothing}});
    row("a range that begins below zero", Look().ranging(-50, 50).at(0), half);
    row("a range that begins above zero", Look().ranging(100, 300).at(200), half);
    row("the widest range there is", Look().ranging(kLowest, kHighest).at(0), half);
    row("only the background when minimum and maximum are equal", Look().ranging(0, 0), plain);
    row("only background and border when minimum and maximum are equal",
        Look().ranging(7, 7).at(7).outlined(kBorder, 2), {{{204, 24}, kBackground}, {{204, 0}, kBorder}});
    row("a border of two pixels", Look().outlined(kBorder, 2),
        {{{204, 0}, kBorder},
         {{204, 1}, kBorder},
         {{204, 2}, kBackground},
         {{204, 45}, kBackground},
         {{204, 46}, kBorder},
         {{204, 47}, kBorder},

         {{1, 24}, kBorder},
         {{4, 24}, kBackground},
         {{406, 24}, kBorder},
         {{0, 0}, kNothing}});
    row("a border of six pixels", Look().outlined(kBorder, 6),
        {{{204, 5}, kBorder}, {{204, 6}, kBackground}, {{4, 24}, kBorder}, {{8, 24}, kBackground}});
    row("a border over the progress", Look().at(50).outlined(kBorder, 2),
        {{{100, 0}, kBorder}, {{100, 1}, kBorder}, {{100, 2}, kProgress}, {{100, 46}, kBorder}});
    row("no border of width zero", Look().outlined(kBorder, 0), plain);
    row("no border of negative width", Look().outlined(kBorder, -2), plain);
    row("no border of a transparent colour", Look().outlined(Qt::transparent, 2), plain);
    row("a hovered plain bar keeps its colour", Look().underThePointer(), plain);
    row("a hovered bar with a colour but no width keeps its colour",
        Look().outlined(kBorder, 0).underThePointer(), plain);
    row("a hovered bar with a width but no colour keeps its colour",
        Look().outlined(Qt::transparent, 2).underThePointer(), plain);
    row("a hovered outlined bar has the hover shade", Look().outlined(kBorder, 2).underThePointer(),
        {{{204, 24}, kHovered}, {{204, 0}, kBorder}});
    row("a hovered bar with a faint outline has the hover shade",
        Look().outlined(kFaintBorder, 2).underThePointer(), {{{204, 24}, kHovered}});
    row("hovering leaves the progress as it is", Look().at(50).outlined(kBorder, 2).underThePointer(),
        {{{100, 24}, kProgress}, {{300, 24}, kHovered}});
}

void ProgressBarPaintingTest::paints()
{
    QFETCH(Look, look);
    QFETCH(QList<Pixel>, pixels);
    ClickableProgressBar bar(nullptr);
    dress(bar, look);
    const QImage image = picture(bar);
    for (const Pixel &pixel : pixels) {
        const QString at = u"(%1, %2) "_s.arg(pixel.at.x()).arg(pixel.at.y());
        QCOMPARE(at + shown(image.pixelColor(pixel.at)), at + shown(pixel.colour));
    }
}

void ProgressBarPaintingTest::neverPaintsText()
{
    ClickableProgressBar bar(nullptr);
    bar.setTextVisible(true);
    bar.setFormat(u"████ %p% ████"_s);
    dress(bar, Look().at(50));
    const QImage image = picture(bar);
    QSet<QRgb> colours;
    for (int y = 1; y < kSize.height() - 1; ++y) {
        for (int x = 24; x < kSize.width() - 24; ++x)
            colours.insert(image.pixel(x, y));
    }
    QCOMPARE(colours, (QSet<QRgb>{kBackground.rgba(), kProgress.rgba()}));
}

void ProgressBarPaintingTest::followsThePointer()
{
    ClickableProgressBar bar(nullptr);
    dress(bar, Look().outlined(kBorder, 2));
    enter(bar);
    QCOMPARE(picture(bar).pixelColor(204, 24), kHovered);
    leave(bar);
    QCOMPARE(picture(bar).pixelColor(204, 24), kBackground);
}

void ProgressBarPaintingTest::clearsItsBorder()
{
    ClickableProgressBar bar(nullptr);
    dress(bar, Look().outlined(kBorder, 2));
    bar.clearBorder();
    QCOMPARE(BarInside(bar).border, QColor(Qt::transparent));
    QCOMPARE(BarInside(bar).borderWidth, 0.0);
    QCOMPARE(picture(bar).pixelColor(204, 0), kBackground);
}

void ProgressBarPaintingTest::showsNoProgressAfterReset()
{
    ClickableProgressBar bar(nullptr);
    dress(bar, Look().at(50));
    bar.reset();
    QCOMPARE(picture(bar).pixelColor(1, 24), kBackground);
}

void ProgressBarPaintingTest::hasSmoothEdges()
{
    ClickableProgressBar bar(nullptr);
    dress(bar, Look());
    const QImage image = picture(bar);
    int blended = 0;
    for (int x = 0; x < 24; ++x) {
        const int alpha = image.pixelColor(x, 4).alpha();
        blended += alpha > 0 && alpha < 255;
    }
    QVERIFY(blended > 0);
}

QUILLON_TEST(ProgressBarPaintingTest)
#include "tst_progress_bar_painting.moc"
