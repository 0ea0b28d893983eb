// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// The least that a host does with the panel. Ends with 0 when the panel is there and answers to its
// functions.
#include <QuillonFirmwareUpgrade/FirmwareUpgradeWidget.h>

#include <QApplication>
#include <QTimer>

#include <cstdio>

using namespace QuillonFirmwareUpgrade;

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    setLanguage(Language::English);
    FirmwareUpgradeWidget panel;
    panel.setDeviceModel(DeviceModel::R1);
    panel.show();
    QTimer::singleShot(200, &application, &QApplication::quit);
    application.exec();

    const bool isWhole = getCurrentLanguage() == Language::English && panel.size() == QSize(472, 418)
        && panel.windowTitle() == QLatin1String("Firmware Update");
    std::printf("%s\n",
                isWhole ? "the panel is there" : qPrintable("something is missing: " + panel.windowTitle()));
    return isWhole ? 0 : 1;
}
