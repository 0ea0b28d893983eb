// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/panel/WidgetTable.h"
#include "tests/support/TestProgram.h"

#include <QIcon>
#include <QLabel>
#include <QMovie>
#include <QPixmapCache>
#include <QTest>

using namespace Qt::StringLiterals;
using WidgetTable::Row;
using WidgetTable::rows;

namespace {

/// The widgets of a panel before it was translated for the first time: setupUI() creates a second set.
class FreshWidgets : public PanelStage {
public:
    explicit FreshWidgets(DeviceModel model = DeviceModel::R2)
        : formerChildren(panel->children())
        , formerCard(panel->card())
    {
        panel->pretendModel(model);
        panel->createWidgetsAnew();
    }

    const QObjectList formerChildren;
    const QWidget *formerCard;
};

} // namespace

class LayoutTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void window();
    void createsWidget_data();
    void createsWidget();
    void createsNothingElseAndInOrder();
    void hasNoLayouts();
    void notesCannotBeEdited();
    void barRunsToAHundred();
    void offlineToolIconHasAFixedSize();
    void offlineToolLinkOpensABrowser();
    void showsHowToConnect_data();
    void showsHowToConnect();
    void scalesTheAnimation();
    void decodesEachPictureOnce_data();
    void decodesEachPictureOnce();
    void showsOnlyCardNotesAndBarAtFirst();
    void closes();
    void connectsTheTwoButtonsOnly();
};

void LayoutTest::window()
{
    const PanelStage stage;
    const OpenPanel &panel = *stage.panel;
    QCOMPARE(panel.minimumSize(), QSize(472, 418));
    QCOMPARE(panel.maximumSize(), QSize(472, 418));
    QCOMPARE(panel.windowFlags() & ~Qt::WindowFlags(Qt::WindowType_Mask), Qt::FramelessWindowHint);
    QCOMPARE(panel.windowModality(), Qt::ApplicationModal);
    QVERIFY(panel.testAttribute(Qt::WA_StyledBackground));
    QCOMPARE(panel.objectName(), u"FirmwareUpgradeWidget"_s);
    QCOMPARE(
        panel.styleSheet(),
        u"#FirmwareUpgradeWidget {  border: 1px solid rgba(69, 70, 83, 1);  border-radius: 4px;  background-color: rgba(31, 32, 40, 1);}"_s);
    QCOMPARE(panel.windowTitle(), u"固件升级"_s);
}

void LayoutTest::createsWidget_data()
{
    QTest::addColumn<Row>("row");
    for (const Row &row : rows())
        QTest::newRow(row.name) << row;
}

void LayoutTest::createsWidget()
{
    QFETCH(Row, row);
    const FreshWidgets fresh;
    const QWidget *widget = row.find(*fresh.panel);
    QVERIFY(widget);
    QCOMPARE(widget->metaObject()->className(), row.className);
    QCOMPARE(widget->parentWidget()->objectName(), row.parent);
    if (row.parent == WidgetTable::kCard)
        QCOMPARE(widget->parentWidget(), fresh.panel->card());
    QCOMPARE(widget->objectName(), QLatin1String(row.name));
    if (row.place != WidgetTable::kPlacedLater)
        QCOMPARE(widget->geometry(), row.place);
    QCOMPARE(widget->styleSheet(), row.style);
    QCOMPARE(!widget->isVisibleTo(widget->parentWidget()), row.hidden);

    if (const auto *edit = qobject_cast<const QTextEdit *>(widget))
        QCOMPARE(edit->toPlainText(), row.text);
    const auto *label = qobject_cast<const QLabel *>(widget);
    if (!label)
        return;
    QCOMPARE(label->text(), row.text);
    QCOMPARE(label->alignment(), row.alignment);
    QCOMPARE(label->wordWrap(), row.wraps);
    QCOMPARE(label->pixmap().isNull(), row.picture.isEmpty());
    if (row.picture.isEmpty())
        return;
    QCOMPARE(label->pixmap().toImage(), QIcon(row.picture).pixmap(row.pictureSize).toImage());
    const QSize artwork = QImage(row.picture).size();
    QCOMPARE(label->pixmap().size(), artwork.scaled(row.pictureSize, Qt::KeepAspectRatio));
}

void LayoutTest::createsNothingElseAndInOrder()
{
    const FreshWidgets fresh;
    const OpenPanel &panel = *fresh.panel;
    QHash<const QObject *, QList<const QObject *>> created{
        {&panel, {}}, {panel.card(), {}}, {panel.bar(), {}}};
    for (const Row &row : rows()) {
        const QWidget *widget = row.find(panel);
        created[widget->parentWidget()].append(widget);
    }
    const auto childrenOf = [](const QObject *parent, const QObjectList &former) {
        QList<const QObject *> children;
        for (const QObject *child : parent->children()) {
            if (child->isWidgetType() && !former.contains(child))
                children.append(child);
        }
        return children;
    };
    QCOMPARE(childrenOf(&panel, fresh.formerChildren), created.value(&panel));
    QCOMPARE(childrenOf(panel.card(), {}), created.value(panel.card()));
    QCOMPARE(childrenOf(panel.bar(), {}), created.value(panel.bar()));
}

void LayoutTest::hasNoLayouts()
{
    const FreshWidgets fresh;
    QVERIFY(!fresh.panel->layout());
    for (const Row &row : rows())
        QVERIFY2(!row.find(*fresh.panel)->layout(), row.name);
}

