// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QStringList>

#include <functional>

/// Notices when the HID library sees a device that the user may not open, and tells it once: not before the
/// system has had the time to grant the permission of a new device. The HID library has to be in use by
/// somebody; without that nothing is scanned. GUI thread.
class DenialWatch : public QObject {
    Q_OBJECT

public:
    /// \a isDenied answers for a path; \a tell is called with DeviceAccess::hint().
    DenialWatch(std::function<bool(const QString &path)> isDenied,
                std::function<void(const QString &hint)> tell, QObject *parent = nullptr);

    bool hasTold() const { return m_told; }

private:
    void look(const QStringList &paths);

    std::function<bool(const QString &)> m_isDenied;
    std::function<void(const QString &)> m_tell;
    QElapsedTimer m_denied; // valid since a scan found a denied device, and each one after it
    bool m_told = false;
};
