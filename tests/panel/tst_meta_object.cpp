// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// The class as a host and Qt's meta-object system see it: bases, enumerations, who may call what, methods and
// their order.
#include "panel/FirmwareUpgradeWidget.h"
#include "tests/support/TestProgram.h"

#include <QMetaMethod>
#include <QTest>

#include <type_traits>

using namespace QuillonFirmwareUpgrade;
using Panel = FirmwareUpgradeWidget;

namespace {

static_assert(std::is_base_of_v<QWidget, Panel> && std::is_convertible_v<Panel *, QWidget *>);
static_assert(std::is_default_constructible_v<Panel>);
static_assert(std::is_constructible_v<Panel, QWidget *>);
static_assert(std::has_virtual_destructor_v<Panel>);
static_assert(!std::is_copy_constructible_v<Panel>);

static_assert(std::is_same_v<std::underlying_type_t<DeviceModel>, int>);
static_assert(int(DeviceModel::R1) == 0 && int(DeviceModel::R2) == 1);
static_assert(std::is_same_v<std::underlying_type_t<UpgradePlan>, int>);
static_assert(int(UpgradePlan::None) == 0 && int(UpgradePlan::PcOnly) == 1);
static_assert(int(UpgradePlan::OtgOnly) == 2 && int(UpgradePlan::Both) == 3);

static_assert(std::is_same_v<decltype(&Panel::setDeviceModel), void (Panel::*)(DeviceModel)>);
static_assert(std::is_same_v<decltype(&Panel::startAutoRecoverUpgrade), void (Panel::*)()>);
static_assert(std::is_same_v<decltype(&Panel::upgradeDisplayMsg), void (Panel::*)(QString, bool)>);
static_assert(std::is_same_v<decltype(&Panel::onDeviceBrickedDetected), void (Panel::*)()>);
static_assert(std::is_same_v<decltype(&Panel::r2otgConnected), void (Panel::*)()>);

// Whether the expression compiles for an outsider, and inside a class derived from the panel.
#define QUILLON_WHO_MAY_USE(member)                                                                          \
    template <typename T> auto anybodyMayUse_##member(int)->decltype(&T::member, std::true_type{});          \
    template <typename T> std::false_type anybodyMayUse_##member(...);                                       \
    struct Derived_##member : Panel {                                                                        \
        template <typename T> static auto mayUse(int) -> decltype(&T::member, std::true_type{});             \
        template <typename T> static std::false_type mayUse(...);                                            \
        static constexpr bool value() { return decltype(mayUse<Derived_##member>(0))::value; }               \
    };
#define QUILLON_IS_PUBLIC(member) decltype(anybodyMayUse_##member<Panel>(0))::value
#define QUILLON_IS_PROTECTED(member) (!QUILLON_IS_PUBLIC(member) && Derived_##member::value())
#define QUILLON_IS_PRIVATE(member) (!QUILLON_IS_PUBLIC(member) && !Derived_##member::value())

QUILLON_WHO_MAY_USE(startAutoRecoverUpgrade)
QUILLON_WHO_MAY_USE(eventFilter)
QUILLON_WHO_MAY_USE(mousePressEvent)
QUILLON_WHO_MAY_USE(mouseReleaseEvent)
QUILLON_WHO_MAY_USE(mouseMoveEvent)
QUILLON_WHO_MAY_USE(changeEvent)
QUILLON_WHO_MAY_USE(compareVersion)
QUILLON_WHO_MAY_USE(decideUpgradePlan)
QUILLON_WHO_MAY_USE(ConnectingR2)
QUILLON_WHO_MAY_USE(m_isUpgrading)

static_assert(QUILLON_IS_PUBLIC(startAutoRecoverUpgrade));
static_assert(QUILLON_IS_PROTECTED(eventFilter));
static_assert(QUILLON_IS_PROTECTED(mousePressEvent));
static_assert(QUILLON_IS_PROTECTED(mouseReleaseEvent));
static_assert(QUILLON_IS_PROTECTED(mouseMoveEvent));
static_assert(QUILLON_IS_PROTECTED(changeEvent));
static_assert(QUILLON_IS_PRIVATE(compareVersion));
static_assert(QUILLON_IS_PRIVATE(decideUpgradePlan));
static_assert(QUILLON_IS_PRIVATE(ConnectingR2));
static_assert(QUILLON_IS_PRIVATE(m_isUpgrading));

const QMetaObject &meta = Panel::staticMetaObject;

QMetaMethod ownMethod(int index)
{
    return meta.method(meta.methodOffset() + index);
}

} // namespace

class MetaObjectTest : public QObject {
    Q_OBJECT

private slots:
    void classAndBase();
    void methods_data();
    void methods();
    void thereAreNoFurtherMethods();
    void argumentTypesAreRegistered_data();
    void argumentTypesAreRegistered();
};

void MetaObjectTest::classAndBase()
{
    QCOMPARE(QByteArray(meta.className()), QByteArray("QuillonFirmwareUpgrade::FirmwareUpgradeWidget"));
    QCOMPARE(meta.superClass(), &QWidget::staticMetaObject);
}

void MetaObjectTest::methods_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QByteArray>("signature");
    QTest::addColumn<QByteArrayList>("names");
    const auto row = [](int index, const QByteArray &signature, const QByteArrayList &names = {}) {
        QTest::addRow("%d %s", index, signature.constData()) << index << signature << names;
    };
    row(0, "upgradeDisplayMsg(QString,bool)", {"disPlayVer", "isUpgradeNeeded"});
    row(1, "onDeviceBrickedDetected()");
    row(2, "r2otgConnected()");
    row(3, "ConnectingR2(QStringList,QList<int>)", {"devices", "pidList"});
    row(4, "onHidConnetChanged(int)", {"remove"});
    row(5, "onReceiveHIDdata(QByteArray)", {"receiveData"});
    row(6, "onFirmwareDownloaded()");
    row(7, "onDfuProcessFinished(int,QProcess::ExitStatus)", {"exitCode", "status"});
    row(8, "onDfuTimeout()");
    row(9, "onReadFirmwareTxt()");
}

