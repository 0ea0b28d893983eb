// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "DevicePath.h"
#include "FamilyReports.h"

#include <HIDCommunicator/HidTransport.h>

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <mutex>
#include <optional>

struct udev_device;

namespace HIDCommunicator {

/// The system's hidraw nodes. What a node says of itself stays true as long as it is there, and is asked
/// once; whether it is there, and what its device file allows, each time. Nothing is opened to find that out.
/// Every function may be called from any thread.
class HidrawNodes {
public:
    /// As HidTransport::enumerate().
    std::optional<QList<HidDeviceInfo>> list(int vendorId);

    /// What \a path, one that list() gave, stands for, if there is a point in opening it: not when the node
    /// has left, is not ready, or cannot carry the family's reports.
    std::optional<DevicePath> openable(const QString &path);

private:
    struct Node {
        DevicePath path;
        FamilyReports reports = FamilyReports::Unknown;
    };
    /// By their places in sysfs. The number of the HID device in one is given to no other while the system
    /// runs; the name of a node is.
    using Nodes = QHash<QByteArray, Node>;

    static std::optional<Node> learn(udev_device *device);
    static std::optional<Node> learn(const QByteArray &name);
    static bool comesBefore(const Node &left, const Node &right);
    std::optional<QList<Node>> look();

    std::mutex m_mutex;
    Nodes m_known;
};

} // namespace HIDCommunicator
