// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/FirmwareImage.h"
#include "rig/SimulatedDevice.h"
#include "tests/support/TestProgram.h"

#include <QSet>
#include <QTest>

using namespace rig;

namespace {

constexpr int kPatience = 60000; // of the sped-up clock

QList<int> productIds(const SimulatedDevice &device)
{
    QList<int> ids;
    for (const BusInterface &face : device.interfaces())
        ids.append(face.productId);
    return ids;
}

// What a flashing tool does once the chip is in its boot loader.
bool flashImage(SimulatedDevice &device, Chip chip, const QByteArray &image)
{
    const int half = int(image.size()) / 2;
    return device.erase(chip) && device.write(chip, 0, image.first(half))
        && device.write(chip, half, image.sliced(half)) && device.restart(chip);
}

} // namespace

class RigDeviceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void aChipShowsItsIdentity_data();
    void aChipShowsItsIdentity();
    void pluggingInTakesAMoment();
    void pullingTheCableIsImmediate();
    void pluggingTwiceIsPluggingOnce();
    void bothChipsRunWhenTheFirstIsFound_data();
    void bothChipsRunWhenTheFirstIsFound();
    void aSecondCableLeavesARunningChipAlone();
    void theFirstCableStartsTheChipBehindTheOtherPortToo();
    void aCableThatLeavesAtOnceWasNeverThere();
    void aNewPlugIsANewPath();
    void onlyTheLastInterfacesAreRemembered();
    void theOtherModelIsAnotherDevice();
    void settingAVersionTakesEffectWithoutLeavingTheBus();
    void aBrickedChipIsOnlyInItsBootLoader();
    void flashingGoesThroughTheBootLoader_data();
    void flashingGoesThroughTheBootLoader();
    void anUnusableImageLeavesABrick_data();
    void anUnusableImageLeavesABrick();
    void aBrickedChipIsRecoveredByAnIntactImage();
    void aReplugBringsAnUntouchedChipBackFromItsBootLoader();
    void aReplugDoesNotHealAHalfWrittenChip();
    void whatIsNotInItsBootLoaderCannotBeFlashed_data();
    void whatIsNotInItsBootLoaderCannotBeFlashed();
    void theFlashHasAnEnd();
    void aFlashedChipThatNeverReturnsWaitsForItsReplug();
    void aFlashedChipMayReturnLate();
    void damageOnTheWayIsInTheFlash();

private:
    void plugAndWait(Chip port);
    void enterBootLoader(Chip chip);

    std::unique_ptr<Journal> m_journal;
    std::unique_ptr<FaultBoard> m_faults;
    std::unique_ptr<RigThread> m_thread;
    std::unique_ptr<SimulatedDevice> m_device;
    std::unique_ptr<QObject> m_recorder; // what is still queued for it goes with it
    QList<int> m_appeared; // product IDs, in order
    QList<int> m_left;
};

void RigDeviceTest::init()
{
    m_journal = std::make_unique<Journal>();
    m_faults = std::make_unique<FaultBoard>();
    m_thread = std::make_unique<RigThread>();
    m_device = std::make_unique<SimulatedDevice>(*m_thread, *m_faults, *m_journal);
    m_appeared.clear();
    m_left.clear();
    m_recorder = std::make_unique<QObject>();
    connect(m_device.get(), &SimulatedDevice::interfaceAppeared, m_recorder.get(),
            [this](Chip, int productId) { m_appeared.append(productId); });
    connect(m_device.get(), &SimulatedDevice::interfaceLeft, m_recorder.get(),
            [this](Chip, int productId) { m_left.append(productId); });
}

void RigDeviceTest::cleanup()
{
    m_recorder.reset();
    m_device.reset();
    m_thread.reset();
}

void RigDeviceTest::plugAndWait(Chip port)
{
    const qsizetype before = m_appeared.size();
    m_device->plug(port);
    QTRY_COMPARE_WITH_TIMEOUT(m_appeared.size(), before + 1, kPatience);
}

