// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/RigThread.h"

#include <QTimer>

namespace rig {

RigThread::RigThread()
    : m_context(new QObject)
{
    m_thread.setObjectName(QStringLiteral("rig"));
    m_context->moveToThread(&m_thread);
    QObject::connect(&m_thread, &QThread::finished, m_context, &QObject::deleteLater);
    m_thread.start();
}

RigThread::~RigThread()
{
    m_thread.quit();
    m_thread.wait();
}

void RigThread::after(std::chrono::milliseconds delay, std::function<void()> call)
{
    QMetaObject::invokeMethod(m_context, [context = m_context, delay, call = std::move(call)] {
        QTimer::singleShot(delay, Qt::PreciseTimer, context, call);
    });
}

void RigThread::runAndWait(const std::function<void()> &call)
{
    if (QThread::currentThread() == &m_thread)
        call();
    else
        QMetaObject::invokeMethod(m_context, call, Qt::BlockingQueuedConnection);
}

} // namespace rig
