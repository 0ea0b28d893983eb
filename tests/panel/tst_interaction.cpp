// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/panel/PanelStage.h"
#include "tests/support/TestProgram.h"
#include "widgets/ClickableProgressBar.h"

#include <QEnterEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString kPlainLink = QStringLiteral(
    "<a style='color:rgba(87,110,246,1); text-decoration:none; font-weight:700;' href='" QUILLON_DOWNLOAD_HOST
    "/limit/R1_R2%20Firmware%20Upgrade%20Tool.exe'>%1</a>");
const QString kUnderlinedLink
    = QStringLiteral("<a style='color:rgba(87,110,246,1); text-decoration:underline; font-weight:700;' "
                     "href='" QUILLON_DOWNLOAD_HOST "/limit/R1_R2%20Firmware%20Upgrade%20Tool.exe'>%1</a>");

// The address holds "%20": filled by hand, so that it is not taken for a place to fill.
QString linkTo(QString pattern, const QString &words)
{
    return pattern.replace(u"%1"_s, words);
}

QMouseEvent mouse(QEvent::Type type, const QWidget &window, const QPoint &at,
                  Qt::MouseButton button = Qt::LeftButton)
{
    return QMouseEvent(type, at, window.mapToGlobal(at), button, button, Qt::NoModifier);
}

/// A press, a move by \a distance and a release, each at its place in global coordinates.
void drag(OpenPanel &panel, const QPoint &from, const QPoint &distance, Qt::MouseButton button)
{
    const QPoint start = panel.mapToGlobal(from);
    QMouseEvent press(QEvent::MouseButtonPress, from, start, button, button, Qt::NoModifier);
    QCoreApplication::sendEvent(&panel, &press);
    QMouseEvent move(QEvent::MouseMove, from + distance, start + distance, Qt::NoButton, button,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(&panel, &move);
    QMouseEvent release(QEvent::MouseButtonRelease, from, start + distance, button, Qt::NoButton,
                        Qt::NoModifier);
    QCoreApplication::sendEvent(&panel, &release);
}

/// A window that takes presses that nobody below it wanted.
class Host : public QWidget {
public:
    int presses = 0;
    int moves = 0;

protected:
    void mousePressEvent(QMouseEvent *) override { ++presses; }
    void mouseMoveEvent(QMouseEvent *) override { ++moves; }
};

} // namespace

class InteractionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void dragsByItsTopStrip_data();
    void dragsByItsTopStrip();
    void remembersWhereItWasPressed();
    void acceptsOnlyWhatBelongsToADrag();
    void followsThePointerWithoutLookingAtTheButtons();
    void stopsFollowingAfterTheRelease();
    void pressesOutsideTheStripGoToTheHost();
    void aPressOnTheBarNeverDrags_data();
    void aPressOnTheBarNeverDrags();
    void underlinesTheLinkUnderThePointer_data();
    void underlinesTheLinkUnderThePointer();
    void leavesOtherWidgetsAlone();
    void leavesOtherEventsAlone();
    void neverConsumesAnEvent();
};

void InteractionTest::dragsByItsTopStrip_data()
{
    QTest::addColumn<QPoint>("press");
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::addColumn<bool>("drags");
    QTest::newRow("top left corner") << QPoint(0, 0) << Qt::LeftButton << true;
    QTest::newRow("last row of the strip") << QPoint(200, 39) << Qt::LeftButton << true;
    QTest::newRow("first row below the strip") << QPoint(200, 40) << Qt::LeftButton << false;
    QTest::newRow("version card") << QPoint(200, 80) << Qt::LeftButton << false;
    QTest::newRow("right button") << QPoint(200, 10) << Qt::RightButton << false;
    QTest::newRow("middle button") << QPoint(200, 10) << Qt::MiddleButton << false;
    QTest::newRow("first pixel of the close button") << QPoint(436, 12) << Qt::LeftButton << false;
    QTest::newRow("last pixel of the close button") << QPoint(459, 35) << Qt::LeftButton << false;
    QTest::newRow("left of the close button") << QPoint(435, 20) << Qt::LeftButton << true;
    QTest::newRow("right of the close button") << QPoint(460, 20) << Qt::LeftButton << true;
    QTest::newRow("above the close button") << QPoint(440, 11) << Qt::LeftButton << true;
    QTest::newRow("below the close button") << QPoint(440, 36) << Qt::LeftButton << true;
}

void InteractionTest::dragsByItsTopStrip()
{
    QFETCH(QPoint, press);
    QFETCH(Qt::MouseButton, button);
    QFETCH(bool, drags);
    const PanelStage stage;
    stage.panel->move(100, 100);
    stage.panel->show();
    const QPoint before = stage.panel->pos();
    drag(*stage.panel, press, {30, -20}, button);
    QCOMPARE(stage.panel->pos(), drags ? before + QPoint(30, -20) : before);
    QVERIFY(!stage.panel->isDragged());
}

void InteractionTest::remembersWhereItWasPressed()
{
    const PanelStage stage;
    OpenPanel &panel = *stage.panel;
    panel.move(100, 100);
    panel.show();
    QMouseEvent press = mouse(QEvent::MouseButtonPress, panel, {55, 17});
    QCoreApplication::sendEvent(&panel, &press);
    QVERIFY(panel.isDragged());
    QCOMPARE(panel.dragPosition(), press.globalPosition().toPoint() - panel.frameGeometry().topLeft());
    QCOMPARE(panel.dragPosition(), QPoint(55, 17));
}

