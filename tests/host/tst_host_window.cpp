// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/EventLog.h"
#include "host/FirmwareBox.h"
#include "host/HostWindow.h"
#include "host/PanelHolder.h"
#include "rig/Rig.h"
#include "tests/support/Sandbox.h"
#include "tests/support/TestProgram.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace host;
using rig::Chip;

namespace {
constexpr int kPatience = 20000;
/// Between two groups.
constexpr int kGap = 12;

constexpr int kText = 180;
/// Lighter than every line and ground.
constexpr int kTitle = 110;

/// Where the strokes of a widget's text are, in the window; nothing else of the widget is as light.
QRect strokesOf(QWidget &widget, const QRect &part, int lightness = kText)
{
    const QImage picture
        = widget.window()->grab(QRect(widget.mapTo(widget.window(), part.topLeft()), part.size())).toImage();
    QRect strokes;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (qGray(picture.pixel(x, y)) > lightness)
                strokes |= QRect(x, y, 1, 1);
        }
    }
    return strokes.translated(widget.mapTo(widget.window(), part.topLeft()));
}
} // namespace

// The window around the panel, with a tester's hands on it.
class HostWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void thePanelIsAPartOfTheWindow();
    void thePanelStaysInItsPlace();
    void aCableGoesInAndOut_data();
    void aCableGoesInAndOut();
    void theCheckBoxFollowsTheDevice();
    void aVersionIsTypedIn_data();
    void aVersionIsTypedIn();
    void whatIsNoVersionIsNotTaken_data();
    void whatIsNoVersionIsNotTaken();
    void theServersVersionIsTypedIn();
    void aChipIsErased();
    void theDeviceIsReplacedByOneOfTheOtherModel();
    void thePanelIsToldItsModel();
    void aFaultIsChosen();
    void aFaultThatIsArmedElsewhereIsShown();
    void everyTextIsThereInBothLanguages();
    void thePanelIsDeletedAndMadeAnew();
    void aPanelThatIsGoingIsLeftAlone();
    void theLogIsShown();
    void everyControlIsReachedByKeyboard();
    void textsInBoxesBeginAtOneEdge();
    void titlesBeginAtOneEdge();
    void captionsStandOnTheBaseLineOfTheirFields_data();
    void captionsStandOnTheBaseLineOfTheirFields();
    void groupsFollowEachOtherClosely();

private:
    template <typename T> T *find(const QString &name) const { return m_window->findChild<T *>(name); }
    void choose(const QString &box, int index) const;

    Sandbox m_sandbox;
    std::unique_ptr<rig::Rig> m_rig;
    std::unique_ptr<EventLog> m_log;
    std::unique_ptr<PanelHolder> m_holder;
    std::unique_ptr<HostWindow> m_window;
};

void HostWindowTest::initTestCase()
{
    m_rig = std::make_unique<rig::Rig>();
    QString error;
    QVERIFY2(m_rig->start(&error), qPrintable(error));
}

void HostWindowTest::init()
{
    m_rig->faults().clearAll();
    m_rig->device().setModel(rig::Model::R2);
    for (const Chip chip : {Chip::Pc, Chip::Otg})
        m_rig->server().setVersion(chip, QVersionNumber(1, 1, 1));
    m_log = std::make_unique<EventLog>();
    m_holder = std::make_unique<PanelHolder>(rig::Model::R2);
    m_window = std::make_unique<HostWindow>(*m_rig, *m_holder, *m_log);
    m_holder->setFrame(m_window->panelFrame());
    m_holder->create();
    m_window->show();
    QCoreApplication::processEvents();
}

void HostWindowTest::cleanup()
{
    m_holder.reset();
    m_window.reset();
    m_log.reset();
}

void HostWindowTest::choose(const QString &name, int index) const
{
    auto *box = find<QComboBox>(name);
    box->setCurrentIndex(index);
    Q_EMIT box->activated(index);
}

