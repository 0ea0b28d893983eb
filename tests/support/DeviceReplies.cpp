#include "tests/support/DeviceReplies.h"

namespace DeviceReplies {

namespace {
constexpr int kReplySize = 64;
constexpr char kReportId = 0x51;
constexpr quint8 kRandomRead = 4;
constexpr quint8 kContinuousRead = 6;
constexpr quint16 kModeRegister = 0x1008;
constexpr quint16 kPcVersionRegister = 0x000B;
constexpr quint16 kOtgVersionRegister = 0x0010;

void appendWord(QByteArray &bytes, unsigned word)
{
    bytes.append(char(word & 0xFF)).append(char(word >> 8 & 0xFF));
}

quint16 wordAt(const QByteArray &bytes, int offset)
{
    return quint16(quint8(bytes.at(offset)) | quint8(bytes.at(offset + 1)) << 8);
}
} // namespace

QByteArray reply(quint8 operation, const QList<quint16> &words)
{
    QByteArray bytes = QByteArray::fromHex("c400000000");
    bytes[1] = char(7 + 2 * words.size());
    bytes[4] = char(operation);
    for (const quint16 word : words)
        appendWord(bytes, word);
    unsigned sum = 0;
    for (const char byte : bytes)
        sum += quint8(byte);
    appendWord(bytes, 0x10000 - sum);
    return bytes.append(kReplySize - bytes.size(), '\0');
}

QByteArray mode(quint16 flag)
{
    return reply(kRandomRead, {kModeRegister, flag});
}

QByteArray version(quint16 start, Version version)
{
    return reply(kContinuousRead, {start, 3, version.major, version.minor, version.patch});
}

QByteArray pcVersion(Version numbers)
{
    return version(kPcVersionRegister, numbers);
}

QByteArray otgVersion(Version numbers)
{
    return version(kOtgVersionRegister, numbers);
}

QByteArray withId(const QByteArray &reply)
{
    return kReportId + reply;
}

std::function<QList<QByteArray>(const QByteArray &report)> device(Version pc, Version otg)
{
    return [pc, otg](const QByteArray &report) -> QList<QByteArray> {
        const quint8 operation = quint8(report.at(5));
        const quint16 address = wordAt(report, 6);
        if (operation == kRandomRead && address == kModeRegister)
            return {withId(mode(0))};
        if (operation == kContinuousRead && address == kPcVersionRegister)
            return {withId(pcVersion(pc))};
        if (operation == kContinuousRead && address == kOtgVersionRegister)
            return {withId(otgVersion(otg))};
        return {};
    };
}

} // namespace DeviceReplies
