#include "hid/access/DenialWatch.h"

#include "hid/access/DeviceAccess.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <algorithm>
#include <utility>

using HIDCommunicator::OrvikHIDManager;

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
    if (m_told || !std::any_of(paths.cbegin(), paths.cend(), m_isDenied))
        return;
    m_told = true;
    m_tell(DeviceAccess::hint());
}
