// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/ReleaseNotes.h"

#include <QStringList>

namespace rig {

namespace {
struct Item {
    const char16_t *chinese;
    const char16_t *english;
};

constexpr Item kPcItems[]{
    {u"新增 32 与 64 采样点缓冲，录音监听延迟更低",
     u"New 32 and 64 sample buffers for lower monitoring latency."},
    {u"优化话筒前级增益曲线，小音量时调节更细腻", u"Smoother microphone gain curve at low levels."},
    {u"修复电脑从睡眠唤醒后可能无声的问题", u"Fixed missing sound after the computer wakes from sleep."},
    {u"修复在 192 kHz 下切换输入源时的爆音", u"Fixed a click when switching inputs at 192 kHz."},
};
constexpr Item kOtgItems[]{
    {u"改善与手机、平板连接时的兼容性", u"Better compatibility with phones and tablets."},
    {u"修复充电时偶发的底噪", u"Fixed a faint noise that could occur while charging."},
    {u"缩短重新插拔后的识别时间", u"Faster recognition after reconnecting."},
};
/// What a larger release brings besides.
constexpr Item kMoreItems[]{
    {u"新增耳机输出的左右平衡调节", u"New balance control for the headphone output."},
    {u"新增一键静音，状态断电后保留", u"New mute button that is remembered without power."},
    {u"缩短从待机到可用的时间", u"Ready sooner after standby."},
    {u"修复长时间录音后采样率偶尔漂移的问题", u"Fixed a drift of the sample rate in long recordings."},
    {u"修复两台设备同时使用时的串音", u"Fixed crosstalk between two devices on one computer."},
    {u"提升长时间使用的稳定性", u"Improved stability during long sessions."},
};

/// The lines below the version, numbered.
void append(QStringList &chinese, QStringList &english, const Item *begin, const Item *end)
{
    for (const Item *item = begin; item != end; ++item) {
        const QString number = QString::number(chinese.size()) + QStringLiteral(". ");
        chinese.append(number + QString::fromUtf16(item->chinese) + u'；');
        english.append(number + QString::fromUtf16(item->english));
    }
}
} // namespace

ReleaseNotes releaseNotes(Chip chip, const QVersionNumber &version)
{
    QStringList chinese{u'V' + version.toString()};
    QStringList english = chinese;
    if (chip == Chip::Otg)
        append(chinese, english, std::begin(kOtgItems), std::end(kOtgItems));
    else
        append(chinese, english, std::begin(kPcItems), std::end(kPcItems));
    if (version >= QVersionNumber(1, 10))
        append(chinese, english, std::begin(kMoreItems), std::end(kMoreItems));
    chinese.last().chop(1);
    return {chinese.join(u'\n') + u'。', english.join(u'\n')};
}

} // namespace rig
