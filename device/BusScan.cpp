// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "device/BusScan.h"

#include "device/ModelTable.h"

#include <algorithm>

namespace QuillonFirmwareUpgrade {

namespace {
using Kind = BusInterface::Kind;

/// The digits that follow "pid_" in a device path; null when the path has none.
QString productIdText(const QString &lowerCasePath)
{
    static const QString marker = QStringLiteral("pid_");
    const qsizetype at = lowerCasePath.indexOf(marker);
    return at < 0 ? QString() : lowerCasePath.mid(at + marker.size(), 4);
}

const ModelRow *bootLoaderModel(int productId)
{
    for (const ModelRow &row : modelRows()) {
        if (productId == row.pc.dfuPid)
            return &row;
    }
    return nullptr;
}

/// Takes in what an interface tells of the device, and says what it is.
Kind judge(BusInterface &found, KnownDevice &known)
{
    const int pid = found.productId;
    if (pid == rowOf(known.model).pc.normalPid) {
        known.pcPid = pid;
        return Kind::PcNormal;
    }
    if (const ModelRow *row = bootLoaderModel(pid)) {
        if (known.model != row->model)
            found.newModel = row->model;
        known.model = row->model;
        known.pcPid = pid;
        return Kind::PcBootLoader;
    }
    const ModelRow &model = rowOf(known.model);
    if (pid == model.otg.normalPid) {
        known.otgPid = pid;
        return Kind::OtgNormal;
    }
    if (pid == model.otg.dfuPid) {
        // An OTG chip that was seen running is flashed under the identity it ran with.
        if (known.otgPid != model.otg.normalPid)
            known.otgPid = pid;
        return Kind::OtgBootLoader;
    }
    return Kind::Foreign;
}
} // namespace

BusScan scanBus(const QStringList &paths, const KnownDevice &known)
{
    BusScan scan;
    scan.known = known;
    for (const QString &path : paths) {
        BusInterface found{path, productIdText(path.toLower()), 0, Kind::Foreign, std::nullopt};
        if (found.productIdText.isNull())
            continue;
        bool isNumber = false;
        found.productId = found.productIdText.toInt(&isNumber, 16);
        if (isNumber)
            found.kind = judge(found, scan.known);
        scan.interfaces.append(found);
    }
    return scan;
}

bool BusScan::found(BusInterface::Kind kind) const
{
    return std::any_of(interfaces.cbegin(), interfaces.cend(),
                       [kind](const BusInterface &each) { return each.kind == kind; });
}

QString BusScan::pathOf(BusInterface::Kind kind) const
{
    const auto last = std::find_if(interfaces.crbegin(), interfaces.crend(),
                                   [kind](const BusInterface &each) { return each.kind == kind; });
    return last == interfaces.crend() ? QString() : last->path;
}

} // namespace QuillonFirmwareUpgrade
