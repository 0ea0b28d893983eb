// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/Fault.h"

#include <algorithm>

namespace rig {

namespace {
constexpr auto server = FaultPlace::Server;
constexpr auto tool = FaultPlace::Tool;
constexpr auto file = FaultPlace::ToolFile;
constexpr auto device = FaultPlace::Device;
} // namespace

const QList<FaultInfo> &faultTable()
{
    // clang-format off
    static const QList<FaultInfo> table {
        {Fault::ServerRefused, server, "server-refused", "connections to the server are refused", "服务器拒绝连接"},
        {Fault::ServerSilent, server, "server-silent", "the server takes the request and never answers", "服务器收到请求后一直不应答"},
        {Fault::ServerSlow, server, "server-slow", "the server answers after 1.5 seconds", "服务器 1.5 秒后才应答"},
        {Fault::ServerLate, server, "server-late", "the server answers after 5 seconds", "服务器 5 秒后才应答"},
        {Fault::ServerDripping, server, "server-dripping", "the answer takes 4 seconds to arrive, piece by piece", "应答内容分段到达，共需 4 秒"},
        {Fault::ServerDropped, server, "server-dropped", "the server hangs up without an answer", "服务器不应答就断开连接"},
        {Fault::ServerCutShort, server, "server-cut-short", "the server hangs up in the middle of the answer", "服务器应答到一半就断开连接"},
        {Fault::ServerNotFound, server, "server-404", "an error page with status 404", "返回 404 错误页"},
        {Fault::ServerBroken, server, "server-500", "an error page with status 500", "返回 500 错误页"},
        {Fault::ServerRedirects, server, "server-redirects", "the server redirects to itself for ever", "服务器无休止地重定向到自身"},
        {Fault::ServerGarbage, server, "server-garbage", "bytes that are no HTTP answer", "返回的内容不是 HTTP 应答"},
        {Fault::ServerEmptyBody, server, "server-empty-body", "status 200 and no content", "状态 200 但没有内容"},
        {Fault::ServerMalformedJson, server, "server-malformed-json", "the version list is cut in the middle of a string", "版本信息的 JSON 不完整"},
        {Fault::ServerEmptyList, server, "server-empty-list", "the version list is empty", "版本列表为空"},
        {Fault::ServerObject, server, "server-object", "an object instead of the version list", "返回对象而不是版本列表"},
        {Fault::ServerNoVersion, server, "server-no-version", "the version list's entry names no version", "版本列表中没有版本号"},
        {Fault::ServerNoObject, server, "server-no-object", "the version list holds a number", "版本列表中是一个数字"},
        {Fault::ServerHugeNotes, server, "server-huge-notes", "release notes of a million characters", "更新说明长达一百万字"},
        {Fault::ServerDamagedImage, server, "server-damaged-image", "one bit of the image is wrong", "固件镜像有一位错误"},
        {Fault::ServerForeignImage, server, "server-foreign-image", "the other chip's image", "给出的是另一芯片的固件"},
        {Fault::ServerHugeImage, server, "server-huge-image", "an image larger than the chip's flash", "固件镜像大于芯片的闪存"},

        {Fault::ToolMissing, file, "tool-missing", "the flashing tool is not there", "烧录工具不存在"},
        {Fault::ToolNotExecutable, file, "tool-not-executable", "the flashing tool may not be run", "烧录工具没有执行权限"},
        {Fault::ToolCrashesAtStart, tool, "tool-crashes-at-start", "the tool crashes before it writes anything", "烧录工具一启动就崩溃"},
        {Fault::ToolCrashes, tool, "tool-crashes", "the tool crashes at 30 %", "烧录工具在 30 % 时崩溃"},
        {Fault::ToolNoFile, tool, "tool-no-file", "the tool ends and leaves no progress file", "烧录工具退出且没有进度文件"},
        {Fault::ToolEmptyFile, tool, "tool-empty-file", "the tool ends and leaves an empty progress file", "烧录工具退出且进度文件为空"},
        {Fault::ToolSlowStart, tool, "tool-slow-start", "the tool writes nothing for 5 seconds", "烧录工具 5 秒后才开始写进度"},
        {Fault::ToolStallsAt0, tool, "tool-stalls-at-0", "the tool stands at 0 % for ever", "烧录进度停在 0 %"},
        {Fault::ToolStallsAt42, tool, "tool-stalls-at-42", "the tool stands at 42 % for ever", "烧录进度停在 42 %"},
        {Fault::ToolStallsAt100, tool, "tool-stalls-at-100", "all is written, but the tool stands at 100 % for ever", "烧录完成但停在 100 %，一直不退出"},
        {Fault::ToolNoResult, tool, "tool-no-result", "all is written, but the tool ends at 100 % without a result", "烧录完成但没有结果行"},
        {Fault::ToolFails, tool, "tool-fails", "the tool gives up at 60 % and reports failure", "烧录工具在 60 % 时报告失败"},
        {Fault::ToolBareSuccess, tool, "tool-bare-success", "the result line lacks its status", "结果行没有状态值"},
        {Fault::ToolOddStatus, tool, "tool-odd-status", "the result line's status is no number", "结果行的状态不是数字"},
        {Fault::ToolStaysAfterSuccess, tool, "tool-stays-after-success", "the tool reports success and does not end", "烧录工具报告成功后不退出"},
        {Fault::ToolHalfLines, tool, "tool-half-lines", "every line is written in two halves", "进度行分两次写入"},
        {Fault::ToolGarbage, tool, "tool-garbage", "the progress file is words, then the tool ends", "进度文件是无意义的文字"},
        {Fault::ToolBinary, tool, "tool-binary", "the progress file is random bytes, then the tool ends", "进度文件是随机字节"},
        {Fault::ToolHugeFile, tool, "tool-huge-file", "the progress file begins with 4 MiB of old lines", "进度文件开头有 4 MiB 的旧内容"},
        {Fault::ToolIgnoresTerminate, tool, "tool-ignores-terminate", "the tool ignores being asked to end", "烧录工具不理会终止请求"},
        {Fault::ToolChatty, tool, "tool-chatty", "the tool pours text into its output", "烧录工具输出大量文字"},

        {Fault::DevicePulledAtErase, device, "device-pulled-at-erase", "the cable is pulled while the flash is erased", "擦除闪存时拔线"},
        {Fault::DevicePulledAtHalf, device, "device-pulled-at-half", "the cable is pulled at half of the image", "镜像写到一半时拔线"},
        {Fault::DevicePulledAtRestart, device, "device-pulled-at-restart", "the cable is pulled before the new firmware starts", "新固件启动前拔线"},
        {Fault::DeviceNeverReturns, device, "device-never-returns", "the chip restarts after flashing and does not come back until replugged", "烧录后设备不再出现，需重新插拔"},
        {Fault::DeviceReturnsLate, device, "device-returns-late", "the chip takes 12 seconds to restart after flashing", "烧录后设备 12 秒才重新出现"},
        {Fault::DeviceZeroVersions, device, "device-zero-versions", "versions read as 0.0.0", "读到的版本为 0.0.0"},
        {Fault::DeviceSaysDfu, device, "device-says-dfu", "the running firmware says it is in update mode", "正常固件自称处于升级模式"},
        {Fault::DeviceSilent, device, "device-silent", "the device answers no report", "设备不应答"},
        {Fault::DeviceShortReplies, device, "device-short-replies", "replies end after 4 bytes", "应答只有 4 字节"},
        {Fault::DeviceGarbledReplies, device, "device-garbled-replies", "replies are random bytes", "应答是随机字节"},
        {Fault::DeviceBadChecksum, device, "device-bad-checksum", "replies carry a wrong checksum", "应答的校验和错误"},
        {Fault::DeviceHostileLengths, device, "device-hostile-lengths", "replies claim to be longer than they are", "应答声称的长度大于实际长度"},
        {Fault::DeviceRefusesOpen, device, "device-refuses-open", "the device can be seen but not opened", "设备可见但无法打开"},
        {Fault::DeviceDamagedTransfer, device, "device-damaged-transfer", "a byte of the image is damaged on its way into the flash", "镜像在写入闪存途中损坏"},
    };
    // clang-format on
    return table;
}

const FaultInfo &infoOf(Fault fault)
{
    return faultTable().at(int(fault));
}

std::optional<Fault> faultNamed(QStringView name)
{
    const QList<FaultInfo> &table = faultTable();
    const auto found = std::find_if(table.begin(), table.end(), [name](const FaultInfo &info) {
        return name == QLatin1StringView(info.name);
    });
    return found == table.end() ? std::nullopt : std::optional(found->fault);
}

QString nameOf(Fault fault)
{
    return QLatin1StringView(infoOf(fault).name);
}

QString nameOf(FaultPlace place)
{
    switch (place) {
    case FaultPlace::Server:
        return QStringLiteral("server");
    case FaultPlace::Tool:
        return QStringLiteral("tool");
    case FaultPlace::ToolFile:
        return QStringLiteral("tool file");
    case FaultPlace::Device:
        return QStringLiteral("device");
    }
    return {};
}

} // namespace rig
