// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/TestProgram.h"
#include "widgets/WholeLinesEdit.h"

#include <QAbstractTextDocumentLayout>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>

using namespace Qt::StringLiterals;

namespace {
constexpr int kHeight = 119;
constexpr int kAdviceTop = 113;

/// The lines of the text that a box of this height shows a part of, but not all.
int cutLines(const WholeLinesEdit &edit)
{
    int cut = 0;
    const double bottom = edit.viewport()->height() + edit.verticalScrollBar()->value();
    for (QTextBlock block = edit.document()->begin(); block.isValid(); block = block.next()) {
        const double top = edit.document()->documentLayout()->blockBoundingRect(block).top();
        for (int i = 0; i < block.layout()->lineCount(); ++i) {
            const QRectF line = block.layout()->lineAt(i).rect().translated(0, top);
            cut += line.top() + 1 < bottom && line.bottom() > bottom;
        }
    }
    return cut;
}

QString lines(int count)
{
    return QStringList(count, u"a line of text"_s).join(u'\n');
}
} // namespace

/// The release notes' box.
class WholeLinesEditTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void noLineIsCut_data();
    void noLineIsCut();
    void adviceIsLeftFree_data() { noLineIsCut_data(); }
    void adviceIsLeftFree();
    void theOutlineIsClear_data();
    void theOutlineIsClear();
    void aTextThatFitsHasTheWholeBox();
    void aTallerLineThanTheBoxIsStillShown();
};

void WholeLinesEditTest::noLineIsCut_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("size");
    for (const int count : {1, 5, 6, 7, 8, 40}) {
        for (const int size : {11, 14, 16, 21})
            QTest::addRow("%d lines of %d pixels", count, size) << count << size;
    }
}

void WholeLinesEditTest::noLineIsCut()
{
    QFETCH(int, count);
    QFETCH(int, size);
    QWidget window;
    WholeLinesEdit edit(&window);
    edit.setGeometry(0, 0, 428, kHeight);
    window.show();
    edit.setPlainText(lines(count));
    // The style comes after the text when the language changes.
    edit.setStyleSheet(u"QTextEdit { border: none; font-size: %1px; }"_s.arg(size));
    QCoreApplication::processEvents();
    QCOMPARE(cutLines(edit), 0);
    const bool isTooLong = edit.document()->size().height() > kHeight;
    QVERIFY(!isTooLong || edit.verticalScrollBar()->maximum() > 0);
}

void WholeLinesEditTest::adviceIsLeftFree()
{
    QFETCH(int, count);
    QFETCH(int, size);
    QWidget window;
    WholeLinesEdit edit(&window);
    edit.setStyleSheet(u"QTextEdit { border: none; font-size: %1px; }"_s.arg(size));
    edit.setGeometry(0, 0, 428, kHeight);
    QWidget advice(&window);
    advice.setGeometry(0, kAdviceTop, 24, 24);
    advice.hide();
    edit.keepClearOf(&advice);
    window.show();
    edit.setPlainText(lines(count));
    const int usual = edit.viewport()->height();
    advice.show();
    QVERIFY(edit.viewport()->height() <= kAdviceTop || edit.document()->size().height() <= kAdviceTop);
    QCOMPARE(cutLines(edit), 0);
    advice.hide();
    QCOMPARE(edit.viewport()->height(), usual);
}

void WholeLinesEditTest::theOutlineIsClear_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("advised");
    QTest::newRow("all can be seen") << 1 << false;
    QTest::newRow("all can be seen, with advice") << 1 << true;
    QTest::newRow("too long") << 40 << false;
    QTest::newRow("too long, with advice") << 40 << true;
}

void WholeLinesEditTest::theOutlineIsClear()
{
    QFETCH(int, count);
    QFETCH(bool, advised);
    QWidget window;
    WholeLinesEdit edit(&window);
    edit.setStyleSheet(u"QTextEdit { border: none; font-size: 14px; }"_s);
    edit.setGeometry(0, 0, 428, kHeight);
    QWidget advice(&window);
    advice.setGeometry(0, kAdviceTop, 24, 24);
    advice.setVisible(advised);
    edit.keepClearOf(&advice);
    window.show();
    edit.setPlainText(lines(count));
    QCoreApplication::processEvents();
    const QRect outline = edit.outline();
    QVERIFY(edit.rect().contains(outline));
    QVERIFY(!advised || !outline.intersects(advice.geometry()));
    const QScrollBar *bar = edit.verticalScrollBar();
    QCOMPARE(bar->isVisible(), count > 1);
    QVERIFY(!bar->isVisible() || outline.right() < bar->mapTo(&edit, QPoint()).x());
    QVERIFY(outline.width() > 380 && outline.height() > 80);
}

void WholeLinesEditTest::aTextThatFitsHasTheWholeBox()
{
    QWidget window;
    WholeLinesEdit edit(&window);
    edit.setStyleSheet(u"QTextEdit { border: none; }"_s);
    edit.setGeometry(0, 0, 428, kHeight);
    window.show();
    edit.setPlainText(lines(40));
    QVERIFY(edit.viewport()->height() < kHeight);
    edit.setPlainText(lines(1));
    QCOMPARE(edit.viewport()->height(), kHeight);
}

void WholeLinesEditTest::aTallerLineThanTheBoxIsStillShown()
{
    QWidget window;
    WholeLinesEdit edit(&window);
    edit.setStyleSheet(u"QTextEdit { border: none; font-size: 300px; }"_s);
    edit.setGeometry(0, 0, 428, kHeight);
    window.show();
    edit.setPlainText(lines(1));
    QCOMPARE(edit.viewport()->height(), kHeight);
}

QUILLON_TEST(WholeLinesEditTest)
#include "tst_whole_lines_edit.moc"
