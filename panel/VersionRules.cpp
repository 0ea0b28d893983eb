// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "panel/VersionRules.h"

#include <QStringList>

#include <algorithm>

namespace QuillonFirmwareUpgrade::VersionRules {

namespace {
const QString kOldestUpgradable = QStringLiteral("1.1.1");

bool isOlder(const QString &device, const QString &remote)
{
    return !device.isEmpty() && !remote.isEmpty() && compare(device, remote) < 0;
}
} // namespace

int compare(const QString &a, const QString &b)
{
    const QStringList partsOfA = a.split(u'.');
    const QStringList partsOfB = b.split(u'.');
    for (qsizetype i = 0; i < std::max(partsOfA.size(), partsOfB.size()); ++i) {
        const int partOfA = partsOfA.value(i).toInt();
        const int partOfB = partsOfB.value(i).toInt();
        if (partOfA != partOfB)
            return partOfA < partOfB ? -1 : 1;
    }
    return 0;
}

UpgradePlan choosePlan(const Versions &versions)
{
    const bool needPc = isOlder(versions.devicePc, versions.remotePc);
    const bool needOtg = isOlder(versions.deviceOtg, versions.remoteOtg);
    if (needPc)
        return needOtg ? UpgradePlan::Both : UpgradePlan::PcOnly;
    return needOtg ? UpgradePlan::OtgOnly : UpgradePlan::None;
}

QString displayVersion(const Versions &versions)
{
    if (versions.devicePc.isEmpty())
        return versions.remotePc;
    return isOlder(versions.devicePc, versions.remotePc) ? versions.remotePc : versions.devicePc;
}

bool isTooOld(const QString &deviceVersion)
{
    return isOlder(deviceVersion, kOldestUpgradable);
}

bool isUpToDate(const QString &device, const QString &remote)
{
    return !device.isEmpty() && !remote.isEmpty() && compare(device, remote) >= 0;
}

QString planLogName(UpgradePlan plan)
{
    switch (plan) {
    case UpgradePlan::PcOnly:
        return QStringLiteral("PcOnly");
    case UpgradePlan::Both:
        return QStringLiteral("Both");
    default:
        return QStringLiteral("OtgOnly");
    }
}

} // namespace QuillonFirmwareUpgrade::VersionRules