void HostWindowTest::thePanelIsAPartOfTheWindow()
{
    QVERIFY(!m_holder->panel()->isWindow());
    QCOMPARE(m_holder->panel()->window(), m_window.get());
    QVERIFY(m_holder->panel()->isVisible());
    QCOMPARE(m_holder->panel()->size(), QSize(472, 418));
    QVERIFY(!QApplication::activeModalWidget());
}

void HostWindowTest::thePanelStaysInItsPlace()
{
    m_holder->panel()->move(100, 50);
    QTRY_COMPARE(m_holder->panel()->pos(), QPoint(0, 0));
}

void HostWindowTest::aCableGoesInAndOut_data()
{
    QTest::addColumn<QString>("box");
    QTest::addColumn<Chip>("port");
    QTest::newRow("PC cable") << u"pcCable"_s << Chip::Pc;
    QTest::newRow("OTG cable") << u"otgCable"_s << Chip::Otg;
}

void HostWindowTest::aCableGoesInAndOut()
{
    QFETCH(QString, box);
    QFETCH(Chip, port);
    auto *cable = find<QCheckBox>(box);
    cable->click();
    QVERIFY(m_rig->device().isPlugged(port));
    QTRY_COMPARE_WITH_TIMEOUT(m_rig->device().interfaces().size(), 1, kPatience);
    cable->click();
    QVERIFY(!m_rig->device().isPlugged(port));
    QVERIFY(m_rig->device().interfaces().isEmpty());
}

void HostWindowTest::theCheckBoxFollowsTheDevice()
{
    auto *cable = find<QCheckBox>(u"otgCable"_s);
    m_rig->device().plug(Chip::Otg);
    QTRY_VERIFY(cable->isChecked());
    m_rig->device().unplug(Chip::Otg);
    QTRY_VERIFY(!cable->isChecked());
}

void HostWindowTest::aVersionIsTypedIn_data()
{
    QTest::addColumn<QString>("box");
    QTest::addColumn<Chip>("chip");
    QTest::newRow("PC firmware") << u"pcFirmware"_s << Chip::Pc;
    QTest::newRow("OTG firmware") << u"otgFirmware"_s << Chip::Otg;
}

void HostWindowTest::aVersionIsTypedIn()
{
    QFETCH(QString, box);
    QFETCH(Chip, chip);
    QLineEdit *line = find<FirmwareBox>(box)->lineEdit();
    line->selectAll();
    QTest::keyClicks(line, u"3.2.10"_s);
    QTest::keyClick(line, Qt::Key_Return);
    QTRY_COMPARE(m_rig->device().runningVersion(chip), QVersionNumber(3, 2, 10));
    QTRY_COMPARE(line->text(), u"3.2.10"_s);
}

void HostWindowTest::whatIsNoVersionIsNotTaken_data()
{
    QTest::addColumn<QString>("typed");
    QTest::newRow("two numbers") << u"3.2"_s;
    QTest::newRow("nothing") << QString();
    QTest::newRow("a dot at the end") << u"3.2."_s;
}

void HostWindowTest::whatIsNoVersionIsNotTaken()
{
    QFETCH(QString, typed);
    auto *box = find<FirmwareBox>(u"pcFirmware"_s);
    QSignalSpy entered(box, &FirmwareBox::versionEntered);
    box->lineEdit()->setFocus();
    box->lineEdit()->clear();
    QTest::keyClicks(box->lineEdit(), typed);
    find<QCheckBox>(u"pcCable"_s)->setFocus();
    QTRY_COMPARE(box->currentText(), u"1.1.1"_s);
    QCOMPARE(entered.size(), 0);
}

void HostWindowTest::theServersVersionIsTypedIn()
{
    QLineEdit *line = find<FirmwareBox>(u"otgNewest"_s)->lineEdit();
    line->selectAll();
    QTest::keyClicks(line, u"2.0.0"_s);
    QTest::keyClick(line, Qt::Key_Return);
    QCOMPARE(m_rig->server().version(rig::Model::R2, Chip::Otg), QVersionNumber(2, 0, 0));
    QCOMPARE(m_rig->server().version(rig::Model::R2, Chip::Pc), QVersionNumber(1, 1, 1));
}

