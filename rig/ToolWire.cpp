#include "rig/ToolWire.h"

#include <QUrl>

namespace rig::wire {

QByteArray encode(const QStringList &words)
{
    QByteArrayList parts;
    for (const QString &word : words)
        parts.append(QUrl::toPercentEncoding(word));
    return parts.join(' ') + '\n';
}

QStringList decode(const QByteArray &line)
{
    QStringList words;
    for (const QByteArray &part : line.trimmed().split(' '))
        words.append(QUrl::fromPercentEncoding(part));
    return words;
}

} // namespace rig::wire
