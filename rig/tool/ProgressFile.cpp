// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/tool/ProgressFile.h"

#include "rig/tool/ToolPlatform.h"

#include <QDir>
#include <QFileInfo>
#include <QThread>

namespace tool {

namespace {
constexpr std::chrono::milliseconds kHalfLinePause{30};
} // namespace

ProgressFile::ProgressFile()
    : m_file(QDir::home().filePath(QLatin1StringView(ToolPlatform::kProgressFile)))
{
}

bool ProgressFile::begin()
{
    QDir().mkpath(QFileInfo(m_file).path());
    return m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered);
}

void ProgressFile::percent(int percent)
{
    line(QByteArray::number(percent) + '%');
}

void ProgressFile::result(const QByteArray &text)
{
    line(text);
}

void ProgressFile::raw(const QByteArray &bytes)
{
    m_file.write(bytes);
}

void ProgressFile::line(const QByteArray &text)
{
    const QByteArray whole = text + '\n';
    const qsizetype first = m_halfLines ? text.size() / 2 : whole.size();
    raw(whole.left(first));
    if (m_halfLines) {
        QThread::msleep(kHalfLinePause.count());
        raw(whole.mid(first));
    }
}

} // namespace tool
