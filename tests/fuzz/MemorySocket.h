// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QLocalSocket>

#include <algorithm>

/// A socket without another side: what is given to it can be read, what is written can be taken.
class MemorySocket : public QLocalSocket {
    Q_OBJECT

public:
    MemorySocket() { setOpenMode(ReadWrite | Unbuffered); }

    void arrive(const QByteArray &bytes)
    {
        m_arrived += bytes;
        Q_EMIT readyRead();
    }
    void hangUp() { Q_EMIT disconnected(); }
    QByteArray takeWritten() { return std::exchange(m_written, {}); }

    qint64 bytesAvailable() const override { return m_arrived.size(); }
    bool canReadLine() const override { return m_arrived.contains('\n'); }

protected:
    qint64 readData(char *data, qint64 size) override
    {
        const qint64 count = std::min<qint64>(size, m_arrived.size());
        std::copy_n(m_arrived.cbegin(), count, data);
        m_arrived.remove(0, count);
        return count;
    }
    qint64 readLineData(char *data, qint64 size) override
    {
        return readData(data, std::min<qint64>(size, m_arrived.indexOf('\n') + 1));
    }
    qint64 writeData(const char *data, qint64 size) override
    {
        m_written.append(data, size);
        return size;
    }

private:
    QByteArray m_arrived;
    QByteArray m_written;
};
