// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QUrl>

/// An update server without a network: every request is answered within the event loop's next turns, with
/// what an address of its own holds.
class InstantServer : public QNetworkAccessManager {
    Q_OBJECT

public:
    void setAnswer(const QByteArray &body)
    {
        m_answer.setUrl(
            QUrl(QStringLiteral("data:application/json;base64,") + QString::fromLatin1(body.toBase64())));
    }

protected:
    QNetworkReply *createRequest(Operation operation, const QNetworkRequest &, QIODevice *sent) override
    {
        return QNetworkAccessManager::createRequest(operation, m_answer, sent);
    }

private:
    QNetworkRequest m_answer;
};