void HostWindowTest::aChipIsErased()
{
    find<QPushButton>(u"pcErase"_s)->click();
    QCOMPARE(m_rig->device().state(Chip::Pc), rig::ChipState::BootLoader);
    QTRY_COMPARE(find<FirmwareBox>(u"pcFirmware"_s)->currentText(), u"-"_s);
    QCOMPARE(m_rig->device().state(Chip::Otg), rig::ChipState::Running);
}

void HostWindowTest::theDeviceIsReplacedByOneOfTheOtherModel()
{
    choose(u"deviceModel"_s, 0);
    QCOMPARE(m_rig->device().model(), rig::Model::R1);
    QCOMPARE(m_holder->model(), rig::Model::R2);
}

void HostWindowTest::thePanelIsToldItsModel()
{
    choose(u"panelModel"_s, 0);
    QCOMPARE(m_holder->model(), rig::Model::R1);
    QCOMPARE(m_rig->device().model(), rig::Model::R2);
}

void HostWindowTest::aFaultIsChosen()
{
    QCOMPARE(find<QComboBox>(u"fault"_s)->count(), rig::faultTable().size() + 1);
    choose(u"fault"_s, int(rig::Fault::ToolCrashes) + 1);
    QCOMPARE(m_rig->faults().armed(), QList<rig::Fault>{rig::Fault::ToolCrashes});
    choose(u"fault"_s, int(rig::Fault::ServerSilent) + 1);
    QCOMPARE(m_rig->faults().armed(), QList<rig::Fault>{rig::Fault::ServerSilent});
    choose(u"fault"_s, 0);
    QVERIFY(m_rig->faults().armed().isEmpty());
}

void HostWindowTest::aFaultThatIsArmedElsewhereIsShown()
{
    m_rig->faults().arm(rig::Fault::DeviceSilent);
    QTRY_COMPARE(find<QComboBox>(u"fault"_s)->currentIndex(), int(rig::Fault::DeviceSilent) + 1);
}

void HostWindowTest::everyTextIsThereInBothLanguages()
{
    const auto texts = [this] {
        QStringList all{m_window->windowTitle()};
        for (const QWidget *widget : m_window->findChild<QWidget *>(u"side"_s)->findChildren<QWidget *>()) {
            for (const char *property : {"title", "text"})
                all.append(widget->property(property).toString());
        }
        return all;
    };
    m_window->setEnglish(false);
    const QStringList chinese = texts();
    m_window->setEnglish(true);
    const QStringList english = texts();
    QVERIFY(chinese != english);
    for (const QString &text : english) {
        for (const QChar letter : text)
            QVERIFY2(letter.unicode() < 0x3000, qPrintable(text));
    }
    QCOMPARE(find<QComboBox>(u"language"_s)->currentIndex(), 1);
}

void HostWindowTest::thePanelIsDeletedAndMadeAnew()
{
    find<QPushButton>(u"deletePanel"_s)->click();
    QVERIFY(!m_holder->panel());
    find<QPushButton>(u"newPanel"_s)->click();
    QVERIFY(m_holder->panel());
    QVERIFY(m_holder->panel()->isVisible());
}

// A panel handles events while it goes down.
void HostWindowTest::aPanelThatIsGoingIsLeftAlone()
{
    QSignalSpy changed(m_holder.get(), &PanelHolder::panelChanged);
    m_holder->destroyAfter(std::chrono::milliseconds(0));
    m_holder->destroy();
    QCoreApplication::processEvents();
    QVERIFY(!m_holder->panel());
    QCOMPARE(changed.size(), 1);
    QVERIFY(m_holder->create());
}

void HostWindowTest::theLogIsShown()
{
    m_log->record(u"host"_s, u"a line of its own"_s);
    QTRY_VERIFY(find<QPlainTextEdit>(u"log"_s)->toPlainText().contains(u"a line of its own"));
}

