// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// An application with the panel in a dialog. The panel lives as long as the application, so a run goes on
// when the dialog is closed; who quits during one is asked.
#include <QuillonFirmwareUpgrade/FirmwareUpgradeWidget.h>

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>
#include <QTimer>
#include <QVBoxLayout>

using namespace QuillonFirmwareUpgrade;
using namespace Qt::StringLiterals;

namespace {

class FirmwareDialog : public QDialog {
public:
    explicit FirmwareDialog(QWidget *parent)
        : QDialog(parent)
        , m_panel(new FirmwareUpgradeWidget(this))
    {
        setWindowTitle(u"Firmware"_s);
        m_panel->setFixedSize(m_panel->size());
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSizeConstraint(QLayout::SetFixedSize);
        layout->addWidget(m_panel);
        // The dialog has a frame to be moved by and a button to be closed with.
        m_panel->findChild<QWidget *>(u"m_closeBtn"_s)->hide();
        // A device that recovers by itself should be seen to do so.
        connect(m_panel, &FirmwareUpgradeWidget::onDeviceBrickedDetected, this, &QDialog::open);
    }

    FirmwareUpgradeWidget *panel() const { return m_panel; }

    bool isUpgrading() const
    {
        return m_panel->findChild<QWidget *>(u"m_upgradingLb"_s)->isVisibleTo(m_panel);
    }

private:
    FirmwareUpgradeWidget *m_panel;
};

class Window : public QWidget {
public:
    Window()
        : m_button(new QPushButton(u"Firmware..."_s, this))
        , m_dialog(new FirmwareDialog(this))
    {
        auto *layout = new QVBoxLayout(this);
        layout->addWidget(m_button);
        connect(m_button, &QPushButton::clicked, m_dialog, &QDialog::open);
        connect(m_dialog->panel(), &FirmwareUpgradeWidget::upgradeDisplayMsg, this,
                [this](const QString &, bool isNeeded) {
                    m_button->setText(isNeeded ? u"Firmware... (new)"_s : u"Firmware..."_s);
                });
    }

    void closeEvent(QCloseEvent *event) override
    {
        const auto question = u"The device is being upgraded, and of no use if this is cut off. Quit?"_s;
        if (m_dialog->isUpgrading()
            && QMessageBox::question(this, windowTitle(), question) != QMessageBox::Yes)
            event->ignore();
    }

    void openDialog() { m_button->click(); }
    bool showsPanel() const { return m_dialog->panel()->isVisible(); }

private:
    QPushButton *m_button;
    FirmwareDialog *m_dialog;
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
    Window window;
    window.show();
    if (QCoreApplication::arguments().contains(u"--try"_s)) {
        window.openDialog();
        QTimer::singleShot(300, &application, [&] { QApplication::exit(window.showsPanel() ? 0 : 1); });
    }
    return QApplication::exec();
}
