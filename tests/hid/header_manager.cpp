// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Compiles only while the library's public header needs nothing before it.
#include <HIDCommunicator/OrvikHIDManager.h>

const QMetaObject *managerMetaObject()
{
    return &HIDCommunicator::OrvikHIDManager::staticMetaObject;
}
