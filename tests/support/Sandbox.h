// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QDir>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// A home without anything of the panel's in it and a fresh folder for all users, in place while the object
/// lives. Nothing a test writes through the product reaches the real home. Windows cannot be told another
/// home: there, tests run where the variable QUILLON_THROWAWAY_HOME says that this one may be emptied, as
/// cmake/mingw/wine-run does.
class Sandbox {
public:
    Sandbox();
    ~Sandbox();

    QString home() const;
    /// Where the flashing tool reports; the folder exists only once somebody made it.
    QString progressFile() const;
    /// Where images are downloaded to; the folder exists only once somebody made it.
    QString downloadFolder() const;
    /// What has come into the home since the object was made, but for the panel's folder.
    QStringList newInHome() const;
    /// Creates the folder of the progress file and writes \a content there.
    void writeProgress(const QByteArray &content) const;

private:
    QStringList entriesOfHome() const;

    QTemporaryDir m_folder;
    QString m_home;
    QByteArray m_formerHome;
    QByteArray m_formerAllUsers;
    QStringList m_formerEntries;
};
