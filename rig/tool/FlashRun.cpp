// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/tool/FlashRun.h"

#include "rig/ToolWire.h"
#include "rig/tool/ToolPlatform.h"
#include "rig/tool/UsbWire.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace tool {

using std::chrono::milliseconds;

namespace {

constexpr milliseconds kPollPause{100};
constexpr milliseconds kPercentPause{60};
constexpr milliseconds kVerifyTime{300};
constexpr int kHugeFileSize = 4 * 1024 * 1024;
constexpr int kChatterPerPercent = 64 * 1024;

void pause(milliseconds time)
{
    QThread::msleep(time.count());
}

bool eventually(milliseconds patience, const std::function<bool()> &holds)
{
    const QDeadlineTimer deadline(patience);
    while (!holds()) {
        if (deadline.hasExpired())
            return false;
        pause(kPollPause);
    }
    return true;
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray oldLines()
{
    QByteArray lines;
    while (lines.size() < kHugeFileSize)
        lines += "an earlier run was here\n";
    return lines;
}

QByteArray randomBytes()
{
    QByteArray bytes(4096, Qt::Uninitialized);
    for (char &byte : bytes)
        byte = char(QRandomGenerator::global()->bounded(256));
    return bytes;
}

void chatter()
{
    for (int written = 0; written < kChatterPerPercent; written += 64)
        std::fputs("block written, block verified, next block, and so on and so on\n", stdout);
    std::fflush(stdout);
}

} // namespace

std::optional<ToolOptions> ToolOptions::from(const QStringList &arguments)
{
    const bool already = arguments.value(3) == u"--already-in-dfu";
    if (arguments.size() != (already ? 4 : 3) || arguments.at(1) != u"--pid")
        return {};
    static const QRegularExpression fourDigits(QStringLiteral("^[0-9a-f]{4}$"));
    if (!fourDigits.match(arguments.at(2)).hasMatch())
        return {};
    return ToolOptions{arguments.at(0), arguments.at(2).toInt(nullptr, 16), already};
}

FlashRun::FlashRun(const ToolOptions &options, const QStringList &arguments)
    : m_options(options)
    , m_arguments(arguments)
    , m_usb(qgetenv(rig::wire::kBusVariable) == rig::wire::kUsb ? makeUsbWire() : nullptr)
    , m_wire(m_usb ? *m_usb : m_rig)
    , m_chip(m_wire)
{
}

FlashRun::ExitCode FlashRun::execute()
{
    const bool connected = m_rig.connectToRig();
    if (connected)
        m_behaviour = behaviourFor(m_rig.greet(m_arguments));
    if (m_behaviour.ignoresTerminate)
        ToolPlatform::ignoreTerminate();
    if (m_behaviour.crashesAtStart)
        ToolPlatform::crash();
    pause(m_behaviour.startDelay);
    if (m_behaviour.fake != ToolBehaviour::Fake::None)
        return fake();
    if (!m_progress.begin())
        return NoProgressFile;
    m_progress.writeHalfLines(m_behaviour.halfLines);
    if (m_behaviour.hugeFile)
        m_progress.raw(oldLines());
    showPercent(0);
    const QByteArray image = readFile(m_options.imagePath);
    return conclude(connected && !image.isEmpty() && reachBootLoader() && program(image));
}

// Leaves behind what the rig asks for, without going near the device.
FlashRun::ExitCode FlashRun::fake()
{
    if (m_behaviour.fake == ToolBehaviour::Fake::NoFile)
        return Failed;
    if (!m_progress.begin())
        return NoProgressFile;
    if (m_behaviour.fake == ToolBehaviour::Fake::Garbage)
        m_progress.raw("percent: many\n%%%\n-\nnearly there, promise\n");
    if (m_behaviour.fake == ToolBehaviour::Fake::Binary)
        m_progress.raw(randomBytes());
    return Failed;
}

bool FlashRun::reachBootLoader()
{
    return eventually(m_wire.patience(), [this] { return m_wire.find(m_options.productId); })
        && m_chip.attach(m_options.productId, m_options.alreadyInBootLoader)
        && eventually(m_wire.patience(), [this] { return m_chip.isReady(); });
}

bool FlashRun::program(const QByteArray &image)
{
    if (!m_chip.erase(image.size()))
        return false;
    for (int percent = 1; percent <= 100; ++percent) {
        if (percent == m_behaviour.failsAt || !programPercent(image, percent))
            return false;
    }
    pause(kVerifyTime);
    const QByteArray wanted = QCryptographicHash::hash(image, QCryptographicHash::Sha256).toHex();
    return m_chip.digest() == wanted && m_chip.restart();
}

bool FlashRun::programPercent(const QByteArray &image, int percent)
{
    const qsizetype from = image.size() * (percent - 1) / 100;
    const qsizetype to = image.size() * percent / 100;
    if (to > from && !m_chip.write(from, image.mid(from, to - from)))
        return false;
    pause(kPercentPause);
    if (percent < 100 || m_behaviour.standsAt != 100)
        showPercent(percent);
    return true;
}

FlashRun::ExitCode FlashRun::conclude(bool complete)
{
    if (complete && m_behaviour.standsAt == 100)
        showPercent(100);
    const QByteArray result = complete ? m_behaviour.result : QByteArray("success 0");
    if (!result.isEmpty())
        m_progress.result(result);
    if (complete && m_behaviour.staysAfterResult)
        stand();
    return complete ? Done : Failed;
}

void FlashRun::showPercent(int percent)
{
    m_progress.percent(percent);
    if (m_behaviour.chatty)
        chatter();
    if (percent == m_behaviour.crashesAt)
        ToolPlatform::crash();
    if (percent == m_behaviour.standsAt)
        stand();
}

// Ends with the rig, so that no tool outlives a host that was killed.
void FlashRun::stand()
{
    m_rig.waitForEnd();
    std::exit(Failed);
}

} // namespace tool
