// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "device/ModelTable.h"

using namespace std::chrono_literals;

/// A key of the translation catalogue, byte for byte, as the panel's other texts are.
#define HINT(text) QT_TRANSLATE_NOOP("QuillonFirmwareUpgrade::FirmwareUpgradeWidget", text)

namespace QuillonFirmwareUpgrade {

const QList<ModelRow> &modelRows()
{
    // clang-format off
    static const QList<ModelRow> rows{
        {DeviceModel::R1, QLatin1String("R1"),
         {0x0001, 0x0010,
          QLatin1String("/upinfo_test.aspx?proj_name=R1MCU"), QLatin1String("/dnfile_test.aspx?f_sn=153"),
          QLatin1String("pc.gif"), HINT("请使用USB线连接图示USB口和电脑，\n接入后自动完成升级。"),
          6000ms},
         // Its OTG chip keeps its product ID in the boot loader, and settles longer.
         {0x0012, 0x0012,
          QLatin1String("/upinfo_test.aspx?proj_name=R1OTG"), QLatin1String("/dnfile_test.aspx?f_sn=154"),
          QLatin1String("pc_otg.gif"), HINT("请使用配件附带的USB线，接入并保持USB-C和OTG口\n与电脑的连接。"),
          8000ms}},
        {DeviceModel::R2, QLatin1String("R2"),
         {0x000E, 0x00FF,
          QLatin1String("/upinfo_test.aspx?proj_name=R2MCU"), QLatin1String("/dnfile_test.aspx?f_sn=155"),
          QLatin1String("dc5v_pc.gif"), HINT("请使用配件附带USB线接入图示DC-5V和USB-C口，\n开始固件升级。"),
          6000ms},
         {0x001F, 0x0065,
          QLatin1String("/upinfo_test.aspx?proj_name=R2OTG"), QLatin1String("/dnfile_test.aspx?f_sn=156"),
          QLatin1String("dc5v_otg.gif"), HINT("请使用配件附带USB线接入图示DC-5V和OTG口,\n继续完成升级。"),
          6000ms}},
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
