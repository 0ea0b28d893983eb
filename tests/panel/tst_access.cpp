// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/panel/PanelTest.h"
#include "tests/support/TestProgram.h"
#include "widgets/ClickableProgressBar.h"

#include <QAccessible>
#include <QDesktopServices>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTextEdit>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {
QString nameOf(QWidget *widget)
{
    return QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name);
}

QImage pictureOf(QWidget &widget)
{
    return widget.grab().toImage();
}

/// Takes keys that nobody below it wanted.
class Host : public QWidget {
public:
    int keys = 0;

protected:
    void keyPressEvent(QKeyEvent *) override { ++keys; }
};

/// Stands in for the browser.
class UrlHandler : public QObject {
    Q_OBJECT

public:
    QList<QUrl> opened;

public Q_SLOTS:
    void open(const QUrl &url) { opened.append(url); }
};
} // namespace

/// The panel without a mouse and without a look at it.
class AccessTest : public PanelTest {
    Q_OBJECT

private Q_SLOTS:
    void init() override;

    void aKeyPressesTheBar_data();
    void aKeyPressesTheBar();
    void noKeyPressesABarThatIsNotClickable_data() { aKeyPressesTheBar_data(); }
    void noKeyPressesABarThatIsNotClickable();
    void aPressMayDeleteTheBar();
    void aKeyOpensTheLink();
    void tabGoesThroughTheControls_data();
    void tabGoesThroughTheControls();
    void theWindowDoesNotBeginAtAButton();
    void theBarGetsNoFocusUnasked();
    void theBarGetsNoFocusWithItsWindow();
    void theBarGetsNoFocusWhileAnotherWindowHasIt();
    void theBarGetsNoFocusFromTheLink_data();
    void theBarGetsNoFocusFromTheLink();
    void aKeyPressesTheCloseButton_data();
    void aKeyPressesTheCloseButton();
    void theFocusIsSeenAfterTabOnly_data();
    void theFocusIsSeenAfterTabOnly();
    void controlsHaveNames_data();
    void controlsHaveNames();
    void theBarIsCalledByItsWords_data();
    void theBarIsCalledByItsWords();
    void aScreenReaderPressesTheBar();

private:
    /// Shows the panel and gives it the focus, with the bar replaced in its doings: nothing is upgraded here.
    void show() const;
};

void AccessTest::init()
{
    PanelTest::init();
    disconnect(panel().bar(), &ClickableProgressBar::clicked, nullptr, nullptr);
}

void AccessTest::show() const
{
    panel().show();
    panel().activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&panel()));
}

void AccessTest::aKeyPressesTheBar_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<int>("presses");
    const Qt::KeyboardModifiers none;
    QTest::newRow("Return") << Qt::Key_Return << none << 1;
    QTest::newRow("Enter") << Qt::Key_Enter << Qt::KeyboardModifiers(Qt::KeypadModifier) << 1;
    QTest::newRow("Space") << Qt::Key_Space << none << 1;
    QTest::newRow("Control and Return") << Qt::Key_Return << Qt::KeyboardModifiers(Qt::ControlModifier) << 0;
    QTest::newRow("a letter") << Qt::Key_U << none << 0;
}

