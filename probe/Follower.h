// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "probe/Device.h"

#include <QObject>

namespace probe {

/// Keeps a device open whenever there is one, so that its reports pass by. Asks it what the panel asks a
/// device that it has just found, or nothing. Uses the HID library while it lives.
class Follower : public QObject {
    Q_OBJECT

public:
    enum class Manner { Asking, Listening };

    explicit Follower(Manner manner);
    ~Follower() override;

    bool hasOpened() const { return m_opened; } ///< ever

private:
    void follow(const QStringList &paths, const QList<int> &productIds);
    void takeReport(const QByteArray &report);
    void takeStatus(int status);

    Manner m_manner;
    bool m_opened = false;
};

} // namespace probe
