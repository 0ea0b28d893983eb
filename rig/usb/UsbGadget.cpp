// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/usb/UsbGadget.h"

#include "rig/Identity.h"
#include "rig/RegisterReports.h"
#include "rig/usb/UsbDescriptors.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>

#include <fcntl.h>
#include <linux/usb/ch9.h>
#include <linux/usb/functionfs.h>
#include <poll.h>
#include <sys/mount.h>
#include <sys/stat.h>

namespace rig::usb {

using namespace std::chrono_literals;

namespace {

constexpr char kGadgets[] = "/sys/kernel/config/usb_gadget";
constexpr char kConfiguration[] = "configs/c.1";
constexpr char kStrings[] = "strings/0x409";
constexpr int kControl = 0;
constexpr int kIn = 1;
constexpr int kOut = 2;

// FunctionFS cannot wait for an endpoint to be switched on, nor poll one.
constexpr auto kEndpointPause = 10ms;
constexpr auto kControlPause = 100ms;
constexpr auto kLongestAnswer = 1s;

QByteArray hexadecimal(int number)
{
    return "0x" + QByteArray::number(number, 16);
}

bool writeAll(int descriptor, const QByteArray &bytes)
{
    return ::write(descriptor, bytes.constData(), size_t(bytes.size())) == bytes.size();
}

} // namespace

UsbGadget::UsbGadget(const QString &name, const QString &controller, Respond respond)
    : m_name(name)
    , m_controller(controller)
    , m_respond(std::move(respond))
    , m_folder(QLatin1StringView(kGadgets) + QLatin1Char('/') + name)
    , m_function(QStringLiteral("ffs.") + name)
{
}

UsbGadget::~UsbGadget()
{
    m_stopping = true;
    // Ends the report thread's wait for the host.
    unplug();
    for (std::thread *thread : {&m_controlThread, &m_reportThread}) {
        if (thread->joinable())
            thread->join();
    }
    remove();
}

bool UsbGadget::create(QString *error)
{
    if (!layOut() || !openEndpoints()) {
        *error = QStringLiteral("cannot be a USB device: %1 (it needs root, configfs, usb_f_fs)")
                     .arg(QString::fromLocal8Bit(std::strerror(errno)));
        return false;
    }
    m_controlThread = std::thread(&UsbGadget::serveControl, this);
    m_reportThread = std::thread(&UsbGadget::serveReports, this);
    return true;
}

bool UsbGadget::layOut()
{
    const QString configuration = QLatin1StringView(kConfiguration);
    const QString strings = QLatin1StringView(kStrings);
    const QString function = inFolder(QStringLiteral("functions/") + m_function);
    for (const QString &folder : {m_folder, inFolder(strings), inFolder(configuration), function}) {
        if (::mkdir(QFile::encodeName(folder).constData(), 0755) != 0)
            return false;
    }
    return write(QStringLiteral("idVendor"), hexadecimal(kVendorId))
        && write(strings + QStringLiteral("/manufacturer"), "Quillon")
        && QFile::link(function, inFolder(configuration + QLatin1Char('/') + m_function));
}

bool UsbGadget::openEndpoints()
{
    m_mounted = m_endpoints.isValid()
        && ::mount(m_name.toLocal8Bit().constData(), QFile::encodeName(m_endpoints.path()).constData(),
                   "functionfs", 0, nullptr)
            == 0;
    if (!m_mounted)
        return false;
    m_control = FileDescriptor(::open(endpointFile(kControl).constData(), O_RDWR | O_CLOEXEC));
    // The endpoints' files appear when it is known which ones there are.
    if (!writeAll(m_control.get(), interfaceDescriptors()) || !writeAll(m_control.get(), interfaceStrings()))
        return false;
    m_in = FileDescriptor(::open(endpointFile(kIn).constData(), O_WRONLY | O_CLOEXEC | O_NONBLOCK));
    m_out = FileDescriptor(::open(endpointFile(kOut).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    return m_in.isOpen() && m_out.isOpen();
}

QByteArray UsbGadget::endpointFile(int number) const
{
    return QFile::encodeName(m_endpoints.filePath(QStringLiteral("ep%1").arg(number)));
}

bool UsbGadget::write(const QString &attribute, const QByteArray &value)
{
    const FileDescriptor file(
        ::open(QFile::encodeName(inFolder(attribute)).constData(), O_WRONLY | O_CLOEXEC));
    return file.isOpen() && writeAll(file.get(), value + '\n');
}

void UsbGadget::remove()
{
    for (FileDescriptor *descriptor : {&m_in, &m_out, &m_control})
        descriptor->reset();
    if (m_mounted)
        ::umount(QFile::encodeName(m_endpoints.path()).constData());
    const QString configuration = inFolder(QLatin1StringView(kConfiguration));
    QFile::remove(configuration + QLatin1Char('/') + m_function);
    for (const QString &folder : {configuration, inFolder(QStringLiteral("functions/") + m_function),
                                  inFolder(QLatin1StringView(kStrings)), m_folder})
        ::rmdir(QFile::encodeName(folder).constData());
}

bool UsbGadget::plug(int productId, const QString &product)
{
    m_plugged = write(QStringLiteral("idProduct"), hexadecimal(productId))
        && write(QLatin1StringView(kStrings) + QStringLiteral("/product"), product.toUtf8())
        && write(QStringLiteral("UDC"), m_controller.toLatin1());
    return m_plugged;
}

void UsbGadget::unplug()
{
    if (!m_plugged)
        return;
    const std::unique_lock answered(m_exchange, kLongestAnswer);
    write(QStringLiteral("UDC"), {});
    m_plugged = false;
}

void UsbGadget::serveControl()
{
    pollfd control{m_control.get(), POLLIN, 0};
    std::array<usb_functionfs_event, 4> events{};
    while (!m_stopping) {
        if (::poll(&control, 1, int(std::chrono::milliseconds(kControlPause).count())) <= 0)
            continue;
        const ssize_t size = ::read(m_control.get(), events.data(), sizeof(events));
        for (ssize_t at = 0; at < size / ssize_t(sizeof(events[0])); ++at) {
            if (events[size_t(at)].type == FUNCTIONFS_SETUP)
                answerSetup(events[size_t(at)].u.setup);
        }
    }
}

// A host asks for the report descriptor and says how often it wants to hear the same again; more is not
// offered, and refused by going the wrong way.
void UsbGadget::answerSetup(const usb_ctrlrequest &setup)
{
    constexpr int kSetIdle = 0x0A;
    constexpr int kReportDescriptor = USB_TYPE_CLASS | 0x02;
    const bool in = setup.bRequestType & USB_DIR_IN;
    const bool standard = (setup.bRequestType & USB_TYPE_MASK) == USB_TYPE_STANDARD;
    char nothing = 0;
    if (in && standard && setup.bRequest == USB_REQ_GET_DESCRIPTOR && setup.wValue >> 8 == kReportDescriptor)
        writeAll(m_control.get(),
                 reportDescriptor().first(qMin<qsizetype>(reportDescriptor().size(), setup.wLength)));
    else if (in || (!standard && setup.bRequest == kSetIdle))
        (void)!::read(m_control.get(), &nothing, 0);
    else
        (void)!::write(m_control.get(), &nothing, 0);
}

void UsbGadget::serveReports()
{
    std::array<char, std::size_t(2) * kPacketSize> packet{};
    while (!m_stopping) {
        const ssize_t size = ::read(m_out.get(), packet.data(), packet.size());
        if (size <= 0) {
            std::this_thread::sleep_for(kEndpointPause);
            continue;
        }
        const std::lock_guard exchange(m_exchange);
        for (const QByteArray &answer : m_respond(QByteArray(packet.data(), qsizetype(size))))
            writeAll(m_in.get(), answer);
    }
}

} // namespace rig::usb
