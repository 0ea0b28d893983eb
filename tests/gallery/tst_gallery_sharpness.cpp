// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/gallery/Sharpness.h"
#include "tests/gallery/Views.h"
#include "tests/gallery/WidgetFacts.h"
#include "tests/support/TestProgram.h"

#include <QPainter>
#include <QTest>

using namespace Qt::StringLiterals;
using Gallery::View;

namespace {
const QString kGallery = QStringLiteral(QUILLON_GALLERY "/");

/// Of an enlarged picture it is 0. A drawing whose lines stand on whole points of the design has many of its
/// edges there.
constexpr double kLeast = 0.3;

QList<View> enlargedViews()
{
    return Gallery::viewsAt(1.5) + Gallery::viewsAt(2);
}

bool isPicture(const WidgetFacts &widget)
{
    return (widget.isLabel && !widget.state.isEmpty()) || widget.name == u"m_closeBtn";
}

QImage pictureOf(const View &view, const QString &screen, const QRect &place)
{
    const QImage picture(kGallery + Gallery::picturePath(view, screen));
    return picture.copy(Gallery::devicePixels(place, view.scale) & picture.rect());
}

QRect placeOfMovie(const View &view, const QString &screen)
{
    for (const WidgetFacts &widget : readFacts(kGallery + Gallery::factsPath(view, screen))) {
        if (widget.name == u"tipMoiveLb")
            return widget.place;
    }
    return {};
}
} // namespace

/// No picture is one that was made for fewer pixels than the screen has, and enlarged.
class GallerySharpnessTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void noPictureIsEnlarged_data();
    void noPictureIsEnlarged();
    void anEnlargedAnimationIsSeen_data();
    void anEnlargedAnimationIsSeen();
    void sharpnessIsMeasured_data();
    void sharpnessIsMeasured();
};

void GallerySharpnessTest::noPictureIsEnlarged_data()
{
    QTest::addColumn<View>("view");
    QTest::addColumn<QString>("screen");
    for (const View &view : enlargedViews()) {
        for (const Gallery::Screen &screen : Gallery::screens()) {
            const QString name = QLatin1StringView(screen.name);
            QTest::newRow(qPrintable(view.folder() + u' ' + name)) << view << name;
        }
    }
}

void GallerySharpnessTest::noPictureIsEnlarged()
{
    QFETCH(View, view);
    QFETCH(QString, screen);
    for (const WidgetFacts &widget : readFacts(kGallery + Gallery::factsPath(view, screen))) {
        if (!isPicture(widget))
            continue;
        const double sharpness = Sharpness::ofPicture(pictureOf(view, screen, widget.place), view.scale);
        QVERIFY2(sharpness < 0 || sharpness >= kLeast,
                 qPrintable(u"%1: %2"_s.arg(widget.name).arg(sharpness)));
    }
}

/// What a label shows that takes a frame in its own size and leaves the rest to the screen.
void GallerySharpnessTest::anEnlargedAnimationIsSeen_data()
{
    QTest::addColumn<View>("view");
    QTest::addColumn<QString>("screen");
    for (const View &view : enlargedViews()) {
        for (const QString &screen : {u"waiting-pc"_s, u"waiting-otg"_s})
            QTest::newRow(qPrintable(view.folder() + u' ' + screen)) << view << screen;
    }
}

void GallerySharpnessTest::anEnlargedAnimationIsSeen()
{
    QFETCH(View, view);
    QFETCH(QString, screen);
    const QRect place = placeOfMovie(view, screen);
    QVERIFY(!place.isNull());
    const View small{view.model, view.language, 1};
    const QImage enlarged = pictureOf(small, screen, place)
                                .scaled(Gallery::devicePixels(place, view.scale).size(),
                                        Qt::IgnoreAspectRatio, Qt::FastTransformation);
    const double sharpness = Sharpness::ofPicture(enlarged, view.scale);
    QVERIFY2(sharpness >= 0 && sharpness < kLeast, qPrintable(QString::number(sharpness)));
}

void GallerySharpnessTest::sharpnessIsMeasured_data()
{
    QTest::addColumn<double>("drawnFor");
    QTest::addColumn<double>("scale");
    QTest::addColumn<bool>("sharp");
    for (const double scale : {1.25, 1.5, 1.75, 2.0, 3.0}) {
        QTest::addRow("drawn for %.2f", scale) << scale << scale << true;
        QTest::addRow("enlarged to %.2f", scale) << 1.0 << scale << false;
    }
}

void GallerySharpnessTest::sharpnessIsMeasured()
{
    QFETCH(double, drawnFor);
    QFETCH(double, scale);
    QFETCH(bool, sharp);
    QImage picture(QSize(200, 100) * drawnFor, QImage::Format_RGB32);
    picture.fill(Qt::black);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(drawnFor, drawnFor);
    painter.setPen(QPen(Qt::white, 2));
    painter.drawEllipse(QRectF(10, 10, 180, 80));
    painter.end();
    const QImage shown
        = picture.scaled(QSize(200, 100) * scale, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    const double sharpness = Sharpness::ofPicture(shown, scale);
    QVERIFY2(sharp ? sharpness > 0.5 : sharpness >= 0 && sharpness < kLeast,
             qPrintable(QString::number(sharpness)));
}

QUILLON_TEST_CORE(GallerySharpnessTest)
#include "tst_gallery_sharpness.moc"
