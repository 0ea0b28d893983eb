// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "probe/Products.h"

#include "device/ModelTable.h"

namespace probe {

using QuillonFirmwareUpgrade::ModelRow;

Product productOf(int productId)
{
    for (const ModelRow &ids : QuillonFirmwareUpgrade::modelRows()) {
        const QString name(ids.code);
        if (productId == ids.pc.normalPid)
            return {name, QStringLiteral("PC interface"), true};
        if (productId == ids.pc.dfuPid)
            return {name, QStringLiteral("PC chip in its boot loader"), false};
        if (productId == ids.otg.normalPid)
            return {name,
                    ids.otg.normalPid == ids.otg.dfuPid ? QStringLiteral("OTG interface, or its boot loader")
                                                        : QStringLiteral("OTG interface"),
                    false};
        if (productId == ids.otg.dfuPid)
            return {name, QStringLiteral("OTG chip in its boot loader"), false};
    }
    return {QStringLiteral("?"), QStringLiteral("unknown product of the family"), false};
}

QString idText(int id)
{
    return QString::number(id, 16).rightJustified(4, u'0');
}

} // namespace probe
