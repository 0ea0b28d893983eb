#include "device/ModelTable.h"

namespace QuillonFirmwareUpgrade {

const QList<ModelRow> &modelRows()
{
    // clang-format off
    static const QList<ModelRow> rows{
        {DeviceModel::R1, QLatin1String("R1"), 0x0001, 0x0010, 0x0012, 0x0012,
         QLatin1String("/upinfo_test.aspx?proj_name=R1MCU"), QLatin1String("/upinfo_test.aspx?proj_name=R1OTG"),
         QLatin1String("/dnfile_test.aspx?f_sn=153"), QLatin1String("/dnfile_test.aspx?f_sn=154")},
        {DeviceModel::R2, QLatin1String("R2"), 0x000E, 0x00FF, 0x001F, 0x0065,
         QLatin1String("/upinfo_test.aspx?proj_name=R2MCU"), QLatin1String("/upinfo_test.aspx?proj_name=R2OTG"),
         QLatin1String("/dnfile_test.aspx?f_sn=155"), QLatin1String("/dnfile_test.aspx?f_sn=156")},
    };
    // clang-format on
    return rows;
}

const ModelRow &rowOf(DeviceModel model)
{
    for (const ModelRow &row : modelRows()) {
        if (row.model == model)
            return row;
    }
    return rowOf(DeviceModel::R2);
}

} // namespace QuillonFirmwareUpgrade
