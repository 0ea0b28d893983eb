// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/HostTexts.h"

#include <iterator>

namespace host {

namespace {
struct Row {
    Text text;
    const char16_t *chinese;
    const char16_t *english;
};

constexpr Row kRows[]{
    {Text::WindowTitle, u"升级面板演示", u"Upgrade panel demonstration"},
    {Text::Device, u"模拟设备", u"Simulated device"},
    {Text::Server, u"升级服务器上的最新固件", u"Newest firmware on the update server"},
    {Text::Panel, u"升级面板", u"Upgrade panel"},
    {Text::Fault, u"故障", u"Fault"},
    {Text::Log, u"日志", u"Log"},
    {Text::Model, u"型号", u"Model"},
    {Text::Language, u"语言", u"Language"},
    {Text::PcFirmware, u"PC 固件", u"PC firmware"},
    {Text::OtgFirmware, u"OTG 固件", u"OTG firmware"},
    {Text::ErasePc, u"擦除", u"Erase"},
    {Text::EraseOtg, u"擦除", u"Erase"},
    {Text::PcCable, u"PC 口已插线(&P)", u"&PC cable plugged in"},
    {Text::OtgCable, u"OTG 口已插线(&O)", u"&OTG cable plugged in"},
    {Text::NoFault, u"无", u"none"},
    {Text::NewPanel, u"新建面板(&N)", u"&New panel"},
    {Text::DeletePanel, u"删除面板(&D)", u"&Delete panel"},
    {Text::PanelClosed, u"面板已关闭，点“新建面板”重新打开",
     u"The panel is closed. \"New panel\" opens it again."},
};

constexpr bool isInOrder()
{
    for (std::size_t at = 0; at < std::size(kRows); ++at) {
        if (std::size_t(kRows[at].text) != at)
            return false;
    }
    return true;
}
static_assert(isInOrder(), "a row's place is its text's number");
} // namespace

QString textOf(Text text, bool english)
{
    const Row &row = kRows[std::size_t(text)];
    return QString::fromUtf16(english ? row.english : row.chinese);
}

} // namespace host
