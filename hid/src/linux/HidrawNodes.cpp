#include "HidrawNodes.h"

#include "DevicePath.h"
#include "ReportDescriptor.h"
#include "ReportFraming.h"
#include "Udev.h"

#include <QFile>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <utility>

#include <unistd.h>

namespace HIDCommunicator {

namespace {

constexpr char kSubsystem[] = "hidraw";

/// The HID device a hidraw node belongs to. It lives as long as \a node.
udev_device *hidParent(udev_device *node)
{
    return udev_device_get_parent_with_subsystem_devtype(node, "hid", nullptr);
}

/// Whether the device file is there. The system removes it before it tells of an unplug, the rest of the node
/// after.
bool isAttached(udev_device *node)
{
    const char *const file = udev_device_get_devnode(node);
    return file && access(file, F_OK) == 0;
}

/// Who is behind a node; nothing when the device is leaving.
std::optional<DevicePath> identify(udev_device *node)
{
    udev_device *const hid = hidParent(node);
    const char *const id = hid ? udev_device_get_property_value(hid, "HID_ID") : nullptr;
    unsigned bus = 0;
    unsigned vendor = 0;
    unsigned product = 0;
    if (!id || !isAttached(node) || std::sscanf(id, "%x:%x:%x", &bus, &vendor, &product) != 3)
        return std::nullopt;
    return DevicePath{int(vendor), int(product), QString::fromLatin1(udev_device_get_sysname(node))};
}

/// Whether the node carries reports with the family's ID. A node that does not tell is given the benefit of
/// the doubt.
bool carriesReports(udev_device *node)
{
    udev_device *const hid = hidParent(node);
    const char *const folder = hid ? udev_device_get_syspath(hid) : nullptr;
    if (!folder)
        return false;
    QFile file(QFile::decodeName(folder) + QStringLiteral("/report_descriptor"));
    if (!file.open(QIODevice::ReadOnly))
        return true;
    return declaresReportId(file.readAll(), quint8(kReportId));
}

struct FoundNode {
    DevicePath path;
    bool usable = false;
};

/// Of several nodes of one device the usable one comes last: who takes the last one gets one that opens.
bool comesBefore(const FoundNode &left, const FoundNode &right)
{
    if (left.usable != right.usable)
        return right.usable;
    if (left.path.node.size() != right.path.node.size())
        return left.path.node.size() < right.path.node.size();
    return left.path.node < right.path.node;
}

QList<FoundNode> findNodes(udev *context, int vendorId)
{
    QList<FoundNode> found;
    const UdevPointer<udev_enumerate> enumeration(udev_enumerate_new(context));
    if (!enumeration)
        return found;
    udev_enumerate_add_match_subsystem(enumeration.get(), kSubsystem);
    udev_enumerate_scan_devices(enumeration.get());
    for (udev_list_entry *entry = udev_enumerate_get_list_entry(enumeration.get()); entry;
         entry = udev_list_entry_get_next(entry)) {
        const UdevPointer<udev_device> node(
            udev_device_new_from_syspath(context, udev_list_entry_get_name(entry)));
        const auto path = node ? identify(node.get()) : std::nullopt;
        if (path && path->vendorId == vendorId)
            found.append({*path, carriesReports(node.get())});
    }
    return found;
}

} // namespace

QList<HidDeviceInfo> listHidrawNodes(int vendorId)
{
    const UdevPointer<udev> context(udev_new());
    QList<FoundNode> nodes = context ? findNodes(context.get(), vendorId) : QList<FoundNode>();
    std::sort(nodes.begin(), nodes.end(), comesBefore);
    QList<HidDeviceInfo> devices;
    for (const FoundNode &node : std::as_const(nodes))
        devices.append({node.path.toString(), node.path.vendorId, node.path.productId});
    return devices;
}

QByteArray usableDeviceFile(const QString &path)
{
    const auto wanted = DevicePath::fromString(path);
    const UdevPointer<udev> context(udev_new());
    if (!wanted || !context)
        return {};
    const UdevPointer<udev_device> node(udev_device_new_from_subsystem_sysname(
        context.get(), kSubsystem, wanted->node.toLatin1().constData()));
    const auto found = node ? identify(node.get()) : std::nullopt;
    if (!found || found->vendorId != wanted->vendorId || found->productId != wanted->productId)
        return {};
    if (udevDaemonRuns() && !udev_device_get_is_initialized(node.get()))
        return {};
    return carriesReports(node.get()) ? QByteArray(udev_device_get_devnode(node.get())) : QByteArray();
}

} // namespace HIDCommunicator
