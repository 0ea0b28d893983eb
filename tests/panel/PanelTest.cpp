// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/panel/PanelTest.h"

void PanelTest::init()
{
    m_stage = std::make_unique<PanelStage>();
    m_stage->log.clear();
}

void PanelTest::cleanup()
{
    m_stage.reset();
}
