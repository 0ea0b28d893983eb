// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "Recorder.h"

#include "tests/support/ScriptedTransport.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QObject>

#include <memory>
#include <vector>

/// Base of the manager's tests: each test function starts with an empty scripted bus, one acquire() and a
/// recorder, and ends with the release() and a look whether everything was closed.
class ManagerTest : public QObject {
    Q_OBJECT

protected:
    static constexpr int kVendorId = 0x352F;
    static constexpr int kProductId = 0x000E;
    static constexpr int kOtherProductId = 0x001F;

    static ScriptedBus &bus();
    static HIDCommunicator::OrvikHIDManager &manager();
    /// Listens from init() on, as an application does.
    static Recorder &recorder() { return *s_recorders.back(); }

    static bool open(const QString &path, int productId = kProductId);
    static void startThreads();
    /// Plugs a device in, opens it and starts both threads; its path, or nothing when that failed.
    static QString connectDevice(int productId = kProductId);
    /// Lets recorder() be a new one, which listens in another way. A direct one begins as a new user does,
    /// with the library's threads started and the list of devices announced after it is there.
    static Recorder &listen(Qt::ConnectionType type, Recorder::Hooks hooks = {});
    /// One more recorder, until the end of the test function; a direct one begins as in listen().
    static Recorder &alsoListen(Qt::ConnectionType type);

    static QByteArray report(char mark,
                             int size = 65); ///< a well-formed output report, \a mark behind the start mark

private Q_SLOTS:
    void init();
    void cleanup();

private:
    static void silenceRecorders();
    static std::unique_ptr<Recorder> makeRecorder(Qt::ConnectionType type, Recorder::Hooks hooks);

    /// Kept until the threads have ended: one of them may just be calling a slot of any of these.
    static inline std::vector<std::unique_ptr<Recorder>> s_recorders;
};
