// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QDir>
#include <QPointer>
#include <QSet>
#include <QString>
#include <QTimer>
#include <QWidget>

namespace host {

/// The folder of --record: one picture of each screen as it is first shown, and those that a scenario asks
/// for. GUI thread.
class PictureFolder : public QObject {
    Q_OBJECT

public:
    /// Makes \a path when it is not there.
    explicit PictureFolder(const QString &path);

    bool isWritable() const; ///< false: it is not there and cannot be made, or may not be written to
    QString path() const { return m_folder.path(); }
    QString filePath(const QString &name) const { return m_folder.filePath(name); }

    void setPanel(QWidget *panel);
    void screenShown(const QString &screen); ///< saves "screen-NN-SCREEN.png" the first time
    void save(const QString &name); ///< saves "NAME.png"

private:
    QDir m_folder;
    QPointer<QWidget> m_panel;
    QSet<QString> m_seen;
    QString m_latest; // picture that may have to be taken again
    QTimer m_settled;
};

} // namespace host