void RigDeviceTest::enterBootLoader(Chip chip)
{
    const qsizetype before = m_appeared.size();
    QVERIFY(m_device->enterBootLoader(chip));
    QTRY_COMPARE_WITH_TIMEOUT(m_appeared.size(), before + 1, kPatience);
    QCOMPARE(m_device->state(chip), ChipState::BootLoader);
}

void RigDeviceTest::aChipShowsItsIdentity_data()
{
    QTest::addColumn<Model>("model");
    QTest::addColumn<Chip>("chip");
    QTest::addColumn<int>("normal");
    QTest::addColumn<int>("bootLoader");
    QTest::newRow("R1 PC") << Model::R1 << Chip::Pc << 0x0001 << 0x0010;
    QTest::newRow("R1 OTG, one ID for both") << Model::R1 << Chip::Otg << 0x0012 << 0x0012;
    QTest::newRow("R2 PC") << Model::R2 << Chip::Pc << 0x000E << 0x00FF;
    QTest::newRow("R2 OTG") << Model::R2 << Chip::Otg << 0x001F << 0x0065;
}

void RigDeviceTest::aChipShowsItsIdentity()
{
    QFETCH(Model, model);
    QFETCH(Chip, chip);
    QFETCH(int, normal);
    QFETCH(int, bootLoader);
    m_device->setModel(model);
    plugAndWait(chip);
    QCOMPARE(productIds(*m_device), QList{normal});
    QVERIFY(m_device->interfaces().first().path.contains(
        QStringLiteral("vid_352f&pid_%1").arg(normal, 4, 16, QLatin1Char('0'))));
    enterBootLoader(chip);
    QCOMPARE(productIds(*m_device), QList{bootLoader});
}

