#pragma once

#include <QDebug>

/// One log line: its pieces are joined as they are, without quotes or blanks between them. Flags print as
/// true or false.
inline QDebug logLine()
{
    return qDebug().noquote().nospace();
}
