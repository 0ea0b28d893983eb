// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "hid/access/DeviceAccess.h"

#include <QRegularExpression>

namespace DeviceAccess {

QString shellWord(const QString &path)
{
    static const QRegularExpression plain(QStringLiteral(R"(\A[A-Za-z0-9_./+@%,:=-]+\z)"));
    if (plain.match(path).hasMatch())
        return path;
    QString quoted = path;
    quoted.replace(u'\'', QStringLiteral(R"('\'')"));
    return u'\'' + quoted + u'\'';
}

} // namespace DeviceAccess
