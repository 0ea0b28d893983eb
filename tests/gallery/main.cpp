// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// quillon-gallery: pictures every screen of the panel.
//   quillon-gallery FOLDER        all tours, each in a process of its own, then sheet.png and index.html
//   quillon-gallery FOLDER VIEW   one tour; VIEW is "R2-en", "R2-zh@2x" and the like

#include "host/Fonts.h"
#include "host/Terminal.h"
#include "tests/gallery/PictureFile.h"
#include "tests/gallery/Sheet.h"
#include "tests/gallery/Tour.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStyleFactory>

#include <algorithm>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;
using Gallery::View;

namespace {
const QString kScenario = QStringLiteral(QUILLON_GALLERY_SCENARIOS "/tour-%1.scn");

/// What a picture must not depend on: the screen, the user's fonts and their settings, the user's style.
void settleSurroundings(double scale)
{
    // Large enough at any scale that a warning box breaks its text for its length alone.
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" QUILLON_GALLERY_SCREEN);
    qputenv("QT_SCALE_FACTOR", QByteArray::number(scale));
    qputenv("QT_FONT_DPI", "96");
    qputenv("FONTCONFIG_FILE", QUILLON_GALLERY_FONTS);
    qunsetenv("QT_STYLE_OVERRIDE");
    qunsetenv("QT_QPA_PLATFORMTHEME");
}

int fail(const QString &message)
{
    host::Terminal::complain(message);
    return 1;
}

int takeTour(const QString &folder, const View &view)
{
    host::substituteMissingFonts();
    Tour tour(view, folder);
    QString error;
    if (!tour.start(kScenario.arg(view.model), &error))
        return fail(error);
    return QApplication::exec();
}

struct Outcome {
    QList<View> failed;
    bool crashed = false; ///< one of them did
};

/// Takes a tour for each of \a views, all at once: each waits for its device most of the time.
Outcome takeTours(const QString &folder, const QList<View> &views)
{
    std::vector<std::unique_ptr<QProcess>> tours;
    tours.reserve(std::size_t(views.size()));
    for (const View &view : views) {
        tours.push_back(std::make_unique<QProcess>());
        tours.back()->setProcessChannelMode(QProcess::ForwardedChannels);
        tours.back()->start(QCoreApplication::applicationFilePath(), {folder, view.folder()});
    }
    Outcome outcome;
    for (std::size_t at = 0; at < tours.size(); ++at) {
        QProcess &tour = *tours.at(at);
        const bool ended = tour.waitForFinished(-1) && tour.exitStatus() == QProcess::NormalExit;
        outcome.crashed = outcome.crashed || !ended;
        if (!ended || tour.exitCode() != 0)
            outcome.failed.append(views.at(qsizetype(at)));
    }
    return outcome;
}

/// On a faster clock a busy machine makes the flashing tool look as if it had stalled: such a tour is taken
/// again. Under sanitizers, whose findings end a program in the same way, it is not.
bool takeAllTours(const QString &folder)
{
    Outcome outcome{Gallery::views()};
    for (int attempt = 0; attempt < QUILLON_GALLERY_ATTEMPTS && !outcome.failed.isEmpty(); ++attempt) {
        outcome = takeTours(folder, outcome.failed);
        if (outcome.crashed)
            return false;
    }
    return outcome.failed.isEmpty();
}

int makeGallery(const QString &folder)
{
    // Pictures of an earlier run must not stand in for missing ones.
    for (const char *part : {"pictures", "facts", "differences"})
        QDir(folder + u'/' + QLatin1StringView(part)).removeRecursively();
    if (!takeAllTours(folder))
        return fail(u"a tour failed; its log is in "_s + folder);
    const QImage sheet = Sheet::contactSheet(folder);
    if (sheet.isNull() || !PictureFile::save(sheet, folder + u"/sheet.png"_s))
        return fail(u"the contact sheet could not be made"_s);
    QFile page(folder + u"/index.html"_s);
    if (!page.open(QIODevice::WriteOnly) || page.write(Sheet::indexPage().toUtf8()) < 0)
        return fail(u"index.html could not be written"_s);
    return 0;
}
} // namespace

int main(int argc, char *argv[])
{
    const QString asked = argc == 3 ? QString::fromLocal8Bit(argv[2]) : QString();
    const QList<View> views = Gallery::views();
    const auto view
        = std::find_if(views.begin(), views.end(), [&](const View &one) { return one.folder() == asked; });
    const bool isTour = view != views.end();
    if (argc < 2 || argc > 3 || (argc == 3 && !isTour))
        return fail(u"usage: quillon-gallery FOLDER [VIEW]"_s);
    settleSurroundings(isTour ? view->scale : 1);
    QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    const QString folder = QDir(QString::fromLocal8Bit(argv[1])).absolutePath();
    return isTour ? takeTour(folder, *view) : makeGallery(folder);
}
