// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/Identity.h"

#include <algorithm>

namespace rig {

const QList<ModelIdentity> &modelTable()
{
    // The R1's OTG chip keeps its product ID in the boot loader: from the bus alone the two cannot be told
    // apart.
    // clang-format off
    static const QList<ModelIdentity> table{
        {Model::R1, "R1", {Model::R1, Chip::Pc, 0x0001, 0x0010, "R1MCU", 153}, {Model::R1, Chip::Otg, 0x0012, 0x0012, "R1OTG", 154}},
        {Model::R2, "R2", {Model::R2, Chip::Pc, 0x000E, 0x00FF, "R2MCU", 155}, {Model::R2, Chip::Otg, 0x001F, 0x0065, "R2OTG", 156}},
    };
    // clang-format on
    return table;
}

const QList<ChipIdentity> &allIdentities()
{
    static const QList<ChipIdentity> identities = [] {
        QList<ChipIdentity> all;
        for (const ModelIdentity &row : modelTable())
            all << row.pc << row.otg;
        return all;
    }();
    return identities;
}

const ChipIdentity &identityOf(Model model, Chip chip)
{
    const ModelIdentity &row = modelTable().at(int(model));
    return chip == Chip::Pc ? row.pc : row.otg;
}

const ChipIdentity *identityWith(int productId)
{
    const QList<ChipIdentity> &all = allIdentities();
    const auto found = std::find_if(all.begin(), all.end(), [productId](const ChipIdentity &identity) {
        return identity.normalPid == productId || identity.bootLoaderPid == productId;
    });
    return found == all.end() ? nullptr : &*found;
}

QStringList modelNames()
{
    QStringList names;
    for (const ModelIdentity &row : modelTable())
        names.append(QLatin1StringView(row.name));
    return names;
}

QString nameOf(Model model)
{
    return QLatin1StringView(modelTable().at(int(model)).name);
}

QString nameOf(Chip chip)
{
    return chip == Chip::Pc ? QStringLiteral("pc") : QStringLiteral("otg");
}

std::optional<Model> modelNamed(QStringView name)
{
    for (const ModelIdentity &row : modelTable()) {
        if (name.compare(QLatin1StringView(row.name), Qt::CaseInsensitive) == 0)
            return row.model;
    }
    return {};
}

std::optional<Chip> chipNamed(QStringView name)
{
    for (const Chip chip : {Chip::Pc, Chip::Otg}) {
        if (name.compare(nameOf(chip), Qt::CaseInsensitive) == 0)
            return chip;
    }
    return {};
}

} // namespace rig
