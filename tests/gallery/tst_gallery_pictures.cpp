// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/gallery/PictureFile.h"
#include "tests/gallery/Views.h"
#include "tests/gallery/WidgetFacts.h"
#include "tests/support/TestProgram.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QLibrary>
#include <QSet>
#include <QSysInfo>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;
using Gallery::View;

namespace {
const QString kGallery = QStringLiteral(QUILLON_GALLERY "/");
const QString kReference = QStringLiteral(QUILLON_GALLERY_REFERENCE "/");
const QString kDocumented = QStringLiteral(QUILLON_DOCUMENTED "/");
const QString kDifferences = QStringLiteral(QUILLON_GALLERY "/differences/");

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList linesOf(const QString &path)
{
    return QString::fromUtf8(contentOf(path)).split(u'\n');
}

QSet<QString> filesIn(const QString &folder)
{
    QSet<QString> names;
    QDirIterator files(folder, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext())
        names.insert(QDir(folder).relativeFilePath(files.next()));
    return names;
}

/// The view whose kept files stand for \a view's as well where it has none of its own: many screens look the
/// same for both models.
View standInOf(const View &view)
{
    return {u"R2"_s, view.language, view.scale};
}

QString keptPicture(const View &view, const QString &screen)
{
    const QString own = kReference + Gallery::picturePath(view, screen);
    return QFile::exists(own) ? own : kReference + Gallery::picturePath(standInOf(view), screen);
}

/// The widgets are the same at every scale.
QString keptWidgets(View view, const QString &screen)
{
    view.scale = 1;
    const QString own = kReference + Gallery::widgetsPath(view, screen);
    return QFile::exists(own) ? own : kReference + Gallery::widgetsPath(standInOf(view), screen);
}

struct Drawer {
    const char *qt;
    const char *freeType;
};

/// What drew the kept pictures, on Linux, and what is known to draw letters like that. Anything else may give
/// letters of the same font edges, and a word a width, of their own.
constexpr Drawer kAlike[]{
    {"6.4.2", "2.12.1"},
    {"6.8.2", "2.13.3"},
};
/// What their strokes weigh differs, too.
constexpr int kLettersTolerance = 16;

/// Of the library that Qt draws letters with on Linux.
QString freeTypeVersion()
{
    QLibrary library(u"freetype"_s, 6);
    using Init = int (*)(void **);
    using Version = void (*)(void *, int *, int *, int *);
    using Done = int (*)(void *);
    const auto init = reinterpret_cast<Init>(library.resolve("FT_Init_FreeType"));
    const auto version = reinterpret_cast<Version>(library.resolve("FT_Library_Version"));
    const auto done = reinterpret_cast<Done>(library.resolve("FT_Done_FreeType"));
    void *instance = nullptr;
    if (!init || !version || !done || init(&instance) != 0)
        return {};
    int major = 0;
    int minor = 0;
    int patch = 0;
    version(instance, &major, &minor, &patch);
    done(instance);
    return u"%1.%2.%3"_s.arg(major).arg(minor).arg(patch);
}

bool doLettersDiffer()
{
    static const bool differ = [] {
        const QString freeType = freeTypeVersion();
        const auto isAtHand = [&](const Drawer &drawer) {
            return QLatin1StringView(qVersion()) == QLatin1StringView(drawer.qt)
                && freeType == QLatin1StringView(drawer.freeType);
        };
        return QSysInfo::kernelType() != u"linux"
            || std::none_of(std::begin(kAlike), std::end(kAlike), isAtHand);
    }();
    return differ;
}

/// These are as wide as their text, and stand side by side.
bool isSizedByText(const QString &widget)
{
    return widget.startsWith(u"m_offlineTool"_s);
}

/// Where letters differ.
QList<QRect> placesOfLetters(const View &view, const QString &screen)
{
    QList<QRect> places;
    if (!doLettersDiffer())
        return places;
    // The box hides the places of what is below it.
    if (screen == u"warning")
        return {QRect(QPoint(), QImage(kGallery + Gallery::picturePath(view, screen)).size())};
    QRect sizedByText;
    for (const WidgetFacts &widget : readFacts(kGallery + Gallery::factsPath(view, screen))) {
        const QRect place = Gallery::devicePixels(widget.place, view.scale);
        if (isSizedByText(widget.name))
            sizedByText |= place;
        else if (!widget.text.isEmpty())
            places.append(place);
    }
    places.append(sizedByText);
    return places;
}

/// A line of a picture's text without the numbers that letters decide on.
QString comparable(const QString &line)
{
    if (!doLettersDiffer() || !isSizedByText(line))
        return line;
    return line.section(u'(', 0, 0) + line.section(u')', 1);
}

/// Fails, leaving a picture of the difference as \a shown, when \a taken is not what \a kept is but for the
/// shapes of the letters at \a letters.
void compareWithKept(const QString &kept, const QString &taken, const QString &shown,
                     const QList<QRect> &letters = {})
{
    const QImage picture(taken);
    QVERIFY2(!picture.isNull(), qPrintable(taken + u" is missing"_s));
    const PictureFile::Difference difference = PictureFile::compare(
        PictureFile::withoutStrokes(QImage(kept), letters), PictureFile::withoutStrokes(picture, letters),
        letters.isEmpty() ? PictureFile::kTolerance : kLettersTolerance);
    QVERIFY2(difference.sameSize, qPrintable(kept + u" is missing or of another size"_s));
    if (difference.pixels <= PictureFile::kToleratedPixels)
        return;
    PictureFile::save(difference.shown, kDifferences + shown);
    QFAIL(qPrintable(u"%1 pixels differ, by %2 at most: see %3"_s.arg(difference.pixels)
                         .arg(difference.largest)
                         .arg(kDifferences + shown)));
}
} // namespace

