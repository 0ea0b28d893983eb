// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QStringList>

#if defined(OWN_HID_LIBRARY)
#define OWN_HID_EXPORT Q_DECL_EXPORT
#else
#define OWN_HID_EXPORT Q_DECL_IMPORT
#endif

namespace HIDCommunicator {

/// A HID library as a customer might have it: the functions and signals that the panel uses, and nothing
/// else. On its bus hangs one R2 with PC firmware 1.1.3 and OTG firmware 1.1.4.
class OWN_HID_EXPORT OrvikHIDManager : public QObject {
    Q_OBJECT

public:
    static OrvikHIDManager *instance();

    void acquire();
    void release();
    void getOrvikHIDListPath(QStringList &paths, QList<int> &productIds);
    bool openHIDHandle(const QString &path, int vendorId, int productId, int mode);
    void createOrvikSendDataThread();
    void createOrvikReceiveDataThread();
    void closeOrvikSendDataThread();
    void closeOrvikReceiveDataThread();
    bool getConnected() const;
    bool disconnectDevice(int mode);
    void DC_AddSendData(QByteArray report);

    QStringList calls() const
    {
        return m_calls;
    } ///< the names of the functions that were called, oldest first

Q_SIGNALS:
    void deviceListChanged(QStringList paths, QList<int> productIds);
    void blockHidConnetStatus(int status);
    void blockReceiveData(QByteArray report);

private:
    void answerQueued();
    void answer(const QByteArray &report);

    int m_users = 0;
    bool m_connected = false;
    bool m_sending = false;
    bool m_receiving = false;
    QList<QByteArray> m_queue;
    QStringList m_calls;
};

} // namespace HIDCommunicator
