// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "hid/access/DenialWatch.h"

#include "hid/access/DeviceAccess.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <algorithm>
#include <chrono>
#include <utility>

using HIDCommunicator::OrvikHIDManager;

namespace {
/// Shorter than the time between two scans.
constexpr std::chrono::milliseconds kSettleTime{500};
} // namespace

DenialWatch::DenialWatch(std::function<bool(const QString &)> isDenied,
                         std::function<void(const QString &)> tell, QObject *parent)
    : QObject(parent)
    , m_isDenied(std::move(isDenied))
    , m_tell(std::move(tell))
{
    connect(OrvikHIDManager::instance(), &OrvikHIDManager::deviceListChanged, this, &DenialWatch::look,
            Qt::QueuedConnection);
}

void DenialWatch::look(const QStringList &paths)
{
    if (m_told)
        return;
    if (!std::any_of(paths.cbegin(), paths.cend(), m_isDenied)) {
        m_denied.invalidate();
        return;
    }
    if (!m_denied.isValid())
        m_denied.start();
    if (m_denied.elapsed() < kSettleTime.count())
        return;
    m_told = true;
    m_tell(DeviceAccess::hint());
}