void MetaObjectTest::methods()
{
    QFETCH(int, index);
    constexpr int kSignals = 3;
    const QMetaMethod method = ownMethod(index);

    QTEST(method.methodSignature(), "signature");
    QTEST(method.parameterNames(), "names");
    QCOMPARE(method.returnMetaType(), QMetaType::fromType<void>());
    QCOMPARE(method.methodType(), index < kSignals ? QMetaMethod::Signal : QMetaMethod::Slot);
    QCOMPARE(method.access(), index < kSignals ? QMetaMethod::Public : QMetaMethod::Private);
}

void MetaObjectTest::thereAreNoFurtherMethods()
{
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 10);
    QCOMPARE(meta.constructorCount(), 0);
}

void MetaObjectTest::argumentTypesAreRegistered_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("argument");
    QTest::addColumn<QByteArray>("typeName");
    QTest::newRow("the product IDs of a scan") << 3 << 1 << QByteArray("QList<int>");
    QTest::newRow("how the tool ended") << 7 << 1 << QByteArray("QProcess::ExitStatus");
}

void MetaObjectTest::argumentTypesAreRegistered()
{
    QFETCH(int, index);
    QFETCH(int, argument);
    QFETCH(QByteArray, typeName);
    const QMetaMethod method = ownMethod(index);

    QCOMPARE(method.parameterTypes().at(argument), typeName);
    QVERIFY(method.parameterMetaType(argument).isValid());
    QCOMPARE(method.parameterMetaType(argument), QMetaType::fromName(typeName));
}

QUILLON_TEST(MetaObjectTest)
#include "tst_meta_object.moc"
