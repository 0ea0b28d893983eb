#include "net/VersionAnswer.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

std::optional<VersionAnswer> VersionAnswer::read(const QByteArray &body)
{
    const QJsonArray versions = QJsonDocument::fromJson(body).array();
    if (versions.isEmpty())
        return std::nullopt;
    const QJsonObject newest = versions.first().toObject();
    VersionAnswer answer{newest.value(u"f_ver").toString(), newest.value(u"f_remark").toString(),
                         newest.value(u"f_remark_en").toString()};
    if (answer.version.size() > kLongestVersion)
        return std::nullopt;
    return answer;
}
