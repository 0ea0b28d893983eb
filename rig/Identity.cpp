#include "rig/Identity.h"

#include <algorithm>

namespace rig {

const QList<ChipIdentity> &allIdentities()
{
    // The R1's OTG chip keeps its product ID in the boot loader: from the bus alone the two cannot be told
    // apart.
    static const QList<ChipIdentity> identities{
        {Model::R1, Chip::Pc, 0x0001, 0x0010, "R1MCU", 153},
        {Model::R1, Chip::Otg, 0x0012, 0x0012, "R1OTG", 154},
        {Model::R2, Chip::Pc, 0x000E, 0x00FF, "R2MCU", 155},
        {Model::R2, Chip::Otg, 0x001F, 0x0065, "R2OTG", 156},
    };
    return identities;
}

const ChipIdentity &identityOf(Model model, Chip chip)
{
    return allIdentities().at(int(model) * 2 + int(chip));
}

const ChipIdentity *identityWith(int productId)
{
    const QList<ChipIdentity> &all = allIdentities();
    const auto found = std::find_if(all.begin(), all.end(), [productId](const ChipIdentity &identity) {
        return identity.normalPid == productId || identity.bootLoaderPid == productId;
    });
    return found == all.end() ? nullptr : &*found;
}

QString nameOf(Model model)
{
    return model == Model::R1 ? QStringLiteral("R1") : QStringLiteral("R2");
}

QString nameOf(Chip chip)
{
    return chip == Chip::Pc ? QStringLiteral("pc") : QStringLiteral("otg");
}

std::optional<Model> modelNamed(QStringView name)
{
    for (const Model model : {Model::R1, Model::R2}) {
        if (name.compare(nameOf(model), Qt::CaseInsensitive) == 0)
            return model;
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
