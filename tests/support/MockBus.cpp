// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// umockdev redirects what a process asks of /sys, /dev and the system's events to a folder, and hands the
// calls on a device file to us. The device file itself is one end of a pseudo terminal: it can be waited for,
// and hangs up.

// First, because GLib has a member named as a keyword of Qt's.
#include <umockdev.h>

#include "tests/support/MockBus.h"

#include "tests/support/DeepCopy.h"

#include <QByteArrayList>
#include <QDir>
#include <QFile>
#include <QVarLengthArray>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <deque>
#include <limits>
#include <mutex>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <linux/hidraw.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <termios.h>
#include <unistd.h>

namespace {

template <typename T> struct Unref {
    void operator()(T *object) const { g_object_unref(object); }
};
template <typename T> using GPointer = std::unique_ptr<T, Unref<T>>;

/// Takes over a string that GLib has allocated.
QByteArray takeString(gchar *text)
{
    QByteArray copy(text);
    g_free(text);
    return copy;
}

/// What a node leads to: something that a program can open, wait for and find hung up. It carries one byte
/// for every report that waits, and not the reports, which it would not keep apart.
class Wire {
public:
    Wire()
        : m_device(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
    {
        if (m_device < 0 || grantpt(m_device) != 0 || unlockpt(m_device) != 0)
            return;
        m_name = ptsname(m_device);
        m_program = ::open(m_name.constData(), O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
        termios mode{};
        tcgetattr(m_program, &mode);
        cfmakeraw(&mode);
        m_works = tcsetattr(m_program, TCSANOW, &mode) == 0;
    }
    ~Wire()
    {
        cut();
        if (m_program >= 0)
            ::close(m_program);
    }
    Wire(const Wire &) = delete;
    Wire &operator=(const Wire &) = delete;

    bool works() const { return m_works; }
    QByteArray name() const { return m_name; }
    dev_t number() const
    {
        struct stat status { };
        fstat(m_program, &status);
        return status.st_rdev;
    }
    void setMode(mode_t mode) { fchmod(m_program, mode); }

    bool addByte() { return ::write(m_device, "", 1) == 1; }
    void takeByte()
    {
        char byte = 0;
        if (::read(m_program, &byte, 1) < 0)
            return;
    }
    void takeAll() { tcflush(m_program, TCIFLUSH); }

    /// Whoever waits finds it hung up.
    void cut()
    {
        if (m_device >= 0)
            ::close(std::exchange(m_device, -1));
    }

private:
    int m_device;
    int m_program = -1;
    QByteArray m_name;
    bool m_works = false;
};

/// How many unread reports the kernel keeps; it drops what comes after them.
constexpr std::size_t kUnreadReports = 63;

} // namespace

struct MockBus::State {
    std::mutex mutex; ///< the test bed is not made for several threads
    GPointer<UMockdevTestbed> testbed{umockdev_testbed_new()};
    QByteArray root = takeString(umockdev_testbed_get_root_dir(testbed.get()));
    int plugs = 0;
};

struct MockDevice::State {
    State(std::shared_ptr<MockBus::State> itsBus, const MockIdentity &itsIdentity)
        : bus(std::move(itsBus))
        , node("hidraw" + QByteArray::number(bus->plugs++))
        , identity(itsIdentity)
    {
    }

    QByteArray deviceFile() const { return "/dev/" + node; }
    QByteArray hostFile() const { return bus->root + deviceFile(); } ///< where it really lies

    void sendLocked(const QByteArray &report);
    template <typename Answer> void answerLocked(UMockdevIoctlClient *client, Answer answer) const;
    void answerDescriptorLocked(UMockdevIoctlClient *client) const;
    void answerQuestionLocked(UMockdevIoctlClient *client);
    bool takeIoctl(UMockdevIoctlClient *client);
    bool takeRead(UMockdevIoctlClient *client);
    bool takeWrite(UMockdevIoctlClient *client);

