// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/Scenario.h"
#include "rig/ScenarioPlayer.h"

#include <QSignalSpy>

constexpr int kPatience = 120000; // of the sped-up clock

/// A scenario of these lines, called x.scn.
inline rig::Scenario scenario(const QString &text)
{
    QString error;
    const auto parsed = rig::Scenario::parse(text, QStringLiteral("/a/b/x.scn"), &error);
    if (!parsed)
        qFatal("%s", qPrintable(error));
    return *parsed;
}

/// What a player said in the end; empty when the scenario passed.
inline QString verdictOf(QSignalSpy &finished)
{
    if (!finished.wait(kPatience))
        return QStringLiteral("it did not end");
    const QString verdict = finished.first().at(1).toString();
    return finished.first().at(0).toBool() == verdict.isEmpty() ? verdict
                                                                : QStringLiteral("verdict and result differ");
}
