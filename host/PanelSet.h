// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "host/PanelHolder.h"
#include "host/ScreenWatch.h"
#include "rig/Identity.h"

#include <QObject>
#include <QString>

#include <map>
#include <memory>

namespace host {

/// The panels of an application that has more than one at a time: the main one, which somebody else holds,
/// and others by their names. One of them is the chosen one. GUI thread.
class PanelSet : public QObject {
    Q_OBJECT

public:
    /// \a main outlives this object; panels beside it serve \a model at first.
    PanelSet(PanelHolder &main, rig::Model model);
    ~PanelSet() override;

    PanelHolder &chosen() const { return *m_chosen; }
    void choose(const QString &name); ///< "main", or any other name: it need not have a panel yet
    void destroyAll();

Q_SIGNALS:
    void screenShown(const QString &name, const QString &screen); ///< by one of the others

private:
    struct Other {
        explicit Other(rig::Model model)
            : holder(model)
        {
        }

        PanelHolder holder;
        ScreenWatch screens;
    };
    Other &other(const QString &name);

    PanelHolder &m_main;
    rig::Model m_model;
    std::map<QString, std::unique_ptr<Other>> m_others; // a name that was heard once stays
    PanelHolder *m_chosen;
};

} // namespace host
