// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/EventLog.h"
#include "host/HostTexts.h"
#include "host/HostWindow.h"
#include "host/PanelHolder.h"
#include "host/Style.h"
#include "rig/Rig.h"
#include "tests/gallery/Contrast.h"
#include "tests/support/Sandbox.h"
#include "tests/support/TestProgram.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <QStyleOptionFrame>
#include <QStyleOptionGroupBox>
#include <QTest>
#include <QTextBlock>

#include <array>
#include <memory>
#include <utility>

using namespace Qt::StringLiterals;
using namespace host;

namespace {
constexpr double kReadable = 4.5;
const QString kLogLine = QStringLiteral("Something has happened");

/// The text of a widget and where it is drawn, in the widget's pixels.
struct Words {
    QString text;
    QRect place;
    Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter;
};

Words wordsOf(const QPushButton &button)
{
    return {button.text(), button.rect(), Qt::AlignCenter};
}

Words wordsOf(const QCheckBox &box)
{
    QStyleOptionButton option;
    option.initFrom(&box);
    return {box.text(), box.style()->subElementRect(QStyle::SE_CheckBoxContents, &option, &box)};
}

Words wordsOf(const QComboBox &box)
{
    QStyleOptionComboBox option;
    option.initFrom(&box);
    return {box.currentText(),
            box.style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &box)};
}

Words wordsOf(const QLineEdit &line)
{
    QStyleOptionFrame option;
    option.initFrom(&line);
    QRect place = line.style()->subElementRect(QStyle::SE_LineEditContents, &option, &line);
    // The text stands where the cursor does.
    const QRect cursor = line.inputMethodQuery(Qt::ImCursorRectangle).toRect();
    place.setTop(cursor.top());
    place.setHeight(cursor.height());
    return {line.text(), place};
}

Words wordsOf(const QGroupBox &group)
{
    QStyleOptionGroupBox option;
    option.initFrom(&group);
    option.text = group.title();
    option.subControls = QStyle::SC_GroupBoxLabel;
    return {group.title(),
            group.style()->subControlRect(QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxLabel, &group)};
}

Words wordsOf(const QPlainTextEdit &log)
{
    const QRect start = log.cursorRect(QTextCursor(log.document()));
    return {log.document()->firstBlock().text(),
            QRect(start.topLeft(), QSize(log.width(), start.height())).translated(log.viewport()->pos())};
}

Words wordsOf(const QWidget &widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(&widget))
        return {label->text(), label->contentsRect(), label->alignment()};
    if (const auto *button = qobject_cast<const QPushButton *>(&widget))
        return wordsOf(*button);
    if (const auto *box = qobject_cast<const QCheckBox *>(&widget))
        return wordsOf(*box);
    if (const auto *line = qobject_cast<const QLineEdit *>(&widget))
        return wordsOf(*line);
    if (const auto *group = qobject_cast<const QGroupBox *>(&widget))
        return wordsOf(*group);
    if (const auto *log = qobject_cast<const QPlainTextEdit *>(&widget))
        return wordsOf(*log);
    const auto *box = qobject_cast<const QComboBox *>(&widget);
    return box && !box->isEditable() ? wordsOf(*box) : Words();
}

/// Where the strokes are.
QRect inkOf(const Words &words, const QFont &font)
{
    const QFontMetrics metrics(font);
    const QRect line = metrics.boundingRect(words.place, int(words.alignment), words.text);
    const QRect strokes = metrics.tightBoundingRect(words.text);
    return strokes.translated(line.left(), line.top() + metrics.ascent()) & words.place;
}

QRect scaled(const QRect &rect, double scale)
{
    return QRectF(rect.topLeft() * scale, QSizeF(rect.size()) * scale).toRect();
}

/// A font may leave no room between its strokes and the end of a selection, so nothing beyond the line
/// counts.
double contrastIn(const QImage &picture, const Words &words, const QFont &font)
{
    const double scale = picture.devicePixelRatio();
    return Contrast::ofText(picture, scaled(inkOf(words, font), scale), scaled(words.place, scale));
}

/// What a tester does with a widget.
enum class Handling { None, PointedAt, Pressed, Checked, Focused, Selected };
constexpr std::array kHandlings{
    std::pair{"at rest", Handling::None},    std::pair{"pointed at", Handling::PointedAt},
    std::pair{"pressed", Handling::Pressed}, std::pair{"checked", Handling::Checked},
    std::pair{"focused", Handling::Focused}, std::pair{"selected", Handling::Selected}};
} // namespace

