// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QStringList>

namespace HIDCommunicator {

/// A HID library with all that the panel asks for, and with one R2 on its bus that never answers.
class Q_DECL_EXPORT OrvikHIDManager : public QObject {
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

    bool m_open = false;
    QList<QByteArray> m_sent;

Q_SIGNALS:
    void deviceListChanged(QStringList paths, QList<int> productIds);
    void blockHidConnetStatus(int status);
    void blockReceiveData(QByteArray report);
};

} // namespace HIDCommunicator
