// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QList>

#include <random>

namespace soak {

/// Random numbers that are the same for a seed on every machine: the standard lays down this engine, but none
/// of its distributions.
class Dice {
public:
    explicit Dice(quint32 seed)
        : m_engine(seed)
    {
    }

    /// From 0 to \a count - 1; \a count is above 0.
    int below(int count) { return int(m_engine() % quint32(count)); }
    int between(int low, int high) { return low + below(high - low + 1); }
    bool happens(int percent) { return below(100) < percent; }

    template <typename List> const auto &oneOf(const List &list)
    {
        return list[decltype(std::size(list))(below(int(std::size(list))))];
    }

private:
    std::mt19937 m_engine;
};

} // namespace soak
