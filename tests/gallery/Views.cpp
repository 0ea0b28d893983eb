// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/gallery/Views.h"

using namespace Qt::StringLiterals;

namespace Gallery {

const QList<Screen> &screens()
{
    static const QList<Screen> all{
        {"searching", "Searching"},
        {"up-to-date", "Up to date"},
        {"upgrade-available", "Upgrade available"},
        {"long-notes", "Long notes and version"},
        {"too-old", "Too old"},
        {"waiting-pc", "Waiting for the PC cable"},
        {"flashing-pc", "PC flashing"},
        {"waiting-otg", "Waiting for the OTG cable"},
        {"flashing-otg", "OTG flashing"},
        {"completed", "Completed"},
        {"failure", "Failure"},
        {"retry", "Retry after replug, pointed at"},
        {"recovering", "Recovery"},
        {"warning", "Warning box"},
    };
    return all;
}

QString View::folder() const
{
    const QString name = model + u'-' + language;
    return scale == 1 ? name : name + u"@%1x"_s.arg(scale);
}

QList<View> views()
{
    QList<View> all;
    for (const QString &model : {u"R1"_s, u"R2"_s}) {
        for (const QString &language : {u"en"_s, u"zh"_s}) {
            for (const double scale : {1.0, 1.5, 2.0})
                all.append({model, language, scale});
        }
    }
    return all;
}

QList<View> viewsAt(double scale)
{
    QList<View> some = views();
    some.removeIf([scale](const View &view) { return view.scale != scale; });
    return some;
}

QRect devicePixels(const QRect &place, double scale)
{
    return QRectF(QPointF(place.topLeft()) * scale, QSizeF(place.size()) * scale).toRect();
}

QString picturePath(const View &view, const QString &screen)
{
    return u"pictures/"_s + view.folder() + u'/' + screen + u".png"_s;
}

QString widgetsPath(const View &view, const QString &screen)
{
    return u"pictures/"_s + view.folder() + u'/' + screen + u".txt"_s;
}

QString factsPath(const View &view, const QString &screen)
{
    return u"facts/"_s + view.folder() + u'/' + screen + u".json"_s;
}

} // namespace Gallery
