// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "widgets/SharpMovieLabel.h"

#include <QImage>
#include <QMovie>
#include <QPainter>
#include <QPixmap>
#include <QTransform>

#include <numeric>

namespace {
/// Qt shares the scaling of a larger picture out among threads, which would stay for half a minute each time.
constexpr int kScaledByOneThread = 1 << 17;

/// How many strips of the same height, each of which one thread scales, give the same as the whole picture
/// does: no pixel of the result may need two of them.
int stripsOf(QSize from, QSize to)
{
    const int most = std::gcd(from.height(), to.height());
    int strips = 1;
    while (strips < most
           && (most % strips != 0 || from.width() * from.height() / strips >= kScaledByOneThread))
        ++strips;
    return strips;
}

/// Paints \a image in the size of \a place, each pixel the mean of those that it stands for.
void paintScaled(QPainter &painter, const QRect &place, const QImage &image)
{
    const int strips = stripsOf(image.size(), place.size());
    const QSize from(image.width(), image.height() / strips);
    const QSize to(place.width(), place.height() / strips);
    for (int strip = 0; strip < strips; ++strip) {
        const QImage part(image.constScanLine(strip * from.height()), from.width(), from.height(),
                          image.bytesPerLine(), image.format());
        painter.drawImage(place.topLeft() + QPoint(0, strip * to.height()),
                          part.scaled(to, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    }
}
} // namespace

SharpMovieLabel::SharpMovieLabel(QWidget *parent)
    : QLabel(parent)
{
    setScaledContents(true);
}

void SharpMovieLabel::setMovie(QMovie *movie)
{
    disconnect(m_frames);
    QLabel::setMovie(movie);
    takeFrame();
    if (movie)
        m_frames = connect(movie, &QMovie::frameChanged, this, [this] { takeFrame(); });
}

/// Until there is a frame, what is behind the label can be seen.
void SharpMovieLabel::takeFrame()
{
    const QPixmap frame = movie() ? movie()->currentPixmap() : QPixmap();
    setAttribute(Qt::WA_OpaquePaintEvent, !frame.isNull() && !frame.hasAlphaChannel());
}

void SharpMovieLabel::paintEvent(QPaintEvent *event)
{
    const QPixmap frame = movie() ? movie()->currentPixmap() : QPixmap();
    if (frame.isNull()) {
        // The movie went without a word. What it left has to be painted over.
        if (testAttribute(Qt::WA_OpaquePaintEvent)) {
            setAttribute(Qt::WA_OpaquePaintEvent, false);
            update();
        }
        QLabel::paintEvent(event);
        return;
    }
    QPainter painter(this);
    const QTransform toScreen = painter.deviceTransform();
    painter.setWorldTransform(toScreen.inverted()); // the screen's pixels from here on
    paintScaled(painter, toScreen.mapRect(QRectF(rect())).toRect(), frame.toImage());
}