/// Every screen looks as it did when somebody last looked at it and kept it. "ninja gallery-references" keeps
/// the new look.
class GalleryPicturesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyScreenLooksAsKept_data();
    void everyScreenLooksAsKept();
    void theDocumentsShowWhatThereIs_data();
    void theDocumentsShowWhatThereIs();
    void everyWidgetSaysAndStandsAsKept_data();
    void everyWidgetSaysAndStandsAsKept();
    void nothingIsKeptThatIsNoLongerPictured();
    void nothingIsKeptTwice();
    void aDifferenceIsSeen_data();
    void aDifferenceIsSeen();
};

void GalleryPicturesTest::everyScreenLooksAsKept_data()
{
    QTest::addColumn<View>("view");
    QTest::addColumn<QString>("screen");
    for (const View &view : Gallery::views()) {
        for (const Gallery::Screen &screen : Gallery::screens()) {
            const QString name = QLatin1StringView(screen.name);
            QTest::newRow(qPrintable(view.folder() + u' ' + name)) << view << name;
        }
    }
}

void GalleryPicturesTest::everyScreenLooksAsKept()
{
    QFETCH(View, view);
    QFETCH(QString, screen);
    const QString picture = Gallery::picturePath(view, screen);
    compareWithKept(keptPicture(view, screen), kGallery + picture, QString(picture).remove(u"pictures/"_s),
                    placesOfLetters(view, screen));
}

void GalleryPicturesTest::theDocumentsShowWhatThereIs_data()
{
    QTest::addColumn<QString>("documented");
    QTest::addColumn<QString>("picture");
    QTest::newRow("every screen at a glance") << u"gallery.png"_s << u"sheet.png"_s;
    for (const QString &screen : {u"upgrade-available"_s, u"waiting-otg"_s, u"failure"_s})
        QTest::newRow(qPrintable(screen))
            << screen + u".png" << Gallery::picturePath({u"R2"_s, u"en"_s, 2}, screen);
}

