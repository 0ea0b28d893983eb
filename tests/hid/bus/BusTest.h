// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "tests/hid/Recorder.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QTest>

#include <memory>

/// What tests on the library as it ships have in common, whichever system finds the devices: each test
/// function starts with one acquire() and a recorder, and ends with the release().
class BusTest : public QObject {
    Q_OBJECT

protected:
    /// Any longer than this, and something is lost. Nothing is expected to take nearly as long.
    static constexpr int kPatienceMs = 20000;

    Recorder &recorder() const { return *m_recorder; }
    static HIDCommunicator::OrvikHIDManager &manager();

    template <typename Device> static bool open(const Device &device, int productId = 0x000E)
    {
        return manager().openHIDHandle(device.path(), 0x352F, productId, 0);
    }
    static void startThreads();
    /// The recorder does what a panel does: opens what it finds, closes the threads of what has gone.
    void answerAsAPanel();
    /// Whether \a device gets a report through the library, and the library the answer.
    template <typename Device> bool isServed(Device &device)
    {
        const QByteArray asked = nextReport();
        const QByteArray answer = nextReport();
        device.setResponder([asked, answer](const QByteArray &heard) {
            return heard == asked ? QList<QByteArray>{answer} : QList<QByteArray>();
        });
        manager().DC_AddSendData(asked);
        return QTest::qWaitFor([&] { return recorder().reports().contains(answer.sliced(1)); }, kPatienceMs);
    }

    static QByteArray
    report(int mark); ///< an output report with \a mark and its complement behind the start mark

    void acquireAndListen();
    void stopListeningAndRelease();
    void listen(Recorder::Hooks hooks);

private:
    static QByteArray nextReport(); ///< one that no test has sent before

    std::unique_ptr<Recorder> m_recorder;
};
