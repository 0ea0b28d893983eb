// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "SystemHandle.h"

#include <QByteArray>

#include <optional>

namespace HIDCommunicator {

/// One report on its way between a file and this process, in one direction. The system uses the buffer as
/// long as the transfer is under way; the destructor calls it back and waits for that, so the file is closed
/// after it. One thread calls its functions.
class Transfer {
public:
    explicit Transfer(HANDLE file);
    ~Transfer();
    Transfer(const Transfer &) = delete;
    Transfer &operator=(const Transfer &) = delete;

    bool works() const { return m_done != nullptr; }
    bool isUnderWay() const { return m_underWay; }
    HANDLE done() const { return m_done.get(); } ///< to be waited for

    /// These two begin a transfer; false: the device would not have it.
    bool read(int size);
    bool write(const QByteArray &report);

    /// Returns when the one that is under way is done: it is called back, unless it gets done meanwhile. What
    /// it has transferred then is still to be taken.
    void callBack();
    /// What was transferred by the one that is done; nothing when it failed.
    std::optional<QByteArray> take();
    /// Whether the last one that failed was called back.
    bool wasCalledBack() const { return m_calledBack; }

private:
    bool begin(bool done);

    HANDLE m_file;
    SystemHandle m_done;
    OVERLAPPED m_state{};
    QByteArray m_buffer;
    bool m_underWay = false;
    bool m_calledBack = false;
};

} // namespace HIDCommunicator
