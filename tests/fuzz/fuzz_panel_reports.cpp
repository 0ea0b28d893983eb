// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Hostile reports: a real panel takes whatever a device, or somebody in its place, sends. The first byte of
// an input says in which state the panel is and what the server answers; then come reports, each behind a
// byte with its length.
#include "net/networking_class.h"
#include "panel/FirmwareUpgradeWidget.h"
#include "probe/trace/ReplayTransport.h"
#include "tests/fuzz/InstantServer.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QApplication>
#include <QMessageBox>
#include <QTemporaryDir>

#ifdef QUILLON_LOOKS_FOR_LEAKS
#include <sanitizer/lsan_interface.h>
#endif

#include <cstdint>
#include <cstdlib>
#include <utility>

using namespace QuillonFirmwareUpgrade;

namespace {

constexpr quint8 kAfterUpgrade = 0x80;
constexpr quint8 kUpgrading = 0x40;
constexpr quint8 kR1 = 0x20;
/// In a length byte: the report comes while the panel is busy with an earlier one.
constexpr quint8 kQueued = 0x80;

const QByteArray kServerAnswers[] = {
    QByteArrayLiteral("no JSON"),
    QByteArrayLiteral(R"([{"f_ver":"1.2.3","f_remark":"a","f_remark_en":"b"}])"),
    QByteArrayLiteral(R"([{"f_ver":"9.0.0"}])"),
    QByteArrayLiteral(R"([{}])"),
};

/// The user answers every box at once.
class BoxCloser : public QObject {
public:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Show && qobject_cast<QMessageBox *>(watched))
            QMetaObject::invokeMethod(watched, "accept", Qt::QueuedConnection);
        return false;
    }
};

/// What lives as long as the process: an application without a display, a bus without devices, one panel.
class Stage {
public:
    Stage()
        : m_application(m_argc, m_argv)
    {
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
        QApplication::setQuitOnLastWindowClosed(false);
        m_application.installEventFilter(&m_boxCloser);
        HIDCommunicator::installTransport(probe::replay({}).transport);
        delete std::exchange(networking_class::getInstance()->manager, &m_server);
        m_panel = new FirmwareUpgradeWidget;
        // No scans in between, so that the same input does the same thing each time.
        QObject::disconnect(HIDCommunicator::OrvikHIDManager::instance(), nullptr, m_panel, nullptr);
#ifdef QUILLON_LOOKS_FOR_LEAKS
        // While the stage still stands: once Qt has begun to take itself down, what it keeps for the process
        // would look lost.
        std::atexit(__lsan_do_leak_check);
#endif
    }

    void play(const QByteArray &input)
    {
        const auto state = quint8(input.at(0));
        reset(state);
        m_server.setAnswer(kServerAnswers[state % std::size(kServerAnswers)]);
        for (qsizetype at = 1; at < input.size();) {
            const auto head = quint8(input.at(at));
            const QByteArray report = input.mid(at + 1, head & ~kQueued);
            QMetaObject::invokeMethod(m_panel, "onReceiveHIDdata",
                                      head & kQueued ? Qt::QueuedConnection : Qt::DirectConnection,
                                      Q_ARG(QByteArray, report));
            at += 1 + report.size();
        }
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

private:
    void reset(quint8 state)
    {
        m_panel->m_deviceModel = state & kR1 ? DeviceModel::R1 : DeviceModel::R2;
        m_panel->m_postUpgradeWaiting = state & kAfterUpgrade;
        m_panel->m_isUpgrading = state & kUpgrading;
        m_panel->m_zeroVersionCount = 0;
        m_panel->m_upgradePlan = UpgradePlan::None;
        for (QString *version : {&m_panel->m_devicePcVersion, &m_panel->m_deviceOtgVersion,
                                 &m_panel->m_remotePcVersion, &m_panel->m_remoteOtgVersion})
            version->clear();
    }

    int m_argc = 1;
    char m_name[6] = "panel";
    char *m_argv[2] = {m_name, nullptr};
    QApplication m_application;
    BoxCloser m_boxCloser;
    InstantServer m_server;
    FirmwareUpgradeWidget *m_panel = nullptr; // never deleted: the process just ends
};

/// Nothing that a panel writes may reach the real home.
void moveHome()
{
    static const QTemporaryDir folder;
    for (const char *variable : {"HOME", "ALLUSERSPROFILE"})
        qputenv(variable, folder.path().toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "offscreen");
}

} // namespace

// Fonts that were loaded stay, and are not the panel's.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizer looks for this name.
extern "C" Q_DECL_EXPORT const char *__lsan_default_suppressions()
{
    return "leak:libfontconfig";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const bool moved = (moveHome(), true);
    static auto *const stage = new Stage;
    Q_UNUSED(moved)
    if (size > 0)
        stage->play(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)));
    return 0;
}
