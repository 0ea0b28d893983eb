// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>

#include <memory>

/// Another library's way to a device, to measure ours against.
class Peer {
public:
    virtual ~Peer() = default;
    /// Whether \a report was sent and answered.
    virtual bool ask(const QByteArray &report) = 0;
};

/// The device behind \a deviceFile; null when it could not be opened.
std::unique_ptr<Peer> openPeer(const QByteArray &deviceFile);

/// Whether this machine had one to build with.
bool hasPeer();
