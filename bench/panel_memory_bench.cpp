// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What openings of the panel leave behind in a process: bytes of the heap, beside a bare window whose only
// child is a button with the style sheet of the panel's, in turns. What the bare window leaves is Qt's own:
// its store of pictures keeps the name of each that a style sheet has ever scaled.
#include "bench/Opening.h"
#include "bench/Results.h"
#include "bench/SilencedPanel.h"
#include "panel/Styles.h"

#include <QApplication>
#include <QPixmap>
#include <QPixmapCache>
#include <QPushButton>
#include <QStringList>

#include <malloc.h>

namespace {
QWidget *makeButtonWindow()
{
    auto *window = new QWidget(nullptr, Qt::FramelessWindowHint);
    window->setFixedSize(472, 418);
    auto *button = new QPushButton(window);
    button->setGeometry(436, 12, 24, 24);
    button->setStyleSheet(QuillonFirmwareUpgrade::Styles::kCloseButton);
    return window;
}

double heapBytes()
{
    const struct mallinfo2 heap = mallinfo2();
    return double(heap.uordblks) + double(heap.hblkhd);
}

/// Qt's store of scaled pictures grows to its limit before it lets any go: both meet it full.
void fillPictureStore()
{
    const int side = 256;
    QPixmap picture(side, side);
    picture.fill(Qt::black);
    for (int i = 0; i * side * side * 4 < QPixmapCache::cacheLimit() * 1024; ++i)
        QPixmapCache::insert(QStringLiteral("filling %1").arg(i), picture.copy());
}

/// How many bytes each of \a times openings left behind.
double leftBehind(const MakeWindow &make, int times)
{
    const double before = heapBytes();
    for (int time = 0; time < times; ++time)
        timeToPaint(make);
    return (heapBytes() - before) / times;
}
} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    silencePanel();
    const Results results(QCoreApplication::arguments());
    const int rounds = results.count(20, 2);
    const int openings = results.count(1000, 20);
    Row row{QStringLiteral("left behind by an opening"),
            QStringLiteral("bytes"),
            QStringLiteral("the peer's"),
            {},
            QStringLiteral("a bare window with one style-sheet button"),
            {}};
    fillPictureStore();
    leftBehind(makePanel, 10);
    leftBehind(makeButtonWindow, 10);
    for (int round = 0; round < rounds; ++round) {
        row.ours.values.append(leftBehind(makePanel, openings));
        row.peers.values.append(leftBehind(makeButtonWindow, openings));
    }
    results.add(row);
    return 0;
}
