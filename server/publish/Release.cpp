// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "server/publish/Release.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QStringDecoder>

namespace publish {

namespace {
constexpr int kLargestNumber = 65535;
const QString kVersion = QStringLiteral("f_ver");
} // namespace

std::optional<QVersionNumber> versionFrom(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("^(0|[1-9][0-9]{0,4})(\\.(0|[1-9][0-9]{0,4})){2}\\z"));
    if (!form.match(text).hasMatch())
        return std::nullopt;
    const QVersionNumber version = QVersionNumber::fromString(text);
    for (const int number : version.segments()) {
        if (number > kLargestNumber)
            return std::nullopt;
    }
    return version;
}

std::optional<QString> notesFrom(const QByteArray &bytes)
{
    // Stateless: a character that is cut off at the end is an error, too.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return std::nullopt;
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    while (text.endsWith(u'\n'))
        text.chop(1);
    return text;
}

QByteArray answerFor(const Release &release)
{
    const QJsonObject element{{kVersion, release.version.toString()},
                              {QStringLiteral("f_remark"), release.notesInChinese},
                              {QStringLiteral("f_remark_en"), release.notesInEnglish}};
    return QJsonDocument(QJsonArray{element}).toJson(QJsonDocument::Compact) + '\n';
}

std::optional<QVersionNumber> versionIn(const QByteArray &answer)
{
    return versionFrom(QJsonDocument::fromJson(answer).array().at(0).toObject().value(kVersion).toString());
}

} // namespace publish
