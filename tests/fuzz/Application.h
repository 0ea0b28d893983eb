// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QCoreApplication>

namespace fuzz {

/// For targets whose objects want an event loop, although none runs. It goes with the process: deleted at its
/// exit it would take along what Qt's network library has deleted by then.
inline void startApplication()
{
    static int argc = 1;
    static char name[] = "fuzz";
    static char *argv[] = {name, nullptr};
    static const auto *const application = new QCoreApplication(argc, argv);
    Q_UNUSED(application)
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
}

} // namespace fuzz
