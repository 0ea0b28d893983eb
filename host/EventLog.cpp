// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "host/EventLog.h"

#include <QDateTime>

#include <atomic>

namespace host {

namespace {
std::atomic<EventLog *> current{nullptr};
std::atomic<QtMessageHandler> terminal{nullptr};
constexpr int kTimeWidth = 9;
constexpr int kSourceWidth = 12;

/// The concern that a line of the product's belongs to, by its category.
QString sourceOf(QtMsgType type, const QMessageLogContext &context)
{
    if (type != QtDebugMsg && type != QtInfoMsg)
        return QStringLiteral("warning");
    static const QLatin1StringView product("quillon.");
    const QString category = QLatin1StringView(context.category);
    return category.startsWith(product) ? category.sliced(product.size()) : category;
}
} // namespace

EventLog::EventLog()
{
    m_clock.start();
    current = this;
    m_formerHandler = qInstallMessageHandler(&EventLog::takeMessage);
    terminal = m_formerHandler;
}

EventLog::~EventLog()
{
    qInstallMessageHandler(m_formerHandler);
    current = nullptr;
}

bool EventLog::writeTo(const QString &file)
{
    {
        const QMutexLocker lock(&m_mutex);
        m_file.setFileName(file);
        if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return false;
    }
    record(QStringLiteral("host"), QDateTime::currentDateTime().toString(Qt::ISODate));
    return true;
}

QString EventLog::now() const
{
    return QString::number(double(m_clock.elapsed()) / 1000, 'f', 3).rightJustified(kTimeWidth);
}

void EventLog::record(const QString &source, const QString &text)
{
    QString oneLine = text;
    oneLine.replace(QLatin1Char('\n'), QLatin1Char(' '));
    QString line;
    {
        // The time is taken inside the lock, so that the lines of several threads stand in its order.
        const QMutexLocker lock(&m_mutex);
        line = now() + QStringLiteral("  ") + source.leftJustified(kSourceWidth) + QLatin1Char(' ') + oneLine;
        if (m_file.isOpen()) {
            m_file.write(line.toUtf8() + '\n');
            // Nothing may wait in a buffer: a log matters most after a crash.
            m_file.flush();
        }
    }
    Q_EMIT recorded(line);
}

void EventLog::takeMessage(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (EventLog *log = current)
        log->record(sourceOf(type, context), text);
    // The platform without a display warns about everything that it cannot do.
    const bool isForPeople = type != QtDebugMsg && type != QtInfoMsg
        && !text.startsWith(QLatin1StringView("This plugin does not support"));
    const QtMessageHandler former = terminal;
    if (former && isForPeople)
        former(type, context, text);
}

} // namespace host
