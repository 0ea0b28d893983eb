// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "net/VersionAnswer.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QList>

#include <algorithm>

namespace {
/// It is compared, shown, logged, told to the host and made a part of a file's name.
bool isVersion(const QString &text)
{
    const auto characters = QStringView(text).toUcs4();
    return text.size() <= VersionAnswer::kLongestVersion
        && std::all_of(characters.cbegin(), characters.cend(),
                       [](uint character) { return QChar::isPrint(character); });
}
} // namespace

std::optional<VersionAnswer> VersionAnswer::read(const QByteArray &body)
{
    const QJsonArray versions = QJsonDocument::fromJson(body).array();
    if (versions.isEmpty())
        return std::nullopt;
    const QJsonObject newest = versions.first().toObject();
    VersionAnswer answer{newest.value(u"f_ver").toString(), newest.value(u"f_remark").toString(),
                         newest.value(u"f_remark_en").toString()};
    if (!isVersion(answer.version))
        return std::nullopt;
    return answer;
}
