// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What a panel that is used all day may not take more and more of: scenarios weigh the process now and then
// and expect that the last weights are no more than earlier ones.
#include "rig/ScenarioStage.h"
#include "rig/ScenarioWords.h"

namespace rig {

using std::chrono::milliseconds;
using namespace std::chrono_literals;

namespace {
/// Connections and threads that are no longer needed have ended when nothing changes for so long.
constexpr milliseconds kSettled = 1s;
constexpr milliseconds kSettlingLimit = 60s;
constexpr int kNameWidth = 6;
} // namespace

Outcome ScenarioStage::weigh(Words words)
{
    const Weights now = Weights::now(m_panel);
    if (!m_lastWeights.countsAs(now))
        m_weighedAt = sinceStatement();
    m_lastWeights = now;
    if (sinceStatement() - m_weighedAt < kSettled)
        return Outcome::notYet(QStringLiteral("handles, threads or objects come and go"), kSettlingLimit);
    m_weighedAt = {}; // of the next weighing
    m_weights.insert(words.at(0), now);
    m_remark = words.at(0).rightJustified(kNameWidth) + QStringLiteral("  ") + now.line();
    return Outcome::done();
}

Outcome ScenarioStage::expectGrowth(Words words)
{
    const auto former = m_weights.constFind(words.at(0));
    if (former == m_weights.constEnd())
        return Outcome::failed(QStringLiteral("nothing was weighed under this name"));
    const Weights limits{sizeFrom(words.at(1)).value_or(0), sizeFrom(words.at(2)).value_or(0),
                         words.at(3).toInt(), words.at(4).toInt(), words.at(5).toInt()};
    const QStringList grown = m_lastWeights.growthBeyond(limits, *former);
    return grown.isEmpty() ? Outcome::done() : Outcome::failed(grown.join(QStringLiteral(", ")));
}

} // namespace rig
