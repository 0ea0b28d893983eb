// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "probe/Output.h"
#include "probe/trace/Trace.h"

#include <QHash>

namespace probe {

/// Prints what happens on the bus as it happens. take() is a TraceSink: one event at a time, from any thread.
class EventPrinter {
public:
    enum class Shown {
        Plugs, ///< devices that come and go
        Everything ///< openings and reports as well
    };

    EventPrinter(const Output &output, Shown shown)
        : m_output(output)
        , m_shown(shown)
    {
    }

    void take(const TraceEvent &event);

private:
    void printWords(const TraceEvent &event, int productId) const;
    void printJson(const TraceEvent &event, int productId) const;

    Output m_output;
    Shown m_shown;
    QHash<int, int> m_productIds; // by the number of the device
};

} // namespace probe
