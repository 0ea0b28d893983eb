// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/Pixels.h"
#include "tests/support/TestProgram.h"

#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QResource>
#include <QSet>
#include <QTest>

#include <algorithm>
#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {
constexpr QRgb kPanel = qRgb(31, 32, 40);
constexpr QRgb kBlue = qRgb(87, 110, 246);
constexpr QRgb kTeal = qRgb(47, 212, 179);
constexpr QRgb kAmber = qRgb(246, 180, 54);
constexpr QSize kPixels{1224, 384};
/// What a label shows of them on a screen without a scale.
constexpr QSize kShown{408, 128};
/// Of those: a dot that moves on.
constexpr int kLeastMotion = 12;
constexpr int kMostBytes = 150'000;
/// How far in from a rim the colour begins that it belongs to, and how much a palette may round it.
constexpr int kRimWidth = 3;
constexpr int kSameColour = 12;

struct Movie {
    QList<QImage> frames;
    QList<std::chrono::milliseconds> delays;
    int loopCount = 0;
};

QString pathOf(const QString &name)
{
    return u":/new/prefix1/image/"_s + name;
}

Movie read(const QString &name)
{
    QImageReader reader(pathOf(name));
    Movie movie;
    while (reader.canRead()) {
        movie.frames.append(reader.read().convertToFormat(QImage::Format_ARGB32));
        movie.delays.append(std::chrono::milliseconds(reader.nextImageDelay()));
    }
    movie.loopCount = reader.loopCount();
    return movie;
}

/// How many pixels differ visibly, optionally inside a part only.
int changedPixels(const QImage &a, const QImage &b, QRect part = {})
{
    if (part.isNull())
        part = a.rect();
    int count = 0;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        const auto *first = reinterpret_cast<const QRgb *>(a.constScanLine(y));
        const auto *second = reinterpret_cast<const QRgb *>(b.constScanLine(y));
        for (int x = part.left(); x <= part.right(); ++x)
            count += largestDifference(first[x], second[x]) > 16;
    }
    return count;
}

int pixelsOf(const QImage &image, QRgb colour)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        count += int(std::count(line, line + image.width(), colour));
    }
    return count;
}

bool isOpaque(const QImage &image)
{
    for (int y = 0; y < image.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        if (!std::all_of(line, line + image.width(), [](QRgb colour) { return qAlpha(colour) == 255; }))
            return false;
    }
    return true;
}

/// Runs of one or two pixels that leave a colour and come straight back to it: what dithering is made of.
int specks(const QImage &image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 1; x + 1 < image.width(); ++x)
            count += line[x] != line[x - 1] && line[x - 1] == line[x + 1];
    }
    return count;
}
bool isGround(const QImage &image, int x, int y)
{
    return image.valid(x, y) && image.pixel(x, y) == kPanel;
}

/// The outermost pixel of something that stands on the panel.
bool isRim(const QImage &image, int x, int y)
{
    return !isGround(image, x, y)
        && (isGround(image, x - 1, y) || isGround(image, x + 1, y) || isGround(image, x, y - 1)
            || isGround(image, x, y + 1));
}

/// How far a channel is from being between two others.
int outside(int channel, int one, int other)
{
    const auto [low, high] = std::minmax(one, other);
    return std::max({low - channel, channel - high, 0});
}

/// How far the rim at a place is from being a mixture of the panel and of what it is the rim of.
int distanceToMixture(const QImage &image, int x, int y)
{
    const QRgb rim = image.pixel(x, y);
    int nearest = 255;
    for (int dy = -kRimWidth; dy <= kRimWidth; ++dy) {
        for (int dx = -kRimWidth; dx <= kRimWidth; ++dx) {
            if (!image.valid(x + dx, y + dy) || isRim(image, x + dx, y + dy))
                continue;
            const QRgb body = image.pixel(x + dx, y + dy);
            if (body == kPanel)
                continue;
            nearest = std::min(nearest,
                               std::max({outside(qRed(rim), qRed(kPanel), qRed(body)),
                                         outside(qGreen(rim), qGreen(kPanel), qGreen(body)),
                                         outside(qBlue(rim), qBlue(kPanel), qBlue(body))}));
        }
    }
    return nearest;
}
} // namespace

