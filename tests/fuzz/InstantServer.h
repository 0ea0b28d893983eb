#pragma once

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QNetworkReply>

/// An update server without a network: every request is answered at the next turn of the event loop.
class InstantServer : public QNetworkAccessManager {
    Q_OBJECT

public:
    void setAnswer(const QByteArray &body) { m_body = body; }

protected:
    QNetworkReply *createRequest(Operation operation, const QNetworkRequest &request,
                                 QIODevice *sent) override;

private:
    QByteArray m_body;
};
