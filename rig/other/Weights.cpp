// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// What the kernel and the C library tell of this process's memory.
#include "rig/Weights.h"

#include <QFile>

#include <unistd.h>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace rig {

namespace {

// Empty pages that the heap keeps for later would hide what has come on top.
qint64 heapInUse()
{
#ifdef __GLIBC__
    malloc_trim(0);
    const struct mallinfo2 heap = mallinfo2();
    return qint64(heap.uordblks) + qint64(heap.hblkhd);
#else
    return 0;
#endif
}

// The second number counts pages.
qint64 residentNow()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

} // namespace

MemoryInUse memoryOfThisProcess()
{
    const qint64 heap = heapInUse();
    return {residentNow(), heap};
}

} // namespace rig
