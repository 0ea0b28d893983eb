// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "StoppableThread.h"

#include "LoggingCategory.h"

#include <system_error>
#include <thread>

namespace HIDCommunicator {

/// One thread from start to join. Whoever holds it last has joined it or lets it go.
struct StoppableThread::Run {
    ~Run()
    {
        if (thread.joinable())
            thread.detach();
    }

    void join()
    {
        const std::lock_guard lock(threadMutex);
        if (thread.joinable())
            thread.join();
    }

    bool isCurrentThread()
    {
        const std::lock_guard lock(threadMutex);
        return thread.get_id() == std::this_thread::get_id();
    }

    std::atomic<bool> stopped{false};
    WaitableCount working{1};
    std::mutex threadMutex;
    std::thread thread;
};

StoppableThread::StoppableThread() = default;
StoppableThread::~StoppableThread() = default;

void StoppableThread::start(Body body)
{
    const std::lock_guard lock(m_mutex);
    if (m_run && !m_run->stopped && !m_run->working.isZero())
        return;
    auto run = std::make_shared<Run>();
    auto work = [run, body = std::move(body), previous = m_run]() mutable {
        if (previous) {
            previous->working.waitZero();
            previous->join();
            previous.reset();
        }
        body(run->stopped);
        body = nullptr;
        run->working.remove();
    };
    try {
        const std::lock_guard threadLock(run->threadMutex);
        run->thread = std::thread(std::move(work));
    } catch (const std::system_error &error) {
        qCWarning(hidCategory, "[HID] no thread: %s", error.what());
        return;
    }
    m_run = std::move(run);
}

void StoppableThread::requestStop()
{
    const std::lock_guard lock(m_mutex);
    if (m_run)
        m_run->stopped = true;
}

bool StoppableThread::waitEnded(Deadline deadline)
{
    std::shared_ptr<Run> run;
    {
        const std::lock_guard lock(m_mutex);
        run = m_run;
    }
    if (!run)
        return true;
    if (run->isCurrentThread() || !run->working.waitZero(deadline))
        return false;
    run->join();
    const std::lock_guard lock(m_mutex);
    if (m_run == run)
        m_run.reset();
    return true;
}

} // namespace HIDCommunicator
