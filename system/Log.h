// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QDebug>

#include <optional>
#include <utility>

/// Lines for those who support the product. Pieces and values are separated by one blank, texts stand without
/// quotes, flags print as true or false. Each concern is a logging category of Qt's, printed unless the
/// host's or the machine's filter rules say otherwise. Any thread.
namespace Log {

/// A line that is being written; it is printed when it goes. Where nobody listens its text is not even made.
class Line {
public:
    explicit Line(std::optional<QDebug> text)
        : m_text(std::move(text))
    {
    }

    template <typename Piece> Line &operator<<(const Piece &piece)
    {
        if (m_text)
            *m_text << piece;
        return *this;
    }

private:
    std::optional<QDebug> m_text;
};

Line panel(); ///< quillon.panel: screens, plan, sequence
Line panelWarning(); ///< the same, for what should not happen
Line hid(); ///< quillon.hid: the bus, and what the device says
Line net(); ///< quillon.net: the update server
Line flash(); ///< quillon.flash: the flashing tool

} // namespace Log
