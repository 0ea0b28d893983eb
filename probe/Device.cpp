// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "probe/Device.h"

#include "probe/Products.h"

#include <HIDCommunicator/OrvikHIDManager.h>

namespace probe {

QList<Device> attachedDevices(const DenialCheck &isDenied)
{
    QStringList paths;
    QList<int> productIds;
    HIDCommunicator::OrvikHIDManager::instance()->getOrvikHIDListPath(paths, productIds);
    QList<Device> devices;
    for (qsizetype i = 0; i < paths.size(); ++i)
        devices.append({paths.at(i), productIds.at(i), isDenied(paths.at(i))});
    return devices;
}

QString roleText(int productId)
{
    const Product product = productOf(productId);
    return product.model + QStringLiteral(", ") + product.role;
}

QJsonObject jsonOf(const Device &device)
{
    const Product product = productOf(device.productId);
    return {{QStringLiteral("productId"), idText(device.productId)},
            {QStringLiteral("model"), product.model},
            {QStringLiteral("role"), product.role},
            {QStringLiteral("mayBeOpened"), !device.denied},
            {QStringLiteral("path"), device.path}};
}

} // namespace probe
