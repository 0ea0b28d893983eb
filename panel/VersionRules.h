// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "panel/FirmwareUpgradeWidget.h"

#include <QString>

/// What follows from version strings alone. A version is decimal parts joined by dots; empty means not yet
/// known.
namespace QuillonFirmwareUpgrade::VersionRules {

/// The four versions that decide a plan.
struct Versions {
    QString devicePc;
    QString remotePc;
    QString deviceOtg;
    QString remoteOtg;
};

/// -1 when \a a is older than \a b, 1 when it is newer, 0 when they are equal. Compared part by part; a
/// missing part and one that is no number count as 0.
int compare(const QString &a, const QString &b);

/// The firmwares that the server has newer than the device. A device that is newer is never downgraded.
UpgradePlan choosePlan(const Versions &versions);

/// The PC version to announce: the server's where it is newer, the device's otherwise, whichever is known.
QString displayVersion(const Versions &versions);

/// Whether a device of this version is beyond what the panel can upgrade from. An unknown version is not.
bool isTooOld(const QString &deviceVersion);

/// Both versions are known and the device's is not older.
bool isUpToDate(const QString &device, const QString &remote);

/// The plan as log lines name it; None reads "OtgOnly" there.
QString planLogName(UpgradePlan plan);

} // namespace QuillonFirmwareUpgrade::VersionRules