void RigDeviceTest::pluggingInTakesAMoment()
{
    m_device->plug(Chip::Otg);
    QVERIFY(m_device->isPlugged(Chip::Otg));
    QVERIFY(m_device->interfaces().isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(m_appeared, QList{0x001F}, kPatience);
}

void RigDeviceTest::pullingTheCableIsImmediate()
{
    plugAndWait(Chip::Pc);
    m_device->unplug(Chip::Pc);
    QVERIFY(m_device->interfaces().isEmpty());
    QCOMPARE(m_left, QList{0x000E});
    QVERIFY(!m_device->isPlugged(Chip::Pc));
}

void RigDeviceTest::pluggingTwiceIsPluggingOnce()
{
    plugAndWait(Chip::Pc);
    const QString path = m_device->interfaces().first().path;
    m_device->plug(Chip::Pc);
    QCOMPARE(m_device->state(Chip::Pc), ChipState::Running);
    QCOMPARE(m_device->interfaces().first().path, path);
}

// A host that has found the device reads both versions at once.
void RigDeviceTest::bothChipsRunWhenTheFirstIsFound_data()
{
    QTest::addColumn<QList<Chip>>("cables");
    QTest::newRow("one cable") << QList{Chip::Pc};
    QTest::newRow("both cables") << QList{Chip::Pc, Chip::Otg};
    QTest::newRow("both cables, the other first") << QList{Chip::Otg, Chip::Pc};
}

void RigDeviceTest::bothChipsRunWhenTheFirstIsFound()
{
    int dead = 0;
    connect(
        m_device.get(), &SimulatedDevice::interfaceAppeared, m_device.get(),
        [&] {
            dead += int(m_device->state(Chip::Pc) != ChipState::Running)
                + int(m_device->state(Chip::Otg) != ChipState::Running);
        },
        Qt::DirectConnection);
    QFETCH(QList<Chip>, cables);
    for (const Chip port : cables)
        m_device->plug(port);
    QTRY_COMPARE_WITH_TIMEOUT(m_appeared.size(), cables.size(), kPatience);
    QCOMPARE(dead, 0);
}

void RigDeviceTest::aSecondCableLeavesARunningChipAlone()
{
    plugAndWait(Chip::Pc);
    m_device->plug(Chip::Otg);
    QCOMPARE(m_device->state(Chip::Otg), ChipState::Running);
    QTRY_COMPARE_WITH_TIMEOUT(m_appeared, (QList{0x000E, 0x001F}), kPatience);
}

void RigDeviceTest::theFirstCableStartsTheChipBehindTheOtherPortToo()
{
    plugAndWait(Chip::Otg);
    enterBootLoader(Chip::Otg);
    m_device->unplug(Chip::Otg);
    plugAndWait(Chip::Pc);
    QCOMPARE(m_device->state(Chip::Otg), ChipState::Running);
}

void RigDeviceTest::aCableThatLeavesAtOnceWasNeverThere()
{
    m_device->plug(Chip::Pc);
    m_device->unplug(Chip::Pc);
    plugAndWait(Chip::Otg);
    QCOMPARE(m_appeared, QList{0x001F});
    QCOMPARE(productIds(*m_device), QList{0x001F});
}

void RigDeviceTest::aNewPlugIsANewPath()
{
    plugAndWait(Chip::Pc);
    const QString path = m_device->interfaces().first().path;
    m_device->unplug(Chip::Pc);
    plugAndWait(Chip::Pc);
    QVERIFY(m_device->interfaces().first().path != path);
    QVERIFY(!m_device->isOnBus(path));
}

// A device that is plugged all day is not to grow, but it never shows a path again.
void RigDeviceTest::onlyTheLastInterfacesAreRemembered()
{
    constexpr int kPlugs = 110;
    QSet<QString> paths;
    for (int plug = 0; plug < kPlugs; ++plug) {
        plugAndWait(Chip::Pc);
        paths.insert(m_device->interfaces().first().path);
        m_device->unplug(Chip::Pc);
    }
    QCOMPARE(paths.size(), kPlugs);
    QCOMPARE(m_device->appearances().size(), 100);
    QVERIFY(paths.contains(m_device->appearances().last().path));
}

void RigDeviceTest::theOtherModelIsAnotherDevice()
{
    m_device->setVersion(Chip::Pc, QVersionNumber(1, 5, 0));
    plugAndWait(Chip::Pc);
    m_device->setModel(Model::R1);
    QVERIFY(m_device->interfaces().isEmpty());
    QVERIFY(!m_device->isPlugged(Chip::Pc));
    QCOMPARE(m_device->runningVersion(Chip::Pc), QVersionNumber(1, 1, 1));
    plugAndWait(Chip::Pc);
    QCOMPARE(productIds(*m_device), QList{0x0001});
}

void RigDeviceTest::settingAVersionTakesEffectWithoutLeavingTheBus()
{
    plugAndWait(Chip::Pc);
    m_device->setVersion(Chip::Otg, QVersionNumber(2, 0, 1));
    m_device->setVersion(Chip::Pc, QVersionNumber(3, 0, 1));
    QVERIFY(m_left.isEmpty());
    QCOMPARE(m_device->runningVersion(Chip::Otg), QVersionNumber(2, 0, 1));
    QCOMPARE(m_device->runningVersion(Chip::Pc), QVersionNumber(3, 0, 1));
    QCOMPARE(m_device->flash(Chip::Pc), buildImage({Model::R2, Chip::Pc, QVersionNumber(3, 0, 1)}));
}

void RigDeviceTest::aBrickedChipIsOnlyInItsBootLoader()
{
    m_device->brick(Chip::Pc);
    QVERIFY(m_device->runningVersion(Chip::Pc).isNull());
    plugAndWait(Chip::Pc);
    QCOMPARE(productIds(*m_device), QList{0x00FF});
    m_device->unplug(Chip::Pc);
    plugAndWait(Chip::Pc);
    QCOMPARE(productIds(*m_device), QList{0x00FF});
}

void RigDeviceTest::flashingGoesThroughTheBootLoader_data()
{
    QTest::addColumn<Model>("model");
    QTest::addColumn<Chip>("chip");
    for (const ChipIdentity &identity : allIdentities())
        QTest::newRow(identity.project) << identity.model << identity.chip;
}

void RigDeviceTest::flashingGoesThroughTheBootLoader()
{
    QFETCH(Model, model);
    QFETCH(Chip, chip);
    m_device->setModel(model);
    plugAndWait(chip);
    enterBootLoader(chip);
    const QByteArray image = buildImage({model, chip, QVersionNumber(1, 9, 0)});
    QVERIFY(flashImage(*m_device, chip, image));
    QVERIFY(m_device->interfaces().isEmpty());
    QCOMPARE(m_device->state(chip), ChipState::Restarting);
    QTRY_COMPARE_WITH_TIMEOUT(m_device->state(chip), ChipState::Running, kPatience);
    QCOMPARE(m_device->runningVersion(chip), QVersionNumber(1, 9, 0));
    QCOMPARE(m_device->flash(chip), image);

    const ChipIdentity &identity = identityOf(model, chip);
    QTRY_COMPARE_WITH_TIMEOUT(
        m_appeared, (QList{identity.normalPid, identity.bootLoaderPid, identity.normalPid}), kPatience);
    QCOMPARE(m_left, (QList{identity.normalPid, identity.bootLoaderPid}));
}

void RigDeviceTest::anUnusableImageLeavesABrick_data()
{
    QTest::addColumn<QByteArray>("image");
    const QByteArray good = buildImage({Model::R2, Chip::Pc, QVersionNumber(1, 9, 0)});
    QByteArray damaged = good;
    damaged[5000] = char(damaged.at(5000) ^ 4);
    QTest::newRow("short") << good.chopped(10);
    QTest::newRow("damaged") << damaged;
    QTest::newRow("the other chip's") << buildImage({Model::R2, Chip::Otg, QVersionNumber(1, 9, 0)});
    QTest::newRow("the other model's") << buildImage({Model::R1, Chip::Pc, QVersionNumber(1, 9, 0)});
    QTest::newRow("an error page") << QByteArray("<html><body>404 Not Found</body></html>");
}

void RigDeviceTest::anUnusableImageLeavesABrick()
{
    plugAndWait(Chip::Pc);
    enterBootLoader(Chip::Pc);
    QFETCH(QByteArray, image);
    QVERIFY(flashImage(*m_device, Chip::Pc, image));
    QTRY_COMPARE_WITH_TIMEOUT(productIds(*m_device), QList{0x00FF}, kPatience);
    QCOMPARE(m_device->state(Chip::Pc), ChipState::BootLoader);
    QCOMPARE(m_device->flash(Chip::Pc), image);
}

void RigDeviceTest::aBrickedChipIsRecoveredByAnIntactImage()
{
    m_device->brick(Chip::Otg);
    plugAndWait(Chip::Otg);
    QVERIFY(flashImage(*m_device, Chip::Otg, buildImage({Model::R2, Chip::Otg, QVersionNumber(1, 9, 0)})));
    QTRY_COMPARE_WITH_TIMEOUT(productIds(*m_device), QList{0x001F}, kPatience);
}

void RigDeviceTest::aReplugBringsAnUntouchedChipBackFromItsBootLoader()
{
    plugAndWait(Chip::Pc);
    enterBootLoader(Chip::Pc);
    m_device->unplug(Chip::Pc);
    plugAndWait(Chip::Pc);
    QCOMPARE(productIds(*m_device), QList{0x000E});
}

void RigDeviceTest::aReplugDoesNotHealAHalfWrittenChip()
{
    plugAndWait(Chip::Pc);
    enterBootLoader(Chip::Pc);
    QVERIFY(m_device->erase(Chip::Pc));
    QVERIFY(m_device->write(Chip::Pc, 0, m_device->flash(Chip::Pc) + QByteArray(100, 'x')));
    m_device->unplug(Chip::Pc);
    plugAndWait(Chip::Pc);
    QCOMPARE(productIds(*m_device), QList{0x00FF});
}

void RigDeviceTest::whatIsNotInItsBootLoaderCannotBeFlashed_data()
{
    QTest::addColumn<bool>("plugged");
    QTest::newRow("running") << true;
    QTest::newRow("not on the bus") << false;
}

void RigDeviceTest::whatIsNotInItsBootLoaderCannotBeFlashed()
{
    QFETCH(bool, plugged);
    if (plugged)
        plugAndWait(Chip::Pc);
    else
        QVERIFY(!m_device->enterBootLoader(Chip::Pc));
    const QByteArray before = m_device->flash(Chip::Pc);
    QVERIFY(!m_device->erase(Chip::Pc));
    QVERIFY(!m_device->write(Chip::Pc, 0, "x"));
    QVERIFY(!m_device->restart(Chip::Pc));
    QCOMPARE(m_device->flash(Chip::Pc), before);
}

void RigDeviceTest::theFlashHasAnEnd()
{
    m_device->brick(Chip::Pc);
    plugAndWait(Chip::Pc);
    constexpr int size = 512 * 1024;
    QVERIFY(m_device->write(Chip::Pc, size - 4, "last"));
    QVERIFY(!m_device->write(Chip::Pc, size - 3, "last"));
    QVERIFY(!m_device->write(Chip::Pc, -1, "x"));
    QVERIFY(!m_device->write(Chip::Pc, std::numeric_limits<int>::max(), "x"));
    QCOMPARE(m_device->flash(Chip::Pc).size(), size);
    QCOMPARE(m_device->flash(Chip::Pc).first(4), QByteArray(4, char(0xFF)));
}

void RigDeviceTest::aFlashedChipThatNeverReturnsWaitsForItsReplug()
{
    m_faults->arm(Fault::DeviceNeverReturns, {Chip::Pc, {}, 1});
    m_device->brick(Chip::Pc);
    plugAndWait(Chip::Pc);
    plugAndWait(Chip::Otg);
    QVERIFY(flashImage(*m_device, Chip::Pc, buildImage({Model::R2, Chip::Pc, QVersionNumber(1, 9, 0)})));
    // Longer than any restart takes: the other chip's is seen to end.
    m_device->brick(Chip::Otg);
    QVERIFY(flashImage(*m_device, Chip::Otg, buildImage({Model::R2, Chip::Otg, QVersionNumber(1, 9, 0)})));
    QTRY_COMPARE_WITH_TIMEOUT(m_appeared, (QList{0x00FF, 0x001F, 0x0065, 0x001F}), kPatience);
    QCOMPARE(productIds(*m_device), QList{0x001F});
    QCOMPARE(m_device->state(Chip::Pc), ChipState::Restarting);
    m_device->unplug(Chip::Pc);
    plugAndWait(Chip::Pc);
    QCOMPARE(m_device->runningVersion(Chip::Pc), QVersionNumber(1, 9, 0));
}

void RigDeviceTest::aFlashedChipMayReturnLate()
{
    m_faults->arm(Fault::DeviceReturnsLate);
    m_device->brick(Chip::Pc);
    plugAndWait(Chip::Pc);
    const auto before = m_journal->now();
    QVERIFY(flashImage(*m_device, Chip::Pc, buildImage({Model::R2, Chip::Pc, QVersionNumber(1, 9, 0)})));
    QTRY_COMPARE_WITH_TIMEOUT(productIds(*m_device), QList{0x000E}, kPatience);
    QVERIFY(m_device->interfaces().first().since - before >= std::chrono::seconds(12));
}

void RigDeviceTest::damageOnTheWayIsInTheFlash()
{
    m_faults->arm(Fault::DeviceDamagedTransfer, {Chip::Pc, {}, 1});
    m_device->brick(Chip::Pc);
    plugAndWait(Chip::Pc);
    QVERIFY(m_device->write(Chip::Pc, 0, "abcd"));
    QVERIFY(m_device->write(Chip::Pc, 4, "efgh"));
    QCOMPARE(m_device->flash(Chip::Pc), QByteArray("qbcdefgh"));
}

QUILLON_TEST_CORE(RigDeviceTest)
#include "tst_rig_device.moc"
