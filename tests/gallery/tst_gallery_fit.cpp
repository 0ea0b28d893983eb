// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/gallery/Views.h"
#include "tests/gallery/WidgetFacts.h"
#include "tests/gallery/WindowsFonts.h"
#include "tests/support/TestProgram.h"

#include <QSet>
#include <QTest>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;
using Gallery::View;

namespace {
const QString kGallery = QStringLiteral(QUILLON_GALLERY "/");

/// A label that is as large as its text, in whichever font.
struct Adapting {
    const char *widget;
    const char *reason;
};

constexpr Adapting kAdapting[]{
    {"m_offlineToolTipLb", "sized to its contents; see theOfflineToolsLineFitsOnWindows"},
    {"m_offlineToolLinkLb", "likewise"},
    {"qt_msgbox_label", "a warning box lays itself out"},
};
/// A text that is cut all the same, as its place is fixed.
struct Cut {
    const char *screen;
    const char *widget;
    double most; ///< pixels of its width that may be missing
    const char *reason;
};

constexpr Cut kCut[]{
    {"long-notes", "m_newVerLb", 2.5,
     "the longest version, \"V1.10.12\": its last digit lacks its right edge, and can still be told"},
};
/// Two widgets whose rectangles have pixels in common, and no strokes.
struct Meant {
    const char *below;
    const char *above;
    const char *reason;
};

constexpr Meant kMeant[]{
    {"m_notesEdit", "m_failIconLb", "the notes' box is as high as on screens that have no advice below it"},
    {"m_notesEdit", "m_failTextLb", "likewise; while advice is shown the notes end above it"},
    {"m_notesEdit", "m_offlineToolIconLb", "likewise"},
    {"m_notesEdit", "m_offlineToolTipLb", "likewise"},
    {"m_notesEdit", "m_offlineToolLinkLb", "likewise"},
};

/// The offline tool's line: its icon with the gap behind it, and the bar's width to be centred in.
constexpr double kIconAndGap = 28;
constexpr double kBarWidth = 408;

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

double widthOnWindows(const WidgetFacts &widget)
{
    double width = 0;
    const QStringList lines = widget.text.split(u'\n');
    for (QString line : lines) {
        while (line.endsWith(u' '))
            line.chop(1);
        width = std::max(width, WindowsFonts::widthOf(line, widget.fontSize, widget.isBold));
    }
    return width;
}

double heightOnWindows(const WidgetFacts &widget)
{
    return WindowsFonts::lineHeight(widget.fontSize) * double(widget.text.count(u'\n') + 1);
}

bool isAdapting(const WidgetFacts &widget)
{
    return std::any_of(std::begin(kAdapting), std::end(kAdapting), [&](const Adapting &adapting) {
        return widget.name == QLatin1StringView(adapting.widget);
    });
}

/// The texts that would not fit in the fonts that the panel is made for.
QStringList cutOnWindows(const QList<WidgetFacts> &widgets)
{
    QStringList cut;
    for (const WidgetFacts &widget : widgets) {
        if (!widget.isLabel || widget.text.isEmpty() || isAdapting(widget))
            continue;
        // The last pixel is the blank above the first line's strokes and below the last one's.
        if (widget.fontSize <= 0 || widthOnWindows(widget) > widget.place.width()
            || std::floor(heightOnWindows(widget)) > widget.place.height())
            cut.append(u"%1 on Windows (%2 x %3)"_s.arg(widget.name)
                           .arg(widthOnWindows(widget))
                           .arg(heightOnWindows(widget)));
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

bool isMeant(const WidgetFacts &below, const WidgetFacts &above)
{
    return std::any_of(std::begin(kMeant), std::end(kMeant), [&](const Meant &meant) {
        return below.name == QLatin1StringView(meant.below) && above.name == QLatin1StringView(meant.above);
    });
}

bool liesOver(const WidgetFacts &above, const WidgetFacts &below)
{
    if (above.geometry.intersects(below.geometry) && !isMeant(below, above))
        return true;
    return isContent(above) && isContent(below) && contentOf(above).intersects(contentOf(below));
}

QStringList overlaps(const QList<WidgetFacts> &widgets)
{
    QStringList found;
    for (qsizetype i = 0; i < widgets.size(); ++i) {
        for (qsizetype j = i + 1; j < widgets.size(); ++j) {
            const WidgetFacts &below = widgets.at(i);
            const WidgetFacts &above = widgets.at(j);
            if (below.parent == above.parent && liesOver(above, below))
                found.append(above.name + u" over "_s + below.name);
        }
    }
    return found;
}

QStringList flawsOf(const QList<WidgetFacts> &widgets)
{
    return cutTexts(widgets) + cutOnWindows(widgets) + overlaps(widgets);
}
} // namespace

/// No text is cut, and nothing lies over anything else.
class GalleryFitTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everythingHasItsRoom_data();
    void everythingHasItsRoom();
    void whatIsCutLacksAsLittleAsKnown_data();
    void whatIsCutLacksAsLittleAsKnown();
    void theOfflineToolsLineFitsOnWindows_data();
    void theOfflineToolsLineFitsOnWindows();
    void aTextTooLargeForWindowsIsSeen_data();
    void aTextTooLargeForWindowsIsSeen();
    void everyMeantOverlapIsStillThere();
    void aFlawIsSeen_data();
    void aFlawIsSeen();
    void adviceOverTheNotesIsSeen();
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
    QStringList flaws = flawsOf(widgets);
    for (const Cut &cut : kCut) {
        if (screen == QLatin1StringView(cut.screen))
            flaws.removeIf(
                [&](const QString &flaw) { return flaw.startsWith(QLatin1StringView(cut.widget)); });
    }
#ifdef Q_OS_WIN
    // The fonts that stand for Windows' own are drawn by Qt there, each letter as wide as whole pixels: one
    // hint gets a line more than it has room for.
    if (view.model == u"R2" && view.language == u"en" && screen == u"waiting-otg")
        QCOMPARE(flaws.removeAll(u"m_connectHintLb"_s), qsizetype(1));
#endif
    QVERIFY2(flaws.isEmpty(), qPrintable(flaws.join(u", "_s)));
}

void GalleryFitTest::whatIsCutLacksAsLittleAsKnown_data()
{
    QTest::addColumn<View>("view");
    for (const View &view : Gallery::views())
        QTest::newRow(qPrintable(view.folder())) << view;
}

void GalleryFitTest::whatIsCutLacksAsLittleAsKnown()
{
    QFETCH(View, view);
    for (const Cut &cut : kCut) {
        const QList<WidgetFacts> widgets = factsOf(view, QLatin1StringView(cut.screen));
        const auto widget = std::find_if(widgets.begin(), widgets.end(), [&](const WidgetFacts &one) {
            return one.name == QLatin1StringView(cut.widget);
        });
        QVERIFY2(widget != widgets.end(), cut.widget);
        const double onWindows = widthOnWindows(*widget) - widget->place.width();
        QVERIFY2(onWindows > 0 && onWindows <= cut.most, qPrintable(QString::number(onWindows)));
        const int pictured = widget->ink.right() - widget->place.right();
        QVERIFY2(pictured <= cut.most, qPrintable(QString::number(pictured)));
    }
}

void GalleryFitTest::theOfflineToolsLineFitsOnWindows_data()
{
    QTest::addColumn<View>("view");
    for (const View &view : Gallery::views())
        QTest::newRow(qPrintable(view.folder())) << view;
}

void GalleryFitTest::theOfflineToolsLineFitsOnWindows()
{
    QFETCH(View, view);
    double width = kIconAndGap;
    for (WidgetFacts &widget : factsOf(view, u"too-old"_s)) {
        if (!widget.name.startsWith(u"m_offlineTool") || widget.text.isEmpty())
            continue;
        widget.isBold = true; // the link's markup makes it so
        width += widthOnWindows(widget);
    }
    QVERIFY(width > kBarWidth / 2);
    QVERIFY2(width <= kBarWidth, qPrintable(QString::number(width)));
}

void GalleryFitTest::aTextTooLargeForWindowsIsSeen_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("bold");
    QTest::addColumn<QSize>("place");
    QTest::addColumn<bool>("seen");
    QTest::newRow("fits to the pixel") << u"Update Completed"_s << true << QSize(142, 21) << false;
    QTest::newRow("one pixel less") << u"Update Completed"_s << true << QSize(141, 21) << true;
    QTest::newRow("narrower when not bold") << u"Update Completed"_s << false << QSize(135, 21) << false;
    QTest::newRow("nobody misses a blank at the end") << u"ports. "_s << true << QSize(48, 21) << false;
    QTest::newRow("Chinese") << u"\u5347\u7ea7\u5b8c\u6210"_s << true << QSize(64, 21) << false;
    QTest::newRow("Chinese, one pixel less")
        << u"\u5347\u7ea7\u5b8c\u6210"_s << true << QSize(63, 21) << true;
    QTest::newRow("the longer of two lines") << u"to\nUpdate Completed"_s << true << QSize(141, 42) << true;
    QTest::newRow("one line too many") << u"to\nto"_s << true << QSize(142, 41) << true;
}

