// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QString>
#include <QStringList>

#include <chrono>

/// What the HID library asks of Windows: its calls are counted, delayed and refused on their way out of the
/// library. Everything is undone when this goes.
class SystemCalls {
public:
    SystemCalls();
    ~SystemCalls();
    SystemCalls(const SystemCalls &) = delete;
    SystemCalls &operator=(const SystemCalls &) = delete;

    void letThrough(); ///< takes back what the functions below have set

    QStringList takeOpened(); ///< what was opened since the last call, in lower case
    /// What the system's own lists took the calling thread since its last call.
    std::chrono::nanoseconds takeListingTime();
    /// How many handles for reports the library has, on \a path or, where that is empty, on anything.
    static int openHandles(const QString &path = {});
    int takeWaits(); ///< how often a thread of the library's has begun to wait since the last call

    void setOpenRefused(bool refused); ///< for reports, not for questions
    void setOpenHanging(bool hanging); ///< until it is taken back
    void setListingFailing(bool failing);
    void setReportsTold(bool told);
};
