// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "tests/flash/FlashingStage.h"

#include <QObject>

#include <memory>

/// Base of the tests whose every function starts with a flashing stage of its own.
class FlashingTest : public QObject {
    Q_OBJECT

protected:
    FlashingStage &stage() const { return *m_stage; }
    OpenPanel &panel() const { return *m_stage->panel; }

protected Q_SLOTS:
    void init() { m_stage = std::make_unique<FlashingStage>(); }
    virtual void cleanup() { m_stage.reset(); }

private:
    std::unique_ptr<FlashingStage> m_stage;
};