/// The window around the panel can be read, whatever a tester does with it.
class HostContrastTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void everythingCanBeRead_data();
    void everythingCanBeRead();
    void everyLineOfAListCanBeRead_data();
    void everyLineOfAListCanBeRead();
    void thePlaceOfADeletedPanelSaysSo();

private:
    void handle(QWidget &widget, Handling handling) const;

    Sandbox m_sandbox;
    std::unique_ptr<rig::Rig> m_rig;
    std::unique_ptr<EventLog> m_log;
    std::unique_ptr<PanelHolder> m_holder;
    std::unique_ptr<HostWindow> m_window;
};

void HostContrastTest::initTestCase()
{
    makeApplicationDark();
    m_rig = std::make_unique<rig::Rig>();
    QString error;
    QVERIFY2(m_rig->start(&error), qPrintable(error));
}

void HostContrastTest::init()
{
    m_log = std::make_unique<EventLog>();
    m_holder = std::make_unique<PanelHolder>(rig::Model::R2);
    m_window = std::make_unique<HostWindow>(*m_rig, *m_holder, *m_log);
    m_window->setEnglish(true);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    m_window->findChild<QPlainTextEdit *>(u"log"_s)->setPlainText(kLogLine);
}

void HostContrastTest::cleanup()
{
    m_holder.reset();
    m_window.reset();
    m_log.reset();
}

/// Makes \a widget look as it does while it is handled so.
void HostContrastTest::handle(QWidget &widget, Handling handling) const
{
    auto *button = qobject_cast<QAbstractButton *>(&widget);
    if (handling == Handling::PointedAt)
        QTest::mouseMove(m_window->windowHandle(), widget.mapTo(m_window.get(), widget.rect().center()));
    else if (handling == Handling::Pressed && button)
        button->setDown(true);
    else if (handling == Handling::Checked && button && button->isCheckable())
        button->setChecked(true);
    else if (handling == Handling::Focused)
        widget.setFocus(Qt::TabFocusReason);
    else if (auto *line = qobject_cast<QLineEdit *>(&widget); line && handling == Handling::Selected)
        line->selectAll();
    else if (auto *log = qobject_cast<QPlainTextEdit *>(&widget); log && handling == Handling::Selected)
        log->selectAll();
}

void HostContrastTest::everythingCanBeRead_data()
{
    QTest::addColumn<Handling>("handling");
    for (const auto &[name, handling] : kHandlings)
        QTest::newRow(name) << handling;
}

void HostContrastTest::everythingCanBeRead()
{
    QFETCH(Handling, handling);
    int measured = 0;
    for (QWidget *widget : m_window->findChildren<QWidget *>()) {
        const Words words = wordsOf(*widget);
        if (words.text.isEmpty() || !widget->isVisible())
            continue;
        handle(*widget, handling);
        const double contrast = contrastIn(
            m_window->grab(QRect(widget->mapTo(m_window.get(), QPoint()), widget->size())).toImage(), words,
            widget->font());
        ++measured;
        QVERIFY2(contrast >= kReadable, qPrintable(u"\"%1\": %2"_s.arg(words.text).arg(contrast)));
    }
    // Captions and titles, buttons, check boxes, lists, versions, the log.
    QVERIFY2(measured > 20, qPrintable(QString::number(measured)));
}

void HostContrastTest::everyLineOfAListCanBeRead_data()
{
    QTest::addColumn<bool>("current");
    QTest::newRow("the chosen one") << true;
    QTest::newRow("another one") << false;
}

void HostContrastTest::everyLineOfAListCanBeRead()
{
    QFETCH(bool, current);
    auto *box = m_window->findChild<QComboBox *>(u"fault"_s);
    box->showPopup();
    QAbstractItemView *list = box->view();
    const QModelIndex index = box->model()->index(current ? 0 : 1, 0);
    const QRect line = list->visualRect(index).translated(list->viewport()->pos());
    QVERIFY(line.isValid());
    const Words words{index.data().toString(), line.adjusted(4, 0, 0, 0)};
    const double contrast = contrastIn(list->grab().toImage(), words, list->font());
    QVERIFY2(contrast >= kReadable, qPrintable(QString::number(contrast)));
}

void HostContrastTest::thePlaceOfADeletedPanelSaysSo()
{
    QWidget *frame = m_window->panelFrame();
    const Words words{textOf(Text::PanelClosed, true), frame->rect(), Qt::AlignCenter};
    const double contrast = contrastIn(frame->grab().toImage(), words, frame->font());
    QVERIFY2(contrast >= kReadable, qPrintable(QString::number(contrast)));
}

QUILLON_TEST(HostContrastTest)
#include "tst_host_contrast.moc"
