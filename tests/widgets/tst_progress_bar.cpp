// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/support/TestProgram.h"
#include "tests/widgets/BarInside.h"
#include "tests/widgets/Pointer.h"

#include <QMetaMethod>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <functional>
#include <memory>
#include <type_traits>

using namespace Qt::StringLiterals;
using Pointer::enter;
using Pointer::leave;

namespace {

constexpr QSize kSize{408, 48};

static_assert(std::is_base_of_v<QProgressBar, ClickableProgressBar>);

QString shown(const QColor &colour)
{
    return u"%1,%2,%3,%4"_s.arg(colour.red()).arg(colour.green()).arg(colour.blue()).arg(colour.alpha());
}

/// Counts the paint events of one widget.
class PaintCounter : public QObject {
public:
    explicit PaintCounter(QWidget *widget)
        : QObject(widget)
    {
        widget->installEventFilter(this);
    }

    int count = 0;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            ++count;
        return QObject::eventFilter(watched, event);
    }
};

class PressTaker : public QWidget {
public:
    int presses = 0;

protected:
    void mousePressEvent(QMouseEvent *) override { ++presses; }
};

} // namespace

class ProgressBarTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void startsClickableGreyAndWithoutBorder();
    void keepsItsFieldsInOrder();
    void hasOneSignalAndNothingElse();
    void repaintsAfter_data();
    void repaintsAfter();
    void doesNotRepaintForClickability();
    void clicksOnPress_data();
    void clicksOnPress();
    void leavesPressesToItsParentWhileNotClickable_data();
    void leavesPressesToItsParentWhileNotClickable();
    void survivesItsDeletionInTheClick();
};

void ProgressBarTest::startsClickableGreyAndWithoutBorder()
{
    QWidget parent;
    const ClickableProgressBar bar(&parent);
    QCOMPARE(bar.parentWidget(), &parent);
    const BarInside inside(bar);
    QCOMPARE(inside.isClickable, true);
    QVERIFY(bar.isClickable());
    QCOMPARE(shown(inside.background), u"48,49,60,255"_s);
    QCOMPARE(shown(bar.progressColor()), u"73,74,86,255"_s);
    QCOMPARE(inside.border, QColor(Qt::transparent));
    QCOMPARE(inside.borderWidth, 0.0);
    QCOMPARE(inside.isHovered, false);
}

void ProgressBarTest::keepsItsFieldsInOrder()
{
    const ClickableProgressBar bar(nullptr);
    const QList<const void *> fields = BarInside(bar).fields;
    QVERIFY(std::is_sorted(fields.begin(), fields.end(), std::less<>()));
}

void ProgressBarTest::hasOneSignalAndNothingElse()
{
    const QMetaObject &meta = ClickableProgressBar::staticMetaObject;
    QCOMPARE(meta.className(), "ClickableProgressBar");
    QCOMPARE(meta.superClass(), &QProgressBar::staticMetaObject);
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 1);
    const QMetaMethod method = meta.method(meta.methodOffset());
    QCOMPARE(method.methodType(), QMetaMethod::Signal);
    QCOMPARE(method.methodSignature(), QByteArrayLiteral("clicked()"));
    QCOMPARE(meta.propertyCount() - meta.propertyOffset(), 0);
}

void ProgressBarTest::repaintsAfter_data()
{
    using Change = std::function<void(ClickableProgressBar &)>;
    QTest::addColumn<Change>("change");
    QTest::newRow("a background colour")
        << Change([](ClickableProgressBar &bar) { bar.setBackgroundColor(Qt::red); });
    QTest::newRow("a progress colour")
        << Change([](ClickableProgressBar &bar) { bar.setProgressColor(Qt::red); });
    QTest::newRow("a border colour") << Change(
        [](ClickableProgressBar &bar) { bar.setBorderColor(Qt::red); });
    QTest::newRow("a border width") << Change([](ClickableProgressBar &bar) { bar.setBorderWidth(2.0); });
    QTest::newRow("a cleared border") << Change([](ClickableProgressBar &bar) { bar.clearBorder(); });
    QTest::newRow("the pointer's coming") << Change([](ClickableProgressBar &bar) { enter(bar); });
    QTest::newRow("the pointer's leaving") << Change([](ClickableProgressBar &bar) { leave(bar); });
}

void ProgressBarTest::repaintsAfter()
{
    QFETCH(std::function<void(ClickableProgressBar &)>, change);
    ClickableProgressBar bar(nullptr);
    bar.resize(kSize);
    bar.show();
    QVERIFY(QTest::qWaitForWindowExposed(&bar));
    auto *paints = new PaintCounter(&bar);
    bar.repaint();
    const int before = paints->count;
    change(bar);
    QTRY_COMPARE_GT(paints->count, before);
}

void ProgressBarTest::doesNotRepaintForClickability()
{
    QWidget window;
    window.resize(500, 200);
    ClickableProgressBar bar(&window);
    bar.setGeometry(0, 0, 408, 48);
    QWidget neighbour(&window);
    neighbour.setGeometry(0, 100, 50, 50);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.repaint();
    auto *paints = new PaintCounter(&bar);
    auto *neighbourPaints = new PaintCounter(&neighbour);

    bar.setClickable(false);
    // A window paints all that is due at once: when the neighbour is painted, the bar would have been too.
    neighbour.update();
    QTRY_COMPARE(neighbourPaints->count, 1);
    QCOMPARE(paints->count, 0);
    QVERIFY(!bar.isClickable());
}

void ProgressBarTest::clicksOnPress_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::newRow("left button") << Qt::LeftButton;
    QTest::newRow("right button") << Qt::RightButton;
    QTest::newRow("middle button") << Qt::MiddleButton;
}

void ProgressBarTest::clicksOnPress()
{
    QFETCH(Qt::MouseButton, button);
    ClickableProgressBar bar(nullptr);
    bar.resize(kSize);
    QSignalSpy clicks(&bar, &ClickableProgressBar::clicked);
    QTest::mousePress(&bar, button);
    QCOMPARE(clicks.size(), 1);
    QTest::mouseRelease(&bar, button);
    QCOMPARE(clicks.size(), 1);
}

void ProgressBarTest::leavesPressesToItsParentWhileNotClickable_data()
{
    clicksOnPress_data();
}

void ProgressBarTest::leavesPressesToItsParentWhileNotClickable()
{
    QFETCH(Qt::MouseButton, button);
    PressTaker parent;
    auto *bar = new ClickableProgressBar(&parent);
    bar->resize(kSize);
    QSignalSpy clicks(bar, &ClickableProgressBar::clicked);
    bar->setClickable(false);
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(9, 9), QPointF(9, 9), button, button, Qt::NoModifier);
    BarInside::press(*bar, press);
    QVERIFY(!press.isAccepted());
    QTest::mousePress(bar, button);
    QCOMPARE(parent.presses, 1);
    QCOMPARE(clicks.size(), 0);

    bar->setClickable(true);
    QTest::mousePress(bar, button);
    QCOMPARE(clicks.size(), 1);
}

void ProgressBarTest::survivesItsDeletionInTheClick()
{
    PressTaker parent;
    auto bar = std::make_unique<ClickableProgressBar>(&parent);
    bar->resize(kSize);
    QObject::connect(bar.get(), &ClickableProgressBar::clicked, &parent, [&bar] { bar.reset(); });
    QTest::mousePress(bar.get(), Qt::LeftButton);
    QVERIFY(!bar);
}

QUILLON_TEST(ProgressBarTest)
#include "tst_progress_bar.moc"
