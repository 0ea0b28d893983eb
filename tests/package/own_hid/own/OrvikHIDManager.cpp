// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QMetaObject>

#include <utility>

namespace HIDCommunicator {

namespace {

const QString kPath = QStringLiteral("usb:vid_352f&pid_000e:7");
constexpr int kVendor = 0x352F;
constexpr int kProduct = 0x000E;

struct Exchange {
    const char *request; // hexadecimal, from the operation to the end of the address
    const char *reply; // hexadecimal
};

constexpr Exchange kExchanges[]{
    // Is it in update mode? No.
    {"040810", "c40b0000040810000015ff"},
    // Versions of the PC and of the OTG firmware.
    {"060b00", "c4110000060b000300010001000300000014ff"},
    {"061000", "c41100000610000300010001000400000014ff"},
};

} // namespace

OrvikHIDManager *OrvikHIDManager::instance()
{
    static auto *manager = new OrvikHIDManager;
    return manager;
}

void OrvikHIDManager::acquire()
{
    m_calls.append(QStringLiteral("acquire"));
    if (m_users++ > 0)
        return;
    QMetaObject::invokeMethod(
        this, [this] { Q_EMIT deviceListChanged({kPath}, {kProduct}); }, Qt::QueuedConnection);
}

void OrvikHIDManager::release()
{
    m_calls.append(QStringLiteral("release"));
    --m_users;
}

void OrvikHIDManager::getOrvikHIDListPath(QStringList &paths, QList<int> &productIds)
{
    paths = QStringList{kPath};
    productIds = QList<int>{kProduct};
}

bool OrvikHIDManager::openHIDHandle(const QString &path, int vendorId, int productId, int)
{
    m_calls.append(QStringLiteral("openHIDHandle"));
    m_connected = path == kPath && vendorId == kVendor && productId == kProduct;
    if (m_connected)
        Q_EMIT blockHidConnetStatus(0);
    return m_connected;
}

void OrvikHIDManager::createOrvikSendDataThread()
{
    m_sending = m_connected;
    answerQueued();
}

void OrvikHIDManager::createOrvikReceiveDataThread()
{
    m_receiving = m_connected;
    answerQueued();
}

void OrvikHIDManager::closeOrvikSendDataThread()
{
    m_sending = false;
}

void OrvikHIDManager::closeOrvikReceiveDataThread()
{
    m_receiving = false;
}

bool OrvikHIDManager::getConnected() const
{
    return m_connected;
}

bool OrvikHIDManager::disconnectDevice(int)
{
    return std::exchange(m_connected, false);
}

void OrvikHIDManager::DC_AddSendData(QByteArray report)
{
    m_queue.append(report);
    answerQueued();
}

void OrvikHIDManager::answerQueued()
{
    while (m_sending && m_receiving && !m_queue.isEmpty())
        answer(m_queue.takeFirst());
}

void OrvikHIDManager::answer(const QByteArray &report)
{
    // Report ID and mark, length, two bytes that are of no concern here: then the operation and the address.
    const QByteArray asked = report.mid(5, 3).toHex();
    m_calls.append(QString::fromLatin1(asked));
    for (const Exchange &exchange : kExchanges) {
        if (asked != exchange.request)
            continue;
        const QByteArray reply = QByteArray::fromHex(exchange.reply);
        QMetaObject::invokeMethod(
            this, [this, reply] { Q_EMIT blockReceiveData(reply); }, Qt::QueuedConnection);
    }
}

} // namespace HIDCommunicator
