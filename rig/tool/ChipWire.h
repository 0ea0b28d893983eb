// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QDeadlineTimer>

#include <chrono>

namespace tool {

/// Carries reports to a chip and back.
class ChipWire {
public:
    virtual ~ChipWire() = default;

    /// How long a chip may take to be found, and to show itself in its boot loader.
    virtual std::chrono::milliseconds patience() const = 0;

    virtual bool find(int productId) = 0; ///< is it on the bus?
    virtual bool open(int productId) = 0; ///< from now on reports go to this one
    virtual bool send(const QByteArray &report) = 0;
    virtual QByteArray receive(const QDeadlineTimer &deadline) = 0; ///< empty when none came in time
};

} // namespace tool
