#pragma once

#include <QDir>
#include <QString>
#include <QTemporaryDir>

/// A fresh home and a fresh folder for all users, in place while the object lives. Nothing a test writes through
/// the product reaches the real home.
class Sandbox {
public:
    Sandbox();
    ~Sandbox();

    QString home() const;
    /// Where the flashing tool reports; the folder exists only once somebody made it.
    QString progressFile() const;
    /// Where images are downloaded to; the folder exists only once somebody made it.
    QString downloadFolder() const;
    /// Creates the folder of the progress file and writes \a content there.
    void writeProgress(const QByteArray &content) const;

private:
    QTemporaryDir m_folder;
    QByteArray m_formerHome;
    QByteArray m_formerAllUsers;
};
