// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/FlashContents.h"

#include "rig/FirmwareImage.h"

namespace rig {

namespace {
constexpr char kEmpty[] = "empty";
constexpr char kPartial[] = "partial";
constexpr char kDamaged[] = "damaged";
} // namespace

QString contentsOf(const QByteArray &flash, const ChipIdentity &identity)
{
    if (flash.isEmpty())
        return QLatin1StringView(kEmpty);
    const auto image = readImage(flash);
    if (image && image->model == identity.model && image->chip == identity.chip)
        return image->version.toString();
    return QLatin1StringView(flash.size() < imageSize(flash) ? kPartial : kDamaged);
}

QStringList contentsNames()
{
    return {QLatin1StringView(kEmpty), QLatin1StringView(kPartial), QLatin1StringView(kDamaged)};
}

} // namespace rig
