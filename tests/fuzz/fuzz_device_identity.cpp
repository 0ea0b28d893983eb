// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Hostile descriptions of devices: report descriptors, and paths, one a line. The same input is read as both.
#include "device/BusScan.h"
#include "device/ModelTable.h"
#include "hid/src/DevicePath.h"
#include "hid/src/ReportDescriptor.h"
#include "hid/src/ReportFraming.h"
#include "tests/fuzz/Input.h"

using namespace HIDCommunicator;
using namespace QuillonFirmwareUpgrade;
using fuzz::require;

namespace {

void checkDescriptor(const QByteArray &descriptor)
{
    constexpr auto id = quint8(kReportId);
    const QByteArray declaration = QByteArray("\x85", 1) + kReportId;
    const bool declares = declaresReportId(descriptor, id);
    require(!declares || descriptor.lastIndexOf(kReportId) > 0, "what does not stand there is not declared");
    require(declaresReportId(declaration + descriptor, id), "nothing takes a declaration back");
    require(declares || !declaresReportId(descriptor.chopped(descriptor.isEmpty() ? 0 : 1), id),
            "what a part declares the whole declares");
}

void checkPath(const QString &path)
{
    const auto read = DevicePath::fromString(path);
    if (!read)
        return;
    require(read->vendorId >= 0 && read->vendorId <= 0xFFFF && read->productId >= 0
                && read->productId <= 0xFFFF,
            "IDs have four digits");
    require(read->node.startsWith(QStringLiteral("hidraw")) && !read->node.contains(u'/'),
            "a node is a name in one folder");
    require(path.compare(read->toString(), Qt::CaseInsensitive) == 0, "a path is read as it was written");
    const auto again = DevicePath::fromString(read->toString());
    require(again && again->node == read->node && again->productId == read->productId
                && again->vendorId == read->vendorId,
            "a path that is written can be read");
}

bool isKnownId(int productId)
{
    const QList<ModelRow> &rows = modelRows();
    return std::any_of(rows.begin(), rows.end(), [productId](const ModelRow &row) {
        return productId == row.pc.normalPid || productId == row.pc.dfuPid || productId == row.otg.normalPid
            || productId == row.otg.dfuPid;
    });
}

void checkScan(const QStringList &paths, DeviceModel model)
{
    using Kind = BusInterface::Kind;
    const BusScan scan = scanBus(paths, {model, 0, 0});
    require(scan.interfaces.size() <= paths.size(), "a path is one interface");
    for (const BusInterface &found : scan.interfaces) {
        require(paths.contains(found.path) && found.productIdText.size() <= 4, "and names one product ID");
        require(found.kind == Kind::Foreign || isKnownId(found.productId), "others' IDs stay foreign");
        require(!found.newModel || found.kind == Kind::PcBootLoader, "only a boot loader changes the model");
    }
    for (const int id : {scan.known.pcPid, scan.known.otgPid})
        require(id == 0 || isKnownId(id), "only known IDs are remembered");
    for (const Kind kind : {Kind::PcNormal, Kind::PcBootLoader, Kind::OtgNormal, Kind::OtgBootLoader})
        require(scan.found(kind) == !scan.pathOf(kind).isEmpty(), "what was found has a path");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes = fuzz::bytesOf(data, size);
    checkDescriptor(bytes);
    const QStringList paths = QString::fromUtf8(bytes).split(u'\n');
    for (const QString &path : paths)
        checkPath(path);
    checkScan(paths, DeviceModel::R1);
    checkScan(paths, DeviceModel::R2);
    return 0;
}
