// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// An application with a HID library of its own.
#include "OrvikHIDManager.h"

#include <QuillonFirmwareUpgrade/FirmwareUpgradeWidget.h>

#include <QApplication>
#include <QTimer>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QuillonFirmwareUpgrade::FirmwareUpgradeWidget panel;
    panel.show();
    if (QCoreApplication::arguments().contains(QStringLiteral("--try"))) {
        QTimer::singleShot(1500, &application, [] {
            const auto *bus = HIDCommunicator::OrvikHIDManager::instance();
            QApplication::exit(bus->m_open && !bus->m_sent.isEmpty() ? 0 : 1);
        });
    }
    return QApplication::exec();
}
