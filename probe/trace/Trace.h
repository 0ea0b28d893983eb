// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <chrono>
#include <optional>

/// quillon-probe: looks at a device from the command line, and the traces it keeps of what it saw.
namespace probe {

/// Something that happened on the bus, as one line of a trace tells it.
struct TraceEvent {
    enum class Kind {
        Plug, ///< the device appeared
        Unplug, ///< it left
        Open, ///< it was opened
        Denied, ///< it could not be opened: the user has no permission
        Refused, ///< it could not be opened for another reason
        Out, ///< a report was sent to it
        In ///< a report came from it
    };

    std::chrono::milliseconds time{0}; ///< since the trace began
    Kind kind = Kind::Plug;
    int device = 0; ///< counted from 1; plugged in again it is another one
    int vendorId = 0; ///< these two for Plug only
    int productId = 0;
    QByteArray report; ///< for Out and In only; the report ID comes first
};

/// The traffic between a host and the devices of the family. docs/probe.md describes the text it is kept in.
struct Trace {
    QString file;
    QList<TraceEvent> events;

    /// What a reader takes, in bytes. A writer has to keep below.
    static constexpr qsizetype kLargestFile = qsizetype(16) * 1024 * 1024;
    static constexpr qsizetype kLongestLine = qsizetype(16) * 1024;
    static constexpr qsizetype kLongestReport = 4096;
    /// Of all reports together: a few characters can stand for many bytes.
    static constexpr qsizetype kMostTraffic = qsizetype(64) * 1024 * 1024;
    /// A reader takes no more plugs and no more events than these.
    static constexpr int kMostDevices = 1000;
    static constexpr int kMostEvents = 1'000'000;

    /// Reads \a file. Nothing when it cannot be read or is no trace; \a error then says "FILE:LINE: what is
    /// wrong" (or "FILE: what is wrong" when it concerns no line). It holds printable characters only,
    /// whatever the file holds.
    static std::optional<Trace> load(const QString &file, QString *error);
    /// The same for a text; \a file only stands in the messages.
    static std::optional<Trace> parse(const QByteArray &text, const QString &file, QString *error);

    /// The line that every trace begins with, and the line that tells \a event, line feed included.
    static QByteArray firstLine();
    static QByteArray lineOf(const TraceEvent &event);
};

} // namespace probe
