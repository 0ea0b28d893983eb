// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>

#include <functional>

namespace probe {

/// Whether the device at a path is there but may not be opened.
using DenialCheck = std::function<bool(const QString &path)>;

/// A device as the HID library lists it.
struct Device {
    QString path;
    int productId = 0;
    bool denied = false;
};

/// What is attached at this moment.
QList<Device> attachedDevices(const DenialCheck &isDenied);

/// "R2, PC interface".
QString roleText(int productId);

QJsonObject jsonOf(const Device &device);

} // namespace probe
