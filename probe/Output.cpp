// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "probe/Output.h"

#include <QJsonDocument>

#include <cstdio>
#include <mutex>

namespace probe {

namespace {

void write(std::FILE *stream, const QByteArray &text)
{
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    std::fwrite(text.constData(), 1, size_t(text.size()), stream);
    std::fflush(stream);
}

} // namespace

void Output::line(const QString &words) const
{
    write(stdout, words.toUtf8() + '\n');
}

void Output::document(const QJsonObject &object) const
{
    write(stdout, QJsonDocument(object).toJson(QJsonDocument::Indented));
}

void Output::object(const QJsonObject &object) const
{
    write(stdout, QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n');
}

void Output::complain(const QString &words) const
{
    remark(QStringLiteral("quillon-probe: ") + words);
}

void Output::remark(const QString &words) const
{
    write(stderr, words.toUtf8() + '\n');
}

} // namespace probe
