// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/tool/ToolBehaviour.h"

#include "rig/Fault.h"

namespace tool {

using namespace std::chrono_literals;
using rig::Fault;
using Fake = ToolBehaviour::Fake;

namespace {

struct Effect {
    Fault fault;
    void (*apply)(ToolBehaviour &behaviour);
};

const QList<Effect> &effects()
{
    static const QList<Effect> table{
        {Fault::ToolCrashesAtStart, [](ToolBehaviour &b) { b.crashesAtStart = true; }},
        {Fault::ToolCrashes, [](ToolBehaviour &b) { b.crashesAt = 30; }},
        {Fault::ToolNoFile, [](ToolBehaviour &b) { b.fake = Fake::NoFile; }},
        {Fault::ToolEmptyFile, [](ToolBehaviour &b) { b.fake = Fake::EmptyFile; }},
        {Fault::ToolSlowStart, [](ToolBehaviour &b) { b.startDelay = 5s; }},
        {Fault::ToolStallsAt0, [](ToolBehaviour &b) { b.standsAt = 0; }},
        {Fault::ToolStallsAt42, [](ToolBehaviour &b) { b.standsAt = 42; }},
        {Fault::ToolStallsAt100, [](ToolBehaviour &b) { b.standsAt = 100; }},
        {Fault::ToolNoResult, [](ToolBehaviour &b) { b.result.clear(); }},
        {Fault::ToolFails, [](ToolBehaviour &b) { b.failsAt = 60; }},
        {Fault::ToolBareSuccess, [](ToolBehaviour &b) { b.result = "success"; }},
        {Fault::ToolOddStatus, [](ToolBehaviour &b) { b.result = "success x"; }},
        {Fault::ToolStaysAfterSuccess, [](ToolBehaviour &b) { b.staysAfterResult = true; }},
        {Fault::ToolHalfLines, [](ToolBehaviour &b) { b.halfLines = true; }},
        {Fault::ToolGarbage, [](ToolBehaviour &b) { b.fake = Fake::Garbage; }},
        {Fault::ToolBinary, [](ToolBehaviour &b) { b.fake = Fake::Binary; }},
        {Fault::ToolHugeFile, [](ToolBehaviour &b) { b.hugeFile = true; }},
        {Fault::ToolIgnoresTerminate, [](ToolBehaviour &b) { b.ignoresTerminate = true; }},
        {Fault::ToolChatty, [](ToolBehaviour &b) { b.chatty = true; }},
    };
    return table;
}

} // namespace

ToolBehaviour behaviourFor(const QStringList &faultNames)
{
    ToolBehaviour behaviour;
    for (const Effect &effect : effects()) {
        if (faultNames.contains(rig::nameOf(effect.fault)))
            effect.apply(behaviour);
    }
    return behaviour;
}

} // namespace tool
