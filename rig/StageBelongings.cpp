// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What a panel, the update client and the flashing tool may not leave behind: scenarios mark what is there
// and expect later that nothing has come on top.
#include "rig/FirmwareImage.h"
#include "rig/ScenarioStage.h"
#include "rig/ScenarioWords.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace rig {

using std::chrono::milliseconds;
using namespace std::chrono_literals;

namespace {

/// What ends by itself, such as the threads of the HID library, has ended when nothing changes for so long.
constexpr milliseconds kSettled = 1s;
constexpr milliseconds kSettlingLimit = 60s;
/// Qt keeps what belongs to a connection for two minutes, and a pooled thread waits 30 s for more work.
constexpr milliseconds kLeavingLimit = 130s;
/// Where a server redirects without end, Qt loses count of who uses its connection and keeps that for as long
/// as the process lives. It has at most so many sockets, which lead nowhere once the server refuses.
constexpr int kKeptByQt = 6;
const QString kProgressFile = QStringLiteral("Firmware_bin.txt");

Belongings belongings()
{
    return Belongings::ofThisProcess(
        {QDir::homePath(), QDir::tempPath(), qEnvironmentVariable("ALLUSERSPROFILE")});
}

QStringList withoutWhatQtKeeps(QStringList handles)
{
    for (int i = 0; i < kKeptByQt; ++i)
        handles.removeOne(Belongings::kDeadSocket);
    return handles;
}

QByteArray digestOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? sha256(file.readAll()) : QByteArray();
}

} // namespace

void ScenarioStage::rememberSent()
{
    for (const ServedRequest &request : m_rig.server().requests()) {
        if (request.kind == RequestKind::Download)
            m_sent.insert(request.sha256);
    }
}

// The last image of a version and the last report stay; they are replaced by the next ones. What a download
// has brought is whatever the server sent, an error page as well.
bool ScenarioStage::maySpare(const QString &file) const
{
    const QFileInfo info(file);
    if (info.fileName() == kProgressFile)
        return true;
    return info.suffix() == u"bin" && (info.size() == 0 || m_sent.contains(digestOf(file)));
}

Outcome ScenarioStage::mark(Words)
{
    const Belongings now = belongings();
    if (!m_mark || !(*m_mark == now))
        m_markedAt = sinceStatement();
    m_mark = now;
    if (sinceStatement() - m_markedAt < kSettled)
        return Outcome::notYet(QStringLiteral("threads, handles, processes or files come and go"),
                               kSettlingLimit);
    m_markedAt = {}; // of the next mark
    return Outcome::done();
}

Outcome ScenarioStage::expectNothingLeft(Words words)
{
    if (!m_mark)
        return Outcome::failed(QStringLiteral("nothing was marked"));
    Belongings now = belongings();
    now.handles = withoutWhatQtKeeps(now.handles);
    // Files take the longest to judge, and may belong to what is still going.
    QStringList files = std::exchange(now.files, {});
    if (now.beyond(*m_mark).isEmpty()) {
        rememberSent();
        files.removeIf([this](const QString &file) { return maySpare(file); });
        now.files = files;
    }
    const QStringList left = now.beyond(*m_mark);
    if (left.isEmpty())
        return Outcome::done();
    return Outcome::notYet(left.join(QStringLiteral(", ")),
                           durationFrom(words.at(0)).value_or(kLeavingLimit));
}

} // namespace rig
