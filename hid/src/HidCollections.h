// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "CollectionOrder.h"

#include <HIDCommunicator/HidTransport.h>

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <future>
#include <mutex>
#include <optional>

namespace HIDCommunicator {

/// Windows' HID collections, of which those of other vendors are told by their names and never opened.
/// What one of ours carries is asked once for as long as it is there, on a thread of its own: opening a
/// device that sleeps or is just being set up may take the system longer than a caller can wait. Every
/// function may be called from any thread.
class HidCollections {
public:
    /// Whom it asks.
    struct Sources {
        std::function<std::optional<QStringList>()> interfaces;
        std::function<std::optional<CollectionReports>(const QString &path)> reports;
    };

    explicit HidCollections(Sources sources);

    /// As HidTransport::enumerate(). One that has not answered in time counts as one that does not tell.
    std::optional<QList<HidDeviceInfo>> list(int vendorId);

    /// Asks all of them anew with the next list(): a device that comes back may have its former name, and say
    /// something else.
    void forget();

private:
    using Answer = std::shared_future<std::optional<CollectionReports>>;
    /// By their names in the system's spelling.
    using Answers = QHash<QString, Answer>;

    Answer ask(const QString &path) const;
    Answers answersFor(const QList<HidCollection> &collections);

    Sources m_sources;
    std::mutex m_mutex;
    Answers m_answers;
};

} // namespace HIDCommunicator
