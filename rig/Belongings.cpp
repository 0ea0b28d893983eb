// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/Belongings.h"

#include <QDirIterator>

#include <algorithm>
#include <iterator>

namespace rig {

namespace {

struct Kind {
    const char *name;
    QStringList Belongings::*list;
};

constexpr Kind kKinds[]{{"thread ", &Belongings::threads},
                        {"handle ", &Belongings::handles},
                        {"process ", &Belongings::processes},
                        {"file ", &Belongings::files}};

QStringList filesBelow(QStringList folders)
{
    folders.removeAll(QString());
    QStringList files;
    for (const QString &folder : std::as_const(folders)) {
        QDirIterator entries(folder, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
        while (entries.hasNext())
            files.append(entries.next());
    }
    // One of the folders may lie in another.
    files.removeDuplicates();
    return files;
}

} // namespace

Belongings Belongings::ofThisProcess(const QStringList &folders)
{
    Belongings all{threadsOfThisProcess(), handlesOfThisProcess(), processesOfThisProcess(),
                   filesBelow(folders)};
    for (const Kind &kind : kKinds)
        (all.*kind.list).sort();
    return all;
}

QStringList Belongings::beyond(const Belongings &former) const
{
    QStringList surplus;
    for (const Kind &kind : kKinds) {
        const QStringList &now = this->*kind.list;
        const QStringList &then = former.*kind.list;
        QStringList more;
        std::set_difference(now.begin(), now.end(), then.begin(), then.end(), std::back_inserter(more));
        for (const QString &thing : std::as_const(more))
            surplus.append(QLatin1StringView(kind.name) + thing);
    }
    return surplus;
}

bool operator==(const Belongings &one, const Belongings &other)
{
    return std::all_of(std::begin(kKinds), std::end(kKinds),
                       [&](const Kind &kind) { return one.*kind.list == other.*kind.list; });
}

} // namespace rig
