// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "Recorder.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QThread>

using HIDCommunicator::OrvikHIDManager;

namespace {
/// A list goes on growing in another thread, and must not share its data with what is looked at here. Its
/// values stay as they are: that Qt has handed them over in good order the thread sanitizer cannot see.
template <typename Value> QList<Value> withDataOfItsOwn(const QList<Value> &list)
{
    return {list.cbegin(), list.cend()};
}
} // namespace

void Recorder::closeThreadsOfLostDevice(int status)
{
    if (status != 1)
        return;
    OrvikHIDManager::instance()->closeOrvikSendDataThread();
    OrvikHIDManager::instance()->closeOrvikReceiveDataThread();
}

Recorder::Recorder(Qt::ConnectionType type, Hooks hooks)
    : m_hooks(std::move(hooks))
{
    OrvikHIDManager *const manager = OrvikHIDManager::instance();
    connect(manager, &OrvikHIDManager::deviceListChanged, this, &Recorder::hearList, type);
    connect(manager, &OrvikHIDManager::blockHidConnetStatus, this, &Recorder::hearStatus, type);
    connect(manager, &OrvikHIDManager::blockReceiveData, this, &Recorder::hearReport, type);
}

QList<QStringList> Recorder::lists() const
{
    const std::lock_guard lock(m_mutex);
    return withDataOfItsOwn(m_lists);
}

QList<QList<int>> Recorder::productIds() const
{
    const std::lock_guard lock(m_mutex);
    return withDataOfItsOwn(m_productIds);
}

QList<Recorder::Clock::time_point> Recorder::listTimes() const
{
    const std::lock_guard lock(m_mutex);
    return withDataOfItsOwn(m_listTimes);
}

QList<int> Recorder::statuses() const
{
    const std::lock_guard lock(m_mutex);
    return withDataOfItsOwn(m_statuses);
}

QList<QByteArray> Recorder::reports() const
{
    const std::lock_guard lock(m_mutex);
    return withDataOfItsOwn(m_reports);
}

void Recorder::clear()
{
    const std::lock_guard lock(m_mutex);
    m_lists.clear();
    m_productIds.clear();
    m_listTimes.clear();
    m_statuses.clear();
    m_reports.clear();
}

void Recorder::silence()
{
    m_silent = true;
    while (m_running > 0)
        QThread::yieldCurrentThread();
}

template <typename Work> void Recorder::unlessSilent(Work work)
{
    ++m_running;
    if (!m_silent)
        work();
    --m_running;
}

void Recorder::hearList(const QStringList &paths, const QList<int> &productIds)
{
    unlessSilent([&] {
        if (m_hooks.onList)
            m_hooks.onList(paths);
        const std::lock_guard lock(m_mutex);
        m_lists.append(paths);
        m_productIds.append(productIds);
        m_listTimes.append(Clock::now());
    });
}

void Recorder::hearStatus(int status)
{
    unlessSilent([&] {
        if (m_hooks.onStatus)
            m_hooks.onStatus(status);
        const std::lock_guard lock(m_mutex);
        m_statuses.append(status);
    });
}

void Recorder::hearReport(const QByteArray &report)
{
    unlessSilent([&] {
        if (m_hooks.onReport)
            m_hooks.onReport(report);
        const std::lock_guard lock(m_mutex);
        m_reports.append(report);
    });
}
