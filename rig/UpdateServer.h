// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "rig/FaultBoard.h"
#include "rig/Identity.h"
#include "rig/Journal.h"
#include "rig/RigThread.h"

#include <QList>
#include <QMap>
#include <QMutex>
#include <QObject>
#include <QString>
#include <QVersionNumber>

#include <atomic>
#include <chrono>
#include <utility>

namespace rig {

class HttpConversation;
class HttpServer;
struct HttpAnswer;

/// A request that the server understood, and what it gave.
struct ServedRequest {
    std::chrono::milliseconds at; ///< the journal's time when the request was complete
    std::chrono::milliseconds
        answered; ///< when the last byte of the answer was handed to the system; below 0: not yet
    RequestKind kind;
    Model model;
    Chip chip;
    QString target; ///< as the client wrote it
    QByteArray sha256; ///< of the answer's body, hexadecimal; empty when none was sent
};

/// The update server on a free loopback port. It runs on the rig's thread and answers every request with the
/// newest version and its notes, or with the image, of the chip that the request names, whatever host the
/// request is for: made the application's proxy, it stands in for the compiled-in server. Every function is
/// thread-safe.
class UpdateServer : public QObject {
    Q_OBJECT

public:
    UpdateServer(RigThread &thread, FaultBoard &faults, Journal &journal);
    ~UpdateServer() override;

    bool start(); ///< false when no port could be had
    quint16 port() const; ///< stays the same while connections are refused
    /// Makes the server the HTTP proxy of every QNetworkAccessManager of this process that has none of its
    /// own.
    void becomeApplicationProxy();

    /// The newest version of one chip's firmware (1.1.1 at the start); notes and image follow from it.
    void setVersion(Model model, Chip chip, const QVersionNumber &version);
    void setVersion(Chip chip, const QVersionNumber &version); ///< for all models
    QVersionNumber version(Model model, Chip chip) const;
    QByteArray image(Model model, Chip chip) const; ///< what an undisturbed download gives

    QList<ServedRequest> requests() const; ///< in the order they arrived, since the last forgetRequests()
    void forgetRequests();

Q_SIGNALS:
    /// Emitted on the rig's thread once a request is complete, before it is answered.
    void requestArrived(const rig::ServedRequest &request);

private:
    HttpAnswer serve(HttpConversation &conversation);
    bool listen();
    void followRefusal();
    int note(const ServedRequest &request);
    void markAnswered(int index);

    RigThread &m_thread;
    FaultBoard &m_faults;
    Journal &m_journal;
    HttpServer *m_http = nullptr; // lives on the rig's thread, where the functions above run
    std::atomic<quint16> m_port{0};

    mutable QMutex m_mutex; // for all that follows
    QMap<std::pair<Model, Chip>, QVersionNumber> m_versions; // where it is not the first one
    QList<ServedRequest> m_requests;
    int m_forgotten = 0; // requests that were dropped from the front of the list
};

} // namespace rig

Q_DECLARE_METATYPE(rig::ServedRequest)
