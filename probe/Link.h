// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "probe/Device.h"

#include <QByteArray>
#include <QList>
#include <QObject>

#include <functional>
#include <optional>

namespace probe {

/// The open device, asked one question at a time. Uses the HID library while it lives. Its functions run an
/// event loop while they wait.
class Link : public QObject {
    Q_OBJECT

public:
    explicit Link(DenialCheck isDenied);
    ~Link() override;

    enum class Reach {
        Open,
        NoDevice, ///< nothing of the family is attached
        NoInterface, ///< something is, but not what answers questions
        Denied, ///< the user may not open it
        Refused ///< somebody else has it, or it is not ready
    };

    /// Opens the device that answers questions. A device that was just plugged in gets a moment to settle.
    Reach open();
    Device device() const { return m_device; } ///< the open one

    /// \a count registers from \a start on; nothing when the device did not answer in time, repeated once, or
    /// left.
    std::optional<QList<quint16>> read(quint16 start, int count);

private:
    using Values = std::optional<QList<quint16>>;

    Reach tryToOpen();
    Values readSome(quint16 start, int count);
    Values ask(const QByteArray &request, const std::function<Values(const QByteArray &)> &valuesIn);

    DenialCheck m_isDenied;
    Device m_device;
};

} // namespace probe
