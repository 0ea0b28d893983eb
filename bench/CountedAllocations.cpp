// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "bench/CountedAllocations.h"

#include <atomic>
#include <cstddef>

namespace {
std::atomic<qint64> counted{0};
std::atomic<qint64> asked{0};

void count(std::size_t size)
{
    counted.fetch_add(1, std::memory_order_relaxed);
    asked.fetch_add(qint64(size), std::memory_order_relaxed);
}
} // namespace

// The C library's own, which it lets a program put itself in front of. Linked into the program, these are
// what every library calls.
extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier): the C library has chosen these names.
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t number, std::size_t size);
void *__libc_realloc(void *block, std::size_t size);
// NOLINTEND(bugprone-reserved-identifier)

void *malloc(std::size_t size)
{
    count(size);
    return __libc_malloc(size);
}

void *calloc(std::size_t number, std::size_t size)
{
    count(number * size);
    return __libc_calloc(number, size);
}

void *realloc(void *block, std::size_t size)
{
    count(size);
    return __libc_realloc(block, size);
}
}

namespace CountedAllocations {

qint64 calls()
{
    return counted;
}

qint64 bytes()
{
    return asked;
}

} // namespace CountedAllocations
