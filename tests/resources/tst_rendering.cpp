// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/Pixels.h"
#include "tests/support/TestProgram.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <chrono>
#include <functional>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {
constexpr std::chrono::milliseconds kRenderLimit = 9min;
const QString kResources = QStringLiteral(QUILLON_RESOURCES);

/// What the shipped pictures were drawn with. Another version rounds the edges of a shape in its own way.
struct Tool {
    const char *program;
    const char *version;
};

constexpr Tool kTools[]{
    {"rsvg-convert", "2.54.7"},
    {"convert", "6.9.11-60"},
    {"gifsicle", "1.93"},
};

/// How far a picture may be from what ships when it was drawn with other versions, in a colour's channel.
struct Tolerance {
    int shrink; ///< how many pixels a side are averaged first
    int largest; ///< of any pixel of any frame
    double mean; ///< over any frame
};

constexpr Tolerance kStill{1, 2, 0.5};
/// All frames share one palette, and a single edge rounded differently may shift the colours that edges get.
/// The panel shows one pixel for three by three.
constexpr Tolerance kMovie{3, 36, 0.15};

struct Frame {
    QImage image;
    int delay = 0;
};

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString versionOf(const Tool &tool)
{
    QProcess process;
    process.start(QLatin1StringView(tool.program), {u"--version"_s});
    process.waitForFinished();
    static const QRegularExpression number(u"\\d+(\\.\\d+)+(-\\d+)?"_s);
    return number.match(QString::fromLocal8Bit(process.readAllStandardOutput())).captured();
}

bool isDrawnWithTheSameTools()
{
    return std::all_of(std::begin(kTools), std::end(kTools),
                       [](const Tool &tool) { return versionOf(tool) == QLatin1StringView(tool.version); });
}

QList<Frame> framesOf(QByteArray content)
{
    QBuffer buffer(&content);
    QImageReader reader(&buffer);
    QList<Frame> frames;
    while (reader.canRead()) {
        const QImage image = reader.read();
        if (image.isNull())
            return {};
        frames.append({image.convertToFormat(QImage::Format_ARGB32_Premultiplied), reader.nextImageDelay()});
    }
    return frames;
}

QImage shrunk(const QImage &image, int by)
{
    return by == 1 ? image : image.scaled(image.size() / by, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

bool isNear(const QImage &a, const QImage &b, const Tolerance &tolerance)
{
    qint64 sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        const auto *first = reinterpret_cast<const QRgb *>(a.constScanLine(y));
        const auto *second = reinterpret_cast<const QRgb *>(b.constScanLine(y));
        for (int x = 0; x < a.width(); ++x) {
            const int distance = std::max(largestDifference(first[x], second[x]),
                                          std::abs(qAlpha(first[x]) - qAlpha(second[x])));
            if (distance > tolerance.largest)
                return false;
            sum += distance;
        }
    }
    return double(sum) <= tolerance.mean * a.width() * a.height();
}

/// Whether a person would take one for the other.
bool areNear(const QList<Frame> &a, const QList<Frame> &b)
{
    const Tolerance &tolerance = a.size() > 1 ? kMovie : kStill;
    const auto same = [&](const Frame &one, const Frame &other) {
        return one.delay == other.delay && one.image.size() == other.image.size()
            && isNear(shrunk(one.image, tolerance.shrink), shrunk(other.image, tolerance.shrink), tolerance);
    };
    return !a.isEmpty() && std::equal(a.begin(), a.end(), b.begin(), b.end(), same);
}

QList<Frame> shippedFrames(const QString &picture)
{
    return framesOf(contentOf(kResources + u"/image/"_s + picture));
}

QImage recoloured(const QImage &image, QRgb from, QRgb to)
{
    QImage result = image;
    for (int y = 0; y < result.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(result.scanLine(y));
        std::replace(line, line + result.width(), from, to);
    }
    return result;
}

QImage movedRight(const QImage &image)
{
    QImage result = image;
    for (int y = 0; y < result.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(result.scanLine(y));
        std::copy_backward(line, line + result.width() - 1, line + result.width());
    }
    return result;
}

template <typename Change> QList<Frame> eachChanged(QList<Frame> frames, const Change &change)
{
    for (Frame &frame : frames)
        frame.image = change(frame.image);
    return frames;
}
} // namespace

/// What ships is what the sources in resources/art give: to the byte with the tools it was drawn with, to the
/// eye with others.
class RenderingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void givesEveryShippedPicture();
    void aChangedMovieIsSeen_data();
    void aChangedMovieIsSeen();
    void aChangedSourceIsSeen_data();
    void aChangedSourceIsSeen();
    void refusesAnUnknownPicture();

private:
    QString m_script = kResources + u"/art/render"_s;
};

void RenderingTest::initTestCase()
{
    QStringList programs{u"python3"_s};
    for (const Tool &tool : kTools)
        programs.append(QLatin1StringView(tool.program));
    for (const QString &program : programs) {
        if (QStandardPaths::findExecutable(program).isEmpty())
            QSKIP(qPrintable(program + u" is not installed"_s));
    }
}