    const std::shared_ptr<MockBus::State> bus;
    const QByteArray node;
    QString path;
    QList<QByteArray> sysfs; ///< from the node up to the USB device
    GPointer<UMockdevIoctlBase> calls{umockdev_ioctl_base_new()};

    mutable std::mutex mutex;
    Wire wire;
    bool plugged = true;
    bool ready = true;
    bool tellsReports = true;
    MockIdentity identity;
    int taking = std::numeric_limits<int>::max();
    std::function<void()> askedHook;
    Responder responder;
    std::deque<QByteArray> unread;
    QList<QByteArray> written;
};

void MockDevice::State::sendLocked(const QByteArray &report)
{
    if (plugged && unread.size() < kUnreadReports && wire.addByte())
        unread.push_back(deepCopy(report));
}

namespace {

/// A report of 64 bytes behind its ID in both directions.
QByteArray reportDescriptor(int reportId)
{
    return QByteArray::fromHex("0600ff0901a10185") + char(reportId)
        + QByteArray::fromHex("150026ff0075089540090181020901"
                              "9102c0");
}

} // namespace

template <typename Answer>
void MockDevice::State::answerLocked(UMockdevIoctlClient *client, Answer answer) const
{
    UMockdevIoctlData *const data
        = umockdev_ioctl_data_resolve(umockdev_ioctl_client_get_arg(client), 0, sizeof answer, nullptr);
    umockdev_ioctl_data_update(data, 0, reinterpret_cast<guint8 *>(&answer), sizeof answer);
    umockdev_ioctl_data_unref(data);
    umockdev_ioctl_client_complete(client, 0, 0);
}

void MockDevice::State::answerDescriptorLocked(UMockdevIoctlClient *client) const
{
    const QByteArray bytes = reportDescriptor(identity.reportId);
    hidraw_report_descriptor descriptor{};
    descriptor.size = quint32(bytes.size());
    std::copy(bytes.begin(), bytes.end(), descriptor.value);
    answerLocked(client, descriptor);
}

void MockDevice::State::answerQuestionLocked(UMockdevIoctlClient *client)
{
    const auto question = umockdev_ioctl_client_get_request(client);
    const bool aboutReports = question == HIDIOCGRDESCSIZE || question == HIDIOCGRDESC;
    if (!plugged || !ready || (aboutReports && !tellsReports))
        umockdev_ioctl_client_complete(client, -1, !plugged ? ENODEV : !ready ? ENOTTY : EINVAL);
    else if (question == HIDIOCGRAWINFO)
        answerLocked(client, hidraw_devinfo{3, qint16(identity.vendorId), qint16(identity.productId)});
    else if (question == HIDIOCGRDESCSIZE)
        answerLocked(client, int(reportDescriptor(identity.reportId).size()));
    else
        answerDescriptorLocked(client);
}

bool MockDevice::State::takeIoctl(UMockdevIoctlClient *client)
{
    const auto question = umockdev_ioctl_client_get_request(client);
    if (question != HIDIOCGRAWINFO && question != HIDIOCGRDESCSIZE && question != HIDIOCGRDESC)
        return false;
    std::unique_lock lock(mutex);
    if (const auto hook = askedHook) {
        lock.unlock();
        hook();
        lock.lock();
    }
    // A handle hears what comes after it, and these are asked of a new one.
    unread.clear();
    wire.takeAll();
    answerQuestionLocked(client);
    return true;
}

bool MockDevice::State::takeRead(UMockdevIoctlClient *client)
{
    const std::lock_guard lock(mutex);
    wire.takeByte();
    if (!plugged || unread.empty()) {
        umockdev_ioctl_client_complete(client, -1, plugged ? EAGAIN : EIO);
        return true;
    }
    QByteArray report = unread.front();
    unread.pop_front();
    UMockdevIoctlData *const data = umockdev_ioctl_client_get_arg(client);
    report.truncate(data->data_len);
    umockdev_ioctl_data_update(data, 0, reinterpret_cast<guint8 *>(report.data()), int(report.size()));
    umockdev_ioctl_client_complete(client, report.size(), 0);
    return true;
}

bool MockDevice::State::takeWrite(UMockdevIoctlClient *client)
{
    const UMockdevIoctlData *const data = umockdev_ioctl_client_get_arg(client);
    const QByteArray report(reinterpret_cast<const char *>(data->data), data->data_len);
    Responder answer;
    {
        const std::lock_guard lock(mutex);
        if (!plugged) {
            umockdev_ioctl_client_complete(client, -1, EIO);
            return true;
        }
        if (taking < int(report.size())) {
            umockdev_ioctl_client_complete(client, taking, taking < 0 ? EAGAIN : 0);
            return true;
        }
        written.append(report);
        answer = responder;
    }
    umockdev_ioctl_client_complete(client, report.size(), 0);
    if (!answer)
        return true;
    const QList<QByteArray> answers = answer(report);
    const std::lock_guard lock(mutex);
    for (const QByteArray &reply : answers)
        sendLocked(reply);
    return true;
}

namespace {

/// What a handler of umockdev's refers to: its thread may call one for a device that has just left.
using WeakDevice = std::weak_ptr<MockDevice::State>;

template <bool (MockDevice::State::*take)(UMockdevIoctlClient *)>
gboolean passOn(UMockdevIoctlBase *, UMockdevIoctlClient *client, gpointer weak)
{
    const auto device = static_cast<WeakDevice *>(weak)->lock();
    return device && (device.get()->*take)(client);
}

void deleteWeak(gpointer weak, GClosure *)
{
    delete static_cast<WeakDevice *>(weak);
}

void takeCalls(const std::shared_ptr<MockDevice::State> &device)
{
    const auto connect = [&](const char *signal, auto *handler) {
        g_signal_connect_data(device->calls.get(), signal, G_CALLBACK(handler), new WeakDevice(device),
                              deleteWeak, GConnectFlags(0));
    };
    connect("handle-ioctl", &passOn<&MockDevice::State::takeIoctl>);
    connect("handle-read", &passOn<&MockDevice::State::takeRead>);
    connect("handle-write", &passOn<&MockDevice::State::takeWrite>);
    umockdev_testbed_attach_ioctl(device->bus->testbed.get(), device->deviceFile().constData(),
                                  device->calls.get(), nullptr);
}

/// How long an event waits for a program that does not take those before it.
constexpr int kEventPatienceMs = 10000;

/// Waits until every program that listens for events has room for one more: umockdev ends this program where
/// one has not. A listener's socket lies in the root folder.
void waitForListeners(const QByteArray &root)
{
    QDir folder(QFile::decodeName(root), QStringLiteral("event*"), QDir::Name, QDir::Files | QDir::System);
    const QStringList listeners = folder.entryList();
    for (const QString &name : listeners) {
        sockaddr_un listener{};
        listener.sun_family = AF_UNIX;
        const QByteArray path = root + '/' + QFile::encodeName(name);
        qstrncpy(listener.sun_path, path.constData(), sizeof listener.sun_path);
        const int sender = socket(AF_UNIX, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        pollfd room{sender, POLLOUT, 0};
        if (connect(sender, reinterpret_cast<sockaddr *>(&listener), sizeof listener) == 0)
            poll(&room, 1, kEventPatienceMs);
        ::close(sender);
    }
}

/// Names and values by turns, as umockdev takes them.
using Fields = QByteArrayList;

QVarLengthArray<gchar *> pointers(const Fields &fields)
{
    QVarLengthArray<gchar *> result;
    for (const QByteArray &field : fields)
        result.append(const_cast<gchar *>(field.constData()));
    result.append(nullptr);
    return result;
}

/// The new device's folder in sysfs. Its event is sent.
QByteArray addFolder(const MockBus::State &bus, const char *subsystem, const QByteArray &name,
                     const QByteArray &parent, const Fields &attributes, const Fields &properties)
{
    waitForListeners(bus.root);
    return takeString(umockdev_testbed_add_devicev(bus.testbed.get(), subsystem, name.constData(),
                                                   parent.isEmpty() ? nullptr : parent.constData(),
                                                   pointers(attributes).data(), pointers(properties).data()));
}

QByteArray hex(int number, int digits)
{
    return QByteArray::number(number, 16).toUpper().rightJustified(digits, '0');
}

/// What the kernel shows of a USB HID device, the node last: its event says that all of it is there.
void addToSysfs(MockDevice::State &device)
{
    const MockIdentity identity = device.identity;
    UMockdevTestbed *const testbed = device.bus->testbed.get();
    const QByteArray number = device.node.mid(qstrlen("hidraw"));
    const QByteArray vendor = hex(identity.vendorId, 4);
    const QByteArray product = hex(identity.productId, 4);

    const QByteArray usb
        = addFolder(*device.bus, "usb", "1-" + number, {},
                    {"idVendor", vendor.toLower(), "idProduct", product.toLower(), "bcdDevice", "0100",
                     "manufacturer", "Mock", "product", "Mock device", "serial", number},
                    {"DEVTYPE", "usb_device"});
    const QByteArray usbInterface = addFolder(*device.bus, "usb", "1-" + number + ":1.3", usb,
                                              {"bInterfaceNumber", "03"}, {"DEVTYPE", "usb_interface"});
    const QByteArray id = "0003:" + hex(identity.vendorId, 8) + ':' + hex(identity.productId, 8);
    const QByteArray hid
        = addFolder(*device.bus, "hid", "0003:" + vendor + ':' + product + '.' + number, usbInterface, {},
                    {"HID_ID", id, "HID_NAME", "Mock device", "HID_UNIQ", number});
    QByteArray descriptor = reportDescriptor(identity.reportId);
    if (device.tellsReports)
        umockdev_testbed_set_attribute_binary(testbed, hid.constData(), "report_descriptor",
                                              reinterpret_cast<guint8 *>(descriptor.data()),
                                              int(descriptor.size()));

    const dev_t deviceNumber = device.wire.number();
    const QByteArray majorNumber = QByteArray::number(major(deviceNumber));
    const QByteArray minorNumber = QByteArray::number(minor(deviceNumber));
    const QByteArray node
        = addFolder(*device.bus, "hidraw", device.node, hid, {"dev", majorNumber + ':' + minorNumber},
                    {"DEVNAME", device.node, "MAJOR", majorNumber, "MINOR", minorNumber});
    device.sysfs = {node, hid, usbInterface, usb};
}

} // namespace

MockDevice::MockDevice(std::shared_ptr<State> state)
    : m_state(std::move(state))
{
}

MockDevice::~MockDevice()
{
    unplug();
}

QString MockDevice::path() const
{
    return m_state->path;
}

QByteArray MockDevice::deviceFile() const
{
    return m_state->deviceFile();
}

int MockDevice::openHandles() const
{
    const QByteArray name = m_state->wire.name();
    int handles = -1; // the wire's own
    DIR *const folder = opendir("/proc/self/fd");
    while (const dirent *entry = readdir(folder)) {
        char target[64] = {};
        readlinkat(dirfd(folder), entry->d_name, target, sizeof target - 1);
        if (name == target || name + " (deleted)" == target)
            ++handles;
    }
    closedir(folder);
    return handles;
}

void MockDevice::setResponder(Responder responder)
{
    const std::lock_guard lock(m_state->mutex);
    m_state->responder = std::move(responder);
}

void MockDevice::send(const QByteArray &report)
{
    const std::lock_guard lock(m_state->mutex);
    m_state->sendLocked(report);
}

QList<QByteArray> MockDevice::written() const
{
    const std::lock_guard lock(m_state->mutex);
    return deepCopy(m_state->written);
}

void MockDevice::setAskedHook(std::function<void()> hook)
{
    const std::lock_guard lock(m_state->mutex);
    m_state->askedHook = std::move(hook);
}

void MockDevice::setTellsReports(bool tells)
{
    const std::lock_guard lock(m_state->mutex);
    m_state->tellsReports = tells;
}

void MockDevice::setIdentity(const MockIdentity &identity)
{
    const std::lock_guard lock(m_state->mutex);
    m_state->identity = identity;
}

void MockDevice::setTaking(int bytes)
{
    const std::lock_guard lock(m_state->mutex);
    m_state->taking = bytes;
}

void MockDevice::setReady(bool ready)
{
    const std::lock_guard lock(m_state->mutex);
    m_state->ready = ready;
}

void MockDevice::setPermitted(bool permitted)
{
    m_state->wire.setMode(permitted ? 0600 : 0);
}

void MockDevice::setNodePresent(bool present)
{
    if (!present)
        unlink(m_state->hostFile().constData());
    else if (symlink(m_state->wire.name().constData(), m_state->hostFile().constData()) != 0)
        qFatal("no device file: %s", std::strerror(errno));
}

void MockDevice::hangUp()
{
    // The pseudo terminal's name goes with it; the node stays.
    setNodePresent(false);
    if (symlink("/dev/null", m_state->hostFile().constData()) != 0)
        qFatal("no device file: %s", std::strerror(errno));
    const std::lock_guard lock(m_state->mutex);
    m_state->ready = false;
    m_state->wire.cut();
}

void MockDevice::unplug()
{
    const std::lock_guard busLock(m_state->bus->mutex);
    {
        const std::lock_guard lock(m_state->mutex);
        if (!std::exchange(m_state->plugged, false))
            return;
    }

    UMockdevTestbed *const testbed = m_state->bus->testbed.get();
    setNodePresent(false);
    waitForListeners(m_state->bus->root);
    umockdev_testbed_uevent(testbed, m_state->sysfs.first().constData(), "remove");
    m_state->wire.cut();
    // Calls are taken on: umockdev aborts a program that was about to make one.
    for (const QByteArray &folder : std::as_const(m_state->sysfs))
        umockdev_testbed_remove_device(testbed, folder.constData());
}

MockBus::MockBus()
    : m_state(std::make_shared<State>())
{
    // Never empty: umockdev removes it with the last node, and we could not put the next one there.
    if (!QDir().mkpath(QFile::decodeName(m_state->root) + QStringLiteral("/dev/kept")))
        qFatal("no folder for the device files");
}

MockBus::~MockBus() = default;

QString MockBus::obstacle()
{
    return Wire().works() ? QString() : QStringLiteral("this system gives out no pseudo terminals");
}

bool MockBus::isShown() const
{
    return umockdev_in_mock_environment();
}

std::unique_ptr<MockDevice> MockBus::plug(const MockIdentity &identity,
                                          const std::function<void(MockDevice &)> &prepare)
{
    const std::lock_guard lock(m_state->mutex);
    auto device = std::make_shared<MockDevice::State>(m_state, identity);
    device->path = QStringLiteral(R"(\\?\hid#vid_%1&pid_%2#%3#{4d1e55b2-f16f-11cf-88cb-001111000030})")
                       .arg(identity.vendorId, 4, 16, QLatin1Char('0'))
                       .arg(identity.productId, 4, 16, QLatin1Char('0'))
                       .arg(QLatin1String(device->node));
    auto plugged = std::make_unique<MockDevice>(device);
    plugged->setNodePresent(true);
    if (prepare)
        prepare(*plugged);
    takeCalls(device);
    addToSysfs(*device);
    return plugged;
}
