// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/Fault.h"
#include "rig/Identity.h"
#include "tests/run/faults/FaultCourses.h"

#include <QList>
#include <QString>

namespace faults {

/// One run: a fault, what there is to upgrade, and a model.
struct Cell {
    rig::Fault fault;
    Plan plan;
    rig::Model model;
};

QList<Cell> allCells(); ///< every fault, for each of them every plan, and for that both models
QString nameOf(const Cell &cell); ///< such as "tool-fails-otg-only-r2"

/// The scenario of \a cell: the fault meets a device that is plugged in, and the run that is begun then;
/// after that nothing is wrong any more, and a fresh panel has to upgrade both chips to the end, whatever
/// state they are in.
QString scenarioOf(const Cell &cell);

} // namespace faults
