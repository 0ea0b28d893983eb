// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/PictureFolder.h"

#include <QFileInfo>
#include <QPixmap>
#include <QWidget>

namespace host {

namespace {
/// A screen's texts may follow its widgets by a server query; then the first picture is taken again.
constexpr std::chrono::milliseconds kSettleTime{150};
} // namespace

PictureFolder::PictureFolder(const QString &path)
    : m_folder(QDir(path).absolutePath())
{
    m_folder.mkpath(QStringLiteral("."));
    m_settled.setSingleShot(true);
    m_settled.setInterval(kSettleTime);
    connect(&m_settled, &QTimer::timeout, this, [this] { save(m_latest); });
}

bool PictureFolder::isWritable() const
{
    const QFileInfo folder(m_folder.path());
    return folder.isDir() && folder.isWritable();
}

void PictureFolder::setPanel(QWidget *panel)
{
    m_panel = panel;
    m_settled.stop();
}

void PictureFolder::screenShown(const QString &screen)
{
    m_settled.stop();
    if (m_seen.contains(screen))
        return;
    m_seen.insert(screen);
    m_latest = QStringLiteral("screen-%1-%2").arg(m_seen.size(), 2, 10, QLatin1Char('0')).arg(screen);
    save(m_latest);
    m_settled.start();
}

void PictureFolder::save(const QString &name)
{
    if (m_panel && !m_panel->grab().save(m_folder.filePath(name + QStringLiteral(".png"))))
        qWarning("%s", qPrintable(QStringLiteral("cannot save the picture %1").arg(m_folder.filePath(name))));
}

} // namespace host
