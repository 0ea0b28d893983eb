// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QElapsedTimer>
#include <QFile>
#include <QMutex>
#include <QObject>
#include <QString>

namespace host {

/// Everything that happens, line by line: what the panel logs, what the rig does, what a scenario says. While
/// the object lives it takes Qt's messages over; warnings still reach the terminal. record() may be called
/// from any thread.
class EventLog : public QObject {
    Q_OBJECT

public:
    EventLog();
    ~EventLog() override;

    /// Writes everything from now on to \a file as well. False when it cannot be written.
    bool writeTo(const QString &file);

    void record(const QString &source, const QString &text);

    /// "   12.345", the seconds since the log was begun.
    QString now() const;

Q_SIGNALS:
    /// A line "SECONDS  SOURCE  TEXT". Emitted by the thread that made the record.
    void recorded(const QString &line);

private:
    static void takeMessage(QtMsgType type, const QMessageLogContext &context, const QString &text);

    QElapsedTimer m_clock;
    QMutex m_mutex;
    QFile m_file;
    QtMessageHandler m_formerHandler;
};

} // namespace host