void AccessTest::aKeyPressesTheBar()
{
    QFETCH(Qt::Key, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(int, presses);
    ClickableProgressBar *bar = panel().bar();
    QSignalSpy clicked(bar, &ClickableProgressBar::clicked);
    QTest::keyClick(bar, key, modifiers);
    QCOMPARE(clicked.count(), presses);
    QKeyEvent held(QEvent::KeyPress, key, modifiers, QString(), true);
    QCoreApplication::sendEvent(bar, &held);
    QCOMPARE(clicked.count(), presses);
}

void AccessTest::noKeyPressesABarThatIsNotClickable()
{
    QFETCH(Qt::Key, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(int, presses);
    auto *host = new Host;
    panel().setParent(host);
    ClickableProgressBar *bar = panel().bar();
    bar->setClickable(false);
    QSignalSpy clicked(bar, &ClickableProgressBar::clicked);
    QKeyEvent press(QEvent::KeyPress, key, modifiers);
    QCoreApplication::sendEvent(bar, &press);
    const int passedOn = host->keys;
    panel().setParent(nullptr);
    delete host;
    QCOMPARE(clicked.count(), 0);
    // A dialog around the panel would take Return for its own button.
    QCOMPARE(passedOn, 1 - presses);
}

void AccessTest::aPressMayDeleteTheBar()
{
    ClickableProgressBar *bar = panel().bar();
    connect(bar, &ClickableProgressBar::clicked, this, [this] { stage().panel.reset(); });
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QCoreApplication::sendEvent(bar, &press);
    QVERIFY(!stage().panel);
}

void AccessTest::aKeyOpensTheLink()
{
    UrlHandler handler;
    QDesktopServices::setUrlHandler(u"http"_s, &handler, "open");
    QTest::keyClick(panel().offlineToolLink(), Qt::Key_Return);
    QDesktopServices::unsetUrlHandler(u"http"_s);
    QCOMPARE(handler.opened, QList<QUrl>{QUrl(panel().offlineToolAddress())});
    QVERIFY(panel().offlineToolLink()->text().contains(panel().offlineToolAddress()));
}

void AccessTest::tabGoesThroughTheControls_data()
{
    QTest::addColumn<bool>("tooOld");
    QTest::addColumn<QStringList>("controls");
    QTest::newRow("most screens") << false
                                  << QStringList{u"m_notesEdit"_s, u"m_progressBar"_s, u"m_closeBtn"_s};
    QTest::newRow("with the link") << true
                                   << QStringList{u"m_notesEdit"_s, u"m_offlineToolLinkLb"_s,
                                                  u"m_progressBar"_s, u"m_closeBtn"_s};
}

void AccessTest::tabGoesThroughTheControls()
{
    QFETCH(bool, tooOld);
    QFETCH(QStringList, controls);
    panel().offlineToolLink()->setVisible(tooOld);
    show();
    panel().notes()->setFocus();
    QStringList reached;
    for (qsizetype i = 0; i < controls.size(); ++i) {
        reached.append(panel().focusWidget()->objectName());
        QTest::keyClick(panel().focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(reached, controls);
    QCOMPARE(panel().focusWidget()->objectName(), controls.first());
}

void AccessTest::theWindowDoesNotBeginAtAButton()
{
    show();
    QCOMPARE(panel().focusWidget(), panel().notes());
}

void AccessTest::theBarGetsNoFocusUnasked()
{
    show();
    panel().waitForCable(Chip::Pc);
    QVERIFY(!panel().bar()->hasFocus());
    panel().fail();
    QVERIFY(!panel().bar()->hasFocus());
}

void AccessTest::theBarGetsNoFocusWithItsWindow()
{
    show();
    panel().waitForCable(Chip::Pc);
    {
        QWidget other;
        other.show();
        other.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&other));
    }
    show();
    QVERIFY(!panel().bar()->hasFocus());
}

void AccessTest::theBarGetsNoFocusWhileAnotherWindowHasIt()
{
    show();
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    panel().waitForCable(Chip::Pc);
    show();
    QVERIFY(!panel().bar()->hasFocus());
}

void AccessTest::theBarGetsNoFocusFromTheLink_data()
{
    QTest::addColumn<bool>("upToDate");
    QTest::newRow("an upgrade on offer") << false;
    QTest::newRow("up to date") << true;
}

void AccessTest::theBarGetsNoFocusFromTheLink()
{
    QFETCH(bool, upToDate);
    panel().offlineToolLink()->show();
    show();
    panel().offlineToolLink()->setFocus(Qt::TabFocusReason);
    QVERIFY(panel().offlineToolLink()->hasFocus());
    if (upToDate)
        panel().showUpToDate();
    else
        panel().showUpgradeAvailable();
    QVERIFY(!panel().offlineToolLink()->isVisible());
    QVERIFY(!panel().bar()->hasFocus());
}

void AccessTest::aKeyPressesTheCloseButton_data()
{
    aKeyPressesTheBar_data();
}

void AccessTest::aKeyPressesTheCloseButton()
{
    QFETCH(Qt::Key, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(int, presses);
    panel().closeButton()->disconnect();
    QSignalSpy clicked(panel().closeButton(), &QPushButton::clicked);
    QTest::keyClick(panel().closeButton(), key, modifiers);
    QCOMPARE(clicked.count(), presses);
}

void AccessTest::theFocusIsSeenAfterTabOnly_data()
{
    QTest::addColumn<QString>("control");
    QTest::newRow("bar") << u"m_progressBar"_s;
    QTest::newRow("close button") << u"m_closeBtn"_s;
    QTest::newRow("link") << u"m_offlineToolLinkLb"_s;
    QTest::newRow("notes") << u"m_notesEdit"_s;
}

void AccessTest::theFocusIsSeenAfterTabOnly()
{
    QFETCH(QString, control);
    show();
    auto *widget = panel().findChild<QWidget *>(control);
    widget->show();
    panel().setFocus();
    const QImage unfocused = pictureOf(*widget);
    widget->setFocus(Qt::ActiveWindowFocusReason);
    QCOMPARE(pictureOf(*widget), unfocused);
    panel().setFocus();
    widget->setFocus(Qt::TabFocusReason);
    const QImage reached = pictureOf(*widget);
    QVERIFY(reached != unfocused);
    QFocusEvent away(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QCoreApplication::sendEvent(widget, &away);
    QCOMPARE(pictureOf(*widget), reached);
    panel().setFocus();
    QCOMPARE(pictureOf(*widget), unfocused);
}

void AccessTest::controlsHaveNames_data()
{
    QTest::addColumn<QString>("control");
    QTest::addColumn<QString>("chinese");
    QTest::addColumn<QString>("english");
    QTest::newRow("close button") << u"m_closeBtn"_s << u"关闭"_s << u"Close"_s;
    QTest::newRow("notes") << u"m_notesEdit"_s << u"新版概述"_s << u"What's New"_s;
    QTest::newRow("link") << u"m_offlineToolLinkLb"_s << u"需使用离线升级工具进行更新，前往官网下载>>"_s
                          << u"Update requires offline tool ,Download>>"_s;
    QTest::newRow("bar without words") << u"m_progressBar"_s << u"固件升级"_s << u"Firmware Update"_s;
}

void AccessTest::controlsHaveNames()
{
    QFETCH(QString, control);
    QFETCH(QString, chinese);
    QFETCH(QString, english);
    auto *widget = panel().findChild<QWidget *>(control);
    QCOMPARE(nameOf(widget), chinese);
    QuillonFirmwareUpgrade::setLanguage(Language::English);
    QCOMPARE(nameOf(widget), english);
    OpenPanel second;
    QCOMPARE(nameOf(second.findChild<QWidget *>(control)), english);
}

void AccessTest::theBarIsCalledByItsWords_data()
{
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("chinese");
    QTest::addColumn<QString>("english");
    QTest::newRow("upgrade") << u"m_upgradeTextLb"_s << u"立即升级"_s << u"Update Now"_s;
    QTest::newRow("too old") << u"m_tooOldLb"_s << u"固件版本过低，无法升级"_s
                             << u"Firmware version is too low to update."_s;
    QTest::newRow("waiting") << u"m_upgradingLb"_s << u"待USB线接入图示口..."_s
                             << u"Connect to the indicated USB ports."_s;
    QTest::newRow("completed") << u"m_doneLb"_s << u"升级完成"_s << u"Update Completed"_s;
}

void AccessTest::theBarIsCalledByItsWords()
{
    QFETCH(QString, label);
    QFETCH(QString, chinese);
    QFETCH(QString, english);
    panel().rocket()->show();
    panel().findChild<QLabel *>(label)->show();
    QCOMPARE(nameOf(panel().bar()), chinese);
    QuillonFirmwareUpgrade::setLanguage(Language::English);
    QCOMPARE(nameOf(panel().bar()), english);
}

void AccessTest::aScreenReaderPressesTheBar()
{
    ClickableProgressBar *bar = panel().bar();
    QAccessibleInterface *access = QAccessible::queryAccessibleInterface(bar);
    QSignalSpy clicked(bar, &ClickableProgressBar::clicked);
    const QString press = QAccessibleActionInterface::pressAction();
    QCOMPARE(access->role(), QAccessible::Button);
    QVERIFY(access->actionInterface()->actionNames().contains(press));
    access->actionInterface()->doAction(press);
    QCOMPARE(clicked.count(), 1);

    bar->setClickable(false);
    bar->setValue(42);
    QCOMPARE(access->role(), QAccessible::ProgressBar);
    QVERIFY(!access->actionInterface()->actionNames().contains(press));
    access->actionInterface()->doAction(press);
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(access->text(QAccessible::Value), u"42%"_s);
    QCOMPARE(access->valueInterface()->currentValue().toInt(), 42);
    QCOMPARE(access->valueInterface()->maximumValue().toInt(), 100);
}

QUILLON_TEST(AccessTest)
#include "tst_access.moc"
