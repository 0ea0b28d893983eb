// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "server/publish/Publisher.h"

#include "server/publish/DurableFiles.h"
#include "server/publish/SiteLock.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

namespace publish {

namespace {

/// Where a publication is put together. It is in nobody's way: only a folder with a number is ever served.
const QString kUnfinished = QStringLiteral("unfinished");
constexpr int kDigits = 5;

std::nullopt_t refuse(const QString &why, QString *error)
{
    *error = why;
    return std::nullopt;
}

} // namespace

bool Publisher::layOut(const Project &project, QString *error) const
{
    return DurableFiles::makeFolder(m_site.historyOf(project.name), error)
        && DurableFiles::makeFolder(QFileInfo(m_site.linkOf(project.name)).path(), error);
}

// Numbers are not used again, also where one was published and never served.
QString Publisher::nextFolder(const QString &project, const QVersionNumber &version) const
{
    const QStringList folders = m_site.foldersOf(project);
    const int last = folders.isEmpty() ? 0 : folders.last().section(u'-', 0, 0).toInt();
    return QStringLiteral("%1-%2").arg(last + 1, kDigits, 10, QLatin1Char('0')).arg(version.toString());
}

// The image first: a version that is named anywhere has its image.
bool Publisher::fill(const QString &folder, const Release &release, const QString &image,
                     Published &published, QString *error) const
{
    const QString copy = folder + u'/' + kImageFile;
    if (!DurableFiles::copy(image, copy, error))
        return false;
    published.size = QFileInfo(copy).size();
    published.sha256 = sha256Of(copy).value_or(QByteArray());
    if (published.size == 0) {
        *error = image + QStringLiteral(" is empty");
        return false;
    }
    return DurableFiles::write(folder + u'/' + kAboutFile, describe(published), error)
        && DurableFiles::write(folder + u'/' + kAnswerFile, answerFor(release), error);
}

bool Publisher::serve(const QString &project, const Published &published, QString *error) const
{
    const QString target = QStringLiteral("../published/%1/%2").arg(project, published.folder);
    return DurableFiles::pointLink(m_site.linkOf(project), target, error);
}

std::optional<Published> Publisher::add(const Project &project, const Release &release, const QString &image,
                                        bool force, QString *error)
{
    SiteLock lock;
    if (!layOut(project, error) || !lock.take(m_site.folder(), error))
        return std::nullopt;
    const std::optional<Published> former = m_site.served(project.name);
    if (former && release.version <= former->version && !force)
        return refuse(
            QStringLiteral("%1 is not newer than %2, which is served; --force publishes it all the same")
                .arg(release.version.toString(), former->version.toString()),
            error);
    const QString history = m_site.historyOf(project.name) + u'/';
    QDir(history + kUnfinished).removeRecursively();
    Published published;
    published.folder = nextFolder(project.name, release.version);
    published.version = release.version;
    published.before = former ? former->folder : QString();
    published.at = QDateTime::currentDateTimeUtc();
    if (!DurableFiles::makeFolder(history + kUnfinished, error)
        || !fill(history + kUnfinished, release, image, published, error)
        || !DurableFiles::rename(history + kUnfinished, history + published.folder, error)
        || !serve(project.name, published, error))
        return std::nullopt;
    return published;
}

std::optional<Published> Publisher::rollBack(const Project &project, QString *error)
{
    SiteLock lock;
    if (!lock.take(m_site.folder(), error))
        return std::nullopt;
    const std::optional<Published> present = m_site.served(project.name);
    if (!present)
        return refuse(QStringLiteral("nothing is published for %1 %2").arg(project.model, project.chip),
                      error);
    if (present->before.isEmpty())
        return refuse(QStringLiteral("nothing was published before %1").arg(present->version.toString()),
                      error);
    const std::optional<Published> former = m_site.published(project.name, present->before);
    if (!former || !m_site.isWhole(project.name, *former))
        return refuse(QStringLiteral("%1 is damaged or gone").arg(present->before), error);
    if (!serve(project.name, *former, error))
        return std::nullopt;
    return former;
}

} // namespace publish
