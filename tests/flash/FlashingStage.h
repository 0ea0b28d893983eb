// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "tests/panel/PanelStage.h"
#include "tests/support/FakeFlashingTool.h"
#include "tests/support/Files.h"
#include "tests/support/LogOrder.h"
#include "widgets/ClickableProgressBar.h"

#include <HIDCommunicator/OrvikHIDManager.h>

#include <QLabel>
#include <QStringList>
#include <QTimer>

/// A shown panel with a flashing tool beside the test and an image on disk. It hears nothing from the bus: it
/// looks for devices only where a step of its own says so.
class FlashingStage : public PanelStage {
public:
    FlashingStage()
        : image(sandbox.home() + QStringLiteral("/R2 固件_PC1.2.3.bin"))
    {
        writeFile(image, "image");
        panel->library()->disconnect(panel.get());
        QCoreApplication::sendPostedEvents(panel.get(), QEvent::MetaCall);
        panel->show();
    }

    /// The tool runs and reports nothing; what it would report is written by the test.
    bool runSilentTool()
    {
        tool.obeys("ignore-terminate\nhang");
        panel->tool()->start(FakeFlashingTool::path(), QStringList());
        return panel->tool()->waitForStarted() && isToolRunning();
    }
    bool isToolRunning() const { return panel->tool()->state() == QProcess::Running; }

    void poll(const QByteArray &progress)
    {
        sandbox.writeProgress(progress);
        panel->pollProgress();
    }

    /// A run of this kind is going on; the OTG half waits for its chip.
    void beginRun(UpgradePlan plan, bool pcCompleted = false)
    {
        panel->pretendPlan(plan);
        panel->pretendPcDone(pcCompleted);
        panel->pretendUpgrading(true);
        panel->pollTimer()->start();
        panel->watchdog()->start(60'000);
        panel->bar()->setProgressColor(pcCompleted ? kWaitingRed : kNeutral);
    }

    int percentOnBar() const { return panel->bar()->value(); }
    QString percentText() const { return panel->percentText()->text(); }
    bool showsFailure() const { return panel->offersRetry() && !panel->failureText()->isHidden(); }

    FakeFlashingTool tool;
    const QString image;

    static constexpr QColor kWaitingRed{248, 74, 75};
    static constexpr QColor kNeutral{73, 74, 86};
    static constexpr QColor kGrey{48, 49, 60};
};

/// Which child widgets a step shows and which it hides. The constructor brings each of them into the opposite
/// state, so that a step that leaves one out is found; every other widget has to stay as it was.
class ScreenChange {
public:
    ScreenChange(QWidget &window, const QStringList &shown, const QStringList &hidden)
        : m_window(window)
    {
        for (const QString &name : shown)
            child(name)->hide();
        for (const QString &name : hidden)
            child(name)->show();
        m_expected = actual() + shown;
        for (const QString &name : hidden)
            m_expected.removeAll(name);
        m_expected.sort();
    }

    /// The widgets that should not be hidden after the step.
    QStringList expected() const { return m_expected; }

    /// Those that are not.
    QStringList actual() const
    {
        QStringList names;
        const auto children = m_window.findChildren<QWidget *>();
        for (const QWidget *widget : children) {
            if (!widget->isHidden() && !widget->objectName().isEmpty())
                names.append(widget->objectName());
        }
        names.sort();
        return names;
    }

private:
    QWidget *child(const QString &name) const
    {
        auto *widget = m_window.findChild<QWidget *>(name);
        if (!widget)
            qFatal("the panel has no %s", qPrintable(name));
        return widget;
    }

    QWidget &m_window;
    QStringList m_expected;
};
