#include "rig/ReleaseNotes.h"

namespace rig {

ReleaseNotes releaseNotes(Chip chip, const QVersionNumber &version)
{
    const QString number = version.toString();
    if (chip == Chip::Otg) {
        return {QStringLiteral("V%1\n"
                               "1. 改善与手机、平板连接时的兼容性；\n"
                               "2. 修复充电时偶发的底噪；\n"
                               "3. 缩短重新插拔后的识别时间。")
                    .arg(number),
                QStringLiteral("V%1\n"
                               "1. Better compatibility with phones and tablets.\n"
                               "2. Fixed a faint noise that could occur while charging.\n"
                               "3. Faster recognition after reconnecting.")
                    .arg(number)};
    }
    return {QStringLiteral("V%1\n"
                           "1. 新增 32 与 64 采样点缓冲，录音监听延迟更低；\n"
                           "2. 优化话筒前级增益曲线，小音量时调节更细腻；\n"
                           "3. 修复电脑从睡眠唤醒后可能无声的问题；\n"
                           "4. 修复在 192 kHz 下切换输入源时的爆音；\n"
                           "5. 提升长时间使用的稳定性。")
                .arg(number),
            QStringLiteral("V%1\n"
                           "1. New 32 and 64 sample buffers for lower monitoring latency.\n"
                           "2. Smoother microphone gain curve at low levels.\n"
                           "3. Fixed missing sound after the computer wakes from sleep.\n"
                           "4. Fixed a click when switching inputs at 192 kHz.\n"
                           "5. Improved stability during long sessions.")
                .arg(number)};
}

} // namespace rig
