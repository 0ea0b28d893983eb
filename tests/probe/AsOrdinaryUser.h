// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include <QtGlobal>

#include <sys/syscall.h>
#include <unistd.h>

/// This thread without root's rights, while the object lives: who runs the tests as root may open everything.
class AsOrdinaryUser {
public:
    AsOrdinaryUser()
        : m_wasRoot(getuid() == 0)
    {
        if (m_wasRoot && syscall(SYS_setresuid, kNobody, kNobody, 0) != 0)
            qFatal("cannot become an ordinary user");
    }
    ~AsOrdinaryUser()
    {
        if (m_wasRoot && syscall(SYS_setresuid, 0, 0, 0) != 0)
            qFatal("cannot become root again");
    }
    AsOrdinaryUser(const AsOrdinaryUser &) = delete;
    AsOrdinaryUser &operator=(const AsOrdinaryUser &) = delete;

private:
    static constexpr uint kNobody = 65534;

    bool m_wasRoot;
};
