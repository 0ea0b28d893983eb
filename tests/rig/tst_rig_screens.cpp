// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/ScreenRecognizer.h"
#include "tests/rig/FakePanel.h"
#include "tests/support/TestProgram.h"

#include <QTest>

using namespace rig;

namespace {

QSet<QString> names(const QList<const char *> &list)
{
    QSet<QString> set;
    for (const char *name : list)
        set.insert(QLatin1StringView(name));
    return set;
}

bool exclude(const ScreenSigns &one, const ScreenSigns &other)
{
    const bool otherMovie = one.movie && other.movie && qstrcmp(one.movie, other.movie) != 0;
    return otherMovie || names(one.visible).intersects(names(other.hidden))
        || names(other.visible).intersects(names(one.hidden));
}

void addScreens()
{
    QTest::addColumn<int>("row");
    for (int row = 0; row < screenTable().size(); ++row)
        QTest::newRow(screenTable().at(row).name) << row;
}

} // namespace

class RigScreensTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void noTwoScreensCanShowAtOnce();
    void aScreenIsRecognized_data() { addScreens(); }
    void aScreenIsRecognized();
    void everySignCounts_data() { addScreens(); }
    void everySignCounts();
    void aChildOfAHiddenWidgetIsHidden();
    void aPanelThatIsNotShownIsRecognizedAllTheSame();
    void aForeignWidgetShowsNoScreen();
};

void RigScreensTest::noTwoScreensCanShowAtOnce()
{
    const QList<ScreenSigns> &table = screenTable();
    for (int one = 0; one < table.size(); ++one) {
        for (int other = one + 1; other < table.size(); ++other)
            QVERIFY2(exclude(table.at(one), table.at(other)),
                     qPrintable(QStringLiteral("%1, %2").arg(QLatin1String(table.at(one).name),
                                                             QLatin1String(table.at(other).name))));
    }
}

void RigScreensTest::aScreenIsRecognized()
{
    QFETCH(int, row);
    FakePanel panel;
    panel.show();
    panel.showScreen(screenTable().at(row));
    QCOMPARE(recognizeScreen(panel), QLatin1String(screenTable().at(row).name));
}

void RigScreensTest::everySignCounts()
{
    QFETCH(int, row);
    const ScreenSigns &screen = screenTable().at(row);
    FakePanel panel;
    for (const QString &name : names(screen.visible) + names(screen.hidden)) {
        panel.showScreen(screen);
        QVERIFY(shows(panel, screen));
        panel.part(name)->setVisible(panel.part(name)->isHidden());
        QVERIFY2(!shows(panel, screen), qPrintable(name));
    }
    if (!screen.movie)
        return;
    panel.showScreen(screen);
    panel.play(QStringLiteral(":/elsewhere/other.gif"));
    QVERIFY(!shows(panel, screen));
}

void RigScreensTest::aChildOfAHiddenWidgetIsHidden()
{
    FakePanel panel;
    panel.showScreen(screenTable().at(1));
    const QString before = recognizeScreen(panel);
    panel.part(QStringLiteral("m_progressBar"))->hide();
    QVERIFY(recognizeScreen(panel) != before);
}

void RigScreensTest::aPanelThatIsNotShownIsRecognizedAllTheSame()
{
    FakePanel panel;
    panel.hide();
    panel.showScreen(screenTable().last());
    QCOMPARE(recognizeScreen(panel), QLatin1String(screenTable().last().name));
}

void RigScreensTest::aForeignWidgetShowsNoScreen()
{
    const QWidget widget;
    QVERIFY(recognizeScreen(widget).isEmpty());
}

QUILLON_TEST(RigScreensTest)
#include "tst_rig_screens.moc"
