// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QStringList>

/// What the HID library asks of Windows: its calls are counted, delayed and refused on their way out of the
/// library. Everything is undone when this goes.
class SystemCalls {
public:
    SystemCalls();
    ~SystemCalls();
    SystemCalls(const SystemCalls &) = delete;
    SystemCalls &operator=(const SystemCalls &) = delete;

    QStringList takeOpened(); ///< what was opened since the last call, in lower case
    int takeWaits(); ///< how often a thread of the library's has begun to wait since the last call

    void setOpenRefused(bool refused); ///< for reports, not for questions
    void setOpenHanging(bool hanging); ///< until it is taken back
    void setListingFailing(bool failing);
    void setReportsTold(bool told);
};
