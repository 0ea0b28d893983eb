#include "tests/gallery/PictureFile.h"
#include "tests/gallery/Views.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QSet>
#include <QTest>

using Gallery::View;

namespace {
const QString kGallery = QStringLiteral(QUILLON_GALLERY "/");
const QString kReference = QStringLiteral(QUILLON_GALLERY_REFERENCE "/");
const QString kDocumented = QStringLiteral(QUILLON_DOCUMENTED "/");
const QString kDifferences = QStringLiteral(QUILLON_GALLERY "/differences/");

QStringList linesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split(u'\n') : QStringList();
}

QSet<QString> filesIn(const QString &folder)
{
    QSet<QString> names;
    QDirIterator files(folder, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext())
        names.insert(QDir(folder).relativeFilePath(files.next()));
    return names;
}

/// Fails, leaving a picture of the difference as \a shown, when \a taken is not what \a kept is.
void compareWithKept(const QString &kept, const QString &taken, const QString &shown)
{
    const QImage picture(taken);
    QVERIFY2(!picture.isNull(), qPrintable(taken + u" is missing"_qs));
    const PictureFile::Difference difference = PictureFile::compare(QImage(kept), picture);
    QVERIFY2(difference.sameSize, qPrintable(kept + u" is missing or of another size"_qs));
    if (difference.pixels <= PictureFile::kToleratedPixels)
        return;
    PictureFile::save(difference.shown, kDifferences + shown);
    QFAIL(qPrintable(u"%1 pixels differ, by %2 at most: see %3"_qs.arg(difference.pixels)
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
    void theReadmeShowsWhatThereIs_data();
    void theReadmeShowsWhatThereIs();
    void everyWidgetSaysAndStandsAsKept_data();
    void everyWidgetSaysAndStandsAsKept();
    void bothSizesSayTheSame_data();
    void bothSizesSayTheSame();
    void nothingIsKeptThatIsNoLongerPictured();
    void aDifferenceIsSeen_data();
    void aDifferenceIsSeen();
};

void GalleryPicturesTest::everyScreenLooksAsKept_data()
{
    QTest::addColumn<QString>("picture");
    for (const View &view : Gallery::views()) {
        for (const Gallery::Screen &screen : Gallery::screens()) {
            const QString picture = Gallery::picturePath(view, QLatin1StringView(screen.name));
            QTest::newRow(qPrintable(view.folder() + u' ' + QLatin1StringView(screen.name))) << picture;
        }
    }
}

void GalleryPicturesTest::everyScreenLooksAsKept()
{
    QFETCH(QString, picture);
    compareWithKept(kReference + picture, kGallery + picture, QString(picture).remove(u"pictures/"_qs));
}

void GalleryPicturesTest::theReadmeShowsWhatThereIs_data()
{
    QTest::addColumn<QString>("documented");
    QTest::addColumn<QString>("picture");
    QTest::newRow("every screen at a glance") << u"gallery.png"_qs << u"sheet.png"_qs;
    QTest::newRow("an upgrade on offer")
        << u"upgrade-available.png"_qs
        << Gallery::picturePath({u"R2"_qs, u"en"_qs, 2}, u"upgrade-available"_qs);
}

void GalleryPicturesTest::theReadmeShowsWhatThereIs()
{
    QFETCH(QString, documented);
    QFETCH(QString, picture);
    compareWithKept(kDocumented + documented, kGallery + picture, u"readme-"_qs + documented);
}

void GalleryPicturesTest::everyWidgetSaysAndStandsAsKept_data()
{
    QTest::addColumn<QString>("widgets");
    for (const View &view : Gallery::views()) {
        for (const Gallery::Screen &screen : Gallery::screens()) {
            const QString widgets = Gallery::widgetsPath(view, QLatin1StringView(screen.name));
            QTest::newRow(qPrintable(view.folder() + u' ' + QLatin1StringView(screen.name))) << widgets;
        }
    }
}

void GalleryPicturesTest::everyWidgetSaysAndStandsAsKept()
{
    QFETCH(QString, widgets);
    const QStringList kept = linesOf(kReference + widgets);
    const QStringList taken = linesOf(kGallery + widgets);
    QVERIFY2(taken.size() > 1, qPrintable(kGallery + widgets + u" is missing"_qs));
    for (qsizetype i = 0; i < std::min(kept.size(), taken.size()); ++i)
        QVERIFY2(taken.at(i) == kept.at(i),
                 qPrintable(u"line %1\n  kept:  %2\n  taken: %3"_qs.arg(i + 1).arg(kept.at(i), taken.at(i))));
    QCOMPARE(taken.size(), kept.size());
}

void GalleryPicturesTest::bothSizesSayTheSame_data()
{
    QTest::addColumn<View>("view");
    QTest::addColumn<QString>("screen");
    for (const View &view : Gallery::views()) {
        for (const Gallery::Screen &screen : Gallery::screens()) {
            const QString name = QLatin1StringView(screen.name);
            if (view.scale == 2)
                QTest::newRow(qPrintable(view.folder() + u' ' + name)) << view << name;
        }
    }
}

void GalleryPicturesTest::bothSizesSayTheSame()
{
    QFETCH(View, view);
    QFETCH(QString, screen);
    const View usual{view.model, view.language, 1};
    QCOMPARE(linesOf(kGallery + Gallery::widgetsPath(view, screen)),
             linesOf(kGallery + Gallery::widgetsPath(usual, screen)));
}

void GalleryPicturesTest::nothingIsKeptThatIsNoLongerPictured()
{
    QCOMPARE(filesIn(kReference + u"pictures"_qs), filesIn(kGallery + u"pictures"_qs));
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

QTEST_GUILESS_MAIN(GalleryPicturesTest)
#include "tst_gallery_pictures.moc"
