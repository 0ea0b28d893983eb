// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/gallery/Camera.h"

#include "tests/gallery/PictureFile.h"
#include "tests/gallery/WidgetFacts.h"

#include <QDir>
#include <QEnterEvent>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLabel>
#include <QMessageBox>
#include <QMovie>
#include <QPainter>
#include <QPixmap>
#include <QProgressBar>

namespace {
/// The cables are in, and what they light up is lit.
constexpr int kFrame = 40;
constexpr int kMostFrames = 200;

/// Holds the panel's animation at one frame while it lives.
class StoppedMovie {
public:
    explicit StoppedMovie(const QWidget &panel)
    {
        const auto *label = panel.findChild<QLabel *>(QStringLiteral("tipMoiveLb"));
        if (!label || !label->isVisible() || !label->movie())
            return;
        m_movie = label->movie();
        m_movie->setPaused(true);
        // A picture of this kind cannot be entered anywhere but at the next frame.
        for (int steps = 0; m_movie->currentFrameNumber() != kFrame; ++steps) {
            if (steps > kMostFrames || !m_movie->jumpToNextFrame())
                qFatal("%s has no frame %d", qPrintable(m_movie->fileName()), kFrame);
        }
    }
    ~StoppedMovie()
    {
        if (m_movie)
            m_movie->setPaused(false);
    }
    Q_DISABLE_COPY_MOVE(StoppedMovie)

private:
    QMovie *m_movie = nullptr;
};

void point(QWidget &widget, bool at)
{
    const QPointF centre = QRectF(widget.rect()).center();
    QEnterEvent enter(centre, centre, widget.mapToGlobal(centre));
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(&widget, at ? static_cast<QEvent *>(&enter) : &leave);
}

QMessageBox *warningOf(const QWidget &panel)
{
    auto *box = panel.findChild<QMessageBox *>();
    return box && box->isVisible() ? box : nullptr;
}

QImage imageOf(QWidget &panel)
{
    QPixmap picture = panel.grab();
    if (QMessageBox *box = warningOf(panel)) {
        QPainter painter(&picture);
        const QRect place(QPoint(), box->size());
        painter.drawPixmap(place.translated(panel.rect().center() - place.center()).topLeft(), box->grab());
    }
    return picture.toImage();
}

QList<WidgetFacts> factsOf(const QWidget &panel)
{
    // A box lies over the panel and makes everything below it unimportant.
    const QMessageBox *box = warningOf(panel);
    if (!box)
        return visibleWidgets(panel);
    QList<WidgetFacts> facts = visibleWidgets(*box);
    const QPoint corner = panel.rect().center() - QRect(QPoint(), box->size()).center();
    for (WidgetFacts &widget : facts) {
        widget.place.translate(corner);
        if (!widget.ink.isNull())
            widget.ink.translate(corner);
    }
    return facts;
}

bool write(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QByteArray toText(const QList<WidgetFacts> &facts)
{
    QString text;
    for (const WidgetFacts &widget : facts)
        text += widget.toLine() + u'\n';
    return text.toUtf8();
}

QByteArray toJson(const QList<WidgetFacts> &facts)
{
    QJsonArray array;
    for (const WidgetFacts &widget : facts)
        array.append(widget.toJson());
    return QJsonDocument(array).toJson();
}
} // namespace

Camera::Camera(const QString &folder, const Gallery::View &view)
    : m_folder(folder + u'/')
    , m_view(view)
{
}

void Camera::take(QWidget &panel, const QString &screen)
{
    m_taken.insert(screen);
    const StoppedMovie stopped(panel);
    auto *bar = panel.findChild<QProgressBar *>();
    const bool isPointedAt = bar && screen == u"retry";
    if (isPointedAt)
        point(*bar, true);
    const QList<WidgetFacts> facts = factsOf(panel);
    m_isWritten &= PictureFile::save(imageOf(panel), m_folder + Gallery::picturePath(m_view, screen))
        && write(m_folder + Gallery::widgetsPath(m_view, screen), toText(facts))
        && write(m_folder + Gallery::factsPath(m_view, screen), toJson(facts));
    if (isPointedAt)
        point(*bar, false);
}

bool Camera::isComplete() const
{
    for (const Gallery::Screen &screen : Gallery::screens()) {
        if (!m_taken.contains(QLatin1StringView(screen.name)))
            return false;
    }
    return m_isWritten && m_taken.size() == Gallery::screens().size();
}