void HostWindowTest::everyControlIsReachedByKeyboard()
{
    QStringList reached;
    QWidget *widget = find<QComboBox>(u"deviceModel"_s);
    const QWidget *first = widget;
    do {
        if (widget->isVisibleTo(m_window.get()) && widget->focusPolicy() & Qt::TabFocus)
            reached.append(widget->objectName());
        widget = widget->nextInFocusChain();
    } while (widget != first);
    for (const char *name :
         {"deviceModel", "pcFirmware", "pcErase", "otgFirmware", "otgErase", "pcCable", "otgCable",
          "pcNewest", "otgNewest", "fault", "panelModel", "language", "newPanel", "deletePanel", "log"})
        QVERIFY2(reached.contains(QLatin1StringView(name)), name);
}

void HostWindowTest::textsInBoxesBeginAtOneEdge()
{
    auto *fixed = find<QComboBox>(u"deviceModel"_s);
    auto *editable = find<FirmwareBox>(u"pcFirmware"_s);
    QCOMPARE(fixed->currentText(), u"R2"_s);
    editable->setEditText(u"R2"_s);
    const QSize beginning(40, editable->height());
    const QRect chosen = strokesOf(*fixed, QRect(QPoint(), beginning));
    QVERIFY(!chosen.isNull());
    QCOMPARE(strokesOf(*editable, QRect(QPoint(), beginning)).left(), chosen.left());
}

void HostWindowTest::titlesBeginAtOneEdge()
{
    auto *group = qobject_cast<QGroupBox *>(find<QComboBox>(u"panelModel"_s)->parentWidget());
    QVERIFY(group);
    auto *log = find<QLabel>(u"logTitle"_s);
    group->setTitle(u"Log"_s);
    log->setText(u"Log"_s);
    const QRect title = strokesOf(*group, QRect(0, 0, 60, 20), kTitle);
    QVERIFY(!title.isNull());
    QCOMPARE(strokesOf(*log, QRect(QPoint(), QSize(60, log->height())), kTitle).left(), title.left());
}

void HostWindowTest::captionsStandOnTheBaseLineOfTheirFields_data()
{
    QTest::addColumn<QString>("field");
    QTest::newRow("chosen") << u"deviceModel"_s;
    QTest::newRow("typed, beside a button") << u"pcFirmware"_s;
    QTest::newRow("typed") << u"pcNewest"_s;
}

void HostWindowTest::captionsStandOnTheBaseLineOfTheirFields()
{
    QFETCH(QString, field);
    auto *box = find<QComboBox>(field);
    box->setEditText(u"R2"_s); // without an effect where one is chosen, which is that
    const QList<QLabel *> labels = m_window->findChildren<QLabel *>();
    const auto caption = std::find_if(labels.begin(), labels.end(),
                                      [box](const QLabel *label) { return label->buddy() == box; });
    QVERIFY(caption != labels.end());
    // Chinese strokes go below the line.
    (*caption)->setText(u"R2\u6a21"_s);
    const QSize number((*caption)->fontMetrics().horizontalAdvance(u"R2"_s), (*caption)->height());
    const QRect strokes = strokesOf(**caption, QRect(QPoint(), number));
    QVERIFY(!strokes.isNull());
    QCOMPARE(strokes.bottom(), strokesOf(*box, QRect(0, 0, 40, box->height())).bottom());
}

void HostWindowTest::groupsFollowEachOtherClosely()
{
    QList<QRect> groups;
    for (const QGroupBox *group : find<QWidget>(u"side"_s)->findChildren<QGroupBox *>())
        groups.append(QRect(group->mapTo(m_window.get(), QPoint()), group->size()));
    QCOMPARE(groups.size(), 3);
    std::sort(groups.begin(), groups.end(), [](const QRect &a, const QRect &b) { return a.y() < b.y(); });
    for (qsizetype i = 1; i < groups.size(); ++i) {
        const int gap = groups.at(i).top() - groups.at(i - 1).bottom();
        QVERIFY2(gap > 0 && gap <= kGap, qPrintable(QString::number(gap)));
    }
}

QUILLON_TEST(HostWindowTest)
#include "tst_host_window.moc"
