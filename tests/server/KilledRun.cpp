// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/server/KilledRun.h"

#include <QByteArray>
#include <QFile>
#include <QList>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <iterator>

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Newer architectures lack the elder ones.
constexpr long kChanging[]{
#ifdef SYS_rename
    SYS_rename,          SYS_symlink,   SYS_mkdir,    SYS_rmdir,     SYS_unlink, SYS_chmod,     SYS_link,
#endif
    SYS_renameat2,       SYS_symlinkat, SYS_mkdirat,  SYS_unlinkat,  SYS_linkat, SYS_fchmod,    SYS_fchmodat,
    SYS_write,           SYS_writev,    SYS_pwrite64, SYS_ftruncate, SYS_fsync,  SYS_fdatasync, SYS_sendfile,
    SYS_copy_file_range,
};

bool changes(const __ptrace_syscall_info &call)
{
    const auto number = long(call.entry.nr);
    if (number == SYS_openat)
        return (call.entry.args[2] & O_CREAT) != 0;
    return std::find(std::begin(kChanging), std::end(kChanging), number) != std::end(kChanging);
}

/// Of a child, until exec. Only what may be called after a fork.
[[noreturn]] void become(char *const arguments[])
{
    const int nowhere = ::open("/dev/null", O_RDWR);
    ::dup2(nowhere, STDOUT_FILENO);
    ::dup2(nowhere, STDERR_FILENO);
    if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0)
        ::_exit(127);
    ::raise(SIGSTOP);
    ::execv(arguments[0], arguments);
    ::_exit(126);
}

KilledRun follow(pid_t child, int count)
{
    constexpr int kAtSystemCall = SIGTRAP | 0x80;
    int status = 0;
    if (::waitpid(child, &status, 0) != child || !WIFSTOPPED(status))
        return KilledRun::Untraceable;
    ::ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    int seen = 0;
    int signal = 0;
    while (::ptrace(PTRACE_SYSCALL, child, nullptr, signal) == 0 && ::waitpid(child, &status, 0) == child) {
        if (!WIFSTOPPED(status))
            return KilledRun::Finished;
        // The exec is a trap of its own.
        signal = WSTOPSIG(status) == SIGTRAP || WSTOPSIG(status) == kAtSystemCall ? 0 : WSTOPSIG(status);
        __ptrace_syscall_info call{};
        if (WSTOPSIG(status) != kAtSystemCall
            || ::ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof call, &call) <= 0
            || call.op != PTRACE_SYSCALL_INFO_ENTRY || !changes(call) || ++seen < count)
            continue;
        ::kill(child, SIGKILL);
        ::waitpid(child, &status, 0);
        return KilledRun::Killed;
    }
    return KilledRun::Untraceable;
}

} // namespace

KilledRun runAndKill(const QString &program, const QStringList &arguments, int count)
{
    // A leak sanitizer would trace the program itself.
    ::setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
    QList<QByteArray> words{QFile::encodeName(program)};
    for (const QString &argument : arguments)
        words.append(argument.toLocal8Bit());
    QList<char *> pointers;
    for (QByteArray &word : words)
        pointers.append(word.data());
    pointers.append(nullptr);
    char *const *raw = pointers.data();
    const pid_t child = ::fork();
    if (child == 0)
        become(raw);
    return child < 0 ? KilledRun::Untraceable : follow(child, count);
}