/// The connection pictures, frame by frame.
class AnimationsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isSmallAndStoredPlain_data();
    void isSmallAndStoredPlain();
    void runsSmoothlyAndForever_data() { isSmallAndStoredPlain_data(); }
    void runsSmoothlyAndForever();
    void neverStandsStill_data() { isSmallAndStoredPlain_data(); }
    void neverStandsStill();
    void closesItsLoop_data() { isSmallAndStoredPlain_data(); }
    void closesItsLoop();
    void standsOnThePanel_data() { isSmallAndStoredPlain_data(); }
    void standsOnThePanel();
    void hasNoFringe_data() { isSmallAndStoredPlain_data(); }
    void hasNoFringe();
    void hasNoNoise_data() { isSmallAndStoredPlain_data(); }
    void hasNoNoise();
    void lightsUpWhenConnected_data();
    void lightsUpWhenConnected();
    void showsTheSameDeviceInBothPhases_data();
    void showsTheSameDeviceInBothPhases();
    void tellsTheDevicesApart();
};

void AnimationsTest::isSmallAndStoredPlain_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"pc.gif", "dc5v_pc.gif", "pc_otg.gif", "dc5v_otg.gif"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void AnimationsTest::isSmallAndStoredPlain()
{
    QFETCH(QString, name);
    const QResource resource(pathOf(name));
    QVERIFY(resource.isValid());
    QCOMPARE(resource.compressionAlgorithm(), QResource::NoCompression);
    QVERIFY2(resource.size() < kMostBytes, qPrintable(QString::number(resource.size())));
}

void AnimationsTest::runsSmoothlyAndForever()
{
    QFETCH(QString, name);
    const Movie movie = read(name);
    QVERIFY2(movie.frames.size() > 20, qPrintable(QString::number(movie.frames.size())));
    QCOMPARE(movie.loopCount, -1);
    std::chrono::milliseconds total{};
    for (int i = 0; i < movie.frames.size(); ++i) {
        QCOMPARE(movie.frames.at(i).size(), kPixels);
        // Browsers slow down anything below 20 ms; above 66 ms there are fewer than 15 frames in a second,
        // for each is a frame of its own: see neverStandsStill.
        QVERIFY2(movie.delays.at(i) >= 20ms && movie.delays.at(i) <= 66ms,
                 qPrintable(QString::number(movie.delays.at(i).count())));
        total += movie.delays.at(i);
    }
    QVERIFY2(total >= 2s && total <= 4s, qPrintable(QString::number(total.count())));
}

