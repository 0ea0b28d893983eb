// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "tests/panel/PanelStage.h"

#include <QObject>

#include <memory>

/// Base of the tests whose every function starts with a new panel on a stage of its own. The log begins once
/// the panel is made.
class PanelTest : public QObject {
    Q_OBJECT

protected:
    PanelStage &stage() const { return *m_stage; }
    OpenPanel &panel() const { return *m_stage->panel; }

protected Q_SLOTS:
    virtual void init();
    virtual void cleanup();

private:
    std::unique_ptr<PanelStage> m_stage;
};
