// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/tool/ToolPlatform.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <thread>

#include <sys/mman.h>

namespace ToolPlatform {

std::filesystem::path home()
{
    const char *folder = std::getenv("HOME");
    return folder ? folder : "";
}

std::vector<std::string> arguments(int argc, char **argv)
{
    return {argv + 1, argv + argc};
}

void pauseFor(long milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

void ignoreTerminate()
{
    std::signal(SIGTERM, SIG_IGN);
}

void crash()
{
    std::abort();
}

void holdMemory(std::size_t mebibytes)
{
    constexpr std::size_t kMebibyte = 1024UL * 1024;
    constexpr std::size_t kPage = 4096;
    const std::size_t size = mebibytes * kMebibyte;
    void *memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        crash();
    // Large pages would be given back too fast.
    madvise(memory, size, MADV_NOHUGEPAGE);
    for (std::size_t at = 0; at < size; at += kPage)
        static_cast<volatile char *>(memory)[at] = 1;
}

long startHelper()
{
    return 0; // no test asks for one here
}

SharedWriter::SharedWriter(const std::filesystem::path &path, const std::string &)
    : m_path(path)
{
}

void SharedWriter::write(const std::string &text, bool truncate)
{
    std::ofstream(m_path, std::ios::out | (truncate ? std::ios::trunc : std::ios::app)) << text;
}

} // namespace ToolPlatform
