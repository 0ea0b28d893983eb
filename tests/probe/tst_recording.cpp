// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What a tapped bus tells, and that a recording plays as what was recorded: here the simulated device.
#include "probe/Link.h"
#include "probe/trace/ReplayTransport.h"
#include "probe/trace/TraceRecorder.h"
#include "rig/SimulatedBus.h"
#include "rig/SimulatedDevice.h"
#include "tests/support/TestProgram.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace probe;
using namespace std::chrono_literals;
using Kind = TraceEvent::Kind;

namespace {

constexpr quint16 kMode = 0x1008;
constexpr quint16 kPcVersion = 0x000B;
constexpr quint16 kOtgVersion = 0x0010;
constexpr quint16 kScratch = 0x0200;
constexpr int kManyRegisters = 60; // more than fit into one reply

/// The HID library takes one bus for the whole process: the simulated device, recorded.
struct Recorded {
    rig::Journal journal;
    rig::FaultBoard faults;
    rig::RigThread thread;
    rig::SimulatedDevice device{thread, faults, journal};
    QTemporaryDir folder;
    QString file = folder.filePath(QStringLiteral("simulated.trace"));
    std::shared_ptr<TraceRecorder> recorder = std::make_shared<TraceRecorder>();
    std::atomic<bool> denied{false};

    void install()
    {
        QString error;
        QVERIFY2(recorder->begin(file, &error), qPrintable(error));
        Bus bus{rig::makeSimulatedBus(device), [this](const QString &) { return bool(denied); }};
        bus = tap(std::move(bus), [this](const TraceEvent &event) { recorder->take(event); });
        QVERIFY(HIDCommunicator::installTransport(std::move(bus.transport)));
    }
};

QList<Kind> kindsOf(const Trace &trace)
{
    QList<Kind> kinds;
    for (const TraceEvent &event : trace.events)
        kinds.append(event.kind);
    return kinds;
}

} // namespace

class RecordingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void theDeviceIsReadAndRecorded();
    void theRecordingPlaysTheSameDevice();
    void aRefusalIsRecordedWithItsReason();
    void aFileThatCannotBeWritten();
    void aTraceEndsBeforeItIsTooLarge();

private:
    Trace recorded() const;

    Recorded m_recorded;
};

void RecordingTest::initTestCase()
{
    m_recorded.install();
}

Trace RecordingTest::recorded() const
{
    QString error;
    const auto trace = Trace::load(m_recorded.file, &error);
    if (!trace)
        qFatal("%s", qPrintable(error));
    return *trace;
}

void RecordingTest::theDeviceIsReadAndRecorded()
{
    m_recorded.device.setVersion(rig::Chip::Otg, QVersionNumber(1, 4, 2));
    m_recorded.device.plug(rig::Chip::Pc);
    QTRY_COMPARE(m_recorded.device.interfaces().size(), 1);
    Link link([](const QString &) { return false; });
    QCOMPARE(link.open(), Link::Reach::Open);
    QCOMPARE(link.device().productId, 0x000E);
    QCOMPARE(link.read(kMode, 1), QList<quint16>({0}));
    QCOMPARE(link.read(kPcVersion, 3), QList<quint16>({1, 1, 1}));
    QTRY_COMPARE(link.read(kOtgVersion, 3), QList<quint16>({1, 4, 2}));
    QCOMPARE(link.read(kScratch, kManyRegisters), QList<quint16>(kManyRegisters, 0));

    m_recorded.device.unplug(rig::Chip::Pc);
    QTRY_COMPARE(kindsOf(recorded()).last(), Kind::Unplug);
    QCOMPARE(link.read(kMode, 1), std::nullopt);
    QCOMPARE(link.open(), Link::Reach::NoDevice);
}

void RecordingTest::theRecordingPlaysTheSameDevice()
{
    const Trace trace = recorded();
    QCOMPARE(kindsOf(trace).mid(0, 4), QList<Kind>({Kind::Plug, Kind::Open, Kind::Out, Kind::In}));
    const Bus bus = replay(trace);
    const auto devices = bus.transport->enumerate(0x352F).value();
    QCOMPARE(devices.size(), 1);
    QCOMPARE(devices.first().productId, 0x000E);
    const auto connection = bus.transport->open(devices.first().path);
    QVERIFY(connection);
    int asked = 0;
    for (qsizetype i = 0; i + 1 < trace.events.size(); ++i) {
        // On a busy machine a question may have been asked twice before its answer came.
        if (trace.events.at(i).kind != Kind::Out || trace.events.at(i + 1).kind != Kind::In)
            continue;
        QVERIFY(connection->write(trace.events.at(i).report));
        QByteArray answer;
        QCOMPARE(connection->read(answer, 20s), HIDCommunicator::HidConnection::ReadResult::Report);
        QCOMPARE(answer, trace.events.at(i + 1).report);
        ++asked;
    }
    QVERIFY2(asked >= 6, qPrintable(QString::number(asked))); // the long read takes three
}

void RecordingTest::aRefusalIsRecordedWithItsReason()
{
    m_recorded.faults.arm(rig::Fault::DeviceRefusesOpen);
    m_recorded.device.plug(rig::Chip::Pc);
    QTRY_COMPARE(m_recorded.device.interfaces().size(), 1);
    {
        Link link([](const QString &) { return false; });
        QCOMPARE(link.open(), Link::Reach::Refused);
        QCOMPARE(kindsOf(recorded()).last(), Kind::Refused);
    }
    m_recorded.denied = true;
    Link link([](const QString &) { return true; });
    QCOMPARE(link.open(), Link::Reach::Denied);
    QCOMPARE(kindsOf(recorded()).last(), Kind::Denied);
}

void RecordingTest::aFileThatCannotBeWritten()
{
    TraceRecorder recorder;
    QString error;
    QVERIFY(!recorder.begin(u"/nowhere/x.trace"_s, &error));
    QVERIFY2(error.startsWith(u"/nowhere/x.trace: "_s), qPrintable(error));
}

void RecordingTest::aTraceEndsBeforeItIsTooLarge()
{
    TraceRecorder recorder;
    const QString file = m_recorded.folder.filePath(u"long.trace"_s);
    QString error;
    QVERIFY(recorder.begin(file, &error));
    recorder.take({0ms, Kind::Plug, 1, 0x352F, 0x000E, {}});
    QByteArray report(Trace::kLongestReport, '\x51');
    for (qsizetype i = 1; i < report.size(); i += 2)
        report[i] = '\0';
    for (int i = 0; i < 2000 && recorder.isWhole(); ++i)
        recorder.take({0ms, Kind::In, 1, 0, 0, report});
    QVERIFY(!recorder.isWhole());
    QVERIFY(QFileInfo(file).size() > Trace::kLargestFile - Trace::kLongestLine);
    QVERIFY2(Trace::load(file, &error), qPrintable(error));
}

QUILLON_TEST_CORE(RecordingTest)
#include "tst_recording.moc"
