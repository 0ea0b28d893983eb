// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// A host that ends without having released the HID library, in the way its argument names. tst_hid_exit
// starts it.
#include "tests/support/ScriptedTransport.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QCoreApplication>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <thread>

using HIDCommunicator::OrvikHIDManager;

namespace {

ScriptedBus *bus = nullptr;

void connectDevice()
{
    OrvikHIDManager *const manager = OrvikHIDManager::instance();
    manager->acquire();
    if (!manager->openHIDHandle(bus->plug(0x000E), 0x352F, 0x000E, 0))
        std::abort();
    manager->createOrvikSendDataThread();
    manager->createOrvikReceiveDataThread();
    manager->DC_AddSendData(QByteArray::fromHex("51c409"));
}

int runEventLoop()
{
    QTimer::singleShot(100, QCoreApplication::instance(), &QCoreApplication::quit);
    return QCoreApplication::exec();
}

int returnFromMain(int &argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    connectDevice();
    return runEventLoop();
}

int exitInsideTheEventLoop(int &argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    connectDevice();
    QTimer::singleShot(50, QCoreApplication::instance(), [] { std::exit(0); });
    return runEventLoop();
}

int neverDestroyTheApplication(int &argc, char **argv)
{
    new QCoreApplication(argc, argv);
    connectDevice();
    return runEventLoop();
}

int haveNoApplication(int &, char **)
{
    connectDevice();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    return 0;
}

int releaseAfterTheApplication(int &argc, char **argv)
{
    {
        const QCoreApplication application(argc, argv);
        connectDevice();
        runEventLoop();
    }
    OrvikHIDManager::instance()->release();
    return 0;
}

int exitWhileAWriteHangs(int &argc, char **argv)
{
    bus->setResponder([](const QByteArray &) {
        std::this_thread::sleep_for(std::chrono::minutes(1));
        return QList<QByteArray>();
    });
    return returnFromMain(argc, argv);
}

int useTwoApplications(int &argc, char **argv)
{
    returnFromMain(argc, argv);
    bus->unplugAll();
    return returnFromMain(argc, argv);
}

struct Ending {
    const char *name;
    int (*run)(int &argc, char **argv);
};

constexpr Ending kEndings[] = {
    {"return", returnFromMain},
    {"exit", exitInsideTheEventLoop},
    {"leaked-application", neverDestroyTheApplication},
    {"no-application", haveNoApplication},
    {"late-release", releaseAfterTheApplication},
    {"hanging-write", exitWhileAWriteHangs},
    {"two-applications", useTwoApplications},
};

} // namespace

int main(int argc, char **argv)
{
    bus = ScriptedBus::install();
    for (const Ending &ending : kEndings) {
        if (argc == 2 && qstrcmp(argv[1], ending.name) == 0)
            return ending.run(argc, argv);
    }
    std::fputs("unknown ending\n", stderr);
    return 2;
}