void InteractionTest::acceptsOnlyWhatBelongsToADrag()
{
    const PanelStage stage;
    OpenPanel &panel = *stage.panel;
    const auto isAccepted = [&panel](QEvent::Type type, const QPoint &at) {
        QMouseEvent event = mouse(type, panel, at);
        event.ignore();
        if (type == QEvent::MouseButtonPress)
            panel.mousePressEvent(&event);
        else
            panel.mouseMoveEvent(&event);
        return event.isAccepted();
    };
    QVERIFY(!isAccepted(QEvent::MouseMove, {55, 17}));
    QVERIFY(!isAccepted(QEvent::MouseButtonPress, {55, 47}));
    QVERIFY(isAccepted(QEvent::MouseButtonPress, {55, 17}));
    QVERIFY(isAccepted(QEvent::MouseMove, {60, 17}));
}

void InteractionTest::followsThePointerWithoutLookingAtTheButtons()
{
    const PanelStage stage;
    OpenPanel &panel = *stage.panel;
    panel.move(100, 100);
    panel.show();
    QMouseEvent press = mouse(QEvent::MouseButtonPress, panel, {55, 17});
    QCoreApplication::sendEvent(&panel, &press);
    const QPointF target(700, 500);
    QMouseEvent move(QEvent::MouseMove, QPointF(), target, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    panel.mouseMoveEvent(&move);
    QCOMPARE(panel.pos(), target.toPoint() - QPoint(55, 17));
}

void InteractionTest::stopsFollowingAfterTheRelease()
{
    const PanelStage stage;
    OpenPanel &panel = *stage.panel;
    panel.move(100, 100);
    panel.show();
    drag(panel, {55, 17}, {10, 10}, Qt::LeftButton);
    QMouseEvent move(QEvent::MouseMove, QPointF(5, 5), QPointF(700, 500), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    panel.mouseMoveEvent(&move);
    QCOMPARE(panel.pos(), QPoint(110, 110));
}

void InteractionTest::pressesOutsideTheStripGoToTheHost()
{
    Host host;
    const PanelStage stage;
    stage.panel->setParent(&host);
    stage.panel->move(0, 0);
    host.resize(500, 500);
    host.show();
    QTest::mousePress(stage.panel.get(), Qt::LeftButton, {}, {200, 150});
    QCOMPARE(host.presses, 1);
    QTest::mouseMove(stage.panel.get(), {210, 150});
    QMouseEvent move = mouse(QEvent::MouseMove, *stage.panel, {210, 150});
    QCoreApplication::sendEvent(stage.panel.get(), &move);
    QVERIFY(host.moves > 0);
    QTest::mousePress(stage.panel.get(), Qt::LeftButton, {}, {200, 10});
    QCOMPARE(host.presses, 1);
    stage.panel->setParent(nullptr);
}

void InteractionTest::aPressOnTheBarNeverDrags_data()
{
    QTest::addColumn<bool>("clickable");
    QTest::newRow("not clickable") << false;
    QTest::newRow("clickable") << true;
}

void InteractionTest::aPressOnTheBarNeverDrags()
{
    QFETCH(bool, clickable);
    const PanelStage stage;
    OpenPanel &panel = *stage.panel;
    panel.show();
    panel.bar()->disconnect();
    panel.bar()->setClickable(clickable);
    QSignalSpy clicks(panel.bar(), &ClickableProgressBar::clicked);
    QTest::mousePress(panel.bar(), Qt::LeftButton, {}, {200, 10});
    QCOMPARE(clicks.size(), clickable ? 1 : 0);
    QVERIFY(!panel.isDragged());
}

void InteractionTest::underlinesTheLinkUnderThePointer_data()
{
    QTest::addColumn<Language>("language");
    QTest::addColumn<QString>("words");
    QTest::newRow("Chinese") << Language::Chinese << u"前往官网下载>>"_s;
    QTest::newRow("English") << Language::English << u"Download>>"_s;
}

void InteractionTest::underlinesTheLinkUnderThePointer()
{
    QFETCH(Language, language);
    QFETCH(QString, words);
    const PanelStage stage;
    QuillonFirmwareUpgrade::setLanguage(language);
    QLabel *link = stage.panel->offlineToolLink();
    QCOMPARE(link->text(), linkTo(kPlainLink, words));
    QEnterEvent enter(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
    QCoreApplication::sendEvent(link, &enter);
    QCOMPARE(link->text(), linkTo(kUnderlinedLink, words));
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(link, &leave);
    QCOMPARE(link->text(), linkTo(kPlainLink, words));
}

void InteractionTest::leavesOtherWidgetsAlone()
{
    const PanelStage stage;
    OpenPanel &panel = *stage.panel;
    const QStringList before = Screen::everything(panel);
    QEnterEvent enter(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
    QVERIFY(!panel.eventFilter(panel.title(), &enter));
    QVERIFY(!panel.eventFilter(panel.offlineToolTip(), &enter));
    QCOMPARE(Screen::everything(panel), before);
}

void InteractionTest::leavesOtherEventsAlone()
{
    const PanelStage stage;
    OpenPanel &panel = *stage.panel;
    QLabel *link = panel.offlineToolLink();
    QEnterEvent enter(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
    QCoreApplication::sendEvent(link, &enter);
    const QString underlined = link->text();
    for (const QEvent::Type type : {QEvent::HoverEnter, QEvent::HoverLeave, QEvent::Show, QEvent::Hide}) {
        QEvent event(type);
        QVERIFY(!panel.eventFilter(link, &event));
        QCOMPARE(link->text(), underlined);
    }
}

void InteractionTest::neverConsumesAnEvent()
{
    const PanelStage stage;
    OpenPanel &panel = *stage.panel;
    QEnterEvent enter(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
    QVERIFY(!panel.eventFilter(panel.offlineToolLink(), &enter));
    QEvent leave(QEvent::Leave);
    QVERIFY(!panel.eventFilter(panel.offlineToolLink(), &leave));
}

QUILLON_TEST(InteractionTest)
#include "tst_interaction.moc"
