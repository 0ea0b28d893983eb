// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QVariant>

/// The registers of the device that the panel reads.
namespace DeviceRegister {
/// 0: normal firmware; anything else: the device is in firmware-upgrade mode.
constexpr quint16 kUpgradeMode = 0x1008;
constexpr quint16 kPcVersion = 0x000B; ///< three registers: major, minor, patch
constexpr quint16 kOtgVersion = 0x0010; ///< three registers: major, minor, patch
constexpr quint16 kVersionLength = 3;
} // namespace DeviceRegister

/// Operation codes of the register protocol, the same in a request and in its reply.
enum class ControlOperation : quint8 {
    RandomWrite = 3,
    RandomRead = 4,
    ContinuousWrite = 5,
    ContinuousRead = 6
};

/// Builds the reports that are sent to the device: 65 bytes, report ID first, all numbers little-endian, the
/// rest zero.
///
/// Builders have no side effect and may be called from any thread. What does not fit into one report (more
/// than 28 addresses, 14 pairs or 26 values) gives an empty array and a warning, so that nothing wrong can be
/// sent.
class ControlMessages : public QObject {
    Q_OBJECT

public:
    /// The one instance of the process, created on first use from any thread.
    static ControlMessages *getInstance();

    QByteArray randomRead(quint16 address) const;
    QByteArray randomRead(const QList<quint16> &addresses) const;
    QByteArray randomWrite(quint16 address, quint16 value) const;
    /// Pairs the lists by position; what has no partner is left out.
    QByteArray randomWrite(const QList<quint16> &addresses, const QList<quint16> &values) const;
    /// \a count registers from \a start on.
    QByteArray continuousRead(quint16 start, quint16 count) const;
    /// \a count is sent as given, also when it differs from the number of values.
    QByteArray continuousWrite(quint16 start, quint16 count, const QList<quint16> &values) const;

    /// A register's value as somebody noted it here, invalid when nobody did. Thread-safe; the builders do
    /// not look at it.
    QVariant registerValue(quint16 address) const;
    void setRegisterValue(quint16 address, const QVariant &value);

Q_SIGNALS:
    /// For a caller that passes reports on by signal; the panel hands them to the HID library itself.
    void sig_hid_send(QByteArray report);

private:
    ControlMessages() = default;

    mutable QMutex m_mutex;
    QHash<quint16, QVariant> m_registerValues;
};
