#include "tests/gallery/Views.h"
#include "tests/gallery/WidgetFacts.h"

#include <QTest>

using Gallery::View;

namespace {
const QString kGallery = QStringLiteral(QUILLON_GALLERY "/");

QList<WidgetFacts> factsOf(const View &view, const QString &screen)
{
    return readFacts(kGallery + Gallery::factsPath(view, screen));
}

QStringList cutTexts(const QList<WidgetFacts> &widgets)
{
    QStringList cut;
    for (const WidgetFacts &widget : widgets) {
        const bool isMissing = widget.isLabel && !widget.text.isEmpty() && widget.ink.isNull();
        if (isMissing || (!widget.ink.isNull() && !widget.place.contains(widget.ink)))
            cut.append(widget.name);
    }
    return cut;
}

/// What stands in its parent as a thing of its own: a caption, a picture, the notes.
bool isContent(const WidgetFacts &widget)
{
    return !widget.ink.isNull() || (widget.isLabel && !widget.state.isEmpty());
}

/// Where its content is: strokes may fill only a part of the widget.
QRect contentOf(const WidgetFacts &widget)
{
    return widget.ink.isNull() ? widget.place : widget.ink & widget.place;
}

QStringList overlaps(const QList<WidgetFacts> &widgets)
{
    QStringList found;
    for (qsizetype i = 0; i < widgets.size(); ++i) {
        for (qsizetype j = i + 1; j < widgets.size(); ++j) {
            const WidgetFacts &one = widgets.at(i);
            const WidgetFacts &other = widgets.at(j);
            if (one.parent != other.parent || !isContent(one) || !isContent(other)
                || !contentOf(one).intersects(contentOf(other)))
                continue;
            QStringList names{one.name, other.name};
            names.sort();
            found.append(names.join(u" over "_qs));
        }
    }
    return found;
}

QStringList flawsOf(const QList<WidgetFacts> &widgets)
{
    return cutTexts(widgets) + overlaps(widgets);
}
} // namespace

/// No text is cut, and nothing lies over anything else.
class GalleryFitTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everythingHasItsRoom_data();
    void everythingHasItsRoom();
    void aFlawIsSeen_data();
    void aFlawIsSeen();
};

void GalleryFitTest::everythingHasItsRoom_data()
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

void GalleryFitTest::everythingHasItsRoom()
{
    QFETCH(View, view);
    QFETCH(QString, screen);
    const QList<WidgetFacts> widgets = factsOf(view, screen);
    QVERIFY2(!widgets.isEmpty(), "the picture's widgets are unknown");
    const QStringList flaws = flawsOf(widgets);
    QVERIFY2(flaws.isEmpty(), qPrintable(flaws.join(u", "_qs)));
}

void GalleryFitTest::aFlawIsSeen_data()
{
    QTest::addColumn<QRect>("ink");
    QTest::addColumn<QString>("parent");
    QTest::addColumn<QStringList>("flaws");
    QTest::newRow("all fits") << QRect(101, 11, 98, 8) << u"panel"_qs << QStringList();
    QTest::newRow("too wide") << QRect(100, 10, 101, 8) << u"panel"_qs << QStringList{u"b"_qs};
    QTest::newRow("too high") << QRect(101, 9, 20, 8) << u"panel"_qs << QStringList{u"b"_qs};
    QTest::newRow("nowhere to be seen") << QRect() << u"panel"_qs << QStringList{u"b"_qs};
    QTest::newRow("over its neighbour")
        << QRect(95, 11, 98, 8) << u"panel"_qs << QStringList{u"b"_qs, u"a over b"_qs};
    QTest::newRow("over another's child") << QRect(95, 11, 98, 8) << u"card"_qs << QStringList{u"b"_qs};
}

void GalleryFitTest::aFlawIsSeen()
{
    QFETCH(QRect, ink);
    QFETCH(QString, parent);
    QFETCH(QStringList, flaws);
    WidgetFacts a;
    a.name = u"a"_qs;
    a.parent = u"panel"_qs;
    a.place = QRect(0, 10, 105, 10);
    a.ink = QRect(0, 10, 105, 10);
    WidgetFacts b;
    b.name = u"b"_qs;
    b.parent = parent;
    b.place = QRect(100, 10, 100, 10);
    b.ink = ink;
    b.isLabel = true;
    b.text = u"words"_qs;
    if (flaws.size() < 2)
        a.ink.setRight(90);
    QCOMPARE(flawsOf({a, b}), flaws);
    QCOMPARE(WidgetFacts::fromJson(b.toJson()).ink, ink);
}

QTEST_GUILESS_MAIN(GalleryFitTest)
#include "tst_gallery_fit.moc"
