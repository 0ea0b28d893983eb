// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// The library as it ships, on whatever bus this machine has, and what its headers promise.
#include "tests/support/TestProgram.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QElapsedTimer>
#include <QtTest>

#include <algorithm>
#include <limits>

#include <atomic>

using HIDCommunicator::OrvikHIDManager;

const QMetaObject *managerMetaObject();
bool installNoTransport();

class HidSystemTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void signalsHaveTheirSignatures_data();
    void signalsHaveTheirSignatures();
    void transportIsSettledWithTheFirstUse();
    void busIsScannedAndReleased();
    void pathsThatAreNoDeviceAreRefused_data();
    void pathsThatAreNoDeviceAreRefused();
};

void HidSystemTest::signalsHaveTheirSignatures_data()
{
    QTest::addColumn<QByteArray>("signature");
    for (const char *signature : {"deviceListChanged(QStringList,QList<int>)", "blockHidConnetStatus(int)",
                                  "blockReceiveData(QByteArray)"})
        QTest::newRow(signature) << QByteArray(signature);
}

void HidSystemTest::signalsHaveTheirSignatures()
{
    QFETCH(QByteArray, signature);
    QVERIFY(managerMetaObject()->indexOfSignal(signature.constData()) >= 0);
}

void HidSystemTest::transportIsSettledWithTheFirstUse()
{
    OrvikHIDManager::instance();
    QVERIFY(!installNoTransport());
}

void HidSystemTest::busIsScannedAndReleased()
{
    OrvikHIDManager *const manager = OrvikHIDManager::instance();
    std::atomic<int> scans{0};
    manager->acquire();
    connect(
        manager, &OrvikHIDManager::deviceListChanged, this,
        [&](const QStringList &paths, const QList<int> &productIds) {
            QCOMPARE(paths.size(), productIds.size());
            for (const QString &path : paths)
                QVERIFY2(path.contains(QStringLiteral("vid_352f&pid_")), qPrintable(path));
            ++scans;
        },
        Qt::QueuedConnection);
    QTRY_VERIFY(scans >= 3);
    // The quickest of several: a busy machine takes its time to come back to us.
    qint64 quickest = std::numeric_limits<qint64>::max();
    for (int round = 0; round < 5; ++round) {
        QElapsedTimer timer;
        timer.start();
        manager->release();
        quickest = std::min(quickest, timer.elapsed());
        manager->acquire();
    }
    manager->release();
    QVERIFY2(quickest < 100, qPrintable(QString::number(quickest)));
    disconnect(manager, nullptr, this, nullptr);
}

void HidSystemTest::pathsThatAreNoDeviceAreRefused_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("empty") << QString();
    QTest::newRow("a device file") << QStringLiteral("/dev/null");
    QTest::newRow("a node that is not there")
        << QStringLiteral(R"(\\?\hid#vid_352f&pid_000e#hidraw987654#{4d1e55b2-f16f-11cf-88cb-001111000030})");
}

void HidSystemTest::pathsThatAreNoDeviceAreRefused()
{
    QFETCH(QString, path);
    OrvikHIDManager *const manager = OrvikHIDManager::instance();
    manager->acquire();
    QVERIFY(!manager->openHIDHandle(path, 0x352F, 0x000E, 0));
    QVERIFY(!manager->getConnected());
    manager->release();
}

QUILLON_TEST_CORE(HidSystemTest)
#include "tst_hid_system.moc"
