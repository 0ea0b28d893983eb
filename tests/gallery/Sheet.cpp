// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/gallery/Sheet.h"

#include "tests/gallery/Views.h"

#include <QFont>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace Sheet {

using Gallery::View;

namespace {
constexpr int kGap = 12;
constexpr int kCaption = 30;
/// Half of the panel.
constexpr QSize kCell{236, 209};
constexpr QColor kGround{22, 23, 28};
constexpr QColor kText{200, 202, 214};

/// Reduced pictures of the largest views look best.
QList<View> viewsOfSheet()
{
    return Gallery::viewsAt(2);
}

/// The screens stand in two columns, one below the other; in each, the views stand side by side.
QPoint cornerOf(qsizetype screen, qsizetype rows, qsizetype view, qsizetype viewCount)
{
    const qsizetype column = screen / rows * viewCount + view;
    const qsizetype wide = screen / rows;
    return {int(kGap + column * (kCell.width() + kGap) + wide * kGap),
            int(kGap + screen % rows * (kCell.height() + kCaption + kGap))};
}
} // namespace

QImage contactSheet(const QString &gallery)
{
    const QList<View> views = viewsOfSheet();
    const QList<Gallery::Screen> &screens = Gallery::screens();
    const qsizetype rows = (screens.size() + 1) / 2;
    const QPoint end = cornerOf(2 * rows, rows, 0, views.size());
    QImage sheet(end.x() - kGap, int(kGap + rows * (kCell.height() + kCaption + kGap)), QImage::Format_RGB32);
    sheet.fill(kGround);
    QPainter painter(&sheet);
    QFont font(u"Roboto"_s);
    font.setPixelSize(14);
    painter.setFont(font);
    painter.setPen(kText);
    for (qsizetype screen = 0; screen < screens.size(); ++screen) {
        for (qsizetype view = 0; view < views.size(); ++view) {
            const QString name = QLatin1StringView(screens.at(screen).name);
            const QImage picture(gallery + u'/' + Gallery::picturePath(views.at(view), name));
            if (picture.isNull())
                return {};
            const QPoint corner = cornerOf(screen, rows, view, views.size());
            const QString caption
                = view == 0 ? QString::fromLatin1(screens.at(screen).title) + u" \u00b7 "_s : QString();
            painter.drawText(QRect(corner, QSize(kCell.width(), kCaption)), Qt::AlignVCenter,
                             caption + views.at(view).model + u' ' + views.at(view).language);
            painter.drawImage(corner + QPoint(0, kCaption),
                              picture.scaled(kCell, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
        }
    }
    return sheet;
}

QString indexPage()
{
    QString page = u"<!DOCTYPE html>\n<meta charset='utf-8'><title>Every screen of the panel</title>\n"
                   "<style>body { background: #16171c; color: #c8cad6; font: 14px Roboto, sans-serif; }\n"
                   "a { color: inherit; }\n"
                   "table { border-spacing: 12px; } th { text-align: left; }\n"
                   "img { width: 472px; height: 418px; }</style>\n<table>\n"_s;
    for (const Gallery::Screen &screen : Gallery::screens()) {
        const QString name = QLatin1StringView(screen.name);
        QString captions;
        QString pictures;
        for (const View &view : Gallery::views()) {
            captions += u"<th>%1<br>%2 \u00b7 <a href='%3'>texts</a></th>"_s.arg(
                QLatin1StringView(screen.title), view.folder(), Gallery::widgetsPath(view, name));
            pictures += u"<td><a href='%1'><img src='%1'></a></td>"_s.arg(Gallery::picturePath(view, name));
        }
        page += u"<tr id='%1'>%2</tr>\n<tr>%3</tr>\n"_s.arg(name, captions, pictures);
    }
    return page + u"</table>\n"_s;
}

} // namespace Sheet
