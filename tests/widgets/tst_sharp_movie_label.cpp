// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/Pixels.h"
#include "tests/support/TestProgram.h"
#include "widgets/SharpMovieLabel.h"

#include <QImage>
#include <QImageReader>
#include <QMovie>
#include <QSemaphore>
#include <QTest>
#include <QThreadPool>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace {
constexpr QSize kLabel{408, 128};
constexpr QPoint kPlace{32, 59};
/// Rounding, when a frame was scaled on its way instead of here.
constexpr int kSameColour = 2;
/// Milliseconds, far longer than a frame takes.
constexpr int kBusy = 3000;
const QString kMovie = QStringLiteral(":/new/prefix1/image/dc5v_pc.gif");

/// A frame of the movie as large as it is kept.
QImage frameOf(const QMovie &movie)
{
    QImageReader reader(movie.fileName());
    for (int number = 0; number < movie.currentFrameNumber(); ++number)
        reader.read();
    return reader.read();
}

/// What a window shows that holds the label, on a screen with so many pixels a pixel.
QImage shown(QWidget &window, double ratio)
{
    QImage image(window.size() * ratio, QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::black);
    window.render(&image);
    image.setDevicePixelRatio(1);
    return image;
}

/// Where the label is among the screen's pixels.
QRect placeAt(double ratio)
{
    return QRectF(kPlace * ratio, QSizeF(kLabel) * ratio).toRect();
}

int largestDifferenceOf(const QImage &one, const QImage &other)
{
    int largest = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x)
            largest = std::max(largest, largestDifference(one.pixel(x, y), other.pixel(x, y)));
    }
    return largest;
}

/// A window of the panel's size with the label in it.
class Window : public QWidget {
public:
    explicit Window(QMovie &movie)
        : m_label(new SharpMovieLabel(this))
    {
        resize(472, 418);
        m_label->setGeometry(QRect(kPlace, kLabel));
        m_label->setMovie(&movie);
    }

    SharpMovieLabel &label() { return *m_label; }
    int paints() const { return m_paints; } ///< of the window itself

protected:
    void paintEvent(QPaintEvent *event) override
    {
        ++m_paints;
        QWidget::paintEvent(event);
    }

private:
    SharpMovieLabel *m_label;
    int m_paints = 0;
};
} // namespace

/// The connection animation's label.
class SharpMovieLabelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachFrameIsAsSharpAsTheScreen_data();
    void eachFrameIsAsSharpAsTheScreen();
    void noThreadIsStarted_data() { eachFrameIsAsSharpAsTheScreen_data(); }
    void noThreadIsStarted();
    void whatIsBehindIsPaintedOnce();
    void withoutAFrameNothingIsPainted();
    void anotherMovieShowsWhatIsBehindAtFirst();
    void aDeletedMovieLeavesNothing();
    void anotherSizeIsFilledAsWell();
};

void SharpMovieLabelTest::eachFrameIsAsSharpAsTheScreen_data()
{
    QTest::addColumn<double>("ratio");
    for (const double ratio : {1.0, 1.25, 1.5, 1.75, 2.0, 3.0})
        QTest::addRow("%.2f", ratio) << ratio;
}

void SharpMovieLabelTest::eachFrameIsAsSharpAsTheScreen()
{
    QFETCH(double, ratio);
    QMovie movie(kMovie);
    Window window(movie);
    for (int frames = 0; frames < 4; ++frames) {
        QVERIFY(movie.jumpToNextFrame());
        const QRect place = placeAt(ratio);
        const QImage seen = shown(window, ratio).copy(place);
        const QImage wanted
            = frameOf(movie).scaled(place.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        const int difference = largestDifferenceOf(seen, wanted);
        QVERIFY2(difference <= kSameColour, qPrintable(u"frame %1: %2"_s.arg(frames).arg(difference)));
    }
}

/// Qt would share the work out, and wait for whatever else the application has its threads do.
void SharpMovieLabelTest::noThreadIsStarted()
{
    QFETCH(double, ratio);
    QMovie movie(kMovie);
    Window window(movie);
    QThreadPool *pool = QThreadPool::globalInstance();
    QVERIFY(pool->waitForDone());
    QSemaphore go;
    const int most = pool->maxThreadCount();
    for (int i = 0; i < most; ++i)
        pool->start([&go] { go.tryAcquire(1, kBusy); });
    QVERIFY(movie.jumpToNextFrame());
    shown(window, ratio);
    const int stillBusy = pool->activeThreadCount();
    go.release(most);
    QVERIFY(pool->waitForDone());
    QCOMPARE(stillBusy, most);
}

/// Between one frame and the next nothing else has to be drawn.
void SharpMovieLabelTest::whatIsBehindIsPaintedOnce()
{
    QMovie movie(kMovie);
    Window window(movie);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QVERIFY(movie.jumpToNextFrame());
    QCoreApplication::processEvents();
    const int before = window.paints();
    for (int frames = 0; frames < 5; ++frames) {
        QVERIFY(movie.jumpToNextFrame());
        QCoreApplication::processEvents();
    }
    QCOMPARE(window.paints(), before);
}

void SharpMovieLabelTest::withoutAFrameNothingIsPainted()
{
    QMovie movie(kMovie);
    Window window(movie);
    window.setPalette(QPalette(Qt::darkGreen));
    const QImage seen = shown(window, 1);
    QImage empty(window.size(), QImage::Format_RGB32);
    empty.fill(window.palette().color(QPalette::Window));
    QCOMPARE(largestDifferenceOf(seen, empty), 0);
}

void SharpMovieLabelTest::anotherMovieShowsWhatIsBehindAtFirst()
{
    QMovie movie(kMovie);
    Window window(movie);
    QVERIFY(movie.jumpToNextFrame());
    QVERIFY(window.label().testAttribute(Qt::WA_OpaquePaintEvent));
    QMovie other(kMovie);
    window.label().setMovie(&other);
    QVERIFY(!window.label().testAttribute(Qt::WA_OpaquePaintEvent));
    QVERIFY(movie.jumpToNextFrame());
    QVERIFY(!window.label().testAttribute(Qt::WA_OpaquePaintEvent));
    QVERIFY(other.jumpToNextFrame());
    QVERIFY(window.label().testAttribute(Qt::WA_OpaquePaintEvent));
}

/// The label is not told, and shows what is behind it as soon as it is painted.
void SharpMovieLabelTest::aDeletedMovieLeavesNothing()
{
    auto movie = std::make_unique<QMovie>(kMovie);
    Window window(*movie);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QVERIFY(movie->jumpToNextFrame());
    QCoreApplication::processEvents();
    const int before = window.paints();
    movie.reset();
    window.label().update();
    QTRY_COMPARE(window.paints(), before + 1);
}

void SharpMovieLabelTest::anotherSizeIsFilledAsWell()
{
    QMovie movie(kMovie);
    Window window(movie);
    QVERIFY(movie.jumpToNextFrame());
    window.label().resize(307, 97);
    const QImage seen = shown(window, 1).copy(window.label().geometry());
    const QImage wanted = frameOf(movie).scaled(seen.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QVERIFY(largestDifferenceOf(seen, wanted) <= kSameColour);
}

QUILLON_TEST(SharpMovieLabelTest)
#include "tst_sharp_movie_label.moc"
