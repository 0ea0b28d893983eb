#include "tests/fuzz/InstantServer.h"

#include <cstring>
#include <utility>

namespace {

class InstantReply : public QNetworkReply {
    Q_OBJECT

public:
    InstantReply(const QNetworkRequest &request, QByteArray body, QObject *parent)
        : QNetworkReply(parent)
        , m_body(std::move(body))
    {
        setRequest(request);
        setUrl(request.url());
        open(QIODevice::ReadOnly);
        QMetaObject::invokeMethod(this, &InstantReply::finish, Qt::QueuedConnection);
    }

    void abort() override { }
    qint64 bytesAvailable() const override
    {
        return m_body.size() - m_read + QNetworkReply::bytesAvailable();
    }

protected:
    qint64 readData(char *data, qint64 most) override
    {
        const qint64 size = std::min<qint64>(most, m_body.size() - m_read);
        if (size <= 0)
            return -1;
        std::memcpy(data, m_body.constData() + m_read, size_t(size));
        m_read += size;
        return size;
    }

private:
    void finish()
    {
        setFinished(true);
        Q_EMIT finished();
    }

    QByteArray m_body;
    qint64 m_read = 0;
};

} // namespace

QNetworkReply *InstantServer::createRequest(Operation, const QNetworkRequest &request, QIODevice *)
{
    return new InstantReply(request, m_body, this);
}

#include "InstantServer.moc"
