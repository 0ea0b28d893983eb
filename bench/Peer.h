// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>
#include <memory>

/// Another way to a device, to measure the HID library's against.
class Peer {
public:
    virtual ~Peer() = default;
    /// Whether \a report was sent and answered.
    virtual bool ask(const QByteArray &report) = 0;
};

struct OtherWay {
    QString name;
    QString wanted; ///< of the library, beside this way
    /// The device behind a device file; null when it could not be opened.
    std::function<std::unique_ptr<Peer>(const QByteArray &deviceFile)> open;
};

std::unique_ptr<Peer> openRawPeer(const QByteArray &deviceFile);

/// All that this program was built with: the system's calls alone, and, where the machine had it, hidapi.
QList<OtherWay> otherWays();
