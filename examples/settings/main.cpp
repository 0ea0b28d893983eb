// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// An application with the panel in a page of its settings. The language is chosen on another page.
#include <QuillonFirmwareUpgrade/FirmwareUpgradeWidget.h>

#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QListWidget>
#include <QStackedWidget>
#include <QStandardPaths>
#include <QTimer>

using namespace QuillonFirmwareUpgrade;

namespace {

/// Holds the panel in its place: its upper edge drags it, which is of use to a window alone.
class FirmwarePage : public QWidget {
public:
    FirmwarePage()
        : m_panel(new FirmwareUpgradeWidget(this))
    {
        setMinimumSize(m_panel->size());
        m_panel->installEventFilter(this);
        m_panel->findChild<QWidget *>(QStringLiteral("m_closeBtn"))->hide();
    }

    bool showsPanel() const { return m_panel->isVisible() && m_panel->pos().isNull(); }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == m_panel && event->type() == QEvent::Move && !m_panel->pos().isNull())
            m_panel->move(0, 0);
        return QWidget::eventFilter(watched, event);
    }

    FirmwareUpgradeWidget *m_panel;
};

class LanguagePage : public QComboBox {
public:
    LanguagePage()
    {
        addItem(QStringLiteral("中文"), int(Language::Chinese));
        addItem(QStringLiteral("English"), int(Language::English));
        setCurrentIndex(findData(int(getCurrentLanguage())));
        connect(this, &QComboBox::currentIndexChanged, this,
                [this] { setLanguage(Language(currentData().toInt())); });
    }
};

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    // Images are downloaded below it. Windows always has it.
    if (qEnvironmentVariableIsEmpty("ALLUSERSPROFILE"))
        qputenv("ALLUSERSPROFILE",
                QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation).toLocal8Bit());
    setLanguage(Language::English);

    QWidget settings;
    auto *layout = new QHBoxLayout(&settings);
    auto *names = new QListWidget;
    auto *pages = new QStackedWidget;
    layout->addWidget(names);
    layout->addWidget(pages, 1);
    auto *firmware = new FirmwarePage;
    names->addItems({QStringLiteral("Language"), QStringLiteral("Firmware")});
    pages->addWidget(new LanguagePage);
    pages->addWidget(firmware);
    QObject::connect(names, &QListWidget::currentRowChanged, pages, &QStackedWidget::setCurrentIndex);
    // A device that recovers by itself should be seen to do so.
    QObject::connect(firmware->m_panel, &FirmwareUpgradeWidget::onDeviceBrickedDetected, names,
                     [names] { names->setCurrentRow(1); });
    settings.show();
    if (QCoreApplication::arguments().contains(QStringLiteral("--try"))) {
        names->setCurrentRow(1);
        firmware->m_panel->move(30, 30);
        QTimer::singleShot(300, &application, [&] { QApplication::exit(firmware->showsPanel() ? 0 : 1); });
    }
    return QApplication::exec();
}
