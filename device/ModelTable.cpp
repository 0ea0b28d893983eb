#include "device/ModelTable.h"

namespace QuillonFirmwareUpgrade {

namespace {
// clang-format off
constexpr ModelIdentifiers kR1{
    QLatin1String("R1"), 0x0001, 0x0010, 0x0012, 0x0012,
    QLatin1String("/upinfo_test.aspx?proj_name=R1MCU"), QLatin1String("/upinfo_test.aspx?proj_name=R1OTG"),
    QLatin1String("/dnfile_test.aspx?f_sn=153"), QLatin1String("/dnfile_test.aspx?f_sn=154")};
constexpr ModelIdentifiers kR2{
    QLatin1String("R2"), 0x000E, 0x00FF, 0x001F, 0x0065,
    QLatin1String("/upinfo_test.aspx?proj_name=R2MCU"), QLatin1String("/upinfo_test.aspx?proj_name=R2OTG"),
    QLatin1String("/dnfile_test.aspx?f_sn=155"), QLatin1String("/dnfile_test.aspx?f_sn=156")};
// clang-format on
} // namespace

const ModelIdentifiers &identifiersOf(DeviceModel model)
{
    return model == DeviceModel::R1 ? kR1 : kR2;
}

} // namespace QuillonFirmwareUpgrade