void RenderingTest::givesEveryShippedPicture()
{
    const QTemporaryDir folder;
    QVERIFY(folder.isValid());
    QProcess render;
    render.start(m_script, {folder.path()});
    QVERIFY2(render.waitForFinished(int(kRenderLimit.count())), qPrintable(render.errorString()));
    QVERIFY2(render.exitStatus() == QProcess::NormalExit && render.exitCode() == 0,
             render.readAllStandardError().constData());

    const QDir shipped(kResources + u"/image"_s);
    const QStringList pictures = shipped.entryList(QDir::Files);
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), pictures);
    const bool exactly = isDrawnWithTheSameTools();
    for (const QString &picture : pictures) {
        const QByteArray rendered = contentOf(folder.filePath(picture));
        QVERIFY2(!rendered.isEmpty(), qPrintable(picture));
        const bool same = rendered == contentOf(shipped.filePath(picture))
            || (!exactly && areNear(framesOf(rendered), shippedFrames(picture)));
        QVERIFY2(same, qPrintable(picture + u" differs"_s));
    }
}

/// The tolerance for other versions must not let through what a person would notice.
void RenderingTest::aChangedMovieIsSeen_data()
{
    QTest::addColumn<std::function<QList<Frame>(QList<Frame>)>>("change");
    QTest::addColumn<bool>("seen");
    using Change = std::function<QList<Frame>(QList<Frame>)>;
    constexpr QRgb kBlue = qRgb(87, 110, 246);
    constexpr QRgb kGround = qRgb(31, 32, 40);
    const auto recolour = [](QRgb from, QRgb to) {
        return Change([=](const QList<Frame> &frames) {
            return eachChanged(frames, [=](const QImage &image) { return recoloured(image, from, to); });
        });
    };
    const Change same = [](const QList<Frame> &frames) { return frames; };
    const Change later = [](QList<Frame> frames) {
        frames.append(frames.takeFirst());
        return frames;
    };
    const Change slower = [](QList<Frame> frames) {
        frames.last().delay += 10;
        return frames;
    };
    const Change shorter = [](const QList<Frame> &frames) { return frames.mid(1); };
    const Change moved = [](const QList<Frame> &frames) { return eachChanged(frames, movedRight); };
    QTest::newRow("nothing") << same << false;
    QTest::newRow("ahead by a frame") << later << true;
    QTest::newRow("one frame is shown for longer") << slower << true;
    QTest::newRow("a frame is missing") << shorter << true;
    QTest::newRow("a third of the panel's pixel to the right") << moved << true;
    QTest::newRow("another blue") << recolour(kBlue, qRgb(87, 160, 246)) << true;
    QTest::newRow("the ground a shade lighter") << recolour(kGround, qRgb(32, 33, 41)) << true;
}

void RenderingTest::aChangedMovieIsSeen()
{
    QFETCH(std::function<QList<Frame>(QList<Frame>)>, change);
    QFETCH(bool, seen);
    for (const QString &movie : QDir(kResources + u"/image"_s).entryList({u"*.gif"_s})) {
        const QList<Frame> frames = shippedFrames(movie);
        QVERIFY2(frames.size() > 1, qPrintable(movie));
        QVERIFY2(areNear(change(frames), frames) != seen, qPrintable(movie));
    }
}

/// Likewise for stills, by way of their sources.
void RenderingTest::aChangedSourceIsSeen_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<bool>("seen");
    QTest::newRow("nothing") << QByteArray() << QByteArray() << false;
    QTest::newRow("a thicker stroke") << QByteArray("width=\"2\"") << QByteArray("width=\"2.1\"") << true;
    QTest::newRow("a fainter one") << QByteArray("opacity=\".7\"") << QByteArray("opacity=\".68\"") << true;
    QTest::newRow("a longer one") << QByteArray("17 17M") << QByteArray("17.1 17.1M") << true;
    QTest::newRow("another colour") << QByteArray("#fff") << QByteArray("#fcf") << true;
}

void RenderingTest::aChangedSourceIsSeen()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(bool, seen);
    QByteArray source = contentOf(kResources + u"/art/icons/close.svg"_s);
    if (seen) {
        QVERIFY(source.contains(before));
        source.replace(before, after);
    }
    QProcess rasterise;
    rasterise.start(u"rsvg-convert"_s, {u"--format=png"_s});
    rasterise.write(source);
    rasterise.closeWriteChannel();
    QVERIFY(rasterise.waitForFinished());
    QCOMPARE(areNear(framesOf(rasterise.readAllStandardOutput()), shippedFrames(u"close.png"_s)), !seen);
}

void RenderingTest::refusesAnUnknownPicture()
{
    const QTemporaryDir folder;
    QProcess render;
    render.start(m_script, {folder.path(), u"unheard-of.png"_s});
    QVERIFY(render.waitForFinished());
    QVERIFY(render.exitCode() != 0);
    QVERIFY(render.readAllStandardError().contains("unheard-of.png"));
    QVERIFY(QDir(folder.path()).isEmpty());
}

QUILLON_TEST_CORE(RenderingTest)
#include "tst_rendering.moc"
