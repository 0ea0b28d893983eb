// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Without QRegularExpression, which keeps something for each thread that has used it: with MinGW a thread of
// this library's would crash at its end, where the runtime frees it too early.
#include "InterfaceName.h"

#include <QStringView>

#include <algorithm>

namespace HIDCommunicator {

namespace {

bool isHexDigit(QChar letter)
{
    return (letter >= u'0' && letter <= u'9') || (letter >= u'a' && letter <= u'f')
        || (letter >= u'A' && letter <= u'F');
}

/// Takes \a label and four hexadecimal digits off the front of \a text.
std::optional<int> takeNumber(QStringView &text, QStringView label)
{
    constexpr int kDigits = 4;
    if (!text.startsWith(label, Qt::CaseInsensitive))
        return std::nullopt;
    const QStringView digits = text.sliced(label.size()).left(kDigits);
    if (digits.size() < kDigits || !std::all_of(digits.begin(), digits.end(), isHexDigit))
        return std::nullopt;
    text = text.sliced(label.size() + kDigits);
    return digits.toInt(nullptr, 16);
}

} // namespace

std::optional<HidDeviceInfo> deviceNamed(const QString &interfaceName)
{
    QStringView rest(interfaceName);
    const auto vendorId = takeNumber(rest, uR"(\\?\hid#vid_)");
    const auto productId = vendorId ? takeNumber(rest, u"&pid_") : std::nullopt;
    if (!productId || !(rest.startsWith(u'&') || rest.startsWith(u'#')))
        return std::nullopt;
    return HidDeviceInfo{interfaceName, *vendorId, *productId};
}

} // namespace HIDCommunicator