void LayoutTest::notesCannotBeEdited()
{
    const FreshWidgets fresh;
    QVERIFY(fresh.panel->notes()->isReadOnly());
}

void LayoutTest::barRunsToAHundred()
{
    const FreshWidgets fresh;
    const ClickableProgressBar *bar = fresh.panel->bar();
    QCOMPARE(bar->minimum(), 0);
    QCOMPARE(bar->maximum(), 100);
    QCOMPARE(bar->value(), 0);
    QVERIFY(bar->isTextVisible());
    QVERIFY(bar->isClickable());
}

void LayoutTest::offlineToolIconHasAFixedSize()
{
    const FreshWidgets fresh;
    QCOMPARE(fresh.panel->offlineToolIcon()->minimumSize(), QSize(24, 24));
    QCOMPARE(fresh.panel->offlineToolIcon()->maximumSize(), QSize(24, 24));
}

void LayoutTest::offlineToolLinkOpensABrowser()
{
    const FreshWidgets fresh;
    const QLabel *link = fresh.panel->offlineToolLink();
    QCOMPARE(link->textFormat(), Qt::RichText);
    QVERIFY(link->openExternalLinks());
    QCOMPARE(link->cursor().shape(), Qt::PointingHandCursor);
    QCOMPARE(link->size(), link->sizeHint());
    QVERIFY(link->width() > 0);
}

void LayoutTest::showsHowToConnect_data()
{
    QTest::addColumn<DeviceModel>("model");
    QTest::addColumn<QString>("movie");
    QTest::addColumn<QString>("hint");
    QTest::newRow("R2") << DeviceModel::R2 << u":/new/prefix1/image/dc5v_pc.gif"_s
                        << u"请使用配件附带USB线接入图示DC-5V和USB-C口，\n开始固件升级。"_s;
    QTest::newRow("R1") << DeviceModel::R1 << u":/new/prefix1/image/pc.gif"_s
                        << u"请使用USB线连接图示USB口和电脑，\n接入后自动完成升级。"_s;
    QTest::newRow("any other model is R2")
        << DeviceModel(2) << u":/new/prefix1/image/dc5v_pc.gif"_s
        << u"请使用配件附带USB线接入图示DC-5V和USB-C口，\n开始固件升级。"_s;
}

void LayoutTest::showsHowToConnect()
{
    QFETCH(DeviceModel, model);
    QFETCH(QString, movie);
    QFETCH(QString, hint);
    const FreshWidgets fresh(model);
    const OpenPanel &panel = *fresh.panel;
    QCOMPARE(panel.movie()->fileName(), movie);
    QVERIFY(panel.movie()->isValid());
    QCOMPARE(panel.movie()->parent(), panel.animation());
    QCOMPARE(panel.movie()->state(), QMovie::NotRunning);
    QCOMPARE(panel.animation()->movie(), panel.movie());
    QCOMPARE(panel.cableHint()->text(), hint);
}

void LayoutTest::scalesTheAnimation()
{
    const FreshWidgets fresh;
    QVERIFY(fresh.panel->animation()->hasScaledContents());
}

void LayoutTest::decodesEachPictureOnce_data()
{
    QTest::addColumn<QString>("label");
    for (const Row &row : rows()) {
        if (!row.picture.isEmpty())
            QTest::newRow(row.name) << QString::fromLatin1(row.name);
    }
}

void LayoutTest::decodesEachPictureOnce()
{
    QFETCH(QString, label);
    const auto keyInAFreshPanel = [&label] {
        const PanelStage stage;
        return stage.panel->findChild<QLabel *>(label)->pixmap().cacheKey();
    };
    const qint64 first = keyInAFreshPanel();
    // Qt's own store of pictures would give one back, too, for a while.
    QPixmapCache::clear();
    QCOMPARE(keyInAFreshPanel(), first);
}

void LayoutTest::showsOnlyCardNotesAndBarAtFirst()
{
    const PanelStage stage;
    stage.panel->show();
    QStringList visible;
    for (const Row &row : rows()) {
        if (row.find(*stage.panel)->isVisible())
            visible.append(QLatin1String(row.name));
    }
    QCOMPARE(visible,
             (QStringList{u"m_titleLabel"_s, u"m_closeBtn"_s, u"verCompLb"_s, u"cardAccentLb"_s,
                          u"cardDividerLb"_s, u"m_curVerTitleLb"_s, u"m_curVerLb"_s, u"m_notesIconLb"_s,
                          u"m_notesTitleLb"_s, u"m_notesLineLb"_s, u"m_notesEdit"_s, u"m_progressBar"_s,
                          u"upgradeProgDisPlay"_s}));
    QVERIFY(stage.panel->percentText()->text().isEmpty());
}

void LayoutTest::closes()
{
    const PanelStage stage;
    stage.panel->show();
    QTest::mouseClick(stage.panel->closeButton(), Qt::LeftButton);
    QVERIFY(stage.panel->isHidden());
}

void LayoutTest::connectsTheTwoButtonsOnly()
{
    const PanelStage stage;
    QCOMPARE(OpenPanel::receiversOf(*stage.panel->closeButton(), SIGNAL(clicked(bool))), 1);
    QCOMPARE(OpenPanel::receiversOf(*stage.panel->bar(), SIGNAL(clicked())), 1);
}

QUILLON_TEST(LayoutTest)
#include "tst_layout.moc"
