// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "DevicePath.h"

#include <QRegularExpression>

namespace HIDCommunicator {

namespace {

/// The device interface class of HID devices, with which Windows ends their paths.
constexpr char16_t kHidInterfaceClass[] = u"{4d1e55b2-f16f-11cf-88cb-001111000030}";

QString fourHexDigits(int number)
{
    return QString::number(number, 16).rightJustified(4, u'0');
}

const QRegularExpression &shape()
{
    static const QRegularExpression expression(
        QStringLiteral(R"(\A\\\\\?\\hid#vid_([0-9a-f]{4})&pid_([0-9a-f]{4})#(hidraw[0-9]{1,9})#)")
            + QRegularExpression::escape(QStringView(kHidInterfaceClass)) + QStringLiteral(R"(\z)"),
        QRegularExpression::CaseInsensitiveOption);
    return expression;
}

} // namespace

QString DevicePath::toString() const
{
    return QStringLiteral(R"(\\?\hid#vid_%1&pid_%2#%3#%4)")
        .arg(fourHexDigits(vendorId), fourHexDigits(productId), node, QStringView(kHidInterfaceClass));
}

QByteArray DevicePath::deviceFile() const
{
    return "/dev/" + node.toLatin1();
}

std::optional<DevicePath> DevicePath::fromString(const QString &path)
{
    const QRegularExpressionMatch match = shape().match(path);
    if (!match.hasMatch())
        return std::nullopt;
    return DevicePath{match.capturedView(1).toInt(nullptr, 16), match.capturedView(2).toInt(nullptr, 16),
                      match.captured(3).toLower()};
}

} // namespace HIDCommunicator
