// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "HidrawNodes.h"

#include "ReportDescriptor.h"
#include "ReportFraming.h"
#include "Udev.h"

#include <QByteArrayList>
#include <QByteArrayView>
#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <utility>

#include <dirent.h>
#include <limits.h>
#include <unistd.h>

namespace HIDCommunicator {

namespace {

constexpr char kSubsystem[] = "hidraw";
constexpr char kFolder[] = "/sys/class/hidraw/";

struct CloseFolder {
    void operator()(DIR *folder) const { closedir(folder); }
};

/// The names of all nodes there are; nothing when the system does not tell.
std::optional<QByteArrayList> nodeNames()
{
    const std::unique_ptr<DIR, CloseFolder> folder(opendir(kFolder));
    QByteArrayList names;
    if (!folder) {
        // A system that has never seen a HID device has no such folder.
        return errno == ENOENT ? std::optional(names) : std::nullopt;
    }
    for (;;) {
        errno = 0;
        const dirent *const entry = readdir(folder.get());
        if (!entry)
            return errno == 0 ? std::optional(names) : std::nullopt;
        if (QByteArrayView(entry->d_name).startsWith(kSubsystem))
            names.append(entry->d_name);
    }
}

/// Where a node belongs in the tree of devices; empty when it is leaving.
QByteArray placeOf(const QByteArray &name)
{
    const QByteArray link = kFolder + name;
    char place[PATH_MAX];
    const ssize_t length = readlink(link.constData(), place, sizeof place);
    return length > 0 ? QByteArray(place, length) : QByteArray();
}

UdevPointer<udev_device> deviceNamed(udev *context, const QByteArray &name)
{
    return UdevPointer<udev_device>(
        context ? udev_device_new_from_subsystem_sysname(context, kSubsystem, name.constData()) : nullptr);
}

/// The HID device a hidraw node belongs to. It lives as long as \a node.
udev_device *hidParent(udev_device *node)
{
    return udev_device_get_parent_with_subsystem_devtype(node, "hid", nullptr);
}

FamilyReports familyReports(udev_device *hid)
{
    QFile file(QFile::decodeName(udev_device_get_syspath(hid)) + QStringLiteral("/report_descriptor"));
    const QByteArray descriptor = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    if (descriptor.isEmpty())
        return FamilyReports::Unknown;
    return declaresReportId(descriptor, quint8(kReportId)) ? FamilyReports::Yes : FamilyReports::No;
}

/// Whether the device file is there. The system removes it before it tells of an unplug, the rest of the node
/// after.
bool isAttached(const DevicePath &path)
{
    return access(path.deviceFile().constData(), F_OK) == 0 || errno != ENOENT;
}

/// Whether udevd is done with a node. Without udevd nobody would ever settle it.
bool isSettled(const QString &name)
{
    if (!udevDaemonRuns())
        return true;
    const UdevPointer<udev> context(udev_new());
    const UdevPointer<udev_device> device = deviceNamed(context.get(), name.toLatin1());
    return device && udev_device_get_is_initialized(device.get());
}

} // namespace

/// Who is behind a node; nothing when the device is leaving.
std::optional<HidrawNodes::Node> HidrawNodes::learn(udev_device *device)
{
    udev_device *const hid = hidParent(device);
    const char *const id = hid ? udev_device_get_property_value(hid, "HID_ID") : nullptr;
    unsigned bus = 0;
    unsigned vendor = 0;
    unsigned product = 0;
    if (!id || std::sscanf(id, "%x:%x:%x", &bus, &vendor, &product) != 3)
        return std::nullopt;
    return Node{{int(vendor), int(product), QString::fromLatin1(udev_device_get_sysname(device))},
                familyReports(hid)};
}

std::optional<HidrawNodes::Node> HidrawNodes::learn(const QByteArray &name)
{
    const UdevPointer<udev> context(udev_new());
    const UdevPointer<udev_device> device = deviceNamed(context.get(), name);
    return device ? learn(device.get()) : std::nullopt;
}

/// Of several nodes of one device the usable one comes last: who takes the last one gets one that opens.
bool HidrawNodes::comesBefore(const Node &left, const Node &right)
{
    if (left.reports != right.reports)
        return left.reports < right.reports;
    if (left.path.node.size() != right.path.node.size())
        return left.path.node.size() < right.path.node.size();
    return left.path.node < right.path.node;
}

/// All nodes there are. What does not answer is left out, and asked again with the next look.
std::optional<QList<HidrawNodes::Node>> HidrawNodes::look()
{
    const auto names = nodeNames();
    if (!names)
        return std::nullopt;
    QList<Node> found;
    Nodes known;
    const std::lock_guard lock(m_mutex);
    for (const QByteArray &name : *names) {
        const QByteArray place = placeOf(name);
        if (place.isEmpty())
            continue;
        const auto before = m_known.constFind(place);
        const auto node = before != m_known.cend() ? std::optional(*before) : learn(name);
        if (!node)
            continue;
        found.append(*node);
        if (node->reports != FamilyReports::Unknown)
            known.insert(place, *node);
    }
    m_known = std::move(known);
    return found;
}

std::optional<QList<HidDeviceInfo>> HidrawNodes::list(int vendorId)
{
    auto nodes = look();
    if (!nodes)
        return std::nullopt;
    nodes->removeIf(
        [&](const Node &node) { return node.path.vendorId != vendorId || !isAttached(node.path); });
    std::sort(nodes->begin(), nodes->end(), comesBefore);
    QList<HidDeviceInfo> devices;
    for (const Node &node : std::as_const(*nodes))
        devices.append({node.path.toString(), node.path.vendorId, node.path.productId});
    return devices;
}

std::optional<DevicePath> HidrawNodes::openable(const QString &path)
{
    const auto wanted = DevicePath::fromString(path);
    if (!wanted || !isSettled(wanted->node))
        return std::nullopt;
    const std::lock_guard lock(m_mutex);
    const bool useless = std::any_of(m_known.cbegin(), m_known.cend(), [&](const Node &node) {
        return node.path.node == wanted->node && node.reports == FamilyReports::No;
    });
    return useless ? std::nullopt : wanted;
}

} // namespace HIDCommunicator
