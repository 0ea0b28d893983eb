// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "Transfer.h"

namespace HIDCommunicator {

Transfer::Transfer(HANDLE file)
    : m_file(file)
    , m_done(makeEvent(false))
{
}

Transfer::~Transfer()
{
    if (m_underWay)
        callBack();
}

bool Transfer::read(int size)
{
    m_buffer = QByteArray(size, '\0');
    m_state = {};
    m_state.hEvent = m_done.get();
    return begin(ReadFile(m_file, m_buffer.data(), DWORD(size), nullptr, &m_state));
}

bool Transfer::write(const QByteArray &report)
{
    m_buffer = report;
    m_state = {};
    m_state.hEvent = m_done.get();
    return begin(WriteFile(m_file, m_buffer.constData(), DWORD(m_buffer.size()), nullptr, &m_state));
}

/// A transfer that is done at once sets the event all the same.
bool Transfer::begin(bool done)
{
    m_underWay = done || GetLastError() == ERROR_IO_PENDING;
    return m_underWay;
}

void Transfer::callBack()
{
    CancelIoEx(m_file, &m_state);
    WaitForSingleObject(m_done.get(), INFINITE);
}

std::optional<QByteArray> Transfer::take()
{
    DWORD length = 0;
    const bool transferred = GetOverlappedResult(m_file, &m_state, &length, FALSE);
    m_calledBack = !transferred && GetLastError() == ERROR_OPERATION_ABORTED;
    m_underWay = false;
    return transferred ? std::optional(m_buffer.first(qMin(qsizetype(length), m_buffer.size())))
                       : std::nullopt;
}

} // namespace HIDCommunicator