void AnimationsTest::neverStandsStill()
{
    QFETCH(QString, name);
    QList<QImage> frames = read(name).frames;
    for (QImage &frame : frames)
        frame = frame.scaled(kShown, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    // Dots run, plugs travel, current pulses: each frame is one that a person sees, the first after the last
    // too.
    for (int i = 0; i < frames.size(); ++i) {
        const int next = (i + 1) % int(frames.size());
        const int moved = changedPixels(frames.at(i), frames.at(next));
        QVERIFY2(moved >= kLeastMotion, qPrintable(u"frames %1 and %2: %3"_s.arg(i).arg(next).arg(moved)));
    }
}

void AnimationsTest::closesItsLoop()
{
    QFETCH(QString, name);
    const QList<QImage> frames = read(name).frames;
    const int seam = changedPixels(frames.last(), frames.first());
    int largestStep = 0;
    int farthest = 0;
    for (int i = 1; i < frames.size(); ++i) {
        largestStep = std::max(largestStep, changedPixels(frames.at(i - 1), frames.at(i)));
        farthest = std::max(farthest, changedPixels(frames.first(), frames.at(i)));
    }
    const QByteArray found = QByteArray::number(seam) + " of " + QByteArray::number(largestStep);
    QVERIFY2(seam < kPixels.width() * kPixels.height() / 100, found.constData());
    QVERIFY2(seam < largestStep, found.constData());
    QVERIFY2(farthest > 4 * seam, "there is no story between the first frame and the last");
}

void AnimationsTest::standsOnThePanel()
{
    QFETCH(QString, name);
    const QList<QImage> frames = read(name).frames;
    for (int i = 0; i < frames.size(); ++i) {
        const QImage &frame = frames.at(i);
        // Soft edges are mixed with the panel's colour: an edge that lets another ground through would show a
        // rim.
        QVERIFY2(isOpaque(frame), qPrintable(QString::number(i)));
        const QRect inside = frame.rect().adjusted(1, 1, -1, -1);
        for (int y = 0; y < frame.height(); ++y) {
            for (int x = 0; x < frame.width(); ++x) {
                if (!inside.contains(x, y) && frame.pixel(x, y) != kPanel)
                    QFAIL(qPrintable(u"frame %1 is cut at %2,%3"_s.arg(i).arg(x).arg(y)));
            }
        }
    }
}

/// What was drawn on another ground would carry a rim of it.
void AnimationsTest::hasNoFringe()
{
    QFETCH(QString, name);
    const QList<QImage> frames = read(name).frames;
    for (int i = 0; i < frames.size(); i += 5) {
        const QImage &frame = frames.at(i);
        int rim = 0;
        for (int y = 0; y < frame.height(); ++y) {
            for (int x = 0; x < frame.width(); ++x) {
                if (!isRim(frame, x, y))
                    continue;
                ++rim;
                QVERIFY2(distanceToMixture(frame, x, y) <= kSameColour,
                         qPrintable(u"frame %1 at %2,%3"_s.arg(i).arg(x).arg(y)));
            }
        }
        QVERIFY(rim > 1000);
    }
}

void AnimationsTest::hasNoNoise()
{
    QFETCH(QString, name);
    const QList<QImage> frames = read(name).frames;
    for (int i = 0; i < frames.size(); i += 5) {
        const int found = specks(frames.at(i));
        QVERIFY2(found < 2500, qPrintable(u"frame %1: %2"_s.arg(i).arg(found)));
        QVERIFY2(pixelsOf(frames.at(i), kPanel) > kPixels.width() * kPixels.height() / 2,
                 "the ground is not even");
    }
}

void AnimationsTest::lightsUpWhenConnected_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("power");
    QTest::newRow("pc.gif") << u"pc.gif"_s << false;
    QTest::newRow("pc_otg.gif") << u"pc_otg.gif"_s << false;
    QTest::newRow("dc5v_pc.gif") << u"dc5v_pc.gif"_s << true;
    QTest::newRow("dc5v_otg.gif") << u"dc5v_otg.gif"_s << true;
}

void AnimationsTest::lightsUpWhenConnected()
{
    QFETCH(QString, name);
    QFETCH(bool, power);
    const QList<QImage> frames = read(name).frames;
    const QImage &before = frames.first();
    const QImage &after = frames.at(frames.size() * 4 / 5);
    QVERIFY(pixelsOf(before, kBlue) > 100);
    QVERIFY2(pixelsOf(after, kTeal) > 1.5 * pixelsOf(before, kTeal) + 300,
             "nothing says that it is connected");
    QCOMPARE(pixelsOf(before, kAmber) > 100, power);
    QVERIFY(!power || pixelsOf(after, kAmber) > pixelsOf(before, kAmber));
}

void AnimationsTest::showsTheSameDeviceInBothPhases_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<QRect>("untouched");
    // Where neither story moves anything: the left of the device, up to its first port in use.
    QTest::newRow("R1") << u"pc.gif"_s << u"pc_otg.gif"_s << QRect(0, 0, 370, 384);
    QTest::newRow("R2") << u"dc5v_pc.gif"_s << u"dc5v_otg.gif"_s << QRect(0, 0, 210, 384);
}

void AnimationsTest::showsTheSameDeviceInBothPhases()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(QRect, untouched);
    const QImage one = read(first).frames.first();
    QVERIFY2(pixelsOf(one.copy(untouched), kPanel) < untouched.width() * untouched.height() * 4 / 5,
             "no device");
    // Each file has a palette of its own, which may show here and there on an edge.
    const int different = changedPixels(one, read(second).frames.first(), untouched);
    QVERIFY2(different < untouched.width() * untouched.height() / 1000,
             qPrintable(QString::number(different)));
}

void AnimationsTest::tellsTheDevicesApart()
{
    const QRect device(0, 0, 720, 384);
    const int different
        = changedPixels(read(u"pc.gif"_s).frames.first(), read(u"dc5v_pc.gif"_s).frames.first(), device);
    QVERIFY2(different > device.width() * device.height() / 10, qPrintable(QString::number(different)));
}

QUILLON_TEST(AnimationsTest)
#include "tst_animations.moc"