void GalleryPicturesTest::theDocumentsShowWhatThereIs()
{
    if (doLettersDiffer())
        QSKIP("the documents show letters as other versions draw them");
    QFETCH(QString, documented);
    QFETCH(QString, picture);
    compareWithKept(kDocumented + documented, kGallery + picture, u"documents-"_s + documented);
}

void GalleryPicturesTest::everyWidgetSaysAndStandsAsKept_data()
{
    everyScreenLooksAsKept_data();
}

void GalleryPicturesTest::everyWidgetSaysAndStandsAsKept()
{
    QFETCH(View, view);
    QFETCH(QString, screen);
    const QString widgets = kGallery + Gallery::widgetsPath(view, screen);
    const QStringList kept = linesOf(keptWidgets(view, screen));
    const QStringList taken = linesOf(widgets);
    QVERIFY2(taken.size() > 1, qPrintable(widgets + u" is missing"_s));
    for (qsizetype i = 0; i < std::min(kept.size(), taken.size()); ++i)
        QVERIFY2(comparable(taken.at(i)) == comparable(kept.at(i)),
                 qPrintable(u"line %1\n  kept:  %2\n  taken: %3"_s.arg(i + 1).arg(kept.at(i), taken.at(i))));
    QCOMPARE(taken.size(), kept.size());
}

void GalleryPicturesTest::nothingIsKeptThatIsNoLongerPictured()
{
    const QSet<QString> kept = filesIn(kReference + u"pictures"_s);
    QCOMPARE(kept - filesIn(kGallery + u"pictures"_s), QSet<QString>());
}

void GalleryPicturesTest::nothingIsKeptTwice()
{
    const QSet<QString> kept = filesIn(kReference + u"pictures"_s);
    for (const QString &file : kept) {
        const QString folder = kReference + u"pictures/"_s;
        const QString standIn = QString(file).replace(0, 2, u"R2"_s);
        QVERIFY2(standIn == file || contentOf(folder + file) != contentOf(folder + standIn),
                 qPrintable(file));
        QVERIFY2(!file.contains(u'@') || !file.endsWith(u".txt"_s), qPrintable(file));
    }
}

void GalleryPicturesTest::aDifferenceIsSeen_data()
{
    QTest::addColumn<QRect>("changed");
    QTest::addColumn<int>("by");
    QTest::addColumn<bool>("seen");
    QTest::newRow("nothing") << QRect() << 0 << false;
    QTest::newRow("an edge rounded differently") << QRect(10, 10, 30, 1) << PictureFile::kTolerance << false;
    QTest::newRow("a few specks") << QRect(10, 10, PictureFile::kToleratedPixels, 1) << 200 << false;
    QTest::newRow("a shade") << QRect(10, 10, 80, 20) << PictureFile::kTolerance + 1 << true;
    QTest::newRow("a letter") << QRect(10, 10, 6, 8) << 200 << true;
}

void GalleryPicturesTest::aDifferenceIsSeen()
{
    QFETCH(QRect, changed);
    QFETCH(int, by);
    QFETCH(bool, seen);
    QImage kept(100, 60, QImage::Format_RGB32);
    kept.fill(qRgb(31, 32, 40));
    QImage taken = kept;
    for (int y = changed.top(); y <= changed.bottom(); ++y) {
        for (int x = changed.left(); x <= changed.right(); ++x)
            taken.setPixel(x, y, qRgb(31, 32 + by, 40));
    }
    const PictureFile::Difference difference = PictureFile::compare(kept, taken);
    QVERIFY(difference.sameSize);
    QCOMPARE(difference.pixels > PictureFile::kToleratedPixels, seen);
    QVERIFY(!PictureFile::compare(kept, taken.copy(0, 0, 99, 60)).sameSize);
    QVERIFY(!PictureFile::compare(kept, QImage()).sameSize);
}

QUILLON_TEST_CORE(GalleryPicturesTest)
#include "tst_gallery_pictures.moc"
