// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "InterfaceName.h"

#include <QRegularExpression>

namespace HIDCommunicator {

namespace {

const QRegularExpression &shape()
{
    static const QRegularExpression expression(
        QStringLiteral(R"(\A\\\\\?\\hid#vid_([0-9a-f]{4})&pid_([0-9a-f]{4})[&#])"),
        QRegularExpression::CaseInsensitiveOption);
    return expression;
}

} // namespace

std::optional<HidDeviceInfo> deviceNamed(const QString &interfaceName)
{
    const QRegularExpressionMatch match = shape().match(interfaceName);
    if (!match.hasMatch())
        return std::nullopt;
    return HidDeviceInfo{interfaceName, match.capturedView(1).toInt(nullptr, 16),
                         match.capturedView(2).toInt(nullptr, 16)};
}

} // namespace HIDCommunicator
