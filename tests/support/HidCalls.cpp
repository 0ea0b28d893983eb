// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/HidCalls.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QDebug>
#include <QHash>

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include <utility>

using namespace Qt::StringLiterals;
using HIDCommunicator::OrvikHIDManager;

// The functions below take the place of the library's own: a program's definition wins over a shared
// library's. The library's are then reached by their linker names, with "this" as the first argument.

#define QUILLON_HID(name) "_ZN15HIDCommunicator15OrvikHIDManager" name
#define QUILLON_HID_CONST(name) "_ZNK15HIDCommunicator15OrvikHIDManager" name

#ifdef Q_OS_WIN
// The panel's objects call a DLL's function through a pointer of this name, which the linker would take from
// the import library.
#define QUILLON_TAKE_PLACE(name)                                                                             \
    asm(".data\n .balign 8\n .globl __imp_" name "\n__imp_" name ": .quad " name "\n .text")
QUILLON_TAKE_PLACE(QUILLON_HID("7acquireEv"));
QUILLON_TAKE_PLACE(QUILLON_HID("7releaseEv"));
QUILLON_TAKE_PLACE(QUILLON_HID("25createOrvikSendDataThreadEv"));
QUILLON_TAKE_PLACE(QUILLON_HID("28createOrvikReceiveDataThreadEv"));
QUILLON_TAKE_PLACE(QUILLON_HID("24closeOrvikSendDataThreadEv"));
QUILLON_TAKE_PLACE(QUILLON_HID("27closeOrvikReceiveDataThreadEv"));
QUILLON_TAKE_PLACE(QUILLON_HID("14DC_AddSendDataE10QByteArray"));
QUILLON_TAKE_PLACE(QUILLON_HID("13openHIDHandleERK7QStringiii"));
QUILLON_TAKE_PLACE(QUILLON_HID("16disconnectDeviceEi"));
QUILLON_TAKE_PLACE(QUILLON_HID_CONST("12getConnectedEv"));
QUILLON_TAKE_PLACE(QUILLON_HID("19getOrvikHIDListPathER5QListI7QStringERS1_IiE"));
#endif

namespace {

QHash<QString, std::function<void()>> pendingActions;
thread_local bool insideLibrary = false;

class LibraryCall {
public:
    LibraryCall()
        : m_outermost(!std::exchange(insideLibrary, true))
    {
    }
    ~LibraryCall()
    {
        if (m_outermost)
            insideLibrary = false;
    }
    bool isOutermost() const { return m_outermost; }

private:
    bool m_outermost;
};

void write(const QString &line)
{
    qDebug().noquote() << line;
}

void runPendingAction(const QString &function)
{
    if (const auto action = pendingActions.take(function))
        action();
}

void *findInLibrary(const char *linkerName)
{
#ifdef Q_OS_WIN
    return reinterpret_cast<void *>(GetProcAddress(GetModuleHandleW(L"HIDCommunicator.dll"), linkerName));
#else
    return dlsym(RTLD_NEXT, linkerName);
#endif
}

template <typename Result, typename... Arguments>
Result callLibrary(const char *linkerName, Arguments... arguments)
{
    void *symbol = findInLibrary(linkerName);
    if (!symbol)
        qFatal("the HID library does not have %s", linkerName);
    return reinterpret_cast<Result (*)(Arguments...)>(symbol)(std::forward<Arguments>(arguments)...);
}

template <typename... Arguments>
void command(const QString &function, const QString &shownArguments, const char *linkerName,
             Arguments... arguments)
{
    {
        const LibraryCall call;
        if (call.isOutermost())
            write(u"hid: %1(%2)"_s.arg(function, shownArguments));
        callLibrary<void, Arguments...>(linkerName, std::forward<Arguments>(arguments)...);
        if (!call.isOutermost())
            return;
    }
    runPendingAction(function);
}

QString id(int number)
{
    return u"0x%1"_s.arg(number, 4, 16, QLatin1Char('0'));
}

QString shown(const QByteArray &report)
{
    qsizetype used = report.size();
    while (used > 0 && report.at(used - 1) == 0)
        --used;
    return u"%1: %2"_s.arg(report.size()).arg(QString::fromLatin1(report.left(used).toHex(' ')));
}

} // namespace

void HidCalls::after(const QString &function, const std::function<void()> &action)
{
    pendingActions.insert(function, action);
}

namespace HIDCommunicator {

void OrvikHIDManager::acquire()
{
    command(u"acquire"_s, {}, QUILLON_HID("7acquireEv"), this);
}

void OrvikHIDManager::release()
{
    command(u"release"_s, {}, QUILLON_HID("7releaseEv"), this);
}

void OrvikHIDManager::createOrvikSendDataThread()
{
    command(u"createOrvikSendDataThread"_s, {}, QUILLON_HID("25createOrvikSendDataThreadEv"), this);
}

void OrvikHIDManager::createOrvikReceiveDataThread()
{
    command(u"createOrvikReceiveDataThread"_s, {}, QUILLON_HID("28createOrvikReceiveDataThreadEv"), this);
}

void OrvikHIDManager::closeOrvikSendDataThread()
{
    command(u"closeOrvikSendDataThread"_s, {}, QUILLON_HID("24closeOrvikSendDataThreadEv"), this);
}

void OrvikHIDManager::closeOrvikReceiveDataThread()
{
    command(u"closeOrvikReceiveDataThread"_s, {}, QUILLON_HID("27closeOrvikReceiveDataThreadEv"), this);
}

void OrvikHIDManager::DC_AddSendData(QByteArray report)
{
    command<OrvikHIDManager *, QByteArray>(u"DC_AddSendData"_s, shown(report),
                                           QUILLON_HID("14DC_AddSendDataE10QByteArray"), this, report);
}

bool OrvikHIDManager::openHIDHandle(const QString &path, int vendorId, int productId, int mode)
{
    const LibraryCall call;
    if (call.isOutermost())
        write(u"hid: openHIDHandle(%1, %2, %3, %4)"_s.arg(path, id(vendorId), id(productId)).arg(mode));
    return callLibrary<bool, OrvikHIDManager *, const QString &, int, int, int>(
        QUILLON_HID("13openHIDHandleERK7QStringiii"), this, path, vendorId, productId, mode);
}

bool OrvikHIDManager::disconnectDevice(int mode)
{
    const LibraryCall call;
    if (call.isOutermost())
        write(u"hid: disconnectDevice(%1)"_s.arg(mode));
    return callLibrary<bool, OrvikHIDManager *, int>(QUILLON_HID("16disconnectDeviceEi"), this, mode);
}

bool OrvikHIDManager::getConnected() const
{
    const LibraryCall call;
    const bool connected
        = callLibrary<bool, const OrvikHIDManager *>(QUILLON_HID_CONST("12getConnectedEv"), this);
    if (call.isOutermost())
        write(u"hid? getConnected() = %1"_s.arg(connected ? u"true"_s : u"false"_s));
    return connected;
}

void OrvikHIDManager::getOrvikHIDListPath(QStringList &paths, QList<int> &productIds)
{
    const LibraryCall call;
    callLibrary<void, OrvikHIDManager *, QStringList &, QList<int> &>(
        QUILLON_HID("19getOrvikHIDListPathER5QListI7QStringERS1_IiE"), this, paths, productIds);
    if (call.isOutermost())
        write(u"hid? getOrvikHIDListPath() = %1"_s.arg(paths.size()));
}

} // namespace HIDCommunicator