void GalleryFitTest::aTextTooLargeForWindowsIsSeen()
{
    QFETCH(QString, text);
    QFETCH(bool, bold);
    QFETCH(QSize, place);
    QFETCH(bool, seen);
    WidgetFacts label;
    label.isLabel = true;
    label.text = text;
    label.fontSize = 16;
    label.isBold = bold;
    label.place = QRect(QPoint(), place);
    QCOMPARE(!cutOnWindows({label}).isEmpty(), seen);
}

void GalleryFitTest::everyMeantOverlapIsStillThere()
{
    QSet<QString> found;
    for (const View &view : Gallery::views()) {
        for (const Gallery::Screen &screen : Gallery::screens()) {
            const QList<WidgetFacts> widgets = factsOf(view, QLatin1StringView(screen.name));
            for (const WidgetFacts &below : widgets) {
                for (const WidgetFacts &above : widgets) {
                    if (below.geometry.intersects(above.geometry))
                        found.insert(above.name + u" over "_s + below.name);
                }
            }
        }
    }
    for (const Meant &meant : kMeant) {
        const QString pair = QLatin1StringView(meant.above) + u" over "_s + QLatin1StringView(meant.below);
        QVERIFY2(found.contains(pair), qPrintable(pair));
    }
}

void GalleryFitTest::aFlawIsSeen_data()
{
    QTest::addColumn<QRect>("place");
    QTest::addColumn<QRect>("ink");
    QTest::addColumn<QString>("parent");
    QTest::addColumn<QStringList>("flaws");
    const QRect beside(100, 10, 100, 10);
    const QRect over(99, 10, 100, 10);
    const QStringList cut{u"b"_s};
    const QStringList covers{u"b over a"_s};
    QTest::newRow("all fits") << beside << QRect(101, 11, 98, 8) << u"panel"_s << QStringList();
    QTest::newRow("too wide") << beside << QRect(100, 10, 101, 8) << u"panel"_s << cut;
    QTest::newRow("too high") << beside << QRect(101, 9, 20, 8) << u"panel"_s << cut;
    QTest::newRow("nowhere to be seen") << beside << QRect() << u"panel"_s << cut;
    QTest::newRow("over its neighbour") << over << QRect(120, 11, 50, 8) << u"panel"_s << covers;
    QTest::newRow("over another's child") << over << QRect(120, 11, 50, 8) << u"card"_s << QStringList();
}

