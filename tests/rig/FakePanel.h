// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/ScreenRecognizer.h"

#include <QLabel>
#include <QMap>
#include <QMouseEvent>
#include <QMovie>
#include <QProgressBar>
#include <QTextEdit>
#include <QWidget>

/// A widget with children of the panel's names and kinds, and nothing behind them.
class FakePanel : public QWidget {
public:
    FakePanel()
    {
        add(new QProgressBar(this), "m_progressBar");
        add(new QTextEdit(this), "m_notesEdit");
        for (const char *name :
             {"verCompLb", "tipMoiveLb", "m_detectingUsbLb", "m_connectHintLb", "m_failIconLb",
              "m_failTextLb", "m_offlineToolTipLb", "m_offlineToolLinkLb", "upgradeProgDisPlay"})
            add(new QLabel(this), name);
        for (const char *name : {"m_noNewFirmwareLb", "m_newVerLb"})
            add(new QLabel(part(QStringLiteral("verCompLb"))), name);
        for (const char *name : {"m_rocketLb", "m_upgradeTextLb", "m_tooOldLb", "m_waitingIconLb",
                                 "m_upgradingLb", "m_doneIconLb", "m_doneLb"})
            add(new QLabel(bar()), name);
        bar()->setGeometry(32, 346, 408, 48);
        part(QStringLiteral("m_upgradeTextLb"))->setGeometry(186, 13, 64, 21);
        resize(472, 418);
    }

    QWidget *part(const QString &name) const { return m_parts.value(name); }
    QLabel *label(const char *name) const { return static_cast<QLabel *>(part(QLatin1StringView(name))); }
    QProgressBar *bar() const { return static_cast<QProgressBar *>(part(QStringLiteral("m_progressBar"))); }

    void play(const QString &movie)
    {
        QLabel *tip = label("tipMoiveLb");
        delete tip->movie();
        tip->setMovie(new QMovie(movie, QByteArray(), tip));
    }

    /// Shows what the screen's signs say is visible, and nothing else but the bar.
    void showScreen(const rig::ScreenSigns &screen)
    {
        for (QWidget *widget : std::as_const(m_parts))
            widget->setVisible(widget == bar());
        for (const char *name : screen.visible)
            part(QLatin1StringView(name))->show();
        play(QStringLiteral(":/elsewhere/")
             + (screen.movie ? QLatin1StringView(screen.movie) : QLatin1StringView()));
    }

    void showScreen(const QString &name)
    {
        for (const rig::ScreenSigns &screen : rig::screenTable()) {
            if (name == QLatin1StringView(screen.name))
                showScreen(screen);
        }
    }

private:
    void add(QWidget *widget, const char *name)
    {
        widget->setObjectName(QLatin1StringView(name));
        m_parts.insert(widget->objectName(), widget);
    }

    QMap<QString, QWidget *> m_parts;
};
