// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Compiled without access control, so that no test has to be.
#include "tests/net/ClientInside.h"

#include "net/networking_class.h"

QNetworkAccessManager *ClientInside::manager()
{
    return networking_class::getInstance()->manager;
}

QTimer *ClientInside::heldFileTimer()
{
    return networking_class::getInstance()->heldFileTimer;
}