void GalleryFitTest::aFlawIsSeen()
{
    QFETCH(QRect, place);
    QFETCH(QRect, ink);
    QFETCH(QString, parent);
    QFETCH(QStringList, flaws);
    WidgetFacts a;
    a.name = u"a"_s;
    a.parent = u"panel"_s;
    a.geometry = a.place = QRect(0, 10, 100, 10);
    a.ink = QRect(0, 10, 90, 10);
    WidgetFacts b;
    b.name = u"b"_s;
    b.parent = parent;
    b.geometry = b.place = place;
    b.ink = ink;
    b.isLabel = true;
    b.text = u"words"_s;
    b.fontSize = 7;
    QCOMPARE(flawsOf({a, b}), flaws);
    QCOMPARE(WidgetFacts::fromJson(b.toJson()).ink, ink);
}

/// Where two may share pixels, their strokes may not.
void GalleryFitTest::adviceOverTheNotesIsSeen()
{
    WidgetFacts notes;
    notes.name = u"m_notesEdit"_s;
    notes.geometry = notes.place = QRect(0, 0, 100, 100);
    notes.ink = QRect(0, 0, 90, 80);
    WidgetFacts advice;
    advice.name = u"m_failTextLb"_s;
    advice.geometry = advice.place = advice.ink = QRect(0, 90, 100, 20);
    QCOMPARE(overlaps({notes, advice}), QStringList());
    notes.ink.setHeight(95);
    QCOMPARE(overlaps({notes, advice}), QStringList{u"m_failTextLb over m_notesEdit"_s});
}

QUILLON_TEST_CORE(GalleryFitTest)
#include "tst_gallery_fit.moc"
