// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "panel/Pictures.h"

#include <QGuiApplication>
#include <QHash>
#include <QIcon>
#include <QLatin1String>
#include <QString>

namespace QuillonFirmwareUpgrade::Pictures {

namespace {
QHash<QString, QPixmap> kept;

/// A pixmap may not outlive its application.
void drop()
{
    kept.clear();
}

/// The library may be unloaded while the application goes on.
struct Farewell {
    Farewell() = default;
    ~Farewell()
    {
        qRemovePostRoutine(drop);
        drop();
    }
    Q_DISABLE_COPY_MOVE(Farewell)
};
const Farewell farewell;
} // namespace

QPixmap scaled(const char *file, QSize size)
{
    // An icon chooses by the sharpest of the screens, and those come and go.
    const QString key = QStringLiteral("%1 %2x%3 %4")
                            .arg(QLatin1String(file))
                            .arg(size.width())
                            .arg(size.height())
                            .arg(qGuiApp->devicePixelRatio());
    if (kept.isEmpty())
        qAddPostRoutine(drop);
    QPixmap &picture = kept[key];
    if (picture.isNull())
        picture = QIcon(QStringLiteral(":/new/prefix1/image/") + QLatin1String(file)).pixmap(size);
    return picture;
}

} // namespace QuillonFirmwareUpgrade::Pictures
